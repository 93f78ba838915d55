#include <gtest/gtest.h>

#include <functional>

#include "velan/base/Log.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/editing/Appending.h"
#include "velan/text/editing/CaseChange.h"
#include "velan/text/editing/Collapsing.h"
#include "velan/text/editing/Ligatures.h"
#include "velan/text/editing/Normalization.h"
#include "velan/text/editing/Removal.h"
#include "velan/text/editing/Replacement.h"
#include "velan/text/editing/Tabs.h"
#include "velan/text/editing/Trimming.h"

namespace velan {
namespace {

using Edit = std::function<void(MutableString&)>;
using Twin = std::function<String(const String&)>;

String edited(const String& text, const Edit& edit) {
  MutableString copy(text);
  edit(copy);
  return copy;
}

// A call with an argument, in place and as a new string.
template <typename Argument>
Edit with(void (*edit)(MutableString&, Argument), Argument argument) {
  return [=](MutableString& text) { edit(text, argument); };
}
template <typename Argument>
Twin twinWith(String (*twin)(const String&, Argument), Argument argument) {
  return [=](const String& text) { return twin(text, argument); };
}

const Edit collapseSpaces = [](MutableString& text) { removeMultipleSpaces(text); };
const Edit collapseWhite = [](MutableString& text) { removeMultipleWhiteSpaces(text); };
const Edit collapseFeeds = [](MutableString& text) { removeMultipleFeeds(text); };
const Twin collapsedWhite = [](const String& text) { return stringByRemovingMultipleWhiteSpaces(text); };

TEST(RemovingAndTrimming, InPlaceAndAsNewStrings) {
  const struct {
    const char* why;
    Edit edit;
    Twin twin;
    String text, result;
  } cases[] = {
      {"set", [](auto& t) { removeCharacters(t, digitCharacterSetRep()); },
       [](auto& s) { return stringByRemovingCharacters(s, digitCharacterSetRep()); }, u"1a2b\x0663", u"ab"},
      {"null set", [](auto& t) { removeCharacters(t, nullptr); },
       [](auto& s) { return stringByRemovingCharacters(s, nullptr); }, u"1a", u"1a"},
      {"units", [](auto& t) { removeCharactersOfString(t, u"xa\xFFFF"); },
       [](auto& s) { return stringByRemovingCharactersOfString(s, u"xa\xFFFF"); }, u"abAx\xFFFF", u"bA"},
      {"line ends", removeFeeds, stringByRemovingFeeds, u"\r\na\x0003\f\x2028\x2029\xFFFC\xFEFF\x0085\v\n",
       u"a\x0085\v"},
      {"tabs", removeTabs, stringByRemovingTabs, u"\ta\t \v", u"a \v"},
      {"spaces", removeSpaces, stringByRemovingSpaces, u"\t a\x00A0\x3000\n"_s, u"a\n"},
      {"NUL is a space", removeSpaces, stringByRemovingSpaces, u"a\0b"_s, u"ab"},
      {"white space", removeWhiteSpaces, stringByRemovingWhiteSpaces, u" a\r\n\x2028\xFEFF b\x200B", u"ab\x200B"},
      {"digits of all scripts", removeDigits, stringByRemovingDigits, u"a1\x0662\x00B2", u"a\x00B2"},
      {"everything", removeDigits, stringByRemovingDigits, u"12345", u""},

      {"white space at both ends", trimWhiteSpaces, stringByTrimmingWhiteSpaces, u"\t a b\x2029\n", u"a b"},
      {"nothing but white space", trimWhiteSpaces, stringByTrimmingWhiteSpaces, u" \n ", u""},
      {"line ends at both ends", trimFeeds, stringByTrimmingFeeds, u"\r\n a\nb \xFEFF", u" a\nb "},
      {"a unit at both ends", with(trimCharacter, u'-'), twinWith(stringByTrimmingCharacter, u'-'), u"--a-b-", u"a-b"},
      {"a text of that unit", with(trimCharacter, u'-'), twinWith(stringByTrimmingCharacter, u'-'), u"---", u""},
      {"at the beginning", with(trimPrefixCharacter, u'-'), twinWith(stringByTrimmingPrefixCharacter, u'-'), u"--a-",
       u"a-"},
      {"at the end", with(trimSuffixCharacter, u'-'), twinWith(stringByTrimmingSuffixCharacter, u'-'), u"-a--", u"-a"},

      {"runs of white space", collapseWhite, collapsedWhite, u" a\t\tb ", u" a b "},
      {"a lone TAB", collapseWhite, collapsedWhite, u"a\tb", u"a b"},
      {"the last unit replaced", collapseWhite, collapsedWhite, u"a\n", u"a "},
      {"the run goes on to the end", collapseWhite, collapsedWhite, u"a  ", u"a "},
      {"runs of spaces", collapseSpaces, stringByRemovingMultipleSpaces,
       u"\t\x00A0"
       u"a\n\n \tb",
       u" a\n\n b"},
      {"runs of line ends", collapseFeeds, stringByRemovingMultipleFeeds, u"a\r\n\r\nb  \xFEFF", u"a\nb  \n"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(edited(c.text, c.edit), c.result) << c.why;
    const String once = c.twin(c.text);
    EXPECT_EQ(once, c.result) << c.why;
    EXPECT_EQ(once.isSameObject(c.text), c.text == c.result) << c.why;
    EXPECT_TRUE(c.twin(once).isSameObject(once)) << c.why;
    EXPECT_TRUE(c.twin(String()).isAbsent()) << c.why;
    EXPECT_EQ(edited(u"", c.edit), u""_s) << c.why;
  }
}

TEST(RemovingAndTrimming, PlainTextsHaveNoAttributes) {
  const Edit edit = [](MutableString& text) {
    removeAttachments(text);
    removeLinks(text);
    removeAttribute(text, u"NSLink");
  };
  EXPECT_EQ(edited(u"a\xFFFC http://b.c", edit), u"a\xFFFC http://b.c"_s);
}

TEST(Tabs, Columns) {
  const struct {
    const char* why;
    String tabs;
    int64_t width;
    String spaces, encoded;  // what becomes of `spaces` again
  } cases[] = {
      {"up to the next stop", u"ab\tc", 4, u"ab  c", u"ab\tc"},
      {"a line end resets", u"a\n\tb", 4, u"a\n    b", u"a\n\tb"},
      {"so does a byte-order mark", u"ab\xFEFF\tc", 4, u"ab\xFEFF    c", u"ab\xFEFF\tc"},
      {"on a stop", u"abcd\te", 4, u"abcd    e", u"abcd\te"},
      {"in a row", u"\t\ta", 3, u"      a", u"\t\ta"},
      {"width 1", u"\ta b", 1, u" a b", u"\ta\tb"},
      {"a run that reaches no stop", u"a  b", 4, u"a  b", u"a  b"},
      {"a run that crosses one", u"a\t b", 2, u"a  b", u"a\t b"},
      {"a single space on a stop", u"abc d", 4, u"abc d", u"abc\td"},
      {"a TAB ends a run", u"a \tb", 4, u"a   b", u"a\tb"},
      {"no tabs", u"", 4, u"", u""},
  };
  for (const auto& c : cases) {
    const String spaces = edited(c.tabs, [&](MutableString& text) { EXPECT_TRUE(decodeTabs(text, c.width)); });
    EXPECT_EQ(spaces, c.spaces) << c.why;
    EXPECT_EQ(edited(spaces, [&](MutableString& text) { encodeTabs(text, c.width); }), c.encoded) << c.why;
  }
  EXPECT_EQ(edited(u"a \x00A0\0\tb"_s, [](MutableString& text) { encodeTabs(text, 8); }), u"a\tb"_s);
}

TEST(Tabs, ImpossibleWidths) {
  int failures = 0;
  setLogSink([](std::string_view, void* count) { ++*static_cast<int*>(count); }, &failures);
  for (const int64_t width : {int64_t{0}, INT64_MIN}) {
    EXPECT_EQ(edited(u"a\t ", [width](MutableString& text) { decodeTabs(text, width); }), u"a\t "_s);
    EXPECT_EQ(edited(u"a\t ", [width](MutableString& text) { encodeTabs(text, width); }), u"a\t "_s);
  }
  EXPECT_EQ(failures, 4);
  setLogSink(nullptr, nullptr);
  MutableString text(u"a\tb\t\t");
  EXPECT_FALSE(decodeTabs(text, INT64_MAX));  // more than any memory has room for
  EXPECT_EQ(text.string(), u"a\tb\t\t"_s);
  encodeTabs(text, INT64_MAX);
  EXPECT_EQ(text.string(), u"a\tb\t\t"_s);
}

TEST(Normalization, FormsAndCase) {
  const Edit form[] = {[](MutableString& text) { normalizeString(text, NormalizationForm{0}); },
                       [](MutableString& text) { normalizeString(text, NormalizationForm{1}); },
                       [](MutableString& text) { normalizeString(text, NormalizationForm{2}); },
                       [](MutableString& text) { normalizeString(text, NormalizationForm{3}); }};
  const Edit composed = [](MutableString& text) { normalizeString(text); };
  const Edit upper = [](MutableString& text) { normalizeUppercaseString(text); };
  const struct {
    const char* why;
    Edit edit;
    String text, result;
  } cases[] = {
      {"D", form[0], u"\x00E9\xFB01", u"e\x0301\xFB01"},
      {"KD", form[1], u"\x00E9\xFB01",
       u"e\x0301"
       u"fi"},
      {"C", form[2], u"e\x0301\xFB01", u"\x00E9\xFB01"},
      {"KC", form[3], u"e\x0301\xFB01",
       u"\x00E9"
       u"fi"},
      {"KD of a long one", form[1], String(std::u16string(200, 0xFDFA)), String()},
      {"composed", composed, u"xe\x0301\xD801", u"x\x00E9\xD801"},
      {"fixed", fixAndNormalizeString, u"e\x0301\0😀\xDC00\xF400\xF8FF"_s, u"\x00E9      "},
      {"not fixed", fixAndNormalizeString, u"\x0001\xD7FF\xE000\xF3FF\xF900", u"\x0001\xD7FF\xE000\xF3FF\x8C48"},
      {"lower case", normalizeLowercaseString, u"E\x0301\x03A3\x03A3", u"\x00E9\x03C3\x03C2"},
      {"upper case is lower case", upper, u"ABC", u"abc"},
      {"to lower case", lowercase, u"STRASSE \x0130", u"strasse i\x0307"},
      {"to upper case", uppercase, u"straße ŉ", u"STRASSE ʼN"},
      {"capitals", capitalize, u"o'NEIL e-mail ǆ", u"O'neil E-Mail ǅ"},
      {"decomposed capitals stay so", capitalize, u"e\x0301", u"E\x0301"},
      {"nothing", capitalize, u"", u""},
  };
  for (const auto& c : cases) {
    const String result = edited(c.text, c.edit);
    if (c.result) {
      EXPECT_EQ(result, c.result) << c.why;
    } else {
      EXPECT_EQ(result.length(), 18 * c.text.length()) << c.why;
    }
  }
  EXPECT_EQ(normalizedLowercaseString(u"E\x0301"), u"\x00E9"_s);
  EXPECT_EQ(normalizedUppercaseString(u"AB"), u"ab"_s);
  const String same = u"straße";
  EXPECT_TRUE(normalizedLowercaseString(same).isSameObject(same));
}

TEST(Replacement, CaseAndLength) {
  const struct {
    const char* why;
    String text, substring, replacement, exactly, anyCase;
  } cases[] = {
      {"shorter", u"abAB", u"ab", u"x", u"xAB", u"xx"},
      {"as long", u"abAB", u"ab", u"xy", u"xyAB", u"xyxy"},
      {"longer", u"abAB", u"ab", u"abab", u"ababAB", u"abababab"},
      {"deleted", u"aabb", u"ab", String(), u"ab", u"ab"},
      {"at the ends", u"-a-", u"-", u"", u"a", u"a"},
      {"no overlaps", u"aaaaa", u"aa", u"b", u"bba", u"bba"},
      {"what was put in is not searched", u"aa", u"a", u"aa", u"aaaa", u"aaaa"},
      {"no occurrence", u"abc", u"x", u"longer", u"abc", u"abc"},
      {"nothing to find", u"abc", u"", u"x", u"abc", u"abc"},
      {"absent", u"abc", String(), u"x", u"abc", u"abc"},
      {"in nothing", u"", u"a", u"bb", u"", u""},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(edited(c.text, [&](auto& t) { EXPECT_TRUE(replaceString(t, c.substring, c.replacement)); }), c.exactly)
        << c.why;
    EXPECT_EQ(edited(c.text, [&](auto& t) { replaceString(t, c.substring, c.replacement, false); }), c.anyCase)
        << c.why;
  }
  EXPECT_EQ(edited(u"aAbß", [](auto& t) { replaceCharacter(t, u'a', u'x'); }), u"xAbß"_s);
  EXPECT_EQ(edited(u"aAbß", [](auto& t) { replaceCharacter(t, u'A', u'x', false); }), u"xxbß"_s);
}

TEST(Replacement, Deleting) {
  EXPECT_EQ(edited(u"aabbAB", [](auto& t) { deleteString(t, u"ab"); }), u"abAB"_s);
  EXPECT_EQ(edited(u"aabbAB", [](auto& t) { deleteString(t, u"ab", false); }), u"ab"_s);
  EXPECT_EQ(stringByRemovingString(u"aabbAB", u"ab"), u"abAB"_s);
  EXPECT_EQ(stringByRemovingString(u"aabbAB", u"ab", false), u"ab"_s);
  const String same = u"xAB";
  EXPECT_TRUE(stringByRemovingString(same, u"ab").isSameObject(same));
  EXPECT_TRUE(stringByRemovingString(same, u"").isSameObject(same));
}

TEST(Replacement, Formats) {
  const struct {
    const char* why;
    String format;
    ValueArray arguments;
    String result;
  } cases[] = {
      {"texts and numbers", u"%@=%@;", {u"a", 5}, u"a=5;"},
      {"a percent sign", u"100%%", {u"a"}, u"100%"},
      {"percent signs of arguments", u"%@%@", {u"%@", u"%n"}, u"%@%n"},
      {"no directives", u"%d%s%n%", {u"a"}, u"%d%s%n%"},
      {"missing", u"[%@%@]", {u"a"}, u"[a]"},
      {"absent", u"[%@%@]", {Value(), 1.5}, u"[1.5]"},
      {"a percent sign before an argument", u"%%%@%%@", {u"a"}, u"%a%@"},
      {"a long text", u"%@", {String(std::u16string(1000, u'x'))}, String(std::u16string(1000, u'x'))},
      {"no format", String(), {u"a"}, u""},
  };
  for (const auto& c : cases) {
    const String result =
        edited(u"$$", [&](auto& t) { EXPECT_TRUE(replaceStringWithFormat(t, u"$$", c.format, c.arguments)); });
    EXPECT_EQ(result, c.result) << c.why;
  }
}

TEST(Ligatures, Letters) {
  const Edit convert = [](MutableString& text) { EXPECT_TRUE(convertLigaturesToCharacters(text)); };
  EXPECT_EQ(edited(u"\xFB00 \xFB01 \xFB02 \xFB03 \xFB04 \xFB05 \xFB06 \xFB07", convert),
            u"ff fi fl ffi ffl st st \xFB07"_s);
  EXPECT_EQ(edited(u"œuvre ŒUVRE ÆON æon ĲS ĳs", convert), u"oeuvre OEUVRE AEON aeon IJS ijs"_s);
  EXPECT_EQ(edited(u"ß", convert), u"ß"_s);
}

TEST(Appending, PartsAndUnits) {
  MutableString text;
  appendSubstring(text, u"abcdef", {1, 2});
  appendSubstring(text, u"xyz", {2, INT64_MAX});
  appendSubstring(text, u"xyz", {3, 1});
  appendSubstring(text, String(), {0, 1});
  appendTrimmedString(text, u" \n1 2\t");
  appendTrimmedString(text, String());
  EXPECT_EQ(text.string(), u"bcz1 2"_s);
  text = MutableString(u"bc");
  text.appendUnichar(u'd');
  text.appendUnichars(u"efg", 2);
  text.insertCharacter(u'a', 0);
  text.insertCharacter(u'g', 6 - 1);
  for (const int64_t outside : {int64_t{-1}, int64_t{99}, NSNotFound, INT64_MIN}) {
    text.insertCharacter(u'x', outside);
    text.removeCharacterAtIndex(outside);
  }
  EXPECT_EQ(text.string(), u"abcdegf"_s);
  text.removeCharacterAtIndex(text.length());
  text.removeCharacterAtIndex(6);
  text.removeCharacterAtIndex(0);
  text.insertCharacter(u'!', text.length());
  EXPECT_EQ(text.string(), u"bcdeg!"_s);
}

}  // namespace
}  // namespace velan
