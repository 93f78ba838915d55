#include "tests/Testing.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/UnitMappingInternal.h"

namespace velan {
namespace {

TEST(ConversionTables, Entries) {
  const Cases<const char*, unichar, unichar, unichar, unichar, unichar, unichar> cases = {
      {"ASCII capital", 'A', 'a', 'A', 'A', 'a', 'A'},
      {"ASCII small", 'a', 'a', 'A', 'a', 'a', 'A'},
      {"a with diaeresis", 0xE4, 0xE4, 0xC4, 'a', 'a', 'A'},
      {"sharp s: its capital is two letters", 0xDF, 0xDF, 0xDF, 0xDF, 0xDF, 0xDF},
      {"capital sharp s", 0x1E9E, 0xDF, 0x1E9E, 0x1E9E, 0xDF, 0x1E9E},
      {"I with dot: its small form is two units", 0x130, 0x130, 0x130, 'I', 'i', 'I'},
      {"long s", 0x17F, 0x17F, 'S', 0x17F, 0x17F, 'S'},
      {"long s with dot: the mark goes first", 0x1E9B, 0x1E9B, 0x1E60, 0x17F, 0x17F, 'S'},
      {"Kelvin sign", 0x212A, 'k', 0x212A, 'K', 'k', 'K'},
      {"full mapping of an iota subscript is two units", 0x1F80, 0x1F80, 0x1F80, 0x3B1, 0x3B1, 0x391},
      {"Cyrillic short i", 0x439, 0x439, 0x419, 0x438, 0x438, 0x418},
      {"Hangul decomposes to several letters", 0xAC00, 0xAC00, 0xAC00, 0xAC00, 0xAC00, 0xAC00},
      {"surrogate", 0xD835, 0xD835, 0xD835, 0xD835, 0xD835, 0xD835},
      {"last entry", 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF},
  };
  for (const auto& [why, unit, lower, upper, umlauts, lowerUmlauts, upperUmlauts] : cases) {
    EXPECT_EQ(toLower(unit), lower) << why;
    EXPECT_EQ(toUpper(unit), upper) << why;
    EXPECT_EQ(umlautsToAscii(unit), umlauts) << why;
    EXPECT_EQ(umlautsToLowerAscii(unit), lowerUmlauts) << why;
    EXPECT_EQ(umlautsToUpperAscii(unit), upperUmlauts) << why;
  }
}

TEST(ConversionTables, ToAscii) {
  const Cases<unichar, unichar, unichar, unichar> cases = {
      {0xE9, 'e', 'E', 'e'},  {0xC9, 'E', 'E', 'e'}, {0x416, ' ', ' ', ' '}, {0x7F, 0x7F, 0x7F, 0x7F},
      {0x80, ' ', ' ', ' '},  {'[', '[', '[', '['},  {'{', '{', '{', '{'},   {'`', '`', '`', '`'},
      {'@', '@', '@', '@'},   {'z', 'z', 'Z', 'z'},  {'Z', 'Z', 'Z', 'z'},   {0, 0, 0, 0},
      {0x212A, 'K', 'K', 'k'}};
  for (const auto& [unit, ascii, upper, lower] : cases) {
    EXPECT_EQ(toAscii(unit), ascii) << int{unit};
    EXPECT_EQ(toUpperAscii(unit), upper) << int{unit};
    EXPECT_EQ(toLowerAscii(unit), lower) << int{unit};
  }
}

TEST(ConversionTables, PartOfAnother) {
  const unichar* tables[] = {nullptr,
                             lowerCharsTable(),
                             upperCharsTable(),
                             umlautsCharsTable(),
                             lowerUmlautsCharsTable(),
                             upperUmlautsCharsTable()};
  const char* expected[] = {"000000", "010010", "001001", "000111", "000010", "000001"};
  for (size_t i = 0; i < 6; ++i) {
    for (size_t j = 0; j < 6; ++j) {
      EXPECT_EQ(isUnicharTablePartOfConversionTable(tables[i], tables[j]), expected[i][j] == '1') << i << ' ' << j;
    }
  }
  const unichar own[1] = {0};
  EXPECT_TRUE(isUnicharTablePartOfConversionTable(own, own));
  EXPECT_FALSE(isUnicharTablePartOfConversionTable(own, tables[4]));
}

// Every unit, so the ASCII ones among their like, where they are calculated.
TEST(UnitMapping, RunsEqualTheTable) {
  std::u16string all;
  for (size_t c = 0; c < VelanTableLength; ++c) all += static_cast<char16_t>(c);
  for (const unichar* table : {initUpperCharsTable(), initLowerCharsTable()}) {
    EXPECT_EQ(mappedString(all, table).view(), std::u16string_view(table, VelanTableLength));
    std::u16string inPlace = all;
    mapUnits(inPlace.data(), inPlace.size(), table, inPlace.data());
    EXPECT_EQ(inPlace, std::u16string_view(table, VelanTableLength));
  }
}

}  // namespace
}  // namespace velan
