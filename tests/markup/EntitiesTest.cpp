#include "tests/Testing.h"
#include "velan/markup/Entities.h"

namespace velan {
namespace {

enum Mode { All, Protected, NumericOnly, Plain };

String decodedIn(Mode mode, const String& text) {
  return stringByConvertingEntitiesToCharacters(text, mode != Protected, mode == NumericOnly, mode == Plain);
}

TEST(Entities, Decoding) {
  const Cases<Mode, String, String> cases = {
      {All, u"&amp;lt; &lt;b&gt; &quot;&apos;&nbsp;"_s, u"&lt; <b> \"'\u00A0"_s},
      {All, u"&eacute &Eacute;&EACUTE;&eacutex; &frac12;"_s, u"é É&EACUTE;&eacutex; ½"_s},
      {All, u"&cedil;&fnof;&nosuch;&a;&"_s, u"&cedil;&fnof;&nosuch;&a;&"_s},
      {All, u"&nbspx&quotx&aposx&ltx&gtx&ampx"_s, u"\u00A0x\"x'x<x>x&x"_s},
      {All, u"x&quot"_s, u"x\""_s},
      {All, u"x&thetasym;&piv"_s, u"x\u03D1\u03D6"_s},
      {All, u"&#233 &#xE9;&#XE9;&#x1F600;&#128512;"_s, u"é éé\U0001F600\U0001F600"_s},
      {All, u"&#;&#x;&#xg;&# 5;&#-5;"_s, u"&#;&#x;&#xg;&# 5;&#-5;"_s},
      {All, u"&#0;&#55357;&#xDE00"_s, String(u"\0\xD83D\xDE00"_s)},
      {All, u"&#x10FFFF;&#x110000;&#4294967329;&#18446744073709551649;"_s,
       u"\U0010FFFF&#x110000;&#4294967329;&#18446744073709551649;"_s},
      {All, u"&#000000000000000000000000000065;"_s, u"A"_s},
      {All, u"&#0000000000000000000000000000065;"_s, u"&#0000000000000000000000000000065;"_s},
      {All, u"&\u0100uml;&e\u0100;"_s, u"&\u0100uml;&e\u0100;"_s},
      {Protected, u"&lt;b&gt; &#60;&#x3E;&#34;&#38;&amp;&quot;"_s, u"&lt;b&gt; &#60;&#x3E;&#34;&#38;&amp;&quot;"_s},
      {Protected, u"&eacute;&#233;&apos;&nbsp;&amp;eacute;"_s, u"éé'\u00A0&amp;eacute;"_s},
      {NumericOnly, u"&eacute;&#233;&amp;&quot;&lt;&nbsp;"_s, u"&eacute;é&\"<\u00A0"_s},
      {Plain, u"é&eacute;&#xE9;&#x1E69;&szlig;&U+00C9"_s, u"eeesß&U+00C9"_s},
      {Plain, u"ÄÖÜß"_s, u"AOUß"_s},
  };
  for (const auto& [mode, text, decoded] : cases) EXPECT_EQ(decodedIn(mode, text), decoded) << text.toUTF8();
}

TEST(Entities, StandardEscapesOnly) {
  const Cases<String, String> cases = {
      {u"&quot;&amp;&lt;&gt;&#34;&#38;&#60;&#62;"_s, u"\"&<>\"&<>"_s},
      {u"&amp;lt;&lt;b"_s, u"&lt;<b"_s},
      {u"&amp;;&lt;;&gt;;;"_s, u"&amp;;&lt;;&gt;;;"_s},
      {u"&AMP;&amp &eacute;&#39;&#xx;&at;"_s, u"&AMP;&amp &eacute;&#39;&#xx;&at;"_s},
      {u"a&lt"_s, u"a&lt"_s},
  };
  for (const auto& [text, decoded] : cases) {
    EXPECT_EQ(stringByConvertingStandardEntitiesToCharacters(text), decoded) << text.toUTF8();
  }
}

TEST(Entities, EncodingAndBackForEveryUnit) {
  for (uint32_t c = 0; c <= 0xFFFF; ++c) {
    const String unit(std::u16string(1, static_cast<unichar>(c)));
    for (const String& encoded :
         {stringByConvertingCharactersToEntities(unit), stringByConvertingCharactersToEntities(unit, true),
          stringByConvertingCharactersToEntities(unit, false)}) {
      ASSERT_EQ(stringByConvertingEntitiesToCharacters(encoded), unit) << c;
      ASSERT_TRUE(encoded.length() > 1 || encoded.isSameObject(unit)) << c;
    }
  }
}

TEST(Entities, Encoding) {
  const String text(u"é<\u00B8\u2666\U0001F600&\"'>a"_s);
  EXPECT_EQ(stringByConvertingCharactersToEntities(text), u"&eacute;<&#184;&diams;&#55357;&#56832;&\"'>a"_s);
  EXPECT_EQ(stringByConvertingCharactersToEntities(text, true), u"&#233;<&#184;&#9830;&#55357;&#56832;&\"'>a"_s);
  EXPECT_EQ(stringByConvertingCharactersToEntities(text, false), u"é&lt;\u00B8\u2666\U0001F600&amp;&quot;'&gt;a"_s);
}

TEST(Entities, WhatDoesNotChangeIsTheReceiver) {
  const String plain = u"plain text; nothing & else"_s;
  EXPECT_TRUE(stringByConvertingEntitiesToCharacters(plain).isSameObject(plain));
  EXPECT_TRUE(stringByConvertingEntitiesToCharactersNonUmlauted(plain, true).isSameObject(plain));
  EXPECT_TRUE(stringByConvertingStandardEntitiesToCharacters(plain).isSameObject(plain));
  EXPECT_TRUE(stringByConvertingHighCharactersToEntities(plain).isSameObject(plain));
  EXPECT_EQ(stringByConvertingEntitiesToCharacters(u"&mu"_s), u"&mu"_s) << "too short to be looked at";
  EXPECT_TRUE(stringByConvertingCharactersToEntities(String()).isAbsent());
}

}  // namespace
}  // namespace velan
