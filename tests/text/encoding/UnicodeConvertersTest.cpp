#include "tests/Testing.h"
#include "velan/text/encoding/UnicodeConverters.h"

namespace velan {
namespace {

// Into a heap buffer of exactly `capacity` units, from one of exactly the bytes: the address sanitizer sees one too
// far. What is written shows because the buffer is filled before.
std::pair<int32_t, std::u16string> converted(std::string_view utf8, size_t capacity) {
  const auto bytes = std::make_unique<char[]>(utf8.size());
  utf8.copy(bytes.get(), utf8.size());
  const auto units = std::make_unique<unichar[]>(capacity);
  std::fill_n(units.get(), capacity, u'#');
  const int32_t status = convertUTF8ToUnicode(bytes.get(), utf8.size(), units.get(), capacity);
  const std::u16string_view all(units.get(), capacity);
  return {status, std::u16string(all.substr(0, all.find(u'#')))};
}

TEST(UnicodeConverters, UTF8Statuses) {
  const Cases<const char*, std::string, size_t, int32_t, std::u16string> cases = {
      {"all of it", "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", 5, ConverterSuccess, u"a\u00E9\u20AC\U0001F600"},
      {"nothing", "", 0, ConverterSuccess, u""},
      {"a mark is kept", "\xEF\xBB\xBFz", 9, ConverterSuccess, u"\uFEFFz"},
      {"no room", "a", 0, ConverterOutputFull, u""},
      {"no room for the last", "\xE2\x82\xAC\xE2\x82\xACz", 2, ConverterOutputFull, u"\u20AC\u20AC"},
      {"half a pair is not written", "a\xF0\x9F\x98\x80", 2, ConverterOutputFull, u"a"},
      {"malformed", "ab\xFFz", 9, ConverterMalformedInput, u"ab"},
      {"overlong", "a\xC0\x80", 9, ConverterMalformedInput, u"a"},
      {"cut off", "a\xF0\x9F\x98", 9, ConverterPartialCharacter, u"a"},
      {"cut off after a lead byte", "a\xC3", 2, ConverterPartialCharacter, u"a"},
      {"malformed before it is cut off", "a\xE0\x80", 9, ConverterMalformedInput, u"a"},
      {"malformed where room ends", "\xE2\x82\xAC\xFF", 1, ConverterMalformedInput, u"\u20AC"},
  };
  for (const auto& [why, utf8, capacity, status, units] : cases) {
    EXPECT_EQ(converted(utf8, capacity), std::pair(status, units)) << why;
  }
  EXPECT_EQ(convertUTF8ToUnicode(nullptr, 3, nullptr, 3), ConverterSuccess);
}

TEST(UnicodeConverters, EveryCapacityCutsBetweenCharacters) {
  const std::string utf8 = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z\xF0\x9F\x98\x80\xE2\x82\xAC";
  const std::u16string_view utf16 = u"a\u00E9\u20AC\U0001F600z\U0001F600\u20AC";
  for (size_t capacity = 0; capacity <= utf16.size(); ++capacity) {
    const auto [status, units] = converted(utf8, capacity);
    EXPECT_EQ(status, capacity == utf16.size() ? ConverterSuccess : ConverterOutputFull) << capacity;
    EXPECT_TRUE(utf16.starts_with(units)) << capacity;
    EXPECT_GE(units.size() + 1, capacity) << capacity;
  }
  for (size_t capacity = 0; capacity <= utf8.size(); ++capacity) {
    const auto bytes = std::make_unique<char[]>(capacity);
    std::fill_n(bytes.get(), capacity, '#');
    const int32_t status = convertUnicodeToUTF8(utf16.data(), utf16.size(), bytes.get(), capacity);
    EXPECT_EQ(status, capacity == utf8.size() ? ConverterSuccess : ConverterOutputFull) << capacity;
    const std::string_view all(bytes.get(), capacity);
    EXPECT_TRUE(utf8.starts_with(all.substr(0, all.find('#')))) << capacity;
    EXPECT_GE(std::min(all.find('#'), capacity) + 3, capacity) << capacity;
  }
}

TEST(UnicodeConverters, SurrogatesWithoutPartners) {
  const Cases<std::u16string, int32_t, std::string> cases = {
      {{u'a', 0xD800}, ConverterPartialCharacter, "a"},
      {{u'a', 0xD800, u'b'}, ConverterMalformedInput, "a"},
      {{u'a', 0xDC00}, ConverterMalformedInput, "a"},
      {{0xD800, 0xD800, 0xDC00}, ConverterMalformedInput, ""},
  };
  for (const auto& [utf16, status, utf8] : cases) {
    char bytes[16] = {};
    EXPECT_EQ(convertUnicodeToUTF8(utf16.data(), utf16.size(), bytes, sizeof bytes), status);
    EXPECT_STREQ(bytes, utf8.c_str());
  }
}

TEST(UnicodeConverters, AnyEncodingHasThreeKindsOfResults) {
  using namespace std::string_view_literals;
  const Cases<const char*, uint32_t, std::string_view, size_t, int32_t, std::u16string> cases = {
      {"success", 0x500, "\x80", 1, 1, u"\u20AC"},
      {"unassigned goes on", 0x207, "\xAEz", 2, 1, u"\uFFFDz"},
      {"malformed stops", 0x420, "z\x81 z", 9, 0, u"z"},
      {"cut off", 0x420, "z\x81", 9, 0, u"z"},
      {"full", 0x500, "ab", 1, 0, u"a"},
      {"a mark is kept", 0x08000100, "\xEF\xBB\xBFz", 9, 1, u"\uFEFFz"},
      {"or used up", 0x100, "\xFE\xFF\0z"sv, 9, 1, u"z"},
      {"a surrogate alone", 0x10000100, "\0z\xDC\0"sv, 9, 0, u"z"},
      {"unknown", 1, "z", 9, ConverterUnknownEncoding, u""},
      {"unknown variant", 0x10500, "z", 9, ConverterUnknownEncoding, u""},
  };
  for (const auto& [why, encoding, bytes, capacity, result, expected] : cases) {
    const auto units = std::make_unique<unichar[]>(capacity);
    size_t length = 77;
    EXPECT_EQ(convertEncodingToUnicode(bytes.data(), bytes.size(), static_cast<TextEncoding>(encoding), units.get(),
                                       capacity, &length),
              result)
        << why;
    EXPECT_EQ(std::u16string(units.get(), length), expected) << why;
  }
}

}  // namespace
}  // namespace velan
