#include "tests/Testing.h"
#include "velan/text/inspection/Configuration.h"

namespace velan {
namespace {

TEST(Configuration, Lines) {
  using List = std::vector<String>;
  EXPECT_EQ(configLines(u"# comment\n  name  value  \nx\n\n  # too\n#\nab\nc#"), (List{u"name  value", u"ab", u"c#"}));
  EXPECT_EQ(configLines(u"\xFEFF\x3000\x00A0 a 1\t\v\r\n\r\nb 2\xFEFF"), (List{u"a 1", u"b 2"}));
  EXPECT_EQ(configLines(String()), List());
}

TEST(Configuration, ValueForKey) {
  const Cases<const char*, String, String, String> cases = {
      {"any case, trimmed", u"name\tValue ", u"Name", u"Value"},
      {"letters of one unit", u"Größe  5 m", u"GRÖSSE", String()},
      {"diacritics", u"größe  5 m", u"GRÖßE", u"5 m"},
      {"no value", u"name", u"Name", String()},
      {"the key goes on", u"names x", u"name", String()},
      {"another sign follows", u"name=x", u"name", String()},
      {"empty key", u" x", u"", String()},
      {"absent key", u" x", String(), String()},
      {"absent line", String(), u"x", String()},
      {"a space that does not break", u"name\x00A0x", u"name", u"x"},
  };
  for (const auto& [why, line, key, value] : cases) EXPECT_EQ(configValueForKey(line, key), value) << why;
}

TEST(Configuration, TypedValues) {
  const Cases<const char*, String, Value> cases = {
      {"yes", u"Yes", true},
      {"no", u"no", false},
      {"one is a number", u"1", int64_t{1}},
      {"signs", u"-007", int64_t{-7}},
      {"plus", u"+12", int64_t{12}},
      {"the least integer", u"-9223372036854775808", INT64_MIN},
      {"beyond 64 bits", u"9223372036854775808", 9223372036854775808.0},
      {"decimals", u"-1.5", -1.5},
      {"exponent", u"1e3", 1000.0},
      {"not a number", u"nan", String(u"nan")},
      {"infinite", u"-inf", String(u"-inf")},
      {"two signs", u"+-5", String(u"+-5")},
      {"text behind", u"8080 x", String(u"8080 x")},
      {"date", u"2001-01-02", Date(86400)},
      {"text", u"local host", String(u"local host")},
  };
  for (const auto& [why, text, expected] : cases) {
    const Value value = typedValueForKeys(String::fromUTF8("other 1\nkey  " + text.toUTF8() + "\nkey 2"), {u"KEY"});
    EXPECT_EQ(value, expected) << why;
    EXPECT_EQ(value.kind(), expected.kind()) << why;
  }
}

TEST(Configuration, FirstOfSeveralKeys) {
  const String text = u"b 2\na 1\n#c 3";
  EXPECT_EQ(typedValueForKeys(text, {u"c", u"a", u"b"}), Value(1));
  EXPECT_EQ(typedValueForKeys(text, {u"c", u"", u"d"}), Value(NSNotFound));
  EXPECT_EQ(typedValueForKeys(text, {String(), u"a"}), Value(NSNotFound));
  EXPECT_EQ(typedValueForKeys(text, {}), Value(NSNotFound));
}

TEST(Configuration, BooleanReading) {
  for (const String yes : {u"YES", u"On", u"TRUE", u"2", u" -1", u"\x00A0+5 no", u"99999999999999999999"}) {
    EXPECT_TRUE(boolValue(yes)) << yes.toUTF8();
  }
  for (const String no : {u"no", u"off", u"0", u"onx", u" on", u"", u"0.5", u"y", u"x1", u"- 1", u"\x0661"}) {
    EXPECT_FALSE(boolValue(no)) << no.toUTF8();
  }
  EXPECT_FALSE(boolValue(String()));
}

}  // namespace
}  // namespace velan
