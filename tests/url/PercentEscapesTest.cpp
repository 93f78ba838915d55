#include "tests/Testing.h"
#include "velan/base/ASCII.h"
#include "velan/url/PercentEscapes.h"

namespace velan {
namespace {

using View = std::u16string_view;
using enum StringEncoding;

std::string shown(const String& string) { return string ? string.toUTF8() : "absent"; }

TEST(PercentEscapes, StandardAndASCIISets) {
  const Cases<String, String, String, String, String> cases = {
      {u"a?x=%3F", u"a?x=%3F", u"a?x=?", u"a%3fx%3d%253F", u"a%3fx%3d%253F"},
      {u"%41%e9", u"%41%e9", u"A%e9", u"%2541%25e9", u"%2541%25e9"},
      {u"%23%22%0a%7e", u"%23%22\n~", u"#\"\n~", u"%2523%2522%250a%257e", u"%2523%2522%250a%257e"},
      {u"a b/c?d#e", u"a b/c?d#e", u"a b/c?d#e", u"a%20b%2fc%3fd%23e", u"a%20b%2fc%3fd%23e"},
      {u"\u00e9-1", u"\u00e9-1", u"\u00e9-1", u"\u00e9-1", u"\u00e9%2d1"},
      {u"%2g%g2%%20", u"%2g%g2% ", u"%2g%g2% ", u"%252g%25g2%25%2520", u"%252g%25g2%25%2520"},
      {u"~'\t\x7f", u"~'\t\x7f", u"~'\t\x7f", u"~'\t\x7f", u"%7e%27%09%7f"},
      {String(), String(), String(), String(), String()},
  };
  for (const auto& [text, standardDecoded, asciiDecoded, standardEncoded, asciiEncoded] : cases) {
    EXPECT_EQ(stringByReplacingStandardPercentEscapesOfURL(text), standardDecoded) << shown(text);
    EXPECT_EQ(stringByReplacingASCIIPercentEscapesOfURL(text), asciiDecoded) << shown(text);
    EXPECT_EQ(stringByAddingPercentEscapesToURL(text, true), standardEncoded) << shown(text);
    EXPECT_EQ(stringByAddingPercentEscapesToURL(text, false), asciiEncoded) << shown(text);
  }
  const String plain = u"abc"_s;
  EXPECT_TRUE(stringByReplacingASCIIPercentEscapesOfURL(plain).isSameObject(plain));
  EXPECT_FALSE(stringByAddingASCIIPercentEscapesToURL(plain).isSameObject(plain));
  const String nul = stringByReplacingASCIIPercentEscapesOfURL(u"%00"_s);
  EXPECT_EQ(nul.length(), 1);
  EXPECT_EQ(nul[0], 0);
  EXPECT_EQ(convertPercentEscapesOfURL(nullptr, 3, true), 0u);
}

// By the definition, byte for byte; in buffers of exactly the length.
TEST(PercentEscapes, EveryEscapeInPlace) {
  constexpr std::string_view standard = "\t\n\r $%&'+/:;=@~";
  for (unsigned byte = 0; byte < 256; ++byte) {
    for (const bool upper : {false, true}) {
      const auto digit = upper ? upperHexadecimalDigit : lowerHexadecimalDigit;
      for (const View around : {View(u""), View(u"?")}) {
        for (const bool isStandard : {false, true}) {
          const size_t length = 3 + around.size();
          const auto units = std::make_unique<unichar[]>(length);
          units[0] = u'%';
          units[1] = static_cast<unichar>(digit(byte >> 4));
          units[2] = static_cast<unichar>(digit(byte));
          std::copy(around.begin(), around.end(), &units[3]);
          const bool decodes = isStandard ? byte < 128 && (standard.find(static_cast<char>(byte)) != standard.npos ||
                                                           (byte == '?' && around.empty()))
                                          : byte < 128;
          ASSERT_EQ(convertPercentEscapesOfURL(units.get(), length, isStandard), length - (decodes ? 2 : 0)) << byte;
          ASSERT_EQ(units[0], decodes ? byte : u'%') << byte;
        }
      }
    }
  }
}

TEST(PercentEscapes, DecodingEverything) {
  const Cases<String, StringEncoding, String> cases = {
      {u"a%20b", UTF8, u"a b"},
      {u"%c3%a9%C3%89", UTF8, u"\u00e9\u00c9"},
      {u"\u00e9%20\u00e9", UTF8, u"\u00e9 \u00e9"},
      {u"%E9", UTF8, String()},
      {u"%C3a%A9", UTF8, String()},
      {u"%C0%80", UTF8, String()},
      {u"%ED%A0%80", UTF8, String()},
      {u"%F0%9F%98%80", UTF8, u"\U0001F600"},
      {u"%E2%82%AC%", UTF8, String()},
      {u"%4", UTF8, String()},
      {u"%4g%41", UTF8, String()},
      {u"%-1", UTF8, String()},
      {u"%2541", UTF8, u"%41"},
      {u"a+b", UTF8, u"a+b"},
      {u"\xd800%20", UTF8, u"\xd800 "},
      {u"", UTF8, u""},
      {String(), UTF8, String()},
      {u"%E9%20x%FF", Latin1, u"\u00e9 x\u00ff"},
      {u"%80", WindowsLatin1, u"\u20ac"},
      {u"%41%E9", ASCII, String()},
      {u"%93%FA%96%7B", ShiftJIS, u"\u65e5\u672c"},
      {u"%93a%FA", ShiftJIS, String()},
      {u"%00%E9", UTF16BigEndian, u"\u00e9"},
      {u"%E9", UTF16LittleEndian, String()},
      {u"%41", Invalid, String()},
      {u"%41", Detect, String()},
  };
  for (const auto& [text, encoding, expected] : cases) {
    const String decoded = stringByReplacingPercentEscapesOfURL(text, encoding);
    EXPECT_EQ(decoded, expected) << shown(text) << ": " << shown(decoded);
    if (encoding == UTF8) {
      EXPECT_EQ(stringByReplacingPercentEscapesOfURL(text), expected);
    }
  }
  const String nul = stringByReplacingPercentEscapesOfURL(u"%00"_s);
  EXPECT_EQ(nul.length(), 1);
}

TEST(PercentEscapes, EncodingEverything) {
  const String no;
  const Cases<String, StringEncoding, String, String, String> cases = {
      {u"azAZ09!$&'()*+,-./:;=?@_~", UTF8, no, no, u"azAZ09!$&'()*+,-./:;=?@_~"},
      {u"\"#%<>[\\]^`{|}", UTF8, no, no, u"%22%23%25%3C%3E%5B%5C%5D%5E%60%7B%7C%7D"},
      {u"\u00e9\u20ac", UTF8, no, no, u"%C3%A9%E2%82%AC"},
      {u"x\U0001F600y", UTF8, no, no, u"x%F0%9F%98%80y"},
      {u"\xd83dx", UTF8, no, no, no},
      {u"x\xde00", UTF8, no, no, no},
      {u"\xd83dx", UTF8, u"\xd83d", no, u"\xd83dx"},
      {u"%20 ", UTF8, u"%", no, u"%20%20"},
      {u"a b#c", UTF8, u"# ", no, u"a b#c"},
      {u"a/b?c", UTF8, no, u"/?", u"a%2Fb%3Fc"},
      {u"a/b#c", UTF8, u"#/", u"/#", u"a%2Fb#c"},
      {u"\u00e9\u00e8", UTF8, u"\u00e9", no, u"\u00e9%C3%A8"},
      {u"", UTF8, no, u"a", u""},
      {no, UTF8, no, no, no},
      {u"\u20ac", Latin1, no, no, no},
      {u"\u20ac", WindowsLatin1, no, no, u"%80"},
      {u"\u00e9", ASCII, no, no, no},
      {u"\u65e5", ShiftJIS, no, no, u"%93%FA"},
      {u"\u00e9 ", UTF16, no, no, u"%E9%00%20%00"},
      {u" ", UTF32, no, no, u"%20%00%00%00"},
      {u" ", Invalid, no, no, no},
      {u"a", Invalid, no, no, u"a"},
  };
  for (const auto& [text, encoding, leave, force, expected] : cases) {
    const String encoded = stringByAddingPercentEscapesToURL(text, encoding, leave, force);
    EXPECT_EQ(encoded, expected) << shown(text) << ": " << shown(encoded);
    if (!force) {
      EXPECT_EQ(stringByAddingPercentEscapesToURL(text, encoding, leave), expected);
    }
    if (!force && !leave) {
      EXPECT_EQ(stringByAddingPercentEscapesToURL(text, encoding), expected);
      if (encoding == UTF8) {
        EXPECT_EQ(stringByAddingPercentEscapesToURL(text), expected);
      }
    }
  }
}

// Runs of escapes are decoded in pieces, whose ends cut characters.
TEST(PercentEscapes, LongRunsComeBack) {
  for (size_t before = 0; before < 4; ++before) {
    std::u16string text(before, u'\u00e9');
    for (int i = 0; i < 200; ++i) text += i % 2 ? u"\u20ac" : u"\U0001F600";
    const String encoded = stringByAddingPercentEscapesToURL(String(text));
    EXPECT_EQ(stringByReplacingPercentEscapesOfURL(encoded), String(text)) << before;
    for (const char16_t* bad : {u"%E2%82", u"%FF", u"%80%41"}) {
      EXPECT_TRUE(stringByReplacingPercentEscapesOfURL(String(std::u16string(encoded.view()) + bad)).isAbsent());
    }
  }
}

}  // namespace
}  // namespace velan
