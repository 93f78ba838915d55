#include <set>
#include <utility>

#include "tests/Testing.h"
#include "tests/text/encoding/EncodingCodes.h"
#include "velan/text/encoding/Decoding.h"
#include "velan/text/encoding/DecodingInternal.h"
#include "velan/text/encoding/EncodingTableInternal.h"
#include "velan/text/encoding/StringConversion.h"

namespace velan {
namespace {

// What the comparison with iconv and the way back of every code do not decide.
TEST(StringConversion, EncodesOrRefuses) {
  using namespace std::string_view_literals;
  // bytes: "-": refused
  const Cases<StringEncoding, std::u16string_view, std::string_view> cases = {
      {StringEncoding::UTF8, u"\u00E9\u20AC", "\xC3\xA9\xE2\x82\xAC"},
      {StringEncoding::UTF8, u"\xD800", "-"},
      {StringEncoding::ASCII, u"\u00E9", "-"},
      {StringEncoding::Latin1, u"\u00E9", "\xE9"},
      {StringEncoding::Latin1, u"\u20AC", "-"},
      {StringEncoding::UTF16BigEndian, u"\xD800z", "\xD8\0\0z"sv},
      {StringEncoding::UTF32, u"z", "\xFF\xFE\0\0z\0\0\0"sv},
      {StringEncoding::MacRoman, u"\u0416", "-"},
      {static_cast<StringEncoding>(0x88000100), u"\u00E9", "\xC3\xA9"},
      {StringEncoding::NonLossyASCII, u"\\a\u00E9\U0001F600", "\\\\a\\351\\ud83d\\ude00"},
      {stringEncoding(TextEncoding::ISO2022JP), u"a\u65E5", "a\x1B$BF|\x1B(B"},
      {stringEncoding(TextEncoding::JISX0208_83), u"\u65E5", "F|"},
      {stringEncoding(TextEncoding::JISX0208_83), u"a", "-"},
      {stringEncoding(TextEncoding::JISX0212_90), u"\u4E02", "0!"},
      {stringEncoding(TextEncoding::KSC5601_92_Johab), u"\uAC00", "\x88\x61"},
      {stringEncoding(TextEncoding::ShiftJISX0213), u"\u304B\u309A", "\x82\xF5"},
      {stringEncoding(TextEncoding::KOI8CS2), u"\u0159", "\xD2"},
      {stringEncoding(TextEncoding::MacThai), u"\u0E48", "\xE8"},
      {stringEncoding(TextEncoding::MacJapanese), u"a", "-"},
      {StringEncoding::Detect, u"a", "-"},
      {StringEncoding::Invalid, u"a", "-"},
  };
  for (const auto& [encoding, text, bytes] : cases) {
    const Data data = dataUsingEncoding(text, encoding);
    EXPECT_EQ(data ? data.view() : "-", bytes) << static_cast<uint32_t>(encoding);
    const String back = stringWithData(data, encoding);
    EXPECT_EQ(back.view(), data ? text : u"") << static_cast<uint32_t>(encoding);
  }
  EXPECT_TRUE(dataUsingEncoding(u"", StringEncoding::MacRoman)) << "empty is not absent";
}

// Bytes that some encoding reads otherwise than it would be natural, and what becomes of them.
TEST(StringConversion, DecodesOrRefuses) {
  using namespace std::string_view_literals;
  // text: absent: refused; replaced: with U+FFFD for what does not fit
  const Cases<const char*, StringEncoding, std::string_view, String, String, size_t, size_t> cases = {
      {"UTF-8 drops its mark", StringEncoding::UTF8, "\xEF\xBB\xBFz", u"z", u"z", 0, 0},
      {"but one", StringEncoding::UTF8, "\xEF\xBB\xBF\xEF\xBB\xBFz", u"\uFEFFz", u"\uFEFFz", 0, 0},
      {"UTF-8 with U+FFFD in it", StringEncoding::UTF8, "\xEF\xBF\xBD\xC3", {}, u"\uFFFD\uFFFD", 1, 0},
      {"a mark tells the order", StringEncoding::UTF16, "\xFF\xFEz\0"sv, u"z", u"z", 0, 0},
      {"no mark: big-endian", StringEncoding::UTF16, "\0z"sv, u"z", u"z", 0, 0},
      {"an explicit order keeps the mark", StringEncoding::UTF16LittleEndian, "\xFF\xFEz\0"sv, u"\uFEFFz", u"\uFEFFz",
       0, 0},
      {"a surrogate alone", StringEncoding::UTF16BigEndian, "\xD8\0\0z"sv, u"\xD800z", u"\uFFFDz", 1, 0},
      {"half a unit", StringEncoding::UTF16BigEndian, "\0zx"sv, {}, u"z\uFFFD", 1, 0},
      {"UTF-32 with a mark", StringEncoding::UTF32, "\xFF\xFE\0\0\0\xF6\1\0"sv, u"\U0001F600", u"\U0001F600", 0, 0},
      {"a surrogate in UTF-32", StringEncoding::UTF32BigEndian, "\0\0\xD8\0"sv, {}, u"\uFFFD", 1, 0},
      {"ASCII has 128 codes", StringEncoding::ASCII, "a\x80", {}, u"a\uFFFD", 1, 0},
      {"the Microsoft reading", StringEncoding::ShiftJIS, "\x81\x60\x5C", u"\uFF5E\\", u"\uFF5E\\", 0, 0},
      {"a lead byte before a blank", StringEncoding::ShiftJIS, "\x81 \xFD\x81", {}, u"\uFFFD \uFFFD\uFFFD", 2, 1},
      {"undefined bytes are controls", StringEncoding::WindowsLatin1, "\x81\x80", u"\u0081\u20AC", u"\u0081\u20AC", 0,
       0},
      {"unassigned", stringEncoding(TextEncoding::ISOLatinGreek), "\xAEz", {}, u"\uFFFDz", 0, 1},
      {"unassigned in an own page", StringEncoding::NeXTSTEP, "\xFEz\0"sv, {}, u"\uFFFDz\0"_s, 0, 1},
      {"a bad escape", StringEncoding::NonLossyASCII, "\\q\\1", {}, u"\uFFFDq\uFFFD", 2, 0},
      {"half a pair", stringEncoding(TextEncoding::JISX0208_83), "F|F", {}, u"\u65E5\uFFFD", 1, 0},
      {"a bad Johab code", stringEncoding(TextEncoding::KSC5601_92_Johab), "\x88\x61\xFF", {}, u"\uAC00\uFFFD", 1, 0},
      {"unknown", stringEncoding(TextEncoding::Big5E), "a", {}, {}, 0, 0},
      {"to be detected", StringEncoding::Detect, "a", {}, {}, 0, 0},
  };
  for (const auto& [why, encoding, view, text, replaced, malformed, unassigned] : cases) {
    const Data bytes = Data::withBytes(view);
    EXPECT_EQ(stringWithData(bytes, encoding), text) << why;
    const DecodedText lenient = decodedText(bytes, encoding, MalformedText::Replace);
    EXPECT_EQ(lenient.text, replaced) << why;
    EXPECT_EQ(lenient.malformed, malformed) << why;
    EXPECT_EQ(lenient.unassigned, unassigned) << why;
    const DecodedText strict = decodedText(bytes, encoding, MalformedText::Refuse);
    EXPECT_EQ(strict.text.isAbsent(), replaced.isAbsent() || malformed > 0) << why;
  }
  EXPECT_EQ(decodedText(Data::withBytes("\xC3\xA9\xFF\xEF\xBF\xBD"), StringEncoding::UTF8, MalformedText::Replace)
                .wellFormedNonASCII(),
            2u);
  EXPECT_TRUE(stringWithBytes(nullptr, 1, StringEncoding::UTF8).isAbsent());
  EXPECT_EQ(stringWithBytes(nullptr, 0, StringEncoding::MacRoman), u""_s);
  EXPECT_EQ(stringWithNullTerminatedCString("\x8E\0z", StringEncoding::MacRoman), u"\u00E9"_s);
  EXPECT_EQ(stringWithCString("\x8E\0z", 3, StringEncoding::MacRoman), u"\u00E9\0z"_s);
}

TEST(StringConversion, NumbersAreTwoSpaces) {
  std::set<StringEncoding> seen;
  for (const EncodingEntry& entry : encodingEntries()) {
    const StringEncoding number = stringEncoding(entry.encoding);
    EXPECT_EQ(textEncoding(number), entry.encoding) << entry.name;
    EXPECT_TRUE(seen.insert(number).second) << entry.name;
    EXPECT_FALSE(asksForDetection(number)) << entry.name;
  }
  EXPECT_EQ(stringEncoding(TextEncoding::DOSJapanese), StringEncoding::ShiftJIS);
  EXPECT_NE(stringEncoding(TextEncoding::ShiftJIS), StringEncoding::ShiftJIS);
  EXPECT_EQ(textEncoding(static_cast<StringEncoding>(16)), TextEncoding::Invalid);
}

TEST(StringConversion, FastestAndSmallest) {
  EXPECT_EQ(fastestEncoding(u"a"_s), StringEncoding::UTF16);
  EXPECT_EQ(smallestEncoding(u"a\x7F"_s), StringEncoding::ASCII);
  EXPECT_EQ(smallestEncoding(u"\u0080"_s), StringEncoding::UTF16);
}

TEST(StringConversion, EveryScalarValueGoesThroughEveryUnicodeForm) {
  std::u16string all;
  for (uint32_t c = 0; c < 0x110000; ++c) {
    if (c >= 0xD800 && c < 0xE000) continue;
    if (c >= 0x10000) all.push_back(static_cast<unichar>(0xD7C0 + (c >> 10)));
    all.push_back(static_cast<unichar>(c < 0x10000 ? c : 0xDC00 + (c & 0x3FF)));
  }
  using enum TextEncoding;
  for (const TextEncoding form : {UTF7, UTF8, UTF16, UTF16BigEndian, UTF16LittleEndian, UTF32, UTF32BigEndian,
                                  UTF32LittleEndian, SCSU, GB18030}) {
    const Data bytes = dataUsingEncoding(all, stringEncoding(form));
    EXPECT_TRUE(stringWithData(bytes, stringEncoding(form)).view() == all) << static_cast<uint32_t>(form);
  }
}

// Codes that only are read: ICU writes their characters as another code or not at all.
TEST(StringConversion, WhatIsReadIsWrittenSoThatItReadsTheSame) {
  const std::set<std::pair<TextEncoding, std::string>> exceptions = {
      {TextEncoding::EUCJP, "\x8E\xE0"},     {TextEncoding::EUCJP, "\x8E\xE1"}, {TextEncoding::EUCJP, "\x8E\xE2"},
      {TextEncoding::EUCJP, "\x8F\xA2\xC3"}, {TextEncoding::EUCTW, "\xA1\xB6"}, {TextEncoding::JISX0212_90, "\"7"},
      {TextEncoding::JISX0212_90, "\"q"},
  };
  size_t texts = 0;
  for (const EncodingEntry& entry : encodingEntries()) {
    const StringEncoding encoding = stringEncoding(entry.encoding);
    if (!decoderFor(entry.encoding)) continue;  // the C library may lack it
    for (const std::string& code : codesOf(entry.encoding)) {
      const String text = stringWithBytes(code.data(), code.size(), encoding);
      if (!text) continue;
      ++texts;
      const bool same = stringWithData(dataUsingEncoding(text.view(), encoding), encoding) == text;
      EXPECT_NE(same, exceptions.contains({entry.encoding, code})) << entry.name << ' ' << testing::PrintToString(code);
    }
  }
  EXPECT_GT(texts, 300000u);
}

}  // namespace
}  // namespace velan
