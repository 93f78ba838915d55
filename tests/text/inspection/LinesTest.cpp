#include <gmock/gmock.h>

#include "velan/text/inspection/Lines.h"

namespace velan {
namespace {

TEST(Lines, AllOfThem) {
  const struct {
    const char* why;
    String text;
    std::vector<String> lines;
    String feed;
  } cases[] = {
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
  for (const auto& c : cases) {
    EXPECT_EQ(lines(c.text), c.lines) << c.why;
    EXPECT_EQ(numberOfLines(c.text), static_cast<int64_t>(c.lines.size())) << c.why;
    EXPECT_EQ(firstLine(c.text), c.lines.empty() ? c.text : c.lines[0]) << c.why;
    EXPECT_EQ(feedOfLine(c.text), c.feed) << c.why;
    EXPECT_EQ(lengthOfFeedOfLine(c.text), c.feed.length()) << c.why;
    EXPECT_EQ(hasFeedOfLine(c.text), !c.feed.isEmpty()) << c.why;
  }
  const String one = u"one line";
  EXPECT_TRUE(firstLine(one).isSameObject(one));
}

}  // namespace
}  // namespace velan
