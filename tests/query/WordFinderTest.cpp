#include "tests/Testing.h"
#include "velan/query/QueryMatching.h"
#include "velan/query/WordFinder.h"
#include "velan/query/words/FastWordEnumerator.h"
#include "velan/text/ConversionTables.h"
#include "velan/wildcard/WildcardMatching.h"

namespace velan {
namespace {

TEST(WordFinder, FindsWordsHoweverTheTextIsKept) {
  const String text = u"aaab ab aB \u00C4b"_s;
  const Cases<const char*, std::u16string_view, QueryComparison, bool, int64_t, int64_t> cases = {
      {"exactly", u"aB", QueryComparison::Exact, true, 8, 5},
      {"ignoring case", u"AB", QueryComparison::IgnoreCase, true, 5, 5},
      {"inside a word", u"aaB", QueryComparison::IgnoreCase, false, 1, 1},
      {"ignoring diacritics", u"Ab", QueryComparison::IgnoreDiacritics, true, 11, 5},
      {"at the very end", u"b \u00E4b", QueryComparison::IgnoreCase, false, 9, 9},
      {"longer than what is left", u"\u00E4bb", QueryComparison::IgnoreCase, false, NSNotFound, NSNotFound},
  };
  for (const bool upperCase : {false, true}) {
    const auto enumerator = FastWordEnumerator::enumeratorWithString(text, upperCase, false);
    for (const auto& [why, word, comparison, whole, inUnits, inUpperCase] : cases) {
      EXPECT_EQ(FindWordInString(*enumerator, 0, INT64_MAX, word.data(), static_cast<int64_t>(word.size()), comparison,
                                 whole),
                upperCase ? inUpperCase : inUnits)
          << why << (upperCase ? ", upper case" : "");
    }
  }
}

// Long enough that what matches a word is remembered, with many places open at once.
TEST(WordFinder, FindsLongPhrases) {
  std::mt19937 random(1);
  const std::u16string_view words[] = {u"a", u"ab", u"b", u"ba"};
  const std::u16string_view patterns[] = {u"a*", u"*b*", u"?", u"*", u"[ab]*", u"ab"};
  const auto matches = [](std::u16string_view word, std::u16string_view pattern) {
    return stringMatchesUnixWildcard(word.begin(), word.end(), pattern.begin(), pattern.end());
  };
  int found = 0;
  for (size_t round = 0; round < 60; ++round) {
    std::vector<std::u16string_view> text, pieces;
    while (text.size() < 900) text.push_back(words[random() % (round % 3 + 2)]);
    const size_t from = random() % 600;
    while (pieces.size() < 50 + 50 * (round % 5)) {
      const auto pattern = patterns[round % 2 ? random() % 6 : 2 + random() % 3];
      if (matches(text[from + pieces.size()], pattern)) pieces.push_back(pattern);
    }
    if (round % 4 == 0) pieces[random() % pieces.size()] = u"c*";
    std::u16string units, phrase;
    std::vector<int64_t> starts;
    for (const auto word : text) {
      starts.push_back(static_cast<int64_t>(units.size()));
      units.append(word).append(u" ");
    }
    for (const auto piece : pieces) phrase.append(piece).append(u" ");
    const auto enumerator = FastWordEnumerator::enumeratorWithString(units, false, false);
    Range place{-1, 0};
    for (size_t first = 0; first + pieces.size() <= text.size(); ++first) {
      if (!std::equal(pieces.begin(), pieces.end(), text.begin() + static_cast<std::ptrdiff_t>(first),
                      [&](auto piece, auto word) { return matches(word, piece); })) {
        continue;
      }
      const size_t last = first + pieces.size() - 1;
      const Range rest{place.location + 1, enumerator->length()};
      place = FindWildcardStringInCharacters(*enumerator, rest, phrase, QueryComparison::Exact, true, true, true);
      ASSERT_EQ(place.location, starts[first]) << round;
      ASSERT_EQ(endOf(place), starts[last] + static_cast<int64_t>(text[last].size())) << round;
      ++found;
    }
    const Range rest{place.location + 1, enumerator->length()};
    ASSERT_FALSE(
        isPresent(FindWildcardStringInCharacters(*enumerator, rest, phrase, QueryComparison::Exact, true, true, true)));
  }
  EXPECT_GT(found, 60);
}

// In ranges that cut words off, with runs that a dictionary divides, and with words longer than what is searched at
// once.
TEST(WordFinder, FindsSimilarWords) {
  const std::u16string_view words[] = {u"semaphore ",
                                       u"semaphroe, ",
                                       u"SEMAPHORES ",
                                       u"sem ",
                                       u"a ",
                                       u"temper ",
                                       u"\u65E5\u672C\u8A9E\u306E",
                                       u"\u6771\u4EAC\u90FD ",
                                       u"semaphor\u65E5\u672C"};
  const String patterns[] = {u"semaphroe"_s, u"\u65E5\u672C"_s, u"a"_s};
  Chance chance(8);
  int count = 0;
  FastWordEnumerator::setSplitAsianWords(true);
  for (int round = 0; round < 60; ++round) {
    std::u16string units = chance.text(round % 3 ? 300 : 10, words);
    if (round % 7 == 0) units.insert(chance.below(units.size()), 6000, u'a');
    const bool ignoresCase = round % 2 == 0;
    const auto divided = FastWordEnumerator::enumeratorWithString(units, ignoresCase, false);
    const auto onDemand = FastWordEnumerator::enumeratorDividingOnDemand(units, ignoresCase);
    const std::u16string pattern(chance.oneOf(patterns).view());
    std::u16string mapped = pattern;
    if (ignoresCase) std::ranges::transform(mapped, mapped.begin(), [](unichar c) { return upperCharsTable()[c]; });
    const auto start = static_cast<int64_t>(chance.below(round % 4 ? 5 : 600));
    const Range range{start, divided->length() - start - static_cast<int64_t>(chance.below(9))};
    int64_t from = range.location;
    const auto next = [&] {
      const Range rest{from, endOf(range) - from};
      return FindWildcardStringInCharacters(*onDemand, rest, pattern, QueryComparison::Fuzzy, true, true, true);
    };
    int64_t index = std::max<int64_t>(range.location, 0);
    for (Range word; isPresent(word = divided->enumerateNextWordAtIndex(&index)) && endOf(word) <= endOf(range);) {
      if (!(stringMatchesUnixWildcardFuzzy(mapped.data(), mapped.size(), divided->characters() + word.location,
                                           static_cast<size_t>(word.length)) >= 0.75)) {
        continue;
      }
      ASSERT_EQ(next(), word) << round;
      from = endOf(word);
      ++count;
    }
    ASSERT_FALSE(isPresent(next())) << round;
  }
  FastWordEnumerator::setSplitAsianWords(false);
  EXPECT_GT(count, 1000);
}

TEST(QueryMatching, NothingIsRelatedInAnEmptyRange) {
  const auto enumerator = FastWordEnumerator::enumeratorWithString(u"a b"_s);
  for (const auto* query : {u"NOT x NEAR NOT y", u"NOT x NEAR NOT (y OR z)"}) {
    const auto terms = QueryTerms::initWithString(query);
    const auto matchesIn = [&](int64_t length) {
      return matchesString(*enumerator, *terms, nullptr, QueryOperator::Mixed, 0, 0, length, QueryComparison::Exact,
                           false);
    };
    EXPECT_TRUE(matchesIn(3)) << String(query).toUTF8();
    EXPECT_FALSE(matchesIn(0)) << String(query).toUTF8();
  }
}

// Words around a place are found by an index or, where it is made on demand, by the separators beside them.
TEST(WordFinder, IndexedOrNotInEveryRange) {
  const String text = u"aa b, cc-aa bb aa"_s;
  const auto indexed = FastWordEnumerator::enumeratorWithString(text);
  const auto onDemand = FastWordEnumerator::enumeratorDividingOnDemand(text, false);
  for (const String& pattern : {u"aa b"_s, u"*a b*"_s, u"cc* aa"_s, u"b ?c a*"_s, u"aa"_s, u"*b"_s, u"b*"_s}) {
    for (int64_t start = 0; start < text.length(); ++start) {
      for (int64_t length = 0; start + length <= text.length(); ++length) {
        const auto find = [&](const FastWordEnumerator& words) {
          return FindWildcardStringInCharacters(words, {start, length}, pattern, QueryComparison::Exact, true, true,
                                                false);
        };
        EXPECT_EQ(find(*onDemand), find(*indexed)) << pattern.toUTF8() << ' ' << start << ' ' << length;
      }
    }
  }
}

}  // namespace
}  // namespace velan
