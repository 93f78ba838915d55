#include <cmath>

#include "tests/SmallStack.h"
#include "tests/Testing.h"
#include "velan/base/json/JSON.h"

namespace velan {
namespace {

TEST(JSON, NumbersKeepTheirKindAndLeaveTheRangeOfDoubles) {
  const Cases<const char*, Value> cases = {
      {"-9223372036854775808", INT64_MIN},
      {"18446744073709551615", UINT64_MAX},
      {"18446744073709551616", 18446744073709551616.0},
      {"1e0", 1.0},
      {"-1E+99999999999999999999", -HUGE_VAL},
      {"1e-99999999999999999999", 0.0},
      {"0.0001e-400", 0.0},
      {"12345678901234567890123456789e300", HUGE_VAL},
  };
  for (const auto& [json, expected] : cases) {
    const auto value = readJSON(json);
    ASSERT_TRUE(value) << json;
    EXPECT_EQ(value->kind(), expected.kind()) << json;
    EXPECT_EQ(*value, expected) << json;
  }
}

TEST(JSON, TheReaderRefusesWhatIsNoTextOrTooDeep) {
  EXPECT_FALSE(readJSON("\"\xC3\""));
  EXPECT_FALSE(readJSON("[{\"\xED\xA0\x80\": 1}]"));
  EXPECT_FALSE(readJSON("\xEF\xBB\xBF[]"));
  EXPECT_TRUE(readJSON(std::string(600, '[') + std::string(600, ']')));
  EXPECT_FALSE(readJSON(std::string(601, '[') + std::string(601, ']')));
  EXPECT_EQ(*readJSON(R"({"a":1,"b":"\ud800\n","a":[]})"),
            Value(ValueDictionary({{u"a"_s, ValueArray()}, {u"b"_s, u"\xD800\n"_s}})));
}

TEST(JSON, AMillionNestedBracketsOnASmallStack) {
  std::u16string deep, ends;
  for (int i = 0; i < 500000; ++i) {
    deep += u"[{\"a\":";
    ends += u"}]";
  }
  runOnSmallStack([&] {
    EXPECT_TRUE(isJSON(String(deep + u"0" + ends)) && !isJSON(String(deep)));
    EXPECT_TRUE(isJSON(String(std::u16string(1000000, u'[') + std::u16string(1000000, u']'))));
    EXPECT_FALSE(isJSON(String(std::u16string(1000000, u'[') + std::u16string(999999, u']') + u'}')));
  });
}

TEST(JSON, Feeds) {
  const Cases<bool, String> cases = {
      {true, uR"({"version":"https://jsonfeed.org/version/1.1","title":"x","items":[]})"_s},
      {true, uR"( {"items":[{"version":2}],"version":"https:\/\/jsonfeed.org\u002fversion/1"} )"_s},
      {true, uR"({"version":1,"version":"https://jsonfeed.org/version/1","items":[]})"_s},
      {false, uR"({"version":"https://jsonfeed.org/version/1","items":{}})"_s},
      {false, uR"({"version":"https://jsonfeed.org/version/1","items":[],"items":1})"_s},
      {false, uR"({"version":"http://example.org","items":[]})"_s},
      {false, uR"({"version":"https://jsonfeed.org/version/1"})"_s},
      {false, uR"({"version":"https://jsonfeed.org/version/1","a":{"items":[]}})"_s},
      {false, uR"([{"version":"https://jsonfeed.org/version/1","items":[]}])"_s},
      {false, uR"({"version":"https://jsonfeed.org/version/1","items":[]},)"_s},
      {false, uR"(["version","https://jsonfeed.org/version/1","items",[]])"_s},
      {false, u""_s},
      {false, String()},
  };
  for (const auto& [feed, json] : cases) EXPECT_EQ(isJSONFeed(json), feed) << json.toUTF8();
}

TEST(JSON, Escapes) {
  const String plain = u"é/\U0001F600'"_s;
  EXPECT_TRUE(stringByConvertingCharactersToJSON(plain).isSameObject(plain));
  EXPECT_TRUE(stringByConvertingCharactersToJSON(String()).isAbsent());
  const String special(u"a\"\\\b\f\n\r\t\x01\x7F\xDC00\xD83D\xDE00\xD83D");
  EXPECT_EQ(stringByConvertingCharactersToJSON(special),
            String(u"a\\\"\\\\\\b\\f\\n\\r\\t\\u0001\\u007f\\udc00\xD83D\xDE00\\ud83d"));
  std::string json;
  appendJSONString(special, json);
  EXPECT_EQ(*readJSON(json), Value(special));
}

}  // namespace
}  // namespace velan
