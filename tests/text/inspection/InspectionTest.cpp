#include <gmock/gmock.h>

#include <set>

#include "tests/Testing.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/inspection/CharacterClasses.h"
#include "velan/text/inspection/FoldedStrings.h"
#include "velan/text/inspection/Numbers.h"
#include "velan/text/inspection/Rotation.h"
#include "velan/text/inspection/StringCreation.h"
#include "velan/text/inspection/StringEnds.h"
#include "velan/text/inspection/SubstringSearch.h"
#include "velan/text/inspection/WordForms.h"

namespace velan {
namespace {

using Predicate = bool (*)(const String&);

TEST(CharacterClasses, EveryClass) {
  const Cases<const uint8_t*, Predicate, int64_t (*)(const String&), Predicate, bool> cases = {
      {alphaNumCharacterSetRep(), containsAlphaNumCharacter, countAlphaNumCharacters, isAlphaNumString, false},
      {alphaCharacterSetRep(), containsAlphaCharacter, countAlphaCharacters, isAlphaString, false},
      {whiteCharacterSetRep(), containsWhiteCharacter, countWhiteCharacters, isWhiteString, true},
      {digitCharacterSetRep(), containsDigitCharacter, countDigitCharacters, isDigitString, false},
      {spaceCharacterSetRep(), nullptr, nullptr, isSpaceString, true},
  };
  for (const auto& [rep, contains, count, consists, whenEmpty] : cases) {
    for (const String text : {u"ab", u"1\x0661", u" \t", u" \n", u"\x2160", u"a 1.", u"."}) {
      const auto members =
          std::ranges::count_if(text, [set = rep](unichar u) { return isMemberOfCharacterSetRep(set, u); });
      EXPECT_TRUE(!contains || contains(text) == (members > 0)) << text.toUTF8();
      EXPECT_TRUE(!count || count(text) == members) << text.toUTF8();
      EXPECT_EQ(consists(text), members == text.length()) << text.toUTF8();
      EXPECT_EQ(containsCharacterPartOfCharacterSetRep(text, rep), members > 0) << text.toUTF8();
      EXPECT_EQ(countCharactersPartOfCharacterSetRep(text, rep), members) << text.toUTF8();
    }
    EXPECT_EQ(consists(u""), whenEmpty);
    EXPECT_EQ(consists(String()), whenEmpty);
  }
}

TEST(WordForms, EveryForm) {
  const Cases<const char*, Predicate, std::vector<String>, std::vector<String>> cases = {
      {"ascii", isAsciiString, {u"", String(), u"a\x7F"}, {u"a\x80", u"\xFF41"}},
      {"umlauted", isUmlautedString, {u"x\x00C4", u"\x0439"}, {u"", u"stra\x00DF\x0065", u"A"}},
      {"lower", isLowerCaseString, {u"a-1", u"\x00DF", u"\x65E5"}, {u"", u"1", u"Ab", u"a\x01C5"}},
      {"upper", isUpperCaseString, {u"A-1", u"\x01C5", u"\x65E5"}, {u"", u"1", u"aB"}},
      {"mashed",
       isMashedWord,
       {u"iPhone", u"McDonald", u"b2b", u"\x00E9\x0661"},
       {u"", u"Hello", u"HELLO", u"iPHONE", u"Mc Donald", u"a-1", u"12"}},
  };
  for (const auto& [name, holds, yes, no] : cases) {
    for (const String& text : yes) EXPECT_TRUE(holds(text)) << name << ' ' << text.toUTF8();
    for (const String& text : no) EXPECT_FALSE(holds(text)) << name << ' ' << text.toUTF8();
  }
}

TEST(WordForms, EastAsianRanges) {
  const std::pair<unichar, unichar> ranges[] = {{0x3000, 0x30FF}, {0x3400, 0x4DBF}, {0x4E00, 0x9FFF}, {0xA700, 0xEBEF}};
  for (const auto& [first, last] : ranges) {
    for (const int c : {first - 1, +first, +last, last + 1}) {
      const unichar text[] = {u'x', static_cast<unichar>(c)};
      EXPECT_EQ(containsCJKCharacter(String::withCharacters(text, 2)), c == first || c == last) << c;
    }
  }
  EXPECT_TRUE(containsCJKCharacter(u"x😀"));
}

TEST(Numbers, CountsAndRuns) {
  const Cases<String, int64_t, int64_t> cases = {{u"", 0, 0},        {u"a1b22c333", 3, 3},    {u"12 34", 2, 2},
                                                 {u"ab12345", 1, 5}, {u"\x0661\x0662", 0, 0}, {u"1", 1, 1}};
  for (const auto& [text, count, longest] : cases) {
    EXPECT_EQ(countNumbers(text), count);
    for (int64_t n = -1; n < 8; ++n) EXPECT_EQ(containsNumberWithNDigits(text, n), n >= 1 && n <= longest) << n;
  }
  EXPECT_FALSE(containsNumberWithNDigits(nullptr, 5, 1));
  EXPECT_FALSE(containsNumberWithNDigits(String(), INT64_MIN));
}

TEST(Numbers, Neighbours) {
  for (const String text : {u"12", u"x 12 y", u"x12", u"1212 12", u"\x0661 12\x0661"}) {
    EXPECT_TRUE(containsNumber(text, u"12")) << text.toUTF8();
  }
  for (const String text : {u"", u"1", u"123", u"312", u"1212"}) {
    EXPECT_FALSE(containsNumber(text, u"12")) << text.toUTF8();
  }
  EXPECT_FALSE(containsNumber(u"1a-a-a", u"a-a"));  // the second one overlaps the first
  EXPECT_FALSE(containsNumber(u"12", u"") || containsNumber(u"12", String()) || containsNumber(String(), u"1"));
}

// How often is held against a slow version, with the replacing.
TEST(SubstringSearch, CaseAndLists) {
  EXPECT_TRUE(containsSubstring(u"xab", u"AB") && !containsSubstring(u"xab", u"AB", true));
  EXPECT_TRUE(containsSubstring(u"ab", u"ab", true));
  EXPECT_FALSE(containsSubstring(u"stra\x00DF\x0065", u"ss"));  // by the upper table, not folded
  EXPECT_FALSE(containsSubstring(u"ab", u"") || containsSubstring(String(), u"a") || containsSubstring(u"a", String()));
  EXPECT_TRUE(containsSubstrings(u"ab", {u"zz", u"B"}) && !containsSubstrings(u"ab", {u"zz", u"B"}, true));
  EXPECT_TRUE(containsSubstrings(u"ab", {u"b", u"zz"}, true) && !containsSubstrings(u"ab", {}));
}

TEST(FoldedStrings, TablesAndIdentity) {
  EXPECT_EQ(normalizedString(u"Äpfel Й ß"), u"apfel и ß"_s);
  EXPECT_EQ(nonUmlautedString(u"Äpfel É"), u"Apfel E"_s);
  EXPECT_EQ(stringUsingConversionTable(u"äß", upperCharsTable()), u"Äß"_s);
  for (const String& same : {String(u"plain text"), String(u""), String()}) {
    EXPECT_TRUE(normalizedString(same).isSameObject(same));
    EXPECT_TRUE(nonUmlautedString(same).isSameObject(same));
    EXPECT_TRUE(stringUsingConversionTable(same, nullptr).isSameObject(same));
  }
}

TEST(Rotation, LettersOnly) {
  EXPECT_EQ(stringByRotating(u"Hello, Zäz 9{[`@", 13), u"Uryyb, Mäm 9{[`@"_s);
  EXPECT_EQ(stringByRotating(u"az AZ", 1), u"ba BA"_s);
  EXPECT_EQ(stringByRotating(u"az AZ", UINT64_MAX), u"po PO"_s);  // 15 more than a multiple of 26
  EXPECT_EQ(stringByRotating13(stringByRotating13(u"Velan")), u"Velan"_s);
  for (const String& same : {String(u"Hello"), String(u""), String()}) {
    EXPECT_TRUE(stringByRotating(same, same.isEmpty() ? 1 : 52).isSameObject(same));
  }
}

TEST(StringEnds, FirstAndLast) {
  EXPECT_TRUE(isStringEmpty(String()) && isStringEmpty(u"") && !isStringEmpty(u"a"));
  EXPECT_TRUE(!isStringNotEmpty(String()) && !isStringNotEmpty(u"") && isStringNotEmpty(u"a"));
  EXPECT_TRUE(firstCharacter(u"ab") == u'a' && firstCharacter(u"") == 0 && firstCharacter(String()) == 0);
  EXPECT_TRUE(lastCharacter(u"ab") == u'b' && lastCharacter(u"") == 0 && lastCharacter(String()) == 0);
}

TEST(StringCreation, IdentifiersAndLists) {
  std::set<String> identifiers;
  for (int i = 0; i < 1000; ++i) {
    const String identifier = uniqueString();
    EXPECT_THAT(identifier.toUTF8(),
                testing::MatchesRegex("[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}"));
    identifiers.insert(identifier);
  }
  EXPECT_EQ(identifiers.size(), 1000u);
  EXPECT_EQ(stringWithComponents({}), u""_s);
  EXPECT_EQ(stringWithComponents({u"a"}), u"a"_s);
  EXPECT_EQ(stringWithComponents({u"a", u"", u"b c", String()}), u"a  b c "_s);
}

}  // namespace
}  // namespace velan
