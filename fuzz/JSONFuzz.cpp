// The test for JSON and its reader agree, what is read can be written and comes back, and escapes are undone.
#include "fuzz/FuzzTarget.h"
#include "velan/base/json/JSON.h"
#include "velan/markup/ScriptEscapes.h"

using namespace velan;

namespace {

size_t deepest(std::string_view text) {
  size_t brackets = 0;
  for (const char c : text) brackets += c == '[' || c == '{' ? 1 : 0;
  return brackets;
}

}  // namespace

FUZZ_TARGET(json) {
  const std::string_view json = input.bytes;
  const String text = input.text();
  const auto value = readJSON(json);
  if (value) {
    std::string again;
    require(isJSON(text) && appendJSON(*value, again));
    const auto reread = readJSON(again);
    std::string third;
    require(reread && appendJSON(*reread, third) && third == again);
  } else if (String::fromUTF8(json) && deepest(json) <= kJSONDepth) {
    require(!isJSON(text));
  }
  require(!isJSONFeed(text) || isJSON(text));
  const String escaped = stringByConvertingCharactersToJSON(text);
  require(stringByConvertingJSONToCharacters(escaped) == text);
  require(isJSON(String(u'"' + std::u16string(escaped.view()) + u'"')));
  require(stringByConvertingJavaScriptToCharacters(text).length() <= text.length());
  const String plain = stringByConvertingMarkdownToCharacters(text);
  require(stringByConvertingMarkdownToCharacters(stringByConvertingCharactersToMarkdown(plain)).length() >=
          plain.length());
}
