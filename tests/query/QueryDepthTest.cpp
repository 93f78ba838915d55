// Queries that would exhaust the stack, the time or the memory of anything that recurses by their depth or searches a
// text again for each place of another term.
#include "tests/SmallStack.h"
#include "tests/Testing.h"
#include "velan/query/QueryMatching.h"
#include "velan/query/words/FastWordEnumerator.h"

namespace velan {
namespace {

constexpr size_t kMillion = 1'000'000;
constexpr size_t kMany = 50'000;

TEST(QueryDepth, DeepQueriesOnASmallStack) {
  const Cases<const char*, String, bool, bool, bool, size_t> cases = {
      {"opened groups", repeated(u"(", kMillion), false, false, false, 0},
      {"closed groups", repeated(u"(", kMillion, repeated(u")", kMillion)), false, false, false, 0},
      {"stray parentheses", repeated(u")", kMillion, u"a"), true, true, true, 2},
      {"NOT, an even number", repeated(u"NOT ", kMillion, u"a"), true, true, true, 2},
      {"NOT, an odd number", repeated(u"NOT ", kMillion + 1, u"a"), true, false, false, 0},
      {"groups in groups", repeated(u"(a ", kMany), true, true, true, 2},
      {"a term at the bottom", repeated(u"(", kMillion, u"b"), true, true, true, 1},
      {"negated groups", repeated(u"-(", kMillion, u"a"), true, true, false, 0},
      {"groups to the left", repeated(u"(", kMany, repeated(u"a) OR zz ", kMany)), true, true, true, 2},
      {"related groups", repeated(u"(a NEAR/1 ", kMany, u"b"), true, true, true, 3},
      {"related groups to the left", repeated(u"(", kMany, repeated(u"a) NEAR/1 ", kMany, u"b")), true, true, true, 3},
      {"related negated groups", repeated(u"(a NEAR/1 NOT ", kMany, u"zz"), true, false, true, 2},
      {"a long row", repeated(u"a ", kMany), true, true, true, 2},
      {"a long row in proximity", repeated(u"a NEAR/1 ", kMany, u"b"), true, true, true, 3},
  };
  for (const auto& row : cases) {
    runOnSmallStack([&row = row] {
      const auto& [why, query, valid, matches, contains, occurrences] = row;
      const auto text = FastWordEnumerator::initWithString(u"a b a"_s);
      const auto terms = QueryTerms::initWithWildcard(query);
      EXPECT_EQ(terms->isValid(), valid) << why;
      const auto again = QueryTerms::initWithWildcard(terms->standardizedQueryTerm());
      EXPECT_EQ(again->matchesString(u"a b a"_s, QueryComparison::Exact), matches) << why;
      EXPECT_EQ(matchesString(*text, *terms, nullptr, QueryOperator::Mixed, 0, 0, 5, QueryComparison::Exact, true),
                matches)
          << why;
      EXPECT_EQ(containsString(*text, *terms, QueryComparison::Exact, true), contains) << why;
      EXPECT_EQ(queryOccurrences(*text, *terms, {0, 5}, QueryComparison::Exact, true).size(), occurrences) << why;
      EXPECT_EQ(terms->minTermLen(), occurrences > 0 ? 1 : 0) << why;
      terms->usesProximity();
    });
  }
}

// Each of these would run for hours if the partner were searched in the span of each place anew, or if nested relations
// multiplied.
TEST(QueryDepth, ProximityInLongTexts) {
  const size_t words = 100'000;
  const String nested8 = u"a NEAR/9 (b NEAR/9 (c NEAR/9 (d NEAR/9 (a NEAR/9 (b NEAR/9 (c NEAR/9 (d NEAR/9 a)))))))"_s;
  const String pieces = repeated(u"a*,", words, u"b");
  const String left8 = u"((((((((a NEAR/9 b) NEAR/9 c) NEAR/9 d) NEAR/9 a) NEAR/9 b) NEAR/9 c) NEAR/9 d) NEAR/9 zz)"_s;
  const Cases<const char*, String, String, bool> cases = {
      {"an absent word", u"zz NEAR a"_s, repeated(u"a ", kMillion), false},
      {"an absent later word", u"a NEAR zz"_s, repeated(u"a ", kMillion), false},
      {"outside overlapping spans", u"zz NOT NEAR a"_s, repeated(u"a ", kMillion), false},
      {"no place outside", u"a NOT NEAR/9 b"_s, repeated(u"a b ", words), false},
      {"wide spans", u"zz NEAR/1000000000000 a"_s, repeated(u"a ", words), false},
      {"wide spans and a negated partner", u"NOT b NEAR/1000000 a"_s, repeated(u"a b ", words), false},
      {"a phrase", u"\"a zz\" NEAR/50000 \"a a\""_s, repeated(u"a ", words), false},
      {"a long row of patterns", pieces, repeated(u"a ", 2 * words), false},
      {"nested to the right", nested8, repeated(u"a b c d ", words / 4), true},
      {"nested to the right, one missing", nested8, repeated(u"a b c ", words / 3), false},
      {"nested to the left, one missing", left8, repeated(u"a b c d ", words / 4), false},
      {"nested to the left, found at the end", left8, repeated(u"a b c d ", words / 4, u"zz"), true},
  };
  for (const auto& [why, query, text, matches] : cases) {
    EXPECT_EQ(QueryTerms::initWithWildcard(query)->matchesString(text, QueryComparison::Exact), matches) << why;
    if (text.length() >= 1'000'000) continue;
    EXPECT_EQ(QueryTerms::initWithString(query)->matchesString(text, true), matches) << why;
  }
}

TEST(QueryDepth, OccurrencesInLongTexts) {
  const size_t words = 100'000;
  const auto text = FastWordEnumerator::initWithString(repeated(u"a b ", words, u"zz"));
  const Cases<String, int64_t, int64_t> cases = {
      {u"a NEAR/1 b"_s, 200'000, 200'000},
      {u"zz NEAR/3 b"_s, 100'001, 3},  // and the two b that it is near
      {u"((a NEAR/2 b) NEAR/2 a) NEAR/2 b"_s, 200'000, -1},
      {u"a* OR *b OR a"_s, 200'000, 200'000},
      {u"((NOT missing NEAR/1000 a) NEAR/1000 b) NEAR/1000 a"_s, 200'000, 200'000},
      {u"((b NOT NEAR/3 zz) NEAR/1000 a) NEAR/1000 b"_s, 200'000, 200'000},
      {u"(((a XOR missing) NEAR/1000 b) NEAR/1000 a) NEAR/1000 b"_s, 200'000, 200'000},
  };
  for (const auto& [query, occurrences, primary] : cases) {
    int64_t primaries = 0;
    const auto terms = QueryTerms::initWithWildcard(query);
    const int64_t count = enumerateOccurrences(*text, *terms, {0, NSNotFound}, QueryComparison::Exact, true,
                                               [&primaries](const String&, Range, bool isPrimary) {
                                                 primaries += isPrimary;
                                                 return false;
                                               });
    EXPECT_EQ(count, occurrences) << query.toUTF8();
    EXPECT_TRUE(primary < 0 || primaries == primary) << query.toUTF8() << ' ' << primaries;
  }
}

}  // namespace
}  // namespace velan
