#include "tests/Testing.h"
#include "velan/text/inspection/Lines.h"

namespace velan {
namespace {

TEST(Lines, AllOfThem) {
  const Cases<const char*, String, std::vector<String>, String> cases = {
      {"absent", String(), {}, u""},
      {"empty", u"", {}, u""},
      {"an end of its own", u"abc\n", {u"abc"}, u"\n"},
      {"CR LF is one end", u"a\r\nb\r\n", {u"a", u"b"}, u"\r\n"},
      {"LF CR are two", u"a\n\rb", {u"a", u"", u"b"}, u""},
      {"empty lines", u"\n\n", {u"", u""}, u"\n"},
      {"all ends",
       u"1\n2\r3\f4\x0003"
       u"5\x2028"
       u"6\x2029"
       u"7\xFFFC"
       u"8\xFEFF",
       {u"1", u"2", u"3", u"4", u"5", u"6", u"7", u"8"},
       u"\xFEFF"},
      {"no ends", u"\v\x0085\x2027\x202A", {u"\v\x0085\x2027\x202A"}, u""},
  };
  for (const auto& [why, text, expected, feed] : cases) {
    EXPECT_EQ(lines(text), expected) << why;
    EXPECT_EQ(numberOfLines(text), static_cast<int64_t>(expected.size())) << why;
    EXPECT_EQ(firstLine(text), expected.empty() ? text : expected[0]) << why;
    EXPECT_EQ(feedOfLine(text), feed) << why;
    EXPECT_EQ(lengthOfFeedOfLine(text), feed.length()) << why;
    EXPECT_EQ(hasFeedOfLine(text), !feed.isEmpty()) << why;
  }
  const String one = u"one line";
  EXPECT_TRUE(firstLine(one).isSameObject(one));
}

}  // namespace
}  // namespace velan
