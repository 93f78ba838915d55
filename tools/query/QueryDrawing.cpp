#include "tools/query/QueryDrawing.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <utility>

#include "tools/query/QueryUnits.h"
#include "velan/base/ASCII.h"
#include "velan/wildcard/WildcardPattern.h"

namespace velan::tool {
namespace {

constexpr size_t kPlacesShown = 5;
constexpr size_t kTermsFolded = 12;  // of one group with different operators

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

bool isPlainWord(const ExplainedPiece& piece) {
  return piece.type == WildcardTypeExact && !piece.standsForAnyWord && !piece.acceptsSimilarWords;
}

// What a leaf looks for, one line for each word of it; nothing for a word as it stands.
std::vector<std::string> explainLeaf(const ExplainedTerm& leaf, bool wildcard) {
  if (leaf.meaning == LeafMeaning::WholeRange) return {"the whole text"};
  if (!wildcard) return {explainLiteral(leaf)};
  if (leaf.pieces.empty()) return {"no word characters, never found"};
  std::vector<std::string> lines;
  if (leaf.pieces.size() == 1 && isPlainWord(leaf.pieces.front())) return {};
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

// What is drawn: a leaf, or an operator with what it joins.
struct Node {
  std::string name;
  std::string found = {};  // of a leaf: where
  std::vector<std::string> details = {};
  std::optional<bool> holds = {};
  std::vector<Node> joined = {};
  std::optional<QueryOperator> queryOperator = {};  // that joins more of the same
};

std::optional<bool> combined(QueryOperator op, std::optional<bool> before, std::optional<bool> holds) {
  if (op == QueryOperator::Optional || !before || !holds) return before;
  if (op == QueryOperator::Or) return *before || *holds;
  return op == QueryOperator::Xor ? *before != *holds : *before && *holds;
}

// Groups lie at most as deep as terms are explained, so that recursion has an end.
class TreeBuilder {
 public:
  TreeBuilder(const std::vector<ExplainedTerm>& terms, bool wildcard, const SourcePlaces* source)
      : _terms(terms), _wildcard(wildcard), _source(source), _children(terms.size()) {
    std::vector<size_t> above;
    for (size_t i = 0; i < terms.size(); ++i) {
      above.resize(terms[i].depth);
      if (!above.empty()) _children[above.back()].push_back(i);
      above.push_back(i);
    }
  }

  Node nodeOf(size_t number) const {
    const ExplainedTerm& term = _terms[number];
    if (term.term->isWord()) return leafOf(term);
    if (_children[number].empty()) return {"…"};
    Node node = groupOf(_children[number]);
    node.queryOperator.reset();
    if (!isNegated(term)) return node;
    Node negation{"NOT"};
    if (node.holds) negation.holds = !*node.holds;
    negation.joined.push_back(std::move(node));
    return negation;
  }

 private:
  Node leafOf(const ExplainedTerm& term) const {
    const char* quote = term.term->queryPhrase() ? "\"" : "";
    Node leaf{fmt::format("{0}{1}{2}{1}", isNegated(term) ? "NOT " : "", quote, term.term->word().toUTF8())};
    leaf.details = explainLeaf(term, _wildcard);
    leaf.holds = term.holds;
    if (!_source) return leaf;
    leaf.found = describePlaces(term.places, *_source);
    if (isNegated(term) && term.holds) leaf.found += *term.holds ? ", so it holds" : ", so it does not hold";
    return leaf;
  }

  // The negation of a related term is that of its operator.
  static bool isNegated(const ExplainedTerm& term) { return term.term->queryNot() && !term.partner; }

  static std::string nameOf(const ExplainedTerm& term) {
    const QueryOperator op = term.term->queryOperator();
    if (!term.partner) return keywordOf(isProximity(op) ? QueryOperator::And : op);
    return fmt::format("{}{}/{}", term.term->queryNot() ? "NOT " : "", keywordOf(op), term.term->proximityDistance());
  }

  Node groupOf(const std::vector<size_t>& children) const {
    const auto first = children.begin() + 1;
    const bool isUniform = std::all_of(first, children.end(), [&](size_t child) {
      return !_terms[child].partner && nameOf(_terms[child]) == nameOf(_terms[children.back()]);
    });
    return isUniform || children.size() <= kTermsFolded ? foldOf(children) : listOf(children);
  }

  // From left to right.
  Node foldOf(const std::vector<size_t>& children) const {
    Node node = nodeOf(children.front());
    for (size_t i = 1; i < children.size(); ++i) {
      const ExplainedTerm& term = _terms[children[i]];
      Node next = nodeOf(children[i]);
      const QueryOperator op =
          term.partner || isProximity(term.term->queryOperator()) ? QueryOperator::And : term.term->queryOperator();
      if (term.partner) {
        Node related{nameOf(term)};
        related.holds = next.holds;
        const std::optional<bool> before = node.holds;
        related.joined = {partnerOf(children, i, node), std::move(next)};
        if (i == 1) {
          related.holds = combined(op, before, related.holds);
          node = std::move(related);
          continue;
        }
        next = std::move(related);
      }
      join(node, op, nameOf(term), std::move(next));
    }
    return node;
  }

  // What the term with this number is related to, the one before it. Where that must hold anyway it stands there only.
  Node partnerOf(const std::vector<size_t>& children, size_t i, Node& node) const {
    const ExplainedTerm& partner = _terms[children[i - 1]];
    const bool isPlain = partner.term->isWord() && !partner.term->queryNot() && !partner.partner;
    if (i == 1) return std::move(node);
    if (isPlain && node.queryOperator == QueryOperator::And) {
      Node last = std::move(node.joined.back());
      node.joined.pop_back();
      return last;
    }
    Node again = nodeOf(children[i - 1]);
    if (!partner.term->isWord()) return again;
    again.found = "as above";
    again.details.clear();
    return again;
  }

  static void join(Node& node, QueryOperator op, std::string name, Node next) {
    const std::optional<bool> holds = combined(op, node.holds, next.holds);
    if (node.queryOperator != op) {
      Node both{op == QueryOperator::And ? "AND" : std::move(name)};
      both.queryOperator = op;
      both.joined.push_back(std::move(node));
      node = std::move(both);
    }
    node.holds = holds;
    node.joined.push_back(std::move(next));
  }

  // As they were written.
  Node listOf(const std::vector<size_t>& children) const {
    Node list{"from left to right"};
    for (const size_t child : children) {
      const ExplainedTerm& term = _terms[child];
      Node node = nodeOf(child);
      if (!term.isFirst) node.name = nameOf(term) + ' ' + node.name;
      list.holds = term.isFirst ? node.holds
                                : combined(term.partner ? QueryOperator::And : term.term->queryOperator(), list.holds,
                                           node.holds);
      list.joined.push_back(std::move(node));
    }
    return list;
  }

  const std::vector<ExplainedTerm>& _terms;
  const bool _wildcard;
  const SourcePlaces* const _source;  // null: there is no document
  std::vector<std::vector<size_t>> _children;
};

class TreePrinter {
 public:
  explicit TreePrinter(TreeLines lines) : _lines(lines) {}

  std::string print(const Node& root) {
    printNode(root, "  ", "  ");
    return std::move(_out);
  }

 private:
  void printNode(const Node& node, const std::string& margin, const std::string& next) {
    _out += margin + node.name;
    if (node.joined.empty()) {
      if (!node.found.empty()) _out += ": " + node.found;
    } else if (node.holds) {
      _out += *node.holds ? ": holds" : ": does not hold";
    }
    _out += '\n';
    for (const std::string& line : node.details) _out += next + "  " + line + '\n';
    const bool isBox = _lines == TreeLines::Box;
    for (size_t i = 0; i < node.joined.size(); ++i) {
      const bool isLast = i + 1 == node.joined.size();
      const char* branch = isBox ? (isLast ? "└─ " : "├─ ") : isLast ? "`- " : "|- ";
      const char* trunk = isLast ? "   " : isBox ? "│  " : "|  ";
      printNode(node.joined[i], next + branch, next + trunk);
    }
  }

  const TreeLines _lines;
  std::string _out;
};

}  // namespace

TreeLines linesOfTerminal() {
  for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    const char* value = std::getenv(name);
    if (!value || !*value) continue;
    std::string locale(value);
    std::erase(locale, '-');
    std::transform(locale.begin(), locale.end(), locale.begin(), [](char c) { return toASCIIUpper(c); });
    return locale.find("UTF8") != std::string::npos ? TreeLines::Box : TreeLines::ASCII;
  }
  return TreeLines::ASCII;
}

std::string drawnQuery(const std::vector<ExplainedTerm>& terms, bool wildcard, const SourcePlaces* source,
                       TreeLines lines) {
  if (terms.size() < 2) return "";
  return TreePrinter(lines).print(TreeBuilder(terms, wildcard, source).nodeOf(0));
}

}  // namespace velan::tool
