// The query language, read from left to right in one pass. Groups that are still open lie on a stack of their own, so
// that the depth of nesting costs memory only.
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "velan/base/ASCII.h"
#include "velan/base/OutOfMemory.h"
#include "velan/base/TextNumbers.h"
#include "velan/query/QueryTerms.h"
#include "velan/text/CharacterSets.h"

namespace velan {
namespace {

constexpr bool isQuotationMark(unichar c) { return c == u'"' || (c >= 0x201C && c <= 0x201F); }

std::u16string_view trimmed(std::u16string_view text, std::u16string_view units) {
  const size_t first = text.find_first_not_of(units);
  if (first == std::u16string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(units) - first + 1);
}

struct ProximityKeyword {
  std::u16string_view word;
  QueryOperator queryOperator;
};

constexpr ProximityKeyword kProximityKeywords[] = {{u"NEAR", QueryOperator::Near},
                                                   {u"NEXT", QueryOperator::Next},
                                                   {u"AFTER", QueryOperator::After},
                                                   {u"BEFORE", QueryOperator::Before}};

struct OperatorKeyword {
  std::u16string_view word;
  QueryOperator queryOperator;
};

constexpr OperatorKeyword kOperatorKeywords[] = {{u"AND", QueryOperator::And}, {u"BUT", QueryOperator::And},
                                                 {u"OR", QueryOperator::Or},   {u"XOR", QueryOperator::Xor},
                                                 {u"EOR", QueryOperator::Xor}, {u"OPT", QueryOperator::Optional}};

}  // namespace

class QueryParser {
 public:
  QueryParser(std::u16string_view query, bool wildcard, QueryOperator defaultOperator, int64_t defaultDistance,
              bool substring, std::unique_ptr<QueryTerms> root)
      : _query(query),
        _wildcard(wildcard),
        _substring(substring),
        _defaultOperator(defaultOperator),
        _defaultDistance(defaultDistance) {
    _open.push_back(std::move(root));
    resetPending();
  }

  std::unique_ptr<QueryTerms> parse() {
    for (size_t i = 0; i < _query.size();) i = scan(i);
    endToken(_query.size());
    while (_open.size() > 1) closeGroup();
    return std::move(_open.front());
  }

 private:
  // Takes the unit at `i`, with what belongs to it; returns where scanning goes on.
  size_t scan(size_t i) {
    const unichar c = _query[i];
    if (isMemberOfCharacterSetRep(_white, c)) {
      endToken(i);
    } else if (isQuotationMark(c)) {
      return scanPhrase(i);
    } else if (_wildcard && c == u'[') {
      return scanSet(i);
    } else if (c == u'(' || (c == u'[' && !_wildcard)) {
      endToken(i);
      openGroup();
    } else if (c == u')' || (c == u']' && !_wildcard)) {
      endToken(i);
      if (_open.size() > 1) closeGroup();
    } else if (const auto queryOperator = operatorOfSymbol(c)) {
      endToken(i);
      _operator = *queryOperator;
    } else if (c == u'!' || (c == u'-' && !_tokenStart)) {
      endToken(i);
      _not = true;
    } else if (c == u'+' && !_tokenStart) {
      _not = false;
    } else if (!_tokenStart) {
      _tokenStart = i;
    }
    return i + 1;
  }

  static std::optional<QueryOperator> operatorOfSymbol(unichar c) {
    switch (c) {
      case u'&':
        return QueryOperator::And;
      case u'|':
        return QueryOperator::Or;
      case u'^':
        return QueryOperator::Xor;
      case u'~':
        return QueryOperator::Near;
      default:
        return std::nullopt;
    }
  }

  size_t scanPhrase(size_t i) {
    endToken(i);
    size_t end = i + 1;
    while (end < _query.size() && !isQuotationMark(_query[end])) ++end;
    const auto phrase = trimmed(_query.substr(i + 1, end - i - 1), u" \n");
    if (!phrase.empty()) addTerm(String(phrase), false, true);
    return end + 1;
  }

  // A set that is closed within its token is taken whole: the operators `^` and `|` and the like have their meaning for
  // patterns there. Where no `]` follows, the search for it is remembered, so that many `[` cost no more than one.
  size_t scanSet(size_t i) {
    if (!_tokenStart) _tokenStart = i;
    if (i < _noSetBefore) return i + 1;
    size_t end = i + 1;
    while (end < _query.size() && _query[end] != u']') {
      if (isMemberOfCharacterSetRep(_white, _query[end]) || isQuotationMark(_query[end])) break;
      ++end;
    }
    if (end < _query.size() && _query[end] == u']') return end + 1;
    _noSetBefore = end;
    return i + 1;
  }

  void endToken(size_t end) {
    if (!_tokenStart) return;
    const auto token = trimmed(_query.substr(*_tokenStart, end - *_tokenStart), u"+-");
    _tokenStart.reset();
    if (!token.empty()) addPart(token);
  }

  // A keyword changes what is pending for the next term, anything else is that term.
  void addPart(std::u16string_view token) {
    if (equalsIgnoringASCIICase(token, std::u16string_view(u"NOT"))) {
      _not = !_not;
      return;
    }
    for (const auto& keyword : kOperatorKeywords) {
      if (equalsIgnoringASCIICase(token, keyword.word)) {
        _operator = keyword.queryOperator;
        return;
      }
    }
    if (takeProximity(token)) return;
    const bool wrapped = token.front() == u'*' && token.back() == u'*';
    MutableString word(_substring && !wrapped ? u"*" : u"");
    word.appendString(token);
    if (_substring && !wrapped) word.appendCharacter(u'*');
    addTerm(word.takeString(), _substring, false);
  }

  // "NEAR", or "NEAR/" and a distance; "NEAR/" alone and "NEARBY" are words.
  bool takeProximity(std::u16string_view token) {
    for (const auto& keyword : kProximityKeywords) {
      const size_t length = keyword.word.size();
      if (!equalsIgnoringASCIICase(token.substr(0, length), keyword.word)) continue;
      if (token.size() == length) {
        if (keyword.queryOperator == QueryOperator::Next) _distance = 1;
      } else if (token.size() >= length + 2 && token[length] == u'/') {
        _distance = leadingInteger(token.substr(length + 1));
      } else {
        return false;
      }
      _operator = keyword.queryOperator;
      return true;
    }
    return false;
  }

  void addTerm(String word, bool substring, bool phrase) {
    _open.back()->appendChild(
        QueryTerms::_initWithWord(present(std::move(word)), _operator, _not, substring, phrase, _distance));
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

  const std::u16string_view _query;
  const bool _wildcard;
  const bool _substring;
  const QueryOperator _defaultOperator;
  const int64_t _defaultDistance;
  const uint8_t* const _white = whiteCharacterSetRep();

  std::vector<std::unique_ptr<QueryTerms>> _open;  // the root and the groups open inside each other
  std::optional<size_t> _tokenStart;
  size_t _noSetBefore = 0;
  QueryOperator _operator{};  // of the next term, like the two below
  bool _not = false;
  int64_t _distance = 0;
};

std::unique_ptr<QueryTerms> QueryTerms::_initWithString(const String& query, bool wildcard,
                                                        QueryOperator defaultOperator, int64_t defaultDistance,
                                                        QueryOperator queryOperator, bool queryNot, bool querySubstring,
                                                        int64_t proximityDistance) {
  std::unique_ptr<QueryTerms> root(new QueryTerms(queryOperator, queryNot, proximityDistance));
  return QueryParser(query.view(), wildcard, defaultOperator, defaultDistance, querySubstring, std::move(root)).parse();
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
