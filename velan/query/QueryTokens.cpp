#include "velan/query/QueryTokens.h"

#include <string_view>
#include <utility>

#include "velan/base/ASCII.h"
#include "velan/base/OutOfMemory.h"
#include "velan/base/TextNumbers.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/inspection/TrimmedUnitsInternal.h"

namespace velan {
namespace {

constexpr bool isQuotationMark(unichar c) { return c == u'"' || (c >= 0x201C && c <= 0x201F); }

struct OperatorKeyword {
  std::u16string_view word;
  QueryOperator queryOperator;
};

constexpr OperatorKeyword kProximityKeywords[] = {{u"NEAR", QueryOperator::Near},
                                                  {u"NEXT", QueryOperator::Next},
                                                  {u"AFTER", QueryOperator::After},
                                                  {u"BEFORE", QueryOperator::Before}};

constexpr OperatorKeyword kOperatorKeywords[] = {{u"AND", QueryOperator::And}, {u"BUT", QueryOperator::And},
                                                 {u"OR", QueryOperator::Or},   {u"XOR", QueryOperator::Xor},
                                                 {u"EOR", QueryOperator::Xor}, {u"OPT", QueryOperator::Optional}};

std::optional<QueryOperator> operatorOfSymbol(unichar c) {
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

class QueryScanner {
 public:
  QueryScanner(std::u16string_view query, bool wildcard, FunctionRef<void(QueryToken)> handler)
      : _query(query), _wildcard(wildcard), _handler(handler) {}

  void scanAll() {
    for (size_t i = 0; i < _query.size();) i = scan(i);
    endWord(_query.size());
  }

 private:
  // Takes the unit at `i`, with what belongs to it; returns where scanning goes on.
  size_t scan(size_t i) {
    const unichar c = _query[i];
    if (isMemberOfCharacterSetRep(_white, c)) {
      endWord(i);
    } else if (isQuotationMark(c)) {
      return scanPhrase(i);
    } else if (_wildcard && c == u'[') {
      return scanSet(i);
    } else if (c == u'(' || (c == u'[' && !_wildcard)) {
      takeSign(i, QueryTokenKind::Open);
    } else if (c == u')' || (c == u']' && !_wildcard)) {
      takeSign(i, QueryTokenKind::Close);
    } else if (const auto queryOperator = operatorOfSymbol(c)) {
      endWord(i);
      takeOperator(i, i + 1, *queryOperator, std::nullopt);
    } else if (c == u'!' || (c == u'-' && !_wordStart)) {
      takeSign(i, QueryTokenKind::Minus);
    } else if (c == u'+' && !_wordStart) {
      takeSign(i, QueryTokenKind::Plus);
    } else if (!_wordStart) {
      _wordStart = i;
    }
    return i + 1;
  }

  size_t scanPhrase(size_t i) {
    endWord(i);
    size_t end = i + 1;
    while (end < _query.size() && !isQuotationMark(_query[end])) ++end;
    const auto phrase =
        trimmedUnits(_query.substr(i + 1, end - i - 1), [](unichar c) { return c == ' ' || c == '\n'; });
    const size_t next = std::min(end + 1, _query.size());
    if (!phrase.empty()) _handler({QueryTokenKind::Phrase, rangeOf(i, next), present(String(phrase)), {}, {}});
    return next;
  }

  // A set that is closed within its word is taken whole: the operators `^` and `|` and the like have their meaning for
  // patterns there. Where no `]` follows, the search for it is remembered, so that many `[` cost no more than one.
  size_t scanSet(size_t i) {
    if (!_wordStart) _wordStart = i;
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

  void takeSign(size_t i, QueryTokenKind kind) {
    endWord(i);
    _handler({kind, rangeOf(i, i + 1), {}, {}, {}});
  }

  void takeOperator(size_t start, size_t end, QueryOperator queryOperator, std::optional<int64_t> distance) {
    _handler({QueryTokenKind::Operator, rangeOf(start, end), {}, queryOperator, distance});
  }

  void endWord(size_t end) {
    if (!_wordStart) return;
    const auto word =
        trimmedUnits(_query.substr(*_wordStart, end - *_wordStart), [](unichar c) { return c == u'+' || c == u'-'; });
    _wordStart.reset();
    if (word.empty()) return;
    const auto start = static_cast<size_t>(word.data() - _query.data());
    takeWord(start, start + word.size(), word);
  }

  void takeWord(size_t start, size_t end, std::u16string_view word) {
    if (equalsIgnoringASCIICase(word, std::u16string_view(u"NOT"))) {
      return _handler({QueryTokenKind::Not, rangeOf(start, end), {}, {}, {}});
    }
    for (const auto& keyword : kOperatorKeywords) {
      if (equalsIgnoringASCIICase(word, keyword.word)) {
        return takeOperator(start, end, keyword.queryOperator, std::nullopt);
      }
    }
    if (takeProximity(start, end, word)) return;
    _handler({QueryTokenKind::Word, rangeOf(start, end), present(String(word)), {}, {}});
  }

  // "NEAR", or "NEAR/" and a distance; "NEAR/" alone and "NEARBY" are words.
  bool takeProximity(size_t start, size_t end, std::u16string_view word) {
    for (const auto& keyword : kProximityKeywords) {
      const size_t length = keyword.word.size();
      if (!equalsIgnoringASCIICase(word.substr(0, length), keyword.word)) continue;
      std::optional<int64_t> distance;
      if (word.size() == length) {
        if (keyword.queryOperator == QueryOperator::Next) distance = 1;
      } else if (word.size() >= length + 2 && word[length] == u'/') {
        distance = leadingInteger(word.substr(length + 1));
      } else {
        return false;
      }
      takeOperator(start, end, keyword.queryOperator, distance);
      return true;
    }
    return false;
  }

  static Range rangeOf(size_t start, size_t end) {
    return {static_cast<int64_t>(start), static_cast<int64_t>(end - start)};
  }

  const std::u16string_view _query;
  const bool _wildcard;
  const FunctionRef<void(QueryToken)> _handler;
  const uint8_t* const _white = whiteCharacterSetRep();
  std::optional<size_t> _wordStart;
  size_t _noSetBefore = 0;
};

}  // namespace

void enumerateQueryTokens(const String& query, bool wildcard, FunctionRef<void(QueryToken)> handler) {
  QueryScanner(query.view(), wildcard, handler).scanAll();
}

std::vector<QueryToken> queryTokens(const String& query, bool wildcard) {
  std::vector<QueryToken> tokens;
  enumerateQueryTokens(query, wildcard, [&tokens](QueryToken token) { tokens.push_back(std::move(token)); });
  return tokens;
}

}  // namespace velan
