#include "tests/Testing.h"
#include "velan/query/words/Links.h"

namespace velan {
namespace {

// Every unit of `link` leads to it, every other unit of the text to nothing; then `link` occurs once.
TEST(Links, FoundFromEachOfTheirUnits) {
  const Cases<const char*, String, String> cases = {
      {"a scheme", u"see http://example.org/a?b=c#d for more"_s, u"http://example.org/a?b=c#d"_s},
      {"closing punctuation", u"Read ftp://example.org/a.b."_s, u"ftp://example.org/a.b"_s},
      {"several closing units", u"“https://example.org”?!"_s, u"https://example.org"_s},
      {"an unmatched bracket", u"(at http://example.org/x), so"_s, u"http://example.org/x"_s},
      {"a matched bracket", u"(http://example.org/x_(y))."_s, u"http://example.org/x_(y)"_s},
      {"Markdown", u"[here](https://example.org/[z])"_s, u"https://example.org/[z]"_s},
      {"angle brackets", u"<http://[::1]:80/>"_s, u"http://[::1]:80/"_s},
      {"text right before the scheme", u"URL:x-app+1://host"_s, u"x-app+1://host"_s},
      {"an address inside an address", u"http://a.org/http://b.org/ ok"_s, u"http://a.org/http://b.org/"_s},
      {"a file", u"file:///tmp/x,"_s, u"file:///tmp/x"_s},
      {"www", u"at WWW.example.org/ä, too"_s, u"WWW.example.org/ä"_s},
      {"East Asian punctuation", u"網站http：https://例え.jp/道。次"_s, u"https://例え.jp/道"_s},
      {"a mail address", u"Write to jörg.m+x@mail.example.org."_s, u"jörg.m+x@mail.example.org"_s},
      {"mailto", u"mailto:a@b.org?subject=c"_s, u"mailto:a@b.org?subject=c"_s},
      {"a telephone", u"tel:+49-30-1234!"_s, u"tel:+49-30-1234"_s},
      {"no scheme", u"note:this 3://x ://y http:// wwww.x www. www"_s, u""_s},
      {"no mail address", u"a@b @c.de d@ e@.f g@h.i x@y..."_s, u""_s},
  };
  for (const auto& [why, text, link] : cases) {
    const size_t at = text.view().find(link.view());
    const Range expected = link.isEmpty() ? kAbsentRange : Range{static_cast<int64_t>(at), link.length()};
    for (int64_t i = -1; i <= text.length(); ++i) {
      const bool inside = isPresent(expected) && i >= expected.location && i < endOf(expected);
      EXPECT_EQ(getLinkRangeAtIndex(text, i), inside ? expected : kAbsentRange) << why << ", index " << i;
    }
  }
}

// Whatever the text, a link contains the index it was found from and stays inside the text.
TEST(Links, StayInsideTheText) {
  static constexpr std::u16string_view kPieces[] = {u"http://", u"www.", u"a", u"@", u".de",
                                                    u",",       u")",    u"(", u":", u"é"};
  Chance chance(3);
  for (int round = 0; round < 500; ++round) {
    const String text(chance.text(16, kPieces));
    for (int64_t i = 0; i < text.length(); ++i) {
      const Range link = getLinkRangeAtIndex(text, i);
      if (!isPresent(link)) continue;
      ASSERT_TRUE(link.location <= i && i < endOf(link) && endOf(link) <= text.length()) << text.toUTF8();
    }
  }
}

}  // namespace
}  // namespace velan
