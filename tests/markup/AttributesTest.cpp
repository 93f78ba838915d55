#include "tests/Testing.h"
#include "velan/base/Range.h"
#include "velan/markup/Attributes.h"
#include "velan/markup/DeclaredEncoding.h"

namespace velan {
namespace {

TEST(Attributes, OfTags) {
  // value: by characters; string: by the string reader
  const Cases<const char*, String, const char*, String, String> cases = {
      {"a part of a longer name", u"<img data-src='a' src = 'b'>"_s, "src", u"b"_s, u"b"_s},
      {"behind an underscore", u"<img x_src='a' src='b'>"_s, "src", u"b"_s, u"a"_s},
      {"empty", u"<img src=''>"_s, "src", String(), String()},
      {"no quotes", u"<a href=x>"_s, "href", u"x"_s, u"x"_s},
      {"as long as it may be", u"<href=xy>"_s, "href", String(), String()},
      {"trimmed behind, not before", u"<a href=' x y\t '>"_s, "href", u" x y"_s, u" x y"_s},
      {"a sign each", u"<a href=='x'>y"_s, "href", u"x"_s, u"='x'"_s},
      {"a quoted name", u"<a title=\"href='y'\" href=x>"_s, "href", u"x"_s, u"x"_s},
      {"no sign", u"<a href href=x>"_s, "href", u"x"_s, u"x"_s},
      {"a stray quote", u"<a ' href=x>"_s, "href", String(), String()},
      {"an open quote", u"<a href='x>y"_s, "href", u"x"_s, u"x"_s},
      {"an open quote at the end", u"<a b c href='xy"_s, "href", u"xy"_s, u"xy"_s},
      {"nothing behind the sign", u"<abcdefghi href= "_s, "href", String(), String()},
      {"other white space", u"<a\u2003href\u00A0=\nx>"_s, "href", u"x"_s, u"x"_s},
      {"any letter that folds", u"<a \u017Frc=xyz>"_s, "src", u"xyz"_s, u"xyz"_s},
  };
  for (const auto& [why, tag, name, value, string] : cases) {
    EXPECT_EQ(attributeOfTagCharacters(tag.characters(), tag.length(), name), value) << why;
    const String later(u"'=" + std::u16string(tag.view()));
    const Range range = rangeOfAttributeOfTagCharacters(later.characters(), {2, tag.length()}, name);
    EXPECT_EQ(isPresent(range) ? later.substring(range) : String(), value) << why;
    EXPECT_EQ(attributeOfTagWithName(tag, String::fromUTF8(name)), string) << why;
  }
  EXPECT_EQ(attributeOfTagInRange(u"<a b=1><a b=2>"_s, {7, 7}, u"b"_s), u"2"_s);
  EXPECT_TRUE(attributeOfTagCharacters(nullptr, 9, "b").isAbsent());
  EXPECT_TRUE(attributeOfTagCharacters(u"<abc b=1>", 9, "").isAbsent());
  EXPECT_EQ(rangeOfAttributeOfTagCharacters(u"<abc b=1>", kAbsentRange, "b"), kAbsentRange);
}

TEST(Attributes, ContentOfMetaTagsIsReadTolerantly) {
  const Cases<String, String> cases = {
      {u"<meta content=\"a < b > c\">"_s, u"a < b > c"_s},
      {u"<meta content=\"a> b\">"_s, u"a"_s},
      {u"<meta content=\"> b\">"_s, u"> b"_s},
      {u"<meta content=\"text<\">"_s, u"text"_s},
      {u"<meta content=\"a<<\">"_s, u"a<<"_s},
      {u"<meta content=\"text\n<META name='x'>"_s, u"text"_s},
  };
  for (const auto& [tag, value] : cases) {
    EXPECT_EQ(contentAttributeOfTagCharacters(tag.characters(), {0, tag.length()}), value) << tag.toUTF8();
  }
}

TEST(Attributes, OfStyles) {
  const String style = u"color: red ; background-color:blue;font: 'A b' , c;x:;border-color : green"_s;
  const Cases<String, String> cases = {
      {u"color"_s, u"red"_s}, {u"BACKGROUND-color"_s, u"blue"_s}, {u"font"_s, u"A b"_s},
      {u"x"_s, String()},     {u"border-color"_s, u"green"_s},    {u"width"_s, String()},
  };
  for (const auto& [name, value] : cases) EXPECT_EQ(attributeOfStyleWithName(style, name), value) << name.toUTF8();
  EXPECT_EQ(attributeOfStyleWithName(u"a:b"_s, u"a"_s), u"b"_s);
  EXPECT_EQ(attributeOfStyleWithName(u"a:"_s, u"a"_s), String());
}

TEST(HeaderFields, StrictAndTolerant) {
  const Cases<String, String, String> cases = {
      {u"text/html; charset=utf-8"_s, u"utf-8"_s, u"utf-8"_s},
      {u"Charset = 'utf-8' x; y"_s, u" 'utf-8' x"_s, u"utf-8"_s},
      {u"charset=\"a;b\" c"_s, u"a;b"_s, u"a;b"_s},
      {u"charset=\"\"; charset=b"_s, u"b"_s, u"b"_s},
      {u"charset=a b>c;d"_s, u"a b>c"_s, u"a"_s},
      {u"charset:1 charset\t=2"_s, u"2"_s, u"2"_s},
      {u"xcharset=;"_s, u""_s, u""_s},
      {u"charset="_s, u""_s, u""_s},
      {u"charset=\"open"_s, u"open"_s, u"open"_s},
      {u"charset=\""_s, String(), String()},
  };
  for (const auto& [text, strict, tolerant] : cases) {
    EXPECT_EQ(headerFieldNamed(text, u"charset"_s, u'"', u';'), strict) << text.toUTF8();
    EXPECT_EQ(headerFieldNamed(text, u"charset"_s), tolerant) << text.toUTF8();
  }
  EXPECT_EQ(headerFieldNamed(u"a=b; c"_s, u"A"_s, u'"'), u"b; c"_s);
  EXPECT_EQ(headerFieldNamed(u"a=b"_s, u""_s), String());
}

TEST(HeaderFields, OfHTTP) {
  const String block =
      u"HTTP/1.1 200 OK\r\nX-Type: none\r\nContent-Type :  text/html; charset=\"utf-8\" \r\nTYPE:\r\n"_s;
  EXPECT_EQ(HTTPHeaderFieldNamed(block, u"content-type"_s), u"text/html; charset=\"utf-8\""_s);
  EXPECT_EQ(HTTPHeaderFieldNamed(block, u"charset"_s), u"utf-8"_s);
  EXPECT_EQ(HTTPHeaderFieldNamed(block, u"type"_s), String());
  EXPECT_EQ(HTTPHeaderFieldNamed(block, u""_s), String());
}

TEST(DeclaredEncoding, FoundInTheHeadOnly) {
  const Cases<String, String, String> cases = {
      {u"<?xml version='1.0' encoding='koi8-r'?><a>"_s, u"koi8-r"_s, u"<?xml version='1.0' encoding='koi8-r'?>"_s},
      {u"<meta name=a content=b><meta charset='&#98;ig5'>"_s, u"big5"_s, u"<meta charset='&#98;ig5'>"_s},
      {u"<?xml encoding='a&amp;b'?>"_s, u"a&amp;b"_s, u"<?xml encoding='a&amp;b'?>"_s},
      {u"<meta content=\"text/html; charset='cp1252';\">"_s, u"cp1252"_s,
       u"<meta content=\"text/html; charset='cp1252';\">"_s},
      {u"<head></meta charset=a></head><body><meta charset=b>"_s, u""_s, String()},
      {u"<script><meta charset=a></script><!--<meta charset=b>-->"_s, u""_s, String()},
      {u""_s, u""_s, String()},
  };
  for (const auto& [page, charset, tag] : cases) {
    EXPECT_EQ(markupCharset(page), charset) << page.toUTF8();
    const Range range = markupCharsetRange(page);
    EXPECT_EQ(isPresent(range) ? page.substring(range) : String(), tag) << page.toUTF8();
  }
  EXPECT_EQ(headerCharset(u"text/html;charset='x y'"_s), u"x y"_s);
}

}  // namespace
}  // namespace velan
