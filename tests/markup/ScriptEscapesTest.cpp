#include "tests/Testing.h"
#include "velan/base/json/JSON.h"
#include "velan/markup/ScriptEscapes.h"

namespace velan {
namespace {

TEST(ScriptEscapes, Unescaping) {
  const Cases<String, String, String> cases = {
      {uR"(a\nb\b\f\r\t)"_s, u"a\nb\b\f\r\t"_s, u"a\nb\b\f\r\t"_s},
      {uR"(\u00e9\u00E9x)"_s, u"ééx"_s, u"ééx"_s},
      {uR"(\uD83D\uDE00)"_s, u"\U0001F600"_s, u"\U0001F600"_s},
      {uR"(\u12)"_s, u"\u1200"_s, u"\u1200"_s},
      {uR"(\u)"_s, u"\0"_s, u"\0"_s},
      {uR"(\uZZZZ\u1Z3Zx)"_s, u"\0\u1030x"_s, u"\0\u1030x"_s},
      {uR"(\x41\x4)"_s, u"x41x4"_s, u"A@"_s},
      {uR"(\v\O\0\a)"_s, u"vO0a"_s, u"\v\0\060a"_s},
      {uR"(\"\\\/\'\\)"_s, uR"("\/'\)"_s, uR"("\/'\)"_s},
      {uR"(\\n\)"_s, uR"(\n\)"_s, uR"(\n\)"_s},
  };
  for (const auto& [text, json, script] : cases) {
    EXPECT_EQ(stringByConvertingJSONToCharacters(text), json) << text.toUTF8();
    EXPECT_EQ(stringByConvertingJavaScriptToCharacters(text), script) << text.toUTF8();
  }
  for (const String& text : {u"no escape"_s, u"at the end\\"_s, u""_s, String()}) {
    EXPECT_TRUE(stringByConvertingJSONToCharacters(text).isSameObject(text));
  }
}

TEST(ScriptEscapes, JSONThereAndBackForEveryUnit) {
  std::u16string units;
  for (uint32_t c = 0; c <= 0xFFFF; ++c) units.push_back(static_cast<unichar>(c));
  const String text(units);
  const String escaped = stringByConvertingCharactersToJSON(text);
  EXPECT_TRUE(isJSON(String(u'"' + std::u16string(escaped.view()) + u'"')));
  EXPECT_TRUE(stringByConvertingJSONToCharacters(escaped) == text);
}

TEST(ScriptEscapes, Markdown) {
  const Cases<String, String> cases = {
      {u"[a](b)"_s, uR"(\[a\]\(b\))"_s},
      {uR"(\(x\y\))"_s, uR"(\\(x\y\\))"_s},
  };
  for (const auto& [text, escaped] : cases) {
    EXPECT_EQ(stringByConvertingCharactersToMarkdown(text), escaped);
    EXPECT_EQ(stringByConvertingMarkdownToCharacters(escaped), text);
  }
  for (const String& text : {uR"(a\n{b}\)"_s, u""_s, String()}) {
    EXPECT_TRUE(stringByConvertingCharactersToMarkdown(text).isSameObject(text));
    EXPECT_TRUE(stringByConvertingMarkdownToCharacters(text).isSameObject(text));
  }
}

}  // namespace
}  // namespace velan
