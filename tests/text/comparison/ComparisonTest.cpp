#include "tests/Testing.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/comparison/Comparison.h"

namespace velan {
namespace {

TEST(Comparison, NullHasNoUnits) { EXPECT_EQ(fastCompareUnichars(nullptr, 3, u"ab", 2), -2); }

TEST(Comparison, BytesAreSignExtended) {
  const unichar unit[] = {0xFFE9};
  EXPECT_EQ(compareCharactersWithChars(unit, 1, "\xE9", 1), 0);
  EXPECT_EQ(fastCompareUnicharsWithChars(u"\x00E9", 1, "\xE9", 1), 0xE9 - 0xFFE9);
  EXPECT_EQ(caseInsensitiveCompareCharactersWithChars(u"a\xFFE9", 2, "A\xE9z", 3), -1);
  EXPECT_EQ(fastCompareChars("\xE9", 1, "A", 1), -23 - 'A');
  EXPECT_EQ(fastCompareChars("ab", 2, "a", 1), 1);
  EXPECT_EQ(fastCaseInsensitiveCompareChars("\xE9", 1, "a", 1), 0xFFE9 - 'A');
  EXPECT_EQ(fastCaseInsensitiveCompareChars("aB", 2, "Ab", 2), 0);
}

int64_t slowCompare(const std::u16string& a, const std::u16string& b, const unichar* table) {
  for (size_t i = 0; i < a.size() && i < b.size(); ++i) {
    const int difference = table ? table[a[i]] - table[b[i]] : a[i] - b[i];
    if (difference != 0) return difference;
  }
  return static_cast<int64_t>(a.size()) - static_cast<int64_t>(b.size());
}

// Lengths around the blocks, differences in case and otherwise at every place.
TEST(Comparison, EqualsTheSlowOne) {
  Chance chance(1);
  const std::u16string_view variants[] = {u"aA",      u"\x00E4\x00C4", u"\x0436\x0416", u"[{",          u"@`",
                                          u"s\x017F", u"7\xFFFF",      u"k\x212A",      u"\x00DF\x1E9E"};
  const auto any = [&] { return chance.oneOf(chance.oneOf(variants)); };
  for (size_t length = 0; length <= 100; ++length) {
    for (int round = 0; round < 40; ++round) {
      std::u16string a, b;
      for (size_t i = 0; i < length; ++i) a += any();
      b = a;
      for (size_t changes = chance.below(4); changes > 0 && length > 0; --changes) {
        unichar& changed = b[chance.below(length)];
        changed = chance.below(2) ? toUpper(changed) : any();
      }
      b.resize(length - chance.below(length / 8 + 1));
      EXPECT_EQ(fastCompareUnichars(a.data(), a.size(), b.data(), b.size()), slowCompare(a, b, nullptr));
      EXPECT_EQ(fastCaseInsensitiveCompareUnichars(a.data(), a.size(), b.data(), b.size()),
                slowCompare(a, b, initUpperCharsTable()));
      EXPECT_EQ(fastCompareUnicharsUsingConversionTable(a.data(), a.size(), b.data(), b.size(), umlautsCharsTable()),
                slowCompare(a, b, umlautsCharsTable()));
    }
  }
}

}  // namespace
}  // namespace velan
