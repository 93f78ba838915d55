#include <gtest/gtest.h>

#include <algorithm>

#include "velan/query/QueryMatching.h"
#include "velan/query/WordFinder.h"
#include "velan/query/words/FastWordEnumerator.h"

namespace velan {
namespace {

TEST(WordFinder, FindsWordsHoweverTheTextIsKept) {
  const String text = u"aaab ab aB \u00C4b"_s;
  const struct {
    const char* why;
    std::u16string_view word;
    QueryComparison comparison;
    bool whole;
    int64_t inUnits, inUpperCase;
  } cases[] = {
      {"exactly", u"aB", QueryComparison::Exact, true, 8, 5},
      {"ignoring case", u"AB", QueryComparison::IgnoreCase, true, 5, 5},
      {"inside a word", u"aaB", QueryComparison::IgnoreCase, false, 1, 1},
      {"ignoring diacritics", u"Ab", QueryComparison::IgnoreDiacritics, true, 11, 5},
      {"at the very end", u"b \u00E4b", QueryComparison::IgnoreCase, false, 9, 9},
      {"longer than what is left", u"\u00E4bb", QueryComparison::IgnoreCase, false, NSNotFound, NSNotFound},
  };
  for (const bool upperCase : {false, true}) {
    const auto enumerator = FastWordEnumerator::enumeratorWithString(text, upperCase, false);
    for (const auto& c : cases) {
      EXPECT_EQ(FindWordInString(*enumerator, 0, INT64_MAX, c.word.data(), static_cast<int64_t>(c.word.size()),
                                 c.comparison, c.whole),
                upperCase ? c.inUpperCase : c.inUnits)
          << c.why << (upperCase ? ", upper case" : "");
    }
  }
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

int64_t longest = 0;
bool keepLongest(const FastWordEnumerator&, int64_t, int64_t length) {
  longest = std::max(longest, length);
  return false;
}

TEST(FastWordEnumerator, TakesPlainFunctionsAsBlocks) {
  const auto enumerator = FastWordEnumerator::enumeratorWithString(u"a bcd"_s);
  EXPECT_EQ(enumerator->enumerateWordsInRange({0, 5}, keepLongest), 2);
  EXPECT_EQ(longest, 3);
  bool (*none)(const FastWordEnumerator&, int64_t, int64_t) = nullptr;
  EXPECT_EQ(enumerator->enumerateWordsInRange({0, 5}, none), 0);
}

}  // namespace
}  // namespace velan
