#include "tools/query/QueryDoubts.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

#include "tools/query/QueryUnits.h"
#include "velan/base/ASCII.h"
#include "velan/query/words/Components.h"

namespace velan::tool {
namespace {

constexpr size_t kMostDoubts = 10;
constexpr size_t kTermsShown = 12;
constexpr size_t kUnitsShown = 80;
constexpr size_t kBytesShown = 300;

std::string utf8(std::u16string_view units) { return String(units).toUTF8(); }

std::string nameOf(const QueryToken& token) {
  return token.kind == QueryTokenKind::Operator ? keywordOf(token.queryOperator) : "NOT";
}

class Doubter {
 public:
  explicit Doubter(const CorrectedQuery& query) : _source(query.source.view()), _tokens(query.tokens) {}

  std::vector<std::string> doubts() {
    for (size_t i = 0; i < _tokens.size() && _doubts.size() < kMostDoubts; ++i) {
      const QueryToken& token = _tokens[i];
      if (token.range.length == 0) continue;  // nobody typed it
      if (isCommonWord(token)) {
        doubtKeyword(token);
      } else if (token.kind == QueryTokenKind::Operator) {
        doubtOperator(i);
      } else if (token.kind == QueryTokenKind::Minus && i + 1 < _tokens.size()) {
        doubtMinus(token, _tokens[i + 1]);
      } else if (token.kind == QueryTokenKind::Word) {
        doubtSet(token);
        doubtForeignSyntax(token);
        doubtWithin(i);
      }
    }
    return std::move(_doubts);
  }

 private:
  std::u16string_view sourceOf(const QueryToken& token) const {
    return _source.substr(static_cast<size_t>(token.range.location), static_cast<size_t>(token.range.length));
  }

  void say(std::string doubt) {
    if (std::find(_doubts.begin(), _doubts.end(), doubt) == _doubts.end()) _doubts.push_back(std::move(doubt));
  }

  // A keyword in small letters that seldom is one, but for those that are read so often that nobody wonders.
  bool isCommonWord(const QueryToken& token) const {
    const std::u16string_view source = sourceOf(token);
    const bool isKeyword = token.kind == QueryTokenKind::Not ||
                           (token.kind == QueryTokenKind::Operator && isASCIILetter(source.front()) &&
                            token.queryOperator != QueryOperator::And && token.queryOperator != QueryOperator::Or);
    return isKeyword && std::all_of(source.begin(), source.end(), [](unichar c) { return !isASCIIUpperCase(c); }) &&
           source.find(u'/') == source.npos;
  }

  void doubtKeyword(const QueryToken& token) {
    const auto start = static_cast<size_t>(token.range.location);
    const auto end = static_cast<size_t>(endOf(token.range));
    const std::string quoted = '"' + utf8(sourceOf(token)) + '"';
    const std::string rewritten =
        _source.size() > kUnitsShown ? quoted : utf8(_source.substr(0, start)) + quoted + utf8(_source.substr(end));
    say(fmt::format("{} is taken as the operator {}; to find the word: {}", utf8(sourceOf(token)), nameOf(token),
                    rewritten));
  }

  void doubtOperator(size_t i) {
    const QueryToken& token = _tokens[i];
    const std::u16string_view source = sourceOf(token);
    if (!isASCIILetter(source.front())) return doubtSymbol(i);
    const size_t slash = source.find(u'/');
    if (slash != source.npos) {
      if (std::all_of(source.begin() + static_cast<int64_t>(slash) + 1, source.end(), isASCIIDigit<unichar>)) return;
      return say(fmt::format("{} is taken as {}/{}: distances are whole numbers of words", utf8(source), nameOf(token),
                             token.distance.value_or(0)));
    }
    if (!isProximity(token.queryOperator)) return;
    if (i + 1 < _tokens.size() && _tokens[i + 1].kind == QueryTokenKind::Open) ++i;
    if (i + 2 >= _tokens.size() || (!isTerm(_tokens[i + 2]) && _tokens[i + 2].kind != QueryTokenKind::Close)) return;
    const std::u16string_view number = sourceOf(_tokens[i + 1]);
    if (!std::all_of(number.begin(), number.end(), isASCIIDigit<unichar>)) return;
    say(fmt::format("{} is taken as a word; for the distance: {}/{}", utf8(number), nameOf(token), utf8(number)));
  }

  // The run of units without white space that holds `range`, or as much of it as is too long to be shown.
  std::u16string_view runAround(const Range& range) const {
    auto start = static_cast<size_t>(range.location);
    auto end = static_cast<size_t>(endOf(range));
    while (start > 0 && end - start <= kUnitsShown && !isWhite(_source[start - 1])) --start;
    while (end < _source.size() && end - start <= kUnitsShown && !isWhite(_source[end])) ++end;
    return _source.substr(start, end - start);
  }

  void doubtSymbol(size_t i) {
    const QueryToken& token = _tokens[i];
    const bool isBehindTerm = i > 0 && isTerm(_tokens[i - 1]) && endOf(_tokens[i - 1].range) == token.range.location;
    if (!isBehindTerm) return;
    const std::string sign = utf8(sourceOf(token));
    const QueryToken& before = _tokens[i - 1];
    const bool isBeforeTerm =
        i + 1 < _tokens.size() && isTerm(_tokens[i + 1]) && endOf(token.range) == _tokens[i + 1].range.location;
    const std::u16string_view next = isBeforeTerm ? sourceOf(_tokens[i + 1]) : std::u16string_view();
    const bool isBeforeNumber = std::all_of(next.begin(), next.end(), isASCIIDigit<unichar>);
    if (token.queryOperator == QueryOperator::Near && isBeforeNumber) {
      return say("~ is taken as the operator NEAR; " + otherMeaningOfTilde(before, next));
    }
    if (!isBeforeTerm) return;
    const std::u16string_view run = runAround(token.range);
    const std::string asText =
        run.size() > kUnitsShown || run.find(u'"') != run.npos ? "write it in quotation marks" : '"' + utf8(run) + '"';
    say(fmt::format("{} is taken as the operator {}{}; as text: {}", sign, nameOf(token),
                    token.queryOperator == QueryOperator::Xor ? ", one of the two but not both" : "", asText));
  }

  // Behind a term, with a number or nothing behind it.
  static std::string otherMeaningOfTilde(const QueryToken& term, std::u16string_view number) {
    if (term.kind == QueryTokenKind::Word) return fmt::format("for words similar to {}: --fuzzy", term.word.toUTF8());
    std::string near;
    for (const String& word : componentsUsingWhiteSeparation(term.word)) {
      near += (near.empty() ? "" : " NEAR/" + (number.empty() ? "5" : utf8(number)) + ' ') + word.toUTF8();
    }
    return "for words at a distance: " + near;
  }

  // "-la" and "-5" are seldom meant to exclude.
  void doubtMinus(const QueryToken& token, const QueryToken& next) {
    if (sourceOf(token) != u"-" || next.kind != QueryTokenKind::Word) return;
    const std::u16string_view units = next.word.view();
    const std::u16string_view word =
        units.substr(0, static_cast<size_t>(std::find_if_not(units.begin(), units.end(), isWordUnit) - units.begin()));
    if (word.empty() || (word.size() > 2 && !isASCIIDigit(word.front()))) return;
    say(fmt::format("-{0} excludes what holds {0}; as text: \"-{0}\"", utf8(word)));
  }

  // "array[0]" and "[12]" are seldom sets.
  void doubtSet(const QueryToken& token) {
    const std::u16string_view word = token.word.view();
    const size_t open = word.find(u'[');
    const size_t close = word.find(u']', open == word.npos ? 0 : open);
    if (open == word.npos || close == word.npos || word.size() > kUnitsShown) return;
    const std::u16string_view set = word.substr(open + 1, close - open - 1);
    const bool isIndex =
        open > 0 && isWordUnit(word[open - 1]) && std::all_of(set.begin(), set.end(), isASCIIDigit<unichar>);
    const bool isAll =
        open == 0 && close + 1 == word.size() && set.find(u'-') == set.npos && set.find(u'^') == set.npos;
    if (set.empty() || (!isIndex && !isAll)) return;
    say(fmt::format("[{}] is taken as a set, for one of its characters; as text: \"{}\"", utf8(set),
                    withoutBrackets(token.word).toUTF8()));
  }

  // What other searches understand.
  void doubtForeignSyntax(const QueryToken& token) {
    const std::u16string_view word = token.word.view();
    if (word.size() > kUnitsShown) return;
    constexpr std::u16string_view kMarks[] = {u".*", u".+", u"\\b", u"\\w", u"\\d", u"\\s"};
    if (std::any_of(std::begin(kMarks), std::end(kMarks), [&](auto mark) { return word.find(mark) != word.npos; })) {
      return say(fmt::format("{} is no regular expression here: * stands for any letters, ? for one, [ab] for a or b",
                             utf8(word)));
    }
    const size_t colon = word.find(u':');
    if (colon != word.npos && colon > 0 && colon + 1 < word.size() && isWordUnit(word[colon + 1]) &&
        std::all_of(word.begin(), word.begin() + static_cast<int64_t>(colon), isASCIILetter<unichar>)) {
      return say(fmt::format("{} is taken as words in a row; there are no fields", utf8(word)));
    }
    doubtDistance(word);
  }

  // "within 5 of" and "within 5 words of".
  void doubtWithin(size_t i) {
    constexpr std::u16string_view kWithin = u"within";
    if (i + 2 >= _tokens.size() || !equalsIgnoringASCIICase(_tokens[i].word.view(), kWithin)) return;
    const std::u16string_view number = _tokens[i + 1].word.view();
    if (_tokens[i + 1].kind != QueryTokenKind::Word ||
        !std::all_of(number.begin(), number.end(), isASCIIDigit<unichar>))
      return;
    say(fmt::format("within is taken as a word; for the distance: NEAR/{}", utf8(number)));
  }

  // "NEAR5" and "w/5".
  void doubtDistance(std::u16string_view word) {
    for (const std::u16string_view name : {u"NEAR", u"NEXT", u"BEFORE", u"AFTER", u"W/", u"WITHIN/"}) {
      if (word.size() <= name.size() || !equalsIgnoringASCIICase(word.substr(0, name.size()), name)) continue;
      const std::u16string_view number = word.substr(name.size());
      if (!std::all_of(number.begin(), number.end(), isASCIIDigit<unichar>)) continue;
      say(fmt::format("{} is taken as a word; for the distance: {}/{}", utf8(word),
                      name.back() == u'/' ? "NEAR" : utf8(name), utf8(number)));
    }
  }

  const std::u16string_view _source;
  const std::vector<QueryToken>& _tokens;
  std::vector<std::string> _doubts;
};

bool isEither(QueryOperator op) { return op == QueryOperator::Or || op == QueryOperator::Xor; }

std::string written(const QueryTerms& term) {
  MutableString text;
  queryTerm(text, term, QueryStyle::Standardized, nullptr);
  const std::string written = text.takeString().toUTF8();
  return term.isWord() || term.queryNot() ? written : '(' + written + ')';
}

std::string joinedBy(const QueryTerms& term) {
  const QueryOperator op = term.queryOperator();
  return isProximity(op) ? fmt::format(" {}/{} ", keywordOf(op), term.proximityDistance())
                         : fmt::format(" {} ", keywordOf(op));
}

std::string enclosed(const std::string& text) { return '(' + text + ')'; }

// With the operators from `from` to before `end` applied from left to right. A proximity operator relates the term
// before it, and what stands to the left must hold, too.
std::string folded(const QueryTerms::Children& terms, size_t from, size_t end) {
  std::string text = written(*terms[from]);
  QueryOperator last = QueryOperator::Mixed;
  for (size_t i = from + 1; i < end; ++i) {
    const QueryTerms& term = *terms[i];
    const QueryOperator op = term.queryOperator();
    if (isProximity(op) && i > from + 1) {
      text = (last == QueryOperator::And || isProximity(last) ? text : enclosed(text)) + " AND " +
             enclosed(written(*terms[i - 1]) + joinedBy(term) + written(term));
    } else {
      text = (i == from + 1 || op == last ? text : enclosed(text)) + joinedBy(term) + written(term);
    }
    last = isProximity(op) && i > from + 1 ? QueryOperator::And : op;
  }
  return text;
}

}  // namespace

std::vector<std::string> doubtsAbout(const CorrectedQuery& query) { return Doubter(query).doubts(); }

std::optional<std::string> bindingOf(const QueryTerms& group) {
  const auto& terms = group.children();
  const QueryOperator common = group.commonOperator();
  const bool isMixed = common == QueryOperator::Mixed || isProximity(common) || common == QueryOperator::Optional;
  if (terms.size() < 3 || terms.size() > kTermsShown || !isMixed) return std::nullopt;
  std::string text = folded(terms, 0, terms.size());
  if (text.size() > kBytesShown) return std::nullopt;
  return text;
}

std::optional<std::string> doubtAboutBinding(const QueryTerms& group) {
  const auto& terms = group.children();
  const std::optional<std::string> binding = bindingOf(group);
  if (!binding) return std::nullopt;
  size_t either = 0;  // the last term that OR or XOR joins
  bool narrows = false;
  for (size_t i = 1; i < terms.size(); ++i) {
    if (isEither(terms[i]->queryOperator())) {
      either = i;
    } else if (either > 0 && terms[i]->queryOperator() != QueryOperator::Optional) {
      narrows = true;
    }
  }
  if (!narrows) return std::nullopt;
  // The reading in which AND binds more closely.
  std::string other;
  for (size_t start = 0, end = 0; start < terms.size(); start = end) {
    for (end = start + 1; end < terms.size() && !isEither(terms[end]->queryOperator());) ++end;
    const std::string part = folded(terms, start, end);
    other += (start > 0 ? joinedBy(*terms[start]) : "") + (end - start > 1 ? enclosed(part) : part);
  }
  return fmt::format("operators bind from left to right: {}; the other reading: {}", *binding, other);
}

}  // namespace velan::tool
