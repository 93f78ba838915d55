#include "tests/Testing.h"
#include "velan/url/QueryParameters.h"

namespace velan {
namespace {

std::string dumpOf(const ValueDictionary& parameters) {
  std::string dump;
  for (const auto& [key, value] : parameters) dump += key.toUTF8() + "=" + value.string().toUTF8() + " ";
  return dump;
}

TEST(QueryParameters, Scanning) {
  // parameters: by key
  const Cases<const char*, String, int64_t, std::string> cases = {
      {"an empty value counts, but is not listed", u"http://h/?a=1&b=&c=3;d=4", 4, "a=1 c=3 d=4 "},
      {"without a query", u"http://h/a=1", 0, ""},
      {"an empty query", u"http://h/?", 0, ""},
      {"the first question mark", u"h?a=1?b=2", 1, "a=1?b=2 "},
      {"a key without a value runs on", u"h?flag&x=1", 1, "flag&x=1 "},
      {"nothing after the last equals sign", u"h?a=1&flag", 1, "a=1 "},
      {"what stands before a key", u"h?&=--_a=1&[b]=2", 2, "a=1 b]=2 "},
      {"the last of one key", u"h?a=1&a=2&a=", 3, "a=2 "},
      {"values hold anything else", u"h?a==x=%20&b=#f", 2, "a==x=%20 b=#f "},
      {"keys in other scripts", u"h?\u00e9\u4e00=1", 1, "\u00e9\u4e00=1 "},
      {"absent", String(), 0, ""},
  };
  for (const auto& [why, url, count, parameters] : cases) {
    EXPECT_EQ(numberOfQueryParams(url), count) << why;
    EXPECT_EQ(dumpOf(queryParams(url)), parameters) << why;
  }
  EXPECT_EQ(numberOfQueryParams(u"a=1&b=2"_s, 1), 1);
  EXPECT_EQ(dumpOf(queryParams(u"a=1&b=2"_s, -5)), "a=1 b=2 ");
  EXPECT_EQ(numberOfQueryParams(u"a=1"_s, NSNotFound), 0);
}

TEST(QueryParameters, ByName) {
  const String url = u"h?a=&b=2&a=1&A=3&long=4"_s;
  EXPECT_TRUE(containsQueryParamNamed(url, u"a"_s));
  EXPECT_FALSE(containsQueryParamNamed(url, u"B"_s));
  EXPECT_FALSE(containsQueryParamNamed(url, u"lon"_s));
  EXPECT_FALSE(containsQueryParamNamed(url, u""_s));
  EXPECT_FALSE(containsQueryParamNamed(u"a=1"_s, u"a"_s));
  EXPECT_TRUE(containsParamNamed(u"a=1"_s, u"a"_s));
  EXPECT_FALSE(containsParamNamed(u"a=1"_s, u"a=1"_s));
  EXPECT_EQ(queryParamNamed(url, u"a"_s), u"1"_s);
  EXPECT_EQ(queryParamNamed(url, u"c"_s), String());
  EXPECT_EQ(queryParamNamed(url, u"b"_s, 7, false), String());
  EXPECT_TRUE(queryParamNamed(url, u"b"_s, 7, true).isSameObject(url));
  EXPECT_EQ(paramNamed(u"x=1;y=2"_s, u"y"_s), u"2"_s);
  EXPECT_EQ(query(u"h?a?b#c"_s), u"a?b#c"_s);
  EXPECT_EQ(query(u"h?"_s), u""_s);
  EXPECT_EQ(query(u"h"_s), String());
}

TEST(QueryParameters, Replacing) {
  const String url = u"h?a=&b=2&a=1#f"_s;
  EXPECT_EQ(stringByReplacingQueryParamNamed(url, u"a"_s, u"x y"_s), u"h?a=x y&b=2&a=1#f"_s);
  EXPECT_EQ(stringByReplacingQueryParamNamed(url, u"b"_s, u""_s), u"h?a=&b=&a=1#f"_s);
  for (const auto& [name, value] : {std::pair{u"c"_s, u"1"_s}, {u"a"_s, String()}, {u""_s, u"1"_s}}) {
    EXPECT_TRUE(stringByReplacingQueryParamNamed(url, name, value).isSameObject(url));
  }
  EXPECT_EQ(stringByReplacingQueryParamNamed(u"a=1"_s, u"a"_s, u"2"_s), u"a=1"_s);
}

}  // namespace
}  // namespace velan
