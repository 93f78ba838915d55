#include "tools/query/QueryCorrections.h"

#include <fmt/format.h>

#include <algorithm>
#include <span>
#include <string_view>
#include <utility>

#include "tools/query/QueryUnits.h"
#include "tools/query/QuotationMarks.h"
#include "velan/base/ASCII.h"
#include "velan/query/QueryExplanation.h"

namespace velan::tool {
namespace {

// Fewer words than these, or fewer for each keyword, make no sentence.
constexpr size_t kWordsOfSentence = 6;
constexpr size_t kWordsOfEndedSentence = 4;  // with . ! or ? at the end
constexpr size_t kWordsForKeyword = 3;

using Tokens = std::vector<QueryToken>;

String withoutSignsAtEnds(const String& word) {
  const std::u16string_view units = word.view();
  const auto first = std::find_if(units.begin(), units.end(), isWordUnit);
  const auto last = std::find_if(units.rbegin(), units.rend(), isWordUnit).base();
  return first < last ? String(std::u16string_view(first, last)) : String(u"");
}

std::string listOf(const std::vector<std::string>& words) {
  std::string list;
  for (size_t i = 0; i < words.size(); ++i) {
    list += (i == 0 ? "" : i + 1 < words.size() ? ", " : " and ") + words[i];
  }
  return list;
}

class Corrector {
 public:
  Corrector(const String& query, QueryComparison comparison, bool wildcard)
      : _comparison(comparison), _wildcard(wildcard) {
    _result.source = withPlainQuotationMarks(query);
    _result.tokens = queryTokens(_result.source, wildcard);
  }

  CorrectedQuery corrected(KeywordCase keywords) {
    dropDashes();
    takeKeywordsAsWords([this](const QueryToken& token) { return hasNoDistance(token); }, "as no distance follows");
    if (keywords == KeywordCase::Upper) {
      takeKeywordsAsWords([this](const QueryToken& token) { return isSmallKeyword(token); }, "");
    } else if (keywords == KeywordCase::Auto) {
      takeKeywordsAsWords([this](const QueryToken& token) { return isDoubtful(token) && joinsNothing(token); },
                          "where nothing is to be joined");
    }
    if (keywords == KeywordCase::Auto && isSentence()) {
      takeKeywordsAsWords([this](const QueryToken& token) { return isDoubtful(token); },
                          "as in a sentence; in capital letters they are operators");
    }
    correctTerms();
    return std::move(_result);
  }

 private:
  std::u16string_view sourceOf(const QueryToken& token) const {
    return _result.source.view().substr(static_cast<size_t>(token.range.location),
                                        static_cast<size_t>(token.range.length));
  }

  // The unit behind `location`, a blank at the end.
  unichar unitAt(int64_t location) const {
    return location < _result.source.length() ? _result.source.characters()[location] : u' ';
  }

  static bool touch(const QueryToken& token, const QueryToken& next) {
    return endOf(token.range) == next.range.location;
  }

  void dropDashes() {
    Tokens kept;
    bool anyDropped = false;
    Tokens& tokens = _result.tokens;
    for (size_t i = 0; i < tokens.size();) {
      size_t end = i;
      while (end < tokens.size() && tokens[end].kind == QueryTokenKind::Minus &&
             (end == i || touch(tokens[end - 1], tokens[end]))) {
        ++end;
      }
      const bool drops = end > i && negatesNothing(i, end);
      end = std::max(end, i + 1);
      if (!drops)
        std::move(tokens.begin() + static_cast<int64_t>(i), tokens.begin() + static_cast<int64_t>(end),
                  std::back_inserter(kept));
      anyDropped = anyDropped || drops;
      i = end;
    }
    tokens = std::move(kept);
    if (anyDropped)
      _result.corrections.push_back("a sign that stands alone or behind a word, such as - or !, does not negate");
  }

  // Whether the run of signs is a dash or an exclamation mark.
  bool negatesNothing(size_t first, size_t end) const {
    const Tokens& tokens = _result.tokens;
    if (isWhite(unitAt(endOf(tokens[end - 1].range)))) return true;
    const bool isMark = sourceOf(tokens[first]) == u"!";
    if (isMark && first > 0 && isTerm(tokens[first - 1]) && touch(tokens[first - 1], tokens[first])) return true;
    return end - first > 1 && !isMark && sourceOf(tokens[end - 1]) == u"-";
  }

  bool isKeyword(const QueryToken& token) const {
    if (token.kind == QueryTokenKind::Not) return true;
    return token.kind == QueryTokenKind::Operator && isASCIILetter(sourceOf(token).front());
  }

  bool isSmallKeyword(const QueryToken& token) const {
    const std::u16string_view source = sourceOf(token);
    return isKeyword(token) && std::any_of(source.begin(), source.end(), [](unichar c) { return isASCIILowerCase(c); });
  }

  // At the beginning or the end of the query or of a group, such as "next year" and "why not".
  bool joinsNothing(const QueryToken& token) const {
    const Tokens& tokens = _result.tokens;
    const auto number = static_cast<size_t>(&token - tokens.data());
    const bool isFirst = number == 0 || tokens[number - 1].kind == QueryTokenKind::Open;
    const bool isLast = number + 1 == tokens.size() || tokens[number + 1].kind == QueryTokenKind::Close;
    return isLast || (isFirst && token.kind != QueryTokenKind::Not);
  }

  // "near/far"
  bool hasNoDistance(const QueryToken& token) const {
    const std::u16string_view source = sourceOf(token);
    const size_t slash = source.find(u'/');
    if (token.kind != QueryTokenKind::Operator || slash == source.npos) return false;
    const size_t sign = source[slash + 1] == u'-' || source[slash + 1] == u'+' ? 1 : 0;
    return slash + 1 + sign >= source.size() || !isASCIIDigit(source[slash + 1 + sign]);
  }

  // In small letters, an operator that decides in another way than AND would, and a common word.
  bool isDoubtful(const QueryToken& token) const {
    if (!isSmallKeyword(token) || sourceOf(token).find(u'/') != std::u16string_view::npos) return false;
    return token.kind == QueryTokenKind::Not || isProximity(token.queryOperator);
  }

  // Many words, few keywords, and no operator that is meant as one.
  bool isSentence() const {
    size_t words = 0;
    size_t keywords = 0;
    for (const QueryToken& token : _result.tokens) {
      if (token.kind == QueryTokenKind::Word) ++words;
      if (isSmallKeyword(token)) ++keywords;
      const bool isOperator = token.kind == QueryTokenKind::Operator || token.kind == QueryTokenKind::Not;
      if (token.kind == QueryTokenKind::Minus || (isOperator && !isSmallKeyword(token) && sourceOf(token) != u"&") ||
          (token.distance && sourceOf(token).find(u'/') != std::u16string_view::npos)) {
        return false;
      }
    }
    const size_t least = endsLikeSentence() ? kWordsOfEndedSentence : kWordsOfSentence;
    return words >= least && words >= kWordsForKeyword * keywords;
  }

  bool endsLikeSentence() const {
    const std::u16string_view query = _result.source.view();
    const auto last = std::find_if_not(query.rbegin(), query.rend(), isWhite);
    return last != query.rend() && (*last == u'.' || *last == u'!' || *last == u'?');
  }

  template <typename Test>
  void takeKeywordsAsWords(Test isWord, const char* why) {
    std::vector<std::string> taken;
    for (QueryToken& token : _result.tokens) {
      if (!isWord(token)) continue;
      const String word(sourceOf(token));
      token = {QueryTokenKind::Word, token.range, word, {}, {}};
      if (std::find(taken.begin(), taken.end(), word.toUTF8()) == taken.end()) taken.push_back(word.toUTF8());
    }
    if (taken.empty() || !*why) return;
    _result.corrections.push_back(fmt::format("{} {} taken as {}, {}", listOf(taken), taken.size() > 1 ? "are" : "is",
                                              taken.size() > 1 ? "words" : "a word", why));
  }

  bool canMatch(const QueryToken& token) const {
    const auto tree = queryTermsWithTokens(std::span(&token, 1), QueryOperator::And, 0);
    return tree->isValid() && leafMeaning(*tree->children().front(), _comparison, _wildcard) != LeafMeaning::Nothing;
  }

  void correctTerms() {
    std::erase_if(_result.tokens, [this](QueryToken& token) {
      if (!isTerm(token) || canMatch(token) || mend(token)) return false;
      _result.neverFound.push_back(String(sourceOf(token)).toUTF8());
      return true;
    });
  }

  bool mend(QueryToken& token) {
    QueryToken mended = token;
    mended.word = _wildcard ? withoutBrackets(token.word) : withoutSignsAtEnds(token.word);
    if (mended.word == token.word || !canMatch(mended)) return false;
    if (_wildcard) {
      _result.corrections.push_back(
          fmt::format("the brackets in {} make no set and are taken as punctuation", token.word.toUTF8()));
    }
    token = std::move(mended);
    return true;
  }

  const QueryComparison _comparison;
  const bool _wildcard;
  CorrectedQuery _result;
};

// Whether the term is an address or the like rather than a pattern for one word.
bool isAddress(const QueryToken& token) {
  return token.kind == QueryTokenKind::Word && token.word.view().find_first_of(u"/:=@") != std::u16string_view::npos;
}

// The word with a blank for each "?" that ends what it stands in, like a question, or for each at all.
String withoutQuestionMarks(const String& word, bool everywhere) {
  std::u16string units(word.view());
  bool ends = true;
  for (size_t i = units.size(); i-- > 0;) {
    if (units[i] != u'?') {
      ends = !isWordUnit(units[i]) && units[i] != u'*' && units[i] != u'[';
    } else if (ends || everywhere) {
      units[i] = u' ';
    }
  }
  return String(trimmedBlanks(units));
}

}  // namespace

CorrectedQuery correctedQuery(const String& query, KeywordCase keywords, QueryComparison comparison, bool wildcard) {
  return Corrector(query, comparison, wildcard).corrected(keywords);
}

std::optional<std::vector<QueryToken>> tokensWithoutQuestionMarks(const std::vector<QueryToken>& tokens) {
  std::vector<QueryToken> plain = tokens;
  bool anyChanged = false;
  for (QueryToken& token : plain) {
    if (!isTerm(token)) continue;
    String word = withoutQuestionMarks(token.word, isAddress(token));
    if (word.isEmpty() || word == token.word) continue;
    token.word = std::move(word);
    anyChanged = true;
  }
  if (!anyChanged) return std::nullopt;
  return plain;
}

}  // namespace velan::tool
