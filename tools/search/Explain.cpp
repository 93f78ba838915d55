// The command "explain".
#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

#include "tools/Commands.h"
#include "tools/Console.h"
#include "tools/documents/DocumentReading.h"
#include "tools/documents/SourcePlaces.h"
#include "tools/query/FailureReasons.h"
#include "tools/query/QueryDoubts.h"
#include "tools/query/QueryUnits.h"
#include "tools/query/WordReadings.h"
#include "tools/text/TextCommands.h"
#include "velan/wildcard/WildcardPattern.h"

namespace velan::tool {
namespace {

constexpr size_t kDeepest = 40;  // groups further down are left out
constexpr size_t kPlacesShown = 5;

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

std::string explainPiece(const ExplainedPiece& piece) {
  const char* meaning =
      piece.standsForAnyWord ? "stands for any one word of fitting length" : kTypeMeanings[piece.type];
  std::string text = fmt::format("{}: type {}, {}", piece.pattern.toUTF8(), piece.type, meaning);
  if (piece.acceptsSimilarWords)
    text += fmt::format(" or one that is similar to at least {}", minWildcardFuzzyAnalogy());
  if (piece.normalForm && !piece.standsForAnyWord) text += fmt::format("; normal form {}", piece.normalForm.toUTF8());
  return text;
}

std::string explainLiteral(const ExplainedTerm& leaf) {
  if (leaf.meaning == LeafMeaning::Nothing) return "begins or ends with a character of no word, never found";
  return leaf.term->queryPhrase() ? "a phrase, exactly as it stands" : "a plain word";
}

// What a leaf looks for, one line for each word of it.
std::vector<std::string> explainLeaf(const ExplainedTerm& leaf, bool wildcard) {
  if (leaf.meaning == LeafMeaning::WholeRange) return {"the whole text"};
  if (!wildcard) return {explainLiteral(leaf)};
  if (leaf.pieces.empty()) return {"no word characters, never found"};
  std::vector<std::string> lines;
  if (leaf.pieces.size() > 1) lines.push_back(fmt::format("{} words in a row", leaf.pieces.size()));
  for (const ExplainedPiece& piece : leaf.pieces) lines.push_back(explainPiece(piece));
  return lines;
}

std::string describePlaces(const std::vector<Range>& places, const SourcePlaces& source) {
  if (places.empty()) return "not found";
  std::string shown;
  for (size_t i = 0; i < std::min(places.size(), kPlacesShown); ++i) {
    const SourcePlace place = source.of(places[i]);
    shown += fmt::format("{}{}:{}", i > 0 ? ", " : "", place.line, place.column);
  }
  return fmt::format("found {} time{}, at {}{}", places.size(), places.size() == 1 ? "" : "s", shown,
                     places.size() > kPlacesShown ? ", …" : "");
}

class TreePrinter {
 public:
  TreePrinter(const PreparedQuery& query, const SourcePlaces* source) : _query(query), _source(source) {}

  std::string print(const std::vector<ExplainedTerm>& terms) {
    for (const ExplainedTerm& term : terms) {
      if (term.depth > 0) print(term);
    }
    return std::move(_out);
  }

 private:
  void print(const ExplainedTerm& term) {
    if (term.depth > kDeepest) return addLine(term.depth, "…");
    addLine(term.depth, heading(term));
    if (term.term->isWord()) {
      for (const std::string& line : explainLeaf(term, _query.wildcard())) addLine(term.depth + 1, line);
      if (_source) addLine(term.depth + 1, describePlaces(term.places, *_source));
    }
    if (!term.holds) return;
    const char* verdict = *term.holds ? "holds" : "does not hold";
    addLine(term.depth + 1, fmt::format("{}{}", term.partner ? "with the term before: " : "", verdict));
  }

  static std::string heading(const ExplainedTerm& term) {
    std::string text;
    const QueryOperator op = term.term->queryOperator();
    if (!term.isFirst) text = keywordOf(op);
    if (!term.isFirst && isProximity(op)) text += fmt::format("/{}", term.term->proximityDistance());
    if (!term.isFirst) text += ' ';
    if (term.term->queryNot()) text += "NOT ";
    const char* quote = term.term->queryPhrase() ? "\"" : "";
    return text + (term.term->isWord() ? fmt::format("{0}{1}{0}", quote, term.term->word().toUTF8()) : "group");
  }

  void addLine(size_t depth, std::string_view text) { _out.append(2 * depth, ' ').append(text).push_back('\n'); }

  const PreparedQuery& _query;
  const SourcePlaces* const _source;  // null: there is no document
  std::string _out;
};

// What was read otherwise than it stands, and what may have been meant otherwise.
std::string notesOn(const CorrectedQuery& query, const std::vector<ExplainedTerm>& terms) {
  std::vector<std::string> notes = query.corrections;
  notes.insert(notes.end(), query.spellings.begin(), query.spellings.end());
  for (const std::string& term : query.neverFound) {
    notes.push_back(fmt::format("{} is left out: without a letter or a digit it can never be found", term));
  }
  for (std::string& doubt : doubtsAbout(query)) notes.push_back(std::move(doubt));
  for (const ExplainedTerm& term : terms) {
    if (std::optional<std::string> doubt = doubtAboutBinding(*term.term)) notes.push_back(*std::move(doubt));
  }
  std::string lines;
  for (const std::string& note : notes) lines += fmt::format("note:         {}\n", note);
  return lines;
}

}  // namespace

int runExplain(const ExplainOptions& options) {
  const auto typed = makeQuery(options.query);
  if (!typed) return Trouble;
  const PreparedQuery* const query = typed->query.get();
  const QueryTerms& tree = query->terms();
  const bool hasOtherQuery = !options.query.alternatives.empty() && options.query.isGiven;
  const std::string& path = hasOtherQuery ? options.query.query : options.path;
  const auto describe = [&](const std::vector<ExplainedTerm>& terms, const SourcePlaces* source) {
    const std::optional<std::string> binding = bindingOf(tree);
    print(fmt::format("query:        {}\nnormalized:   {}\nstandardized: {}\n{}{}tree:\n{}",
                      options.query.alternatives.empty() ? options.query.query : typed->reading.source.toUTF8(),
                      tree.normalizedQueryTerm().toUTF8(), tree.standardizedQueryTerm().toUTF8(),
                      binding ? fmt::format("binds:        {}\n", *binding) : "", notesOn(typed->reading, terms),
                      TreePrinter(*query, source).print(terms)));
  };
  if (path.empty()) {
    describe(query->explanation(kDeepest + 1), nullptr);
    return Something;
  }
  DocumentReader reader(options.decoding);
  const std::optional<Document> document = reader.read({path, true, ""});
  if (!document) return Trouble;
  const SourcePlaces places(*document);
  const SearchedText searched = WordReadings(*query, options.query.verbatim).read(document->text);
  const std::vector<ExplainedTerm> terms = explanationIn(*query, searched, kDeepest + 1);
  describe(terms, &places);
  const bool matches = terms.front().holds == true;
  const auto matchesOtherwise = [&](const PreparedQuery& other) {
    return explanationIn(other, WordReadings(other, options.query.verbatim).read(document->text), 0).front().holds;
  };
  print(fmt::format("{}: {}\n", displayName(path), matches ? "matches" : "does not match"));
  if (matches) return Something;
  for (const std::string& reason : failureReasons(*query, terms, document->text, places, options.query.verbatim))
    print("  " + reason + '\n');
  if (typed->otherwise && matchesOtherwise(*typed->otherwise) == true) {
    print("  without the question mark it matches, which search tries when nothing is found\n");
  }
  return Nothing;
}

}  // namespace velan::tool
