#include "tests/Testing.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/comparison/SetFilteredComparison.h"
#include "velan/text/comparison/StringEquality.h"
#include "velan/text/search/CharacterSearch.h"

namespace velan {
namespace {

TEST(SetFilteredComparison, EqualAndPrefix) {
  const Cases<const char*, String, String, bool, bool, bool, bool> cases = {
      {"no members on either side", u"-", u"12", true, true, true, true},
      {"units between", u"a-b", u"ab", true, true, true, true},
      {"members left in the first", u"a b c", u"ab", false, false, true, true},
      {"a member left in the second", u"ab", u"abc", false, false, false, false},
      {"others left in the second", u"ab", u"a b!!", true, true, true, true},
      {"case", u"a-B", u"Ab.", false, true, false, true},
      {"nothing is a prefix", u"a", u"", false, false, true, true},
  };
  const uint8_t* alpha = alphaCharacterSetRep();
  for (const auto& [why, a, b, equal, equalNoCase, prefix, prefixNoCase] : cases) {
    EXPECT_EQ(equalStringsUsingCharacterSetRep(a, b, alpha), equal) << why;
    EXPECT_EQ(equalStringsNoCaseUsingCharacterSetRep(a, b, alpha), equalNoCase) << why;
    EXPECT_EQ(hasPrefixUsingCharacterSetRep(a, b, alpha), prefix) << why;
    EXPECT_EQ(hasPrefixNoCaseUsingCharacterSetRep(a, b, alpha), prefixNoCase) << why;
  }
  EXPECT_FALSE(equalStringsUsingCharacterSetRep(u"a", u"a", nullptr));
}

// Texts whose members lie at the same places for long, for short, or nowhere, and that differ at last.
TEST(SetFilteredComparison, EqualsASlowComparison) {
  Chance chance(3);
  std::vector<uint8_t> lopsided(alphaCharacterSetRep(), alphaCharacterSetRep() + VelanTableLength / 8);
  lopsided['a' / 8] = 0x02;  // of a to g only "a", but A to G
  const uint8_t* const sets[] = {alphaCharacterSetRep(), lopsided.data(), whiteCharacterSetRep()};
  for (int round = 0; round < 4000; ++round) {
    const uint8_t* rep = sets[chance.below(3)];
    const size_t rarity = 1 + chance.below(round % 2 == 0 ? 20 : 900);
    std::u16string a, b;
    for (size_t left = chance.below(round % 8 == 0 ? 3000 : 100); left > 0; --left) {
      const unichar c = chance.oneOf(u"abcxyzäß дя \n,.日ÿ");
      a += c;
      b += chance.below(4) == 0 ? c : toUpper(c);
      if (chance.below(rarity) == 0) (chance.below(2) ? a : b).append(1 + chance.below(3), chance.oneOf(u".a \n"));
    }
    if (!b.empty() && chance.below(3) == 0) b.resize(chance.below(b.size()));
    for (const bool noCase : {false, true}) {
      const auto members = [&](std::u16string text) {
        std::erase_if(text, [&](unichar c) { return !isMemberOfCharacterSetRep(rep, c); });
        if (noCase) std::ranges::transform(text, text.begin(), toUpper);
        return text;
      };
      const bool equal = members(a) == members(b), prefix = members(a).starts_with(members(b));
      const auto exactA = exactCopy<unichar>(a), exactB = exactCopy<unichar>(b);
      const auto ask = [&](auto* question) { return question(exactA.get(), a.size(), exactB.get(), b.size(), rep); };
      EXPECT_EQ(ask(noCase ? equalCharsNoCaseOfCharacterSetRep : equalCharsOfCharacterSetRep), equal) << round;
      EXPECT_EQ(ask(noCase ? hasPrefixCharsNoCaseOfCharacterSetRep : hasPrefixCharsOfCharacterSetRep), prefix) << round;
    }
  }
}

TEST(CharacterSearch, CaseAndStart) {
  const String text = u"xAaB1a\x00DF";
  const Cases<const char*, unichar, int64_t, bool, int64_t, int64_t, int64_t> cases = {
      {"without the flag the upper-case form is searched", 'a', 0, false, 1, 1, 1},
      {"and for itself too", 'A', 0, false, 1, 1, 1},
      {"any case", 'a', 0, true, 1, 5, 3},
      {"any case, later", 'A', 2, true, 2, 5, 2},
      {"no case variant", '1', 0, true, 4, 4, 1},
      {"sharp s", 0xDF, 0, false, 6, 6, 1},
      {"start beyond the end", 0xDF, 99, false, NSNotFound, NSNotFound, 0},
      {"negative start", 'B', -5, false, 3, 3, 1},
  };
  for (const auto& [why, ch, start, noCase, first, last, count] : cases) {
    EXPECT_EQ(findCharacter(text, ch, start, noCase), first) << why;
    EXPECT_EQ(findLastCharacter(text, ch, start, noCase), last) << why;
    EXPECT_EQ(countCharacter(text, ch, start, noCase), count) << why;
    EXPECT_EQ(containsCharacter(text, ch, start, noCase), count > 0) << why;
  }
  EXPECT_EQ(findCharacter(String(), 'a', true), NSNotFound);
  EXPECT_TRUE(onlyWhiteCharacters(u" \n\t", 3) && onlyWhiteCharacters(nullptr, 0) && !onlyWhiteCharacters(u" x", 2));
}

TEST(CharacterSearch, AFlagIsNoIndex) {
  const String text = u"aAa";
  EXPECT_EQ(findCharacter(text, 'a'), 1);
  EXPECT_EQ(findCharacter(text, 'a', true), 0);
  EXPECT_EQ(findCharacter(text, 'a', 2), NSNotFound);
  EXPECT_EQ(findLastCharacter(text, 'a', true), 2);
  EXPECT_EQ(countCharacter(text, 'a', true), 3);
  EXPECT_TRUE(containsCharacter(text, 'a', false));
  EXPECT_EQ(findOneOf(text, u"A", true), 0);
  EXPECT_EQ(findOneOf(u"aBb", u"xb"), 2);
  EXPECT_EQ(findOneOf(u"abab", u"a", 1, false), 2);
  EXPECT_EQ(findOneOf(u"ab", u"b", -3, false), 1);
  EXPECT_EQ(findOneOf(u"ab", u"b", 2, false), NSNotFound);
  EXPECT_EQ(findOneOf(u"a\x434z", u"z\x434"), 1);       // not all of ASCII
  EXPECT_EQ(findOneOf(u"a\x17F\x53", u"zs", true), 1);  // of ASCII, but equal to a unit that is not
}

TEST(StringEquality, WholeStrings) {
  const Cases<const char*, String, String, bool, bool, bool, bool> cases = {
      {"empty", u"", u"", true, true, true, true},
      {"absent and empty", String(), u"", false, false, true, true},
      {"empty and absent", u"", String(), false, false, true, true},
      {"absent and not empty", String(), u"a", false, false, false, false},
      {"case", u"Abc", u"aBC", true, true, true, false},
      {"diacritics", u"\x00C4pfel", u"APFEL", false, true, false, false},
      {"lengths differ, foldings do not", u"stra\x00DF\x0065", u"STRASSE", false, false, false, false},
      {"a mapping that moves the rest", u"\x00DFss", u"ss\x00DF", true, false, false, false},
      {"long s", u"\x017F", u"s", true, true, true, false},
      {"Kelvin sign", u"\x212A", u"k", true, true, false, false},
      {"title-case digraph", u"\x01C5", u"\x01C6", true, false, false, false},
      {"Deseret, beyond the first plane", u"x\xD801\xDC00", u"x\xD801\xDC28", true, false, false, false},
      {"lone surrogates", u"\xD801", u"\xD801", true, true, true, true},
      {"brackets are no letters", u"[", u"{", false, false, false, false},
      {"composed and decomposed", u"\x00E9x", u"e\x0301", false, false, false, false},
  };
  for (const auto& [why, a, b, noCase, nonUmlauted, upperTable, exact] : cases) {
    EXPECT_EQ(isEqualToStringNoCase(a, b), noCase) << why;
    EXPECT_EQ(isNonUmlautedEqualToStringNoCase(a, b), nonUmlauted) << why;
    EXPECT_EQ(equalStringsUsingConversionTable(a, b, upperCharsTable()), upperTable) << why;
    EXPECT_EQ(equalStringsUsingConversionTable(a, b, nullptr), exact) << why;
  }
}

TEST(StringEquality, PrefixAndSuffix) {
  EXPECT_TRUE(hasPrefixNoCase(u"\x00C4pfel", u"\x00E4P"));
  EXPECT_TRUE(hasSuffixNoCase(u"\x00C4pfel", u"FEL"));
  EXPECT_TRUE(hasPrefixNoCase(u"ab", u"AB"));
  EXPECT_FALSE(hasPrefixNoCase(u"stra\x00DF\x0065", u"strass"));
  for (const String& none : {String(), String(u""), String(u"xabc"), String(u"x")}) {
    EXPECT_FALSE(hasPrefixNoCase(u"abc", none));
    EXPECT_FALSE(hasSuffixNoCase(u"abc", none));
  }
  EXPECT_FALSE(hasPrefixNoCase(String(), u"a"));
}

TEST(StringEquality, Ranges) {
  const String text = u"x\x00C4pfel";
  const Cases<const char*, Range, String, bool, bool, bool> cases = {
      {"case", {1, 2}, u"\x00E4P", false, true, true},
      {"diacritics", {1, 2}, u"aP", false, false, true},
      {"empty", {2, 0}, u"", true, true, true},
      {"empty and absent", {2, 0}, String(), true, true, false},
      {"empty, beyond the end", {NSNotFound, 0}, u"", true, true, true},
      {"absent", {2, 1}, String(), false, false, false},
      {"over the end", {5, 2}, u"l?", false, false, false},
      {"beyond the end", {NSNotFound, 1}, u"l", false, false, false},
      {"before the start", {-1, 1}, u"x", false, false, false},
  };
  for (const auto& [why, range, other, exact, noCase, nonUmlauted] : cases) {
    EXPECT_EQ(rangeIsEqualTo(text, range, other), exact) << why;
    EXPECT_EQ(rangeIsEqualToNoCase(text, range, other), noCase) << why;
    EXPECT_EQ(rangeIsNonUmlautedEqualToNoCase(text, range, other), nonUmlauted) << why;
  }
}

}  // namespace
}  // namespace velan
