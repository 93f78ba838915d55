#include "tests/Testing.h"
#include "velan/base/utf/UTF.h"

namespace velan {
namespace {

TEST(UTF, MalformedSequencesAreRefusedOrReplaced) {
  const Cases<const char*, std::string, String> cases = {
      {"a continuation byte alone", "a\x80z", u"a\uFFFDz"},
      {"overlong, three bytes", "\xE0\x80\xAF", u"\uFFFD\uFFFD\uFFFD"},
      {"a surrogate", "\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},
      {"above U+10FFFF", "\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"never lead bytes", "\xF8\xFE\xFF", u"\uFFFD\uFFFD\uFFFD"},
      {"overlong, two bytes", "\xC0\xAF\xC1\xBF", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"overlong, four bytes", "\xF0\x8F\xBF\xBF", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"F5", "\xF5\x80\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"F7", "\xF7\xBF\xBF\xBF", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"cut in the middle of the text", "\xF0\x9F\x98 x", u"\uFFFD x"},
  };
  for (const auto& [why, utf8, lossy] : cases) {
    const auto bytes = exactCopy<char>(utf8);
    const std::string_view exact(bytes.get(), utf8.size());
    EXPECT_TRUE(String::fromUTF8(exact).isAbsent()) << why;
    EXPECT_FALSE(isUTF8(std::string(250, 'x') + utf8)) << why;
    EXPECT_EQ(String::fromUTF8Lossy(exact), lossy) << why;
  }
}

TEST(UTF, LoneSurrogatesAreRefusedOrReplaced) {
  for (const auto& text :
       {std::u16string{u'a', 0xD83D}, std::u16string{0xDE00, u'a'}, std::u16string{0xD83D, 0xD83D}}) {
    EXPECT_FALSE(utf8FromUTF16(text));
    EXPECT_NE(String(text).toUTF8().find("\xEF\xBF\xBD"), std::string::npos);
  }
}

TEST(UTF, LossyAppendingNeverSplitsAPair) {
  // The pair lies at every offset around the boundary of an internal piece.
  for (size_t before = 4092; before < 4100; ++before) {
    const std::u16string text = std::u16string(before, u'x') + u"\U0001F600";
    EXPECT_EQ(String(text).toUTF8(), std::string(before, 'x') + "\xF0\x9F\x98\x80");
  }
}

TEST(UTF, StopsWhereTheFirstMalformedSequenceBegins) {
  unichar units[16];
  const Transcoded result = convertUTF8ToUTF16("ab\xC3\xA9\xFFz", units);
  EXPECT_EQ(result.consumed, 4u);
  EXPECT_EQ(result.written, 3u);
}

}  // namespace
}  // namespace velan
