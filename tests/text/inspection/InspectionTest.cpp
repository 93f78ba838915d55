#include <gmock/gmock.h>

#include <memory>
#include <set>

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

// Each text holds one unit of every class asked for, and one that a neighbouring class would take.
TEST(CharacterClasses, EveryClass) {
  const String mixed = u"a1\x0661 \t\n.\x2160";
  EXPECT_EQ(countAlphaNumCharacters(mixed), 4);
  EXPECT_EQ(countAlphaCharacters(mixed), 1);
  EXPECT_EQ(countDigitCharacters(mixed), 2);
  EXPECT_EQ(countWhiteCharacters(mixed), 3);
  EXPECT_EQ(countCharactersPartOfCharacterSetRep(mixed, spaceCharacterSetRep()), 2);
  EXPECT_EQ(countCharactersPartOfCharacterSetRep(mixed, nullptr), 0);
  const struct {
    String text;
    bool alphaNum, alpha, white, digit;                   // contains
    bool isSpace, isWhite, isDigit, isAlpha, isAlphaNum;  // consists of
  } cases[] = {
      {u"", false, false, false, false, true, true, false, false, false},
      {String(), false, false, false, false, true, true, false, false, false},
      {u"ab\x0301", true, true, false, false, false, false, false, true, true},
      {u"1\x0661", true, false, false, true, false, false, true, false, true},
      {u" \t", false, false, true, false, true, true, false, false, false},
      {u" \n", false, false, true, false, false, true, false, false, false},
      {u"\x2160", true, false, false, false, false, false, false, false, true},
      {u"a .", true, true, true, false, false, false, false, false, false},
  };
  for (const auto& c : cases) {
    const std::string why = c.text.toUTF8();
    EXPECT_EQ(containsAlphaNumCharacter(c.text), c.alphaNum) << why;
    EXPECT_EQ(containsAlphaCharacter(c.text), c.alpha) << why;
    EXPECT_EQ(containsWhiteCharacter(c.text), c.white) << why;
    EXPECT_EQ(containsDigitCharacter(c.text), c.digit) << why;
    EXPECT_EQ(containsCharacterPartOfCharacterSetRep(c.text, alphaCharacterSetRep()), c.alpha) << why;
    EXPECT_EQ(isSpaceString(c.text), c.isSpace) << why;
    EXPECT_EQ(isWhiteString(c.text), c.isWhite) << why;
    EXPECT_EQ(isDigitString(c.text), c.isDigit) << why;
    EXPECT_EQ(isAlphaString(c.text), c.isAlpha) << why;
    EXPECT_EQ(isAlphaNumString(c.text), c.isAlphaNum) << why;
  }
}

TEST(WordForms, EveryForm) {
  const struct {
    String text;
    bool ascii, umlauted, lower, upper, mashed;
  } cases[] = {
      {u"", true, false, false, false, false},          {String(), true, false, false, false, false},
      {u"hello", true, false, true, false, false},      {u"HELLO", true, false, false, true, false},
      {u"Hello", true, false, false, false, false},     {u"12", true, false, false, false, false},
      {u"a-1", true, false, true, false, false},        {u"straße", false, false, true, false, false},
      {u"Äpfel", false, true, false, false, false},     {u"日本", false, false, true, true, false},
      {u"\x01C5", false, false, false, true, false},    {u"iPhone", true, false, false, false, true},
      {u"McDonald", true, false, false, false, true},   {u"iPHONE", true, false, false, false, false},
      {u"Mc Donald", true, false, false, false, false}, {u"b2b", true, false, true, false, true},
      {u"é\x0661", false, true, true, false, true},     {u"\x7F", true, false, false, false, false},
      {u"\x80", false, false, false, false, false},
  };
  for (const auto& c : cases) {
    const std::string why = c.text.toUTF8();
    EXPECT_EQ(isAsciiString(c.text), c.ascii) << why;
    EXPECT_EQ(isUmlautedString(c.text), c.umlauted) << why;
    EXPECT_EQ(isLowerCaseString(c.text), c.lower) << why;
    EXPECT_EQ(isUpperCaseString(c.text), c.upper) << why;
    EXPECT_EQ(isMashedWord(c.text), c.mashed) << why;
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
  const struct {
    const char16_t* text;
    int64_t count, longest;
  } cases[] = {{u"", 0, 0},        {u"a1b22c333", 3, 3},    {u"12 34", 2, 2},
               {u"ab12345", 1, 5}, {u"\x0661\x0662", 0, 0}, {u"1", 1, 1}};
  for (const auto& c : cases) {
    const String text(c.text);
    EXPECT_EQ(countNumbers(text), c.count);
    for (int64_t n = -1; n < 8; ++n) EXPECT_EQ(containsNumberWithNDigits(text, n), n >= 1 && n <= c.longest) << n;
  }
  EXPECT_FALSE(containsNumberWithNDigits(nullptr, 5, 1));
  EXPECT_FALSE(containsNumberWithNDigits(String(), INT64_MIN));
}

TEST(Numbers, Neighbours) {
  const struct {
    const char* why;
    String text, number;
    bool contained;
  } cases[] = {
      {"all of it", u"12", u"12", true},
      {"between others", u"x 12 y", u"12", true},
      {"at the end", u"x12", u"12", true},
      {"a digit behind", u"123", u"12", false},
      {"a digit before", u"312", u"12", false},
      {"twice in a row", u"1212", u"12", false},
      {"a later one", u"1212 12", u"12", true},
      {"overlaps are not tried", u"1a1a1a", u"a1a", false},
      {"longer than the text", u"1", u"12", false},
      {"empty", u"12", u"", false},
      {"absent", u"12", String(), false},
      {"in nothing", String(), u"1", false},
      {"other digits are no neighbours",
       u"\x0661"
       u"12\x0661",
       u"12", true},
  };
  for (const auto& c : cases) EXPECT_EQ(containsNumber(c.text, c.number), c.contained) << c.why;
}

TEST(SubstringSearch, CaseAndPositions) {
  const struct {
    const char* why;
    String text, substring;
    int64_t anyCase, exactly;
  } cases[] = {
      {"case", u"ababAB", u"AB", 3, 1},
      {"at the very end", u"xab", u"ab", 1, 1},
      {"all of it", u"ab", u"ab", 1, 1},
      {"no overlaps", u"aaaaa", u"aa", 2, 2},
      {"by the upper table, not folded", u"straße STRASSE", u"ss", 1, 0},
      {"Greek", u"ΣΊΣΥΦΟΣ", u"σ", 3, 0},
      {"empty", u"ab", u"", 0, 0},
      {"absent", u"ab", String(), 0, 0},
      {"in nothing", String(), u"a", 0, 0},
      {"longer than the text", u"ab", u"abc", 0, 0},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(countSubstring(c.text, c.substring), c.anyCase) << c.why;
    EXPECT_EQ(countSubstring(c.text, c.substring, true), c.exactly) << c.why;
    EXPECT_EQ(containsSubstring(c.text, c.substring), c.anyCase > 0) << c.why;
    EXPECT_EQ(containsSubstring(c.text, c.substring, true), c.exactly > 0) << c.why;
    EXPECT_EQ(containsSubstrings(c.text, {u"zz", c.substring}), c.anyCase > 0) << c.why;
    EXPECT_EQ(containsSubstrings(c.text, {c.substring, u"zz"}, true), c.exactly > 0) << c.why;
  }
  EXPECT_FALSE(containsSubstrings(u"ab", {}));
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
  for (const String& none : {String(), String(u"")}) {
    EXPECT_TRUE(isStringEmpty(none) && !isStringNotEmpty(none));
    EXPECT_EQ(firstCharacter(none) + lastCharacter(none), 0);
  }
  EXPECT_TRUE(!isStringEmpty(u"ab") && isStringNotEmpty(u"ab"));
  EXPECT_EQ(firstCharacter(u"ab"), u'a');
  EXPECT_EQ(lastCharacter(u"ab"), u'b');
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
