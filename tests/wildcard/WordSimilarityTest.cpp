#include <cmath>

#include "tests/Testing.h"
#include "velan/text/ConversionTables.h"
#include "velan/wildcard/WildcardMatching.h"

namespace velan {
namespace {

using View = std::u16string_view;

double similarity(View a, View b) { return stringMatchesUnixWildcardFuzzy(a.data(), a.size(), b.data(), b.size()); }

double slowSimilarity(View a, View b) {
  const View longer = a.size() > b.size() ? a : b, shorter = a.size() > b.size() ? b : a;
  const auto n = static_cast<double>(longer.size());
  double same = 0, pairs = 0, jumps = 0;
  for (size_t i = 0; i < shorter.size(); ++i) same += longer[i] == shorter[i];
  std::vector<bool> isFree(longer.size(), true);
  for (int64_t i = 0, shift = 0; i < static_cast<int64_t>(shorter.size()); ++i) {
    int64_t taken = -1;
    for (int64_t j = 0; j < static_cast<int64_t>(longer.size()); ++j) {
      if (!isFree[static_cast<size_t>(j)] || longer[static_cast<size_t>(j)] != shorter[static_cast<size_t>(i)])
        continue;
      if (taken < 0) taken = j;
      if (j == i - shift) taken = j;
    }
    if (taken < 0) continue;
    isFree[static_cast<size_t>(taken)] = false;
    ++pairs;
    if (i != 0 && taken != i - shift) ++jumps;
    shift = i - taken;
  }
  return std::max(same / n, pairs * (1 - jumps / n) / n);
}

TEST(WordSimilarity, Values) {
  EXPECT_EQ(similarity(u"abdc", u"abcd"), 0.5);
  EXPECT_EQ(similarity(u"bcd", u"abcd"), 0.75);
  EXPECT_EQ(similarity(u"Abcd", u"abcd"), 0.75);
  EXPECT_EQ(similarity(u"a", u""), 0.0);
  EXPECT_TRUE(std::isnan(similarity(u"", u"")));
  EXPECT_EQ(stringMatchesUnixWildcardFuzzyUsingUnicharTable(u"\u00C4b", 2, u"aB", 2, upperUmlautsCharsTable()), 1.0);
}

// Around the length from which positions are queued; few letters make many choices.
TEST(WordSimilarity, EqualsTheSlowOne) {
  Chance chance(5);
  for (const size_t length : {3u, 8u, 20u, 511u, 512u, 513u, 700u}) {
    for (int round = 0; round < 40; ++round) {
      const std::u16string a = chance.text(length, u"abcdefghi");
      std::u16string b = a;
      for (auto i = chance.below(6); i > 0; --i) std::swap(b[chance.below(length)], b[chance.below(length)]);
      b.erase(chance.below(length), chance.below(3));
      EXPECT_EQ(similarity(a, b), slowSimilarity(a, b));
      EXPECT_EQ(similarity(b, a), slowSimilarity(b, a));
    }
  }
}

}  // namespace
}  // namespace velan
