// The command "explain".
#include <fmt/format.h>

#include <iterator>
#include <optional>
#include <string_view>
#include <vector>

#include "tools/Commands.h"
#include "tools/Console.h"
#include "tools/search/DocumentReading.h"
#include "tools/search/TextCommands.h"
#include "tools/search/TextLines.h"
#include "tools/search/TextOffsets.h"
#include "velan/query/QueryMatching.h"
#include "velan/query/WordFinder.h"
#include "velan/query/words/WordSeparation.h"
#include "velan/wildcard/WildcardPattern.h"

namespace velan::tool {
namespace {

constexpr size_t kDeepest = 40;  // groups further down are left out
constexpr int64_t kPlacesShown = 5;

constexpr const char* kOperatorNames[] = {"AND", "OR", "XOR", "NEAR", "BEFORE", "AFTER", "NEXT", "OPT", ""};

constexpr const char* kTypeMeanings[] = {
    "an exact word",
    "a word of this length, each ? any one character",
    "words with this beginning",
    "words with this end",
    "words that contain this",
    "* or ? in other places",
    "sets, with * inside or more than once",
    "sets, with * at the end",
    "sets, with * at the start",
    "sets, without *",
    "not usable, never found",
};

std::string explainPiece(const String& piece, bool several, bool fuzzy) {
  std::u16string units(piece.view());
  Range range{};
  const uint32_t type = optimizeWildcard(units.data(), units.data() + units.size(), &range, 1);
  if (type == WildcardTypeUnusable) {
    const bool onlyWildcards = piece.view().find_first_not_of(u"*?") == std::u16string_view::npos;
    return fmt::format("{}: type 10, {}", piece.toUTF8(),
                       several && onlyWildcards ? "stands for any one word of fitting length" : kTypeMeanings[type]);
  }
  const bool starAtEnd = type == WildcardTypePrefix || type == WildcardTypeContains || type == WildcardTypeSetPrefix;
  units.resize(static_cast<size_t>(endOf(range)) + (starAtEnd ? 1 : 0));
  const bool similar = fuzzy && type == WildcardTypeExact;
  return fmt::format("{}: type {}, {}{}; normal form {}", piece.toUTF8(), type, kTypeMeanings[type],
                     similar ? fmt::format(" or one that is similar to at least {}", minWildcardFuzzyAnalogy()) : "",
                     String(units).toUTF8());
}

// What a leaf looks for, one line for each word of it.
std::vector<std::string> explainLeaf(const QueryTerms& leaf, const Query& query) {
  if (!query.wildcard) return {leaf.queryPhrase() ? "a phrase, exactly as it stands" : "a plain word"};
  if (leaf.word().view().find_first_not_of(u'*') == std::u16string_view::npos && !leaf.word().isEmpty()) {
    return {"the whole text"};
  }
  const auto pieces = wordsUsingWildcardSeparation(leaf.word(), nullptr).value_or(std::vector<String>());
  if (pieces.empty()) return {"no word characters, never found"};
  std::vector<std::string> lines;
  if (pieces.size() > 1) lines.push_back(fmt::format("{} words in a row", pieces.size()));
  for (const String& piece : pieces) {
    lines.push_back(explainPiece(piece, pieces.size() > 1, contains(query.comparison, QueryComparison::Fuzzy)));
  }
  return lines;
}

// The document that a query is explained for.
class Examined {
 public:
  Examined(const Document& document, const Query& query)
      : _lines(document.text.view()), _offsets(document), _query(query), _index(query.index(document.text)) {}

  bool matches(const QueryTerms& node, const QueryTerms* partner) const {
    if (!_index) return false;
    const QueryOperator op = partner ? node.queryOperator() : QueryOperator::Mixed;
    return matchesString(*_index, node, partner, op, partner ? node.proximityDistance() : 0, 0, _index->length(),
                         _query.comparison, _query.wildcard);
  }

  std::string places(const QueryTerms& leaf) const {
    std::string shown;
    int64_t count = 0;
    for (Range place = find(leaf, 0); isPresent(place); place = find(leaf, endOf(place))) {
      if (++count > kPlacesShown) continue;
      const size_t line = _lines.lineAt(place.location);
      const int64_t column =
          _offsets.at(place.location).characters - _offsets.at(_lines.fullRange(line).location).characters + 1;
      shown += fmt::format("{}{}:{}", count > 1 ? ", " : "", line + 1, column);
    }
    if (count == 0) return "not found";
    return fmt::format("found {} time{}, at {}{}", count, count == 1 ? "" : "s", shown,
                       count > kPlacesShown ? ", …" : "");
  }

 private:
  Range find(const QueryTerms& leaf, int64_t from) const {
    if (!_index) return kAbsentRange;
    const String& word = leaf.word();
    const int64_t rest = _index->length() - from;
    if (_query.wildcard) {
      return FindWildcardStringInCharacters(*_index, {from, rest}, word, _query.comparison, true, true, true);
    }
    const int64_t location =
        FindWordInString(*_index, from, rest, word.characters(), word.length(), _query.comparison, true);
    return location == NSNotFound ? kAbsentRange : Range{location, word.length()};
  }

  const TextLines _lines;
  const TextOffsets _offsets;
  const Query& _query;
  const std::unique_ptr<FastWordEnumerator> _index;
};

// Writes the tree from an explicit stack, because a query may be nested to any depth.
class TreePrinter {
 public:
  TreePrinter(const Query& query, const Examined* examined) : _query(query), _examined(examined) {
    pushChildren({query.terms.get(), nullptr, true, 0, false});
    while (!_pending.empty()) {
      const Node node = _pending.back();
      _pending.pop_back();
      print(node);
    }
  }

  std::string takeText() { return std::move(_out); }

 private:
  struct Node {
    const QueryTerms* terms;
    const QueryTerms* partner;  // what its proximity operator relates it to
    bool first;                 // of its group: its operator does not count
    size_t depth;
    bool inherits;  // a group above passes its relation on, so that the node is not evaluated by itself
  };

  void pushChildren(const Node& parent) {
    const auto& children = parent.terms->children();
    const bool inherits = parent.inherits || parent.partner;
    for (size_t i = children.size(); i-- > 0;) {
      const QueryTerms& child = *children[i];
      const bool related = i > 0 && isProximity(child.queryOperator()) && child.proximityDistance() > 0;
      _pending.push_back({&child, related ? children[i - 1].get() : nullptr, i == 0, parent.depth + 1, inherits});
    }
  }

  void print(const Node& node) {
    if (node.depth > kDeepest) return addLine(node.depth, "…");
    addLine(node.depth, heading(node));
    if (node.terms->isWord()) {
      for (const std::string& line : explainLeaf(*node.terms, _query)) addLine(node.depth, "  " + line);
      if (_examined) addLine(node.depth, "  " + _examined->places(*node.terms));
    }
    if (_examined && !node.inherits) addVerdict(node);
    if (!node.terms->isWord()) pushChildren(node);
  }

  std::string heading(const Node& node) const {
    std::string text;
    const QueryOperator op = node.terms->queryOperator();
    if (!node.first) text = kOperatorNames[static_cast<size_t>(op)];
    if (!node.first && isProximity(op)) text += fmt::format("/{}", node.terms->proximityDistance());
    if (!node.first) text += ' ';
    if (node.terms->queryNot()) text += "NOT ";
    const char* quote = node.terms->queryPhrase() ? "\"" : "";
    return text + (node.terms->isWord() ? quote + node.terms->word().toUTF8() + quote : "group");
  }

  void addVerdict(const Node& node) {
    const char* verdict = _examined->matches(*node.terms, node.partner) ? "holds" : "does not hold";
    addLine(node.depth, fmt::format("  {}{}", node.partner ? "with the term before: " : "", verdict));
  }

  void addLine(size_t depth, std::string_view text) { _out.append(2 * depth, ' ').append(text).push_back('\n'); }

  const Query& _query;
  const Examined* const _examined;  // null: there is no document
  std::vector<Node> _pending;
  std::string _out;
};

}  // namespace

int runExplain(const ExplainOptions& options) {
  const std::optional<Query> query = makeQuery(options.query);
  if (!query) return Trouble;
  std::optional<Document> document;
  std::optional<Examined> examined;
  if (!options.path.empty()) {
    Complaint complaint;
    document = readDocument({options.path, true, ""}, complaint);
    if (!document) {
      complain(complaint.text);
      return Trouble;
    }
    examined.emplace(*document, *query);
  }
  print(fmt::format("query:        {}\nnormalized:   {}\nstandardized: {}\ntree:\n{}", options.query.query,
                    query->terms->normalizedQueryTerm().toUTF8(), query->terms->standardizedQueryTerm().toUTF8(),
                    TreePrinter(*query, examined ? &*examined : nullptr).takeText()));
  if (!examined) return Something;
  const bool matches = examined->matches(*query->terms, nullptr);
  print(fmt::format("{}: {}\n", displayName(options.path), matches ? "matches" : "does not match"));
  return matches ? Something : Nothing;
}

}  // namespace velan::tool
