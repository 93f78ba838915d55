#include <cstring>

#include "tests/Testing.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/search/Containment.h"
#include "velan/text/search/TwoWaySearchInternal.h"

namespace velan {
namespace {

constexpr size_t kNone = std::u16string::npos;

size_t positionOf(const unichar* found, std::u16string_view haystack) {
  return found ? static_cast<size_t>(found - haystack.data()) : kNone;
}

size_t exactly(std::u16string_view haystack, std::u16string_view needle) {
  return positionOf(fastContainsUnichars(haystack.data(), haystack.size(), needle.data(), needle.size()), haystack);
}

size_t ignoringCase(std::u16string_view haystack, std::u16string_view needle) {
  return positionOf(fastCaseInsensitiveContainsUnichars(haystack.data(), haystack.size(), needle.data(), needle.size()),
                    haystack);
}

size_t ofBytes(std::u16string_view haystack, std::string_view needle, bool caseSensitive) {
  return positionOf(positionOfCharacters(needle.data(), needle.size(), haystack.data(), haystack.size(), caseSensitive),
                    haystack);
}

TEST(Containment, NothingToSearchOrToFind) {
  for (const auto& [haystack, needle] : {std::pair{"abc", ""}, {"", "a"}, {"", ""}, {"ab", "abc"}}) {
    const std::u16string units(haystack, haystack + strlen(haystack)), searched(needle, needle + strlen(needle));
    EXPECT_EQ(exactly(units, searched) & ignoringCase(units, searched), kNone);
    EXPECT_EQ(ofBytes(units, needle, true) & ofBytes(units, needle, false), kNone);
  }
  EXPECT_EQ(fastContainsUnichars(nullptr, 5, u"a", 1), nullptr);
  EXPECT_EQ(fastUnicharsContainChars(u"abc", 3, nullptr, 1), nullptr);
}

TEST(Containment, BytesAboveAscii) {
  const std::u16string_view text = u"a\x00E9\xFFE9";
  EXPECT_EQ(fastUnicharsContainChars(text.data(), 3, "\xE9", 1), nullptr);
  EXPECT_EQ(positionOf(fastCaseInsensitiveUnicharsContainChars(text.data(), 3, "\xE9", 1), text), 2u);
}

TEST(Containment, SubCStrings) {
  const char* none[] = {nullptr};
  const char* some[] = {"far too long to be found", "xyz", "b\xE9", nullptr};
  const char* lower[] = {"straße", "nder", nullptr};
  const Cases<const char*, String, int64_t, const char* const*, const unichar*, bool> cases = {
      {"no pattern", u"abc", 3, none, nullptr, false},
      {"at the end, sign-extended", u"ab\xFFE9", 3, some, nullptr, true},
      {"cut off by the length", u"ab\xFFE9", 2, some, nullptr, false},
      {"length beyond the string", u"xyz", 99, some, nullptr, true},
      {"negative length", u"xyz", -1, some, nullptr, false},
      {"absent", String(), 3, some, nullptr, false},
      {"mapped text", u"L\x00C4NDER", 6, lower, lowerCharsTable(), true},
      {"unmapped text", u"L\x00C4NDER", 6, lower, nullptr, false},
      {"the patterns are not mapped", u"XYZ", 3, some, upperCharsTable(), false},
  };
  for (const auto& [why, string, length, patterns, table, found] : cases)
    EXPECT_EQ(fastContainsSubCStrings(string, length, patterns, table), found) << why;
}

// Few letters make many near matches; the searched runs end with their heap blocks.
TEST(Containment, EqualsTheSlowOne) {
  Chance chance(2);
  const auto mapped = [](std::u16string text) {
    std::ranges::transform(text, text.begin(), toUpper);
    return text;
  };
  for (int round = 0; round < 20000; ++round) {
    const std::u16string_view letters = round % 2 ? u"ab" : u"aAb\x00E4\x00C4";
    const std::u16string haystack = chance.text(chance.below(120), letters);
    std::u16string needle = chance.text(1 + chance.below(round % 3 ? 6 : 50), letters);
    if (chance.below(2) && haystack.size() > needle.size()) {
      needle = haystack.substr(chance.below(haystack.size() - needle.size()), needle.size());
    }
    const size_t any = haystack.find(needle);
    const size_t exact = any + needle.size() < haystack.size() ? any : kNone;
    EXPECT_EQ(exactly(haystack, needle), any == kNone ? kNone : exact) << "the last position is not tried";
    EXPECT_EQ(ignoringCase(haystack, needle), mapped(haystack).find(mapped(needle)));
    if (round % 2) {
      const std::string bytes(needle.begin(), needle.end());
      EXPECT_EQ(ofBytes(haystack, bytes, true), any);
      EXPECT_EQ(ofBytes(mapped(haystack), bytes, false), any);
    }
    if (needle.size() <= haystack.size()) {
      const size_t position = findTwoWay([&](size_t i) { return haystack[i]; }, haystack.size(),
                                         [&](size_t i) { return needle[i]; }, needle.size());
      EXPECT_EQ(position == haystack.size() ? kNone : position, any);
    }
  }
}

// One near match after another: counts how often the text is read, which grows with the square in a plain scan.
TEST(Containment, StaysLinear) {
  for (const size_t length : {20000u, 40000u}) {
    const std::u16string haystack(length, u'a');
    for (const size_t changed : {size_t{0}, length / 8, length / 4 - 1}) {
      std::u16string needle(length / 4, u'a');
      needle[changed] = u'b';
      size_t reads = 0;
      EXPECT_EQ(findTwoWay([&](size_t i) { return ++reads, haystack[i]; }, length, [&](size_t i) { return needle[i]; },
                           needle.size()),
                length);
      EXPECT_LE(reads, 3 * length);
    }
  }
}

}  // namespace
}  // namespace velan
