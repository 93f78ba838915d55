// A query tree as text. The nodes and texts still to be written lie on a stack, so depth costs memory only.
#include <string>
#include <string_view>
#include <vector>

#include "velan/query/QueryTerms.h"
#include "velan/wildcard/WildcardPattern.h"

namespace velan {
namespace {

class QueryWriter {
 public:
  QueryWriter(MutableString& text, QueryStyle style, const QueryOperatorNames* names)
      : _text(text), _style(style), _names(names) {}

  void write(const QueryTerms& root) {
    _pending.push_back({&root, Step::Term});
    while (!_pending.empty()) {
      const Pending next = _pending.back();
      _pending.pop_back();
      switch (next.step) {
        case Step::Join:
          writeOperator(*next.node);
          break;
        case Step::Term:
          writeTerm(*next.node, next.node == &root);
          break;
        case Step::Close:
          _text.appendCharacter(u')');
          break;
      }
    }
  }

 private:
  enum class Step : uint8_t { Join, Term, Close };

  struct Pending {
    const QueryTerms* node;
    Step step;
  };

  bool has(QueryStyle flag) const { return contains(_style, flag); }

  void writeKeyword(std::u16string_view keyword) {
    if (_names) {
      if (const auto found = _names->find(String(keyword)); found != _names->end()) {
        _text.appendString(found->second);
        return;
      }
    }
    _text.appendString(keyword);
  }

  void writeBetweenBlanks(std::u16string_view keyword, std::u16string_view symbol) {
    _text.appendCharacter(u' ');
    if (has(QueryStyle::SymbolicOperators) && !symbol.empty()) {
      _text.appendString(symbol);
    } else {
      writeKeyword(keyword);
    }
    _text.appendCharacter(u' ');
  }

  // Whether the negation is part of the operator: "ANDNOT".
  bool joinsNegated(const QueryTerms& node) const {
    return has(QueryStyle::AndNot) && node.queryNot() && node.queryOperator() == QueryOperator::And;
  }

  void writeAnd(const QueryTerms& node) {
    if (joinsNegated(node)) {
      writeBetweenBlanks(u"ANDNOT", {});
    } else if (has(QueryStyle::ExplicitAnd)) {
      writeBetweenBlanks(u"AND", u"&");
    } else {
      _text.appendCharacter(u' ');
    }
  }

  void writeOperator(const QueryTerms& node) {
    switch (node.queryOperator()) {
      case QueryOperator::Or:
        return has(QueryStyle::Or) ? writeBetweenBlanks(u"OR", u"|") : writeAnd(node);
      case QueryOperator::Xor:
        return has(QueryStyle::Or) ? writeBetweenBlanks(u"XOR", u"^") : writeAnd(node);
      case QueryOperator::Near:
        return writeProximity(node, u"NEAR");
      case QueryOperator::Before:
        return writeProximity(node, u"BEFORE");
      case QueryOperator::After:
        return writeProximity(node, u"AFTER");
      case QueryOperator::Next:
        return writeProximity(node, u"NEXT");
      case QueryOperator::Optional:
        return has(QueryStyle::Optional) ? writeBetweenBlanks(u"OPT", {}) : writeAnd(node);
      case QueryOperator::And:
      case QueryOperator::Mixed:
        return writeAnd(node);
    }
  }

  void writeProximity(const QueryTerms& node, std::u16string_view keyword) {
    if (!has(QueryStyle::Proximity)) return writeAnd(node);
    _text.appendCharacter(u' ');
    writeKeyword(keyword);
    if (has(QueryStyle::Distances)) {
      _text.appendCharacter(u'/');
      for (const char digit : std::to_string(node.proximityDistance())) {
        _text.appendCharacter(static_cast<unichar>(digit));
      }
    }
    _text.appendCharacter(u' ');
  }

  void writeTerm(const QueryTerms& node, bool isRoot) {
    if (node.queryNot() && (isRoot || !joinsNegated(node))) {
      if (has(QueryStyle::SymbolicNot)) {
        _text.appendCharacter(u'-');
      } else {
        writeKeyword(u"NOT");
        _text.appendCharacter(u' ');
      }
    } else if (has(QueryStyle::Plus) && !node.queryNot() && !isRoot && node.queryOperator() == QueryOperator::And) {
      _text.appendCharacter(u'+');
    }
    if (node.isWord()) {
      writeLeaf(node);
    } else {
      writeGroup(node, isRoot);
    }
  }

  void writeLeaf(const QueryTerms& leaf) {
    const std::u16string_view word = leaf.word().view();
    if (leaf.queryPhrase()) {
      const bool quoted = has(QueryStyle::Phrases);
      if (quoted) _text.appendCharacter(u'"');
      _text.appendString(word);
      if (quoted) _text.appendCharacter(u'"');
    } else if (leaf.querySubstring() && !has(QueryStyle::Substrings) && word.size() > 1) {
      _text.appendString(word.substr(1, word.size() - 2));
    } else if (has(QueryStyle::NormalWildcards)) {
      writeNormalForm(word);
    } else {
      _text.appendString(word);
    }
  }

  // An unusable pattern stays as it was typed.
  void writeNormalForm(std::u16string_view word) {
    const String normal = normalWildcard(word);
    _text.appendString(normal ? normal.view() : word);
  }

  void writeGroup(const QueryTerms& group, bool isRoot) {
    const auto& children = group.children();
    const bool enclosed = has(QueryStyle::Parentheses) && (group.queryNot() || (!isRoot && children.size() > 1));
    if (enclosed) {
      _text.appendCharacter(u'(');
      _pending.push_back({&group, Step::Close});
    }
    for (size_t i = children.size(); i-- > 0;) {
      _pending.push_back({children[i].get(), Step::Term});
      if (i > 0) _pending.push_back({children[i].get(), Step::Join});
    }
  }

  MutableString& _text;
  const QueryStyle _style;
  const QueryOperatorNames* const _names;
  std::vector<Pending> _pending;
};

}  // namespace

void queryTerm(MutableString& text, const QueryTerms& node, QueryStyle style, const QueryOperatorNames* dictionary) {
  QueryWriter(text, style, dictionary).write(node);
}

String QueryTerms::standardizedQueryTerm() const {
  MutableString text;
  queryTerm(text, *this, QueryStyle::Standardized, nullptr);
  return text.takeString();
}

String QueryTerms::normalizedQueryTerm() const {
  MutableString text;
  queryTerm(text, *this, QueryStyle::Normalized, nullptr);
  return text.takeString();
}

String QueryTerms::queryTermsForOperators(QueryStyle style, const QueryOperatorNames& dictionary) const {
  MutableString text;
  queryTerm(text, *this, style, &dictionary);
  return text.takeString();
}

String standardizedQueryTerm(const String& query) { return QueryTerms::initWithString(query)->standardizedQueryTerm(); }

String normalizedQueryTerm(const String& query) { return QueryTerms::initWithString(query)->normalizedQueryTerm(); }

String queryTermsForOperators(const String& query, QueryStyle style, const QueryOperatorNames& dictionary) {
  return QueryTerms::initWithString(query)->queryTermsForOperators(style, dictionary);
}

}  // namespace velan
