// Makes the tree of a query's tokens in one pass. Groups that are still open lie on a stack of their own, so that the
// depth of nesting costs memory only.
#include <utility>
#include <vector>

#include "velan/base/OutOfMemory.h"
#include "velan/query/QueryTokens.h"

namespace velan {

class QueryParser {
 public:
  QueryParser(QueryOperator defaultOperator, int64_t defaultDistance, bool substring, std::unique_ptr<QueryTerms> root)
      : _substring(substring), _defaultOperator(defaultOperator), _defaultDistance(defaultDistance) {
    _open.push_back(std::move(root));
    resetPending();
  }

  // Whatever is no term changes what is pending for the next one.
  void take(const QueryToken& token) {
    switch (token.kind) {
      case QueryTokenKind::Word:
        return addWord(token.word);
      case QueryTokenKind::Phrase:
        return addTerm(token.word, false, true);
      case QueryTokenKind::Operator:
        _operator = token.queryOperator;
        _distance = token.distance.value_or(_distance);
        return;
      case QueryTokenKind::Not:
        _not = !_not;
        return;
      case QueryTokenKind::Minus:
        _not = true;
        return;
      case QueryTokenKind::Plus:
        _not = false;
        return;
      case QueryTokenKind::Open:
        return openGroup();
      case QueryTokenKind::Close:
        if (_open.size() > 1) closeGroup();
        return;
    }
  }

  std::unique_ptr<QueryTerms> takeTree() {
    while (_open.size() > 1) closeGroup();
    return std::move(_open.front());
  }

 private:
  void addWord(const String& word) {
    const std::u16string_view units = word.view();
    const bool wrapped = !units.empty() && units.front() == u'*' && units.back() == u'*';
    if (!_substring || wrapped) return addTerm(word, _substring, false);
    MutableString substring(u"*");
    substring.appendString(units);
    substring.appendCharacter(u'*');
    addTerm(present(substring.takeString()), true, false);
  }

  void addTerm(const String& word, bool substring, bool phrase) {
    if (word.isEmpty()) return;
    _open.back()->appendChild(QueryTerms::_initWithWord(word, _operator, _not, substring, phrase, _distance));
    resetPending();
  }

  void openGroup() {
    _open.push_back(std::unique_ptr<QueryTerms>(new QueryTerms(_operator, _not, _distance)));
    resetPending();
  }

  // An empty group is dropped.
  void closeGroup() {
    std::unique_ptr<QueryTerms> group = std::move(_open.back());
    _open.pop_back();
    if (group->isValid()) _open.back()->appendChild(std::move(group));
    resetPending();
  }

  void resetPending() {
    _operator = _defaultOperator;
    _not = false;
    _distance = _defaultDistance;
  }

  const bool _substring;
  const QueryOperator _defaultOperator;
  const int64_t _defaultDistance;

  std::vector<std::unique_ptr<QueryTerms>> _open;  // the root and the groups open inside each other
  QueryOperator _operator{};                       // of the next term, like the two below
  bool _not = false;
  int64_t _distance = 0;
};

std::unique_ptr<QueryTerms> QueryTerms::_initWithString(const String& query, bool wildcard,
                                                        QueryOperator defaultOperator, int64_t defaultDistance,
                                                        QueryOperator queryOperator, bool queryNot, bool querySubstring,
                                                        int64_t proximityDistance) {
  std::unique_ptr<QueryTerms> root(new QueryTerms(queryOperator, queryNot, proximityDistance));
  QueryParser parser(defaultOperator, defaultDistance, querySubstring, std::move(root));
  enumerateQueryTokens(query, wildcard, [&parser](const QueryToken& token) { parser.take(token); });
  return parser.takeTree();
}

std::unique_ptr<QueryTerms> queryTermsWithTokens(std::span<const QueryToken> tokens, QueryOperator defaultOperator,
                                                 int64_t defaultDistance) {
  QueryParser parser(defaultOperator, defaultDistance, false,
                     QueryTerms::_initWithString({}, false, defaultOperator, defaultDistance, QueryOperator::And, false,
                                                 false, defaultDistance));
  for (const QueryToken& token : tokens) parser.take(token);
  return parser.takeTree();
}

std::unique_ptr<QueryTerms> QueryTerms::initWithString(const String& query) {
  return initWithString(query, QueryOperator::And, kDefaultDistance);
}

std::unique_ptr<QueryTerms> QueryTerms::initWithString(const String& query, QueryOperator defaultOperator,
                                                       int64_t defaultDistance) {
  return _initWithString(query, false, defaultOperator, defaultDistance, QueryOperator::And, false, false,
                         defaultDistance);
}

std::unique_ptr<QueryTerms> QueryTerms::initWithWildcard(const String& query) {
  return initWithWildcard(query, QueryOperator::And, kDefaultDistance);
}

std::unique_ptr<QueryTerms> QueryTerms::initWithWildcard(const String& query, QueryOperator defaultOperator,
                                                         int64_t defaultDistance) {
  return _initWithString(query, true, defaultOperator, defaultDistance, QueryOperator::And, false, false,
                         defaultDistance);
}

std::unique_ptr<QueryTerms> QueryTerms::queryTermsWithWildcard(const String& query) { return initWithWildcard(query); }

std::unique_ptr<QueryTerms> QueryTerms::queryTermsWithWildcard(const String& query, QueryOperator defaultOperator,
                                                               int64_t defaultDistance) {
  return initWithWildcard(query, defaultOperator, defaultDistance);
}

}  // namespace velan
