#include <functional>

#include "tests/Testing.h"
#include "velan/text/editing/Appending.h"
#include "velan/text/editing/CaseChange.h"
#include "velan/text/editing/Ligatures.h"
#include "velan/text/editing/Normalization.h"
#include "velan/text/editing/Removal.h"
#include "velan/text/editing/Replacement.h"
#include "velan/text/editing/Tabs.h"

namespace velan {
namespace {

using Edit = std::function<void(MutableString&)>;
String edited(const String& text, const Edit& edit) {
  MutableString copy(text);
  edit(copy);
  return copy;
}

TEST(Tabs, ImpossibleWidths) {
  const CapturedLog log;
  for (const int64_t width : {int64_t{0}, INT64_MIN}) {
    EXPECT_EQ(edited(u"a\t ", [width](MutableString& text) { decodeTabs(text, width); }), u"a\t "_s);
    EXPECT_EQ(edited(u"a\t ", [width](MutableString& text) { encodeTabs(text, width); }), u"a\t "_s);
  }
  EXPECT_EQ(log.messages.size(), 4u);
  MutableString text(u"a\tb\t\t");
  EXPECT_FALSE(decodeTabs(text, INT64_MAX));  // more than any memory has room for
  EXPECT_EQ(text.string(), u"a\tb\t\t"_s);
  encodeTabs(text, INT64_MAX);
  EXPECT_EQ(text.string(), u"a\tb\t\t"_s);
}

// Tabs, and texts that are replaced or removed, are held against slow versions.
TEST(Editing, FormsCaseLigaturesAndUnits) {
  const auto form = [](int number) -> Edit {
    return [=](MutableString& text) { normalizeString(text, static_cast<NormalizationForm>(number)); };
  };
  const Edit convert = [](MutableString& text) { EXPECT_TRUE(convertLigaturesToCharacters(text)); };
  const Cases<const char*, Edit, String, String> cases = {
      {"D", form(0), u"\x00E9\xFB01", u"e\x0301\xFB01"},
      {"KD", form(1), u"\x00E9\xFB01", u"e\x0301\x0066i"},
      {"C", form(2), u"e\x0301\xFB01", u"\x00E9\xFB01"},
      {"KC", form(3), u"e\x0301\xFB01", u"\x00E9\x0066i"},
      {"C without a form", [](auto& t) { normalizeString(t); }, u"xe\x0301\xD801", u"x\x00E9\xD801"},
      {"fixed", fixAndNormalizeString, u"e\x0301\0\xD83D\xDE00\xDC00\xF400\xF8FF"_s, u"\x00E9      "},
      {"not fixed", fixAndNormalizeString, u"\x0001\xD7FF\xE000\xF3FF\xF8D0\xF900", u"\x0001\xD7FF\xE000\xF3FF \x8C48"},
      {"lower case", normalizeLowercaseString, u"E\x0301\x03A3\x03A3", u"\x00E9\x03C3\x03C2"},
      {"upper case is lower case", [](auto& t) { normalizeUppercaseString(t); }, u"ABC", u"abc"},
      {"to lower case", lowercase, u"STRASSE \x0130", u"strasse i\x0307"},
      {"to upper case", uppercase, u"stra\x00DF\x0065", u"STRASSE"},
      {"capitals", capitalize, u"o'NEIL e-mail \x01C6", u"O'neil E-Mail \x01C5"},
      {"nothing", capitalize, u"", u""},
      {"ligatures", convert, u"\xFB00 \xFB01 \xFB02 \xFB03 \xFB04 \xFB05 \xFB06", u"ff fi fl ffi ffl st st"},
      {"ligatures of letters", convert, u"œuvre ŒUVRE ÆON æon ĲS ĳs", u"oeuvre OEUVRE AEON aeon IJS ijs"},
      {"no ligatures", convert, u"ß\xFB07", u"ß\xFB07"},
      {"a unit", [](auto& t) { replaceCharacter(t, u'a', u'x'); }, u"aAb", u"xAb"},
      {"in any case", [](auto& t) { replaceCharacter(t, u'A', u'x', false); }, u"aAb\x00DF", u"xxb\x00DF"},
      {"by absence", [](auto& t) { replaceString(t, u"ab", String()); }, u"abAB", u"AB"},
      {"absence", [](auto& t) { replaceString(t, String(), u"x"); }, u"abAB", u"abAB"},
      {"no attachments", removeAttachments, u"a\xFFFC", u"a\xFFFC"},
      {"no links", removeLinks, u"http://b.c", u"http://b.c"},
      {"no attributes", [](auto& t) { removeAttribute(t, u"NSLink"); }, u"a\xFFFC", u"a\xFFFC"},
  };
  for (const auto& [why, edit, text, result] : cases) EXPECT_EQ(edited(text, edit), result) << why;
  EXPECT_EQ(edited(String(std::u16string(200, 0xFDFA)), form(1)).length(), 18 * 200);  // the longest of all
  EXPECT_EQ(normalizedLowercaseString(u"E\x0301"), u"\x00E9"_s);
  EXPECT_EQ(normalizedUppercaseString(u"AB"), u"ab"_s);
  const String same = u"stra\x00DF\x0065";
  EXPECT_TRUE(normalizedLowercaseString(same).isSameObject(same));
}

TEST(Replacement, Formats) {
  const Cases<const char*, String, ValueArray, String> cases = {
      {"texts and numbers", u"%@=%@;", {u"a", 5}, u"a=5;"},
      {"a percent sign", u"100%%", {u"a"}, u"100%"},
      {"percent signs of arguments", u"%@%@", {u"%@", u"%n"}, u"%@%n"},
      {"no directives", u"%d%s%n%", {u"a"}, u"%d%s%n%"},
      {"missing", u"[%@%@]", {u"a"}, u"[a]"},
      {"absent", u"[%@%@]", {Value(), 1.5}, u"[1.5]"},
      {"a long text", u"%@", {String(std::u16string(1000, u'x'))}, String(std::u16string(1000, u'x'))},
  };
  for (const auto& [why, format, arguments, result] : cases) {
    MutableString text(u"$$");
    EXPECT_TRUE(replaceStringWithFormat(text, u"$$", format, arguments)) << why;
    EXPECT_EQ(text.string(), result) << why;
  }
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
