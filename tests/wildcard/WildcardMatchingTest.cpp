#include "tests/Testing.h"
#include "velan/text/ConversionTables.h"
#include "velan/wildcard/WildcardMatching.h"
#include "velan/wildcard/WildcardSimulationInternal.h"

namespace velan {
namespace {

using View = std::u16string_view;

bool plain(View text, View pattern) {
  return stringMatchesWildcard(text.begin(), text.end(), pattern.begin(), pattern.end());
}
bool withSets(View text, View pattern) {
  return stringMatchesUnixWildcard(text.begin(), text.end(), pattern.begin(), pattern.end());
}
bool simulated(View text, View pattern) {
  return simulateUnixWildcard(text.begin(), text.end(), pattern.begin(), pattern.end(), nullptr);
}

// The definition, word for word: each `*` tries the rest of the pattern at every unit that is left, recursively.
bool slowMatches(View text, View pattern, bool hasSets) {
  size_t t = 0, p = 0;
  while (p < pattern.size()) {
    const unichar unit = pattern[p];
    if (unit == '*') {
      if (t == text.size()) return pattern.find_first_not_of(u'*', p) == View::npos;
      if (p + 1 == pattern.size()) return true;
      for (; t < text.size(); ++t) {
        if (slowMatches(text.substr(t), pattern.substr(p + 1), hasSets)) return true;
      }
      return false;
    }
    if (t == text.size()) return false;
    const unichar c = text[t++];
    if (unit == '?' || (unit == c && !(hasSets && unit == '['))) {
      ++p;
      continue;
    }
    if (!hasSets || unit != '[' || ++p == pattern.size()) return false;
    const bool isNegated = pattern[p] == '^';
    if (isNegated) ++p;
    bool found = false;
    while (p < pattern.size() && pattern[p] != ']' && !found) {
      if (pattern[p] != '-') {
        found = pattern[p] != '|' && pattern[p] == c;
        ++p;
      } else if (p + 1 == pattern.size()) {
        ++p;
      } else {
        found = pattern[p - 1] <= c && c <= pattern[p + 1];
        p += 2;
      }
    }
    if (found == isNegated) return false;
    while (p < pattern.size() && pattern[p] != ']') ++p;
    p = std::min(p + 1, pattern.size());
  }
  return t == text.size();
}

std::vector<std::u16string> allTexts(View letters, size_t most) {
  std::vector<std::u16string> texts = {u""};
  for (size_t first = 0, length = 0; length < most; ++length) {
    const size_t end = texts.size();
    for (; first < end; ++first) {
      for (const unichar c : letters) texts.push_back(texts[first] + c);
    }
  }
  return texts;
}

// What a long pattern keeps of the text's units makes no difference.
void checkInLongPattern(View pattern, View text, bool expected) {
  const std::u16string before(5000, u'a');
  ASSERT_EQ(simulated(before + std::u16string(text), before + std::u16string(pattern)), expected)
      << String(pattern).toUTF8() << ' ' << String(text).toUTF8();
}

void checkPattern(View pattern, const std::vector<std::u16string>& texts) {
  for (const auto& text : texts) {
    const bool expected = slowMatches(text, pattern, true);
    ASSERT_EQ(withSets(text, pattern), expected) << String(pattern).toUTF8() << ' ' << String(text).toUTF8();
    ASSERT_EQ(simulated(text, pattern), expected) << String(pattern).toUTF8() << ' ' << String(text).toUTF8();
    ASSERT_EQ(plain(text, pattern), slowMatches(text, pattern, false));
  }
}

TEST(WildcardMatching, EqualsTheDefinitionForAllShortPatterns) {
  const auto texts = allTexts(u"a]-b", 3);
  for (const auto& pattern : allTexts(u"[]-*ab", 5)) checkPattern(pattern, texts);
  const auto moreTexts = allTexts(u"[]-*a^|?\\", 2);
  for (const auto& pattern : allTexts(u"[]-*a^|?\\", 4)) checkPattern(pattern, moreTexts);
}

// Sets whose end depends on the text need at least seven units to matter behind a `*`.
TEST(WildcardMatching, EqualsTheDefinitionForLongerPatterns) {
  const auto texts = allTexts(u"ab]", 4);
  const View pieces[] = {u"*", u"?", u"a", u"b", u"ab", u"[ab]", u"[^a]", u"[a-]"};
  Chance chance(3);
  for (int round = 0; round < 30000; ++round) {
    std::u16string pattern = round % 3 ? u"*[" : u"";
    const size_t length = 6 + chance.below(3);
    pattern += chance.text(length - pattern.size(), u"[]-*ab^|?");
    if (round % 2) pattern.replace(3 + chance.below(length - 4), 2, u"-]");
    checkPattern(pattern, texts);
    if (round % 10) continue;
    const std::u16string text = chance.text(chance.below(40), u"aab");
    checkPattern(chance.text(1 + chance.below(7), pieces), {text});
    if (round % 100 == 0) checkInLongPattern(pattern, text, slowMatches(text, pattern, true));
  }
}

TEST(WildcardMatching, ManyStarsAndLongPatterns) {
  const std::u16string text(3000, u'a');
  const std::u16string stars = repeated(u"*a", 1000), sets = repeated(u"*[a-]b]", 1000),
                       bars = repeated(u"*[|c]", 1000);
  EXPECT_TRUE(plain(text, stars));
  EXPECT_FALSE(plain(text, stars + u"b"));
  EXPECT_FALSE(withSets(text, sets));  // each set takes an "a" and wants "b]", or takes a "b"
  EXPECT_TRUE(withSets(std::u16string(1000, u'b'), sets));
  EXPECT_TRUE(withSets(std::u16string(1000, u'b') + std::u16string(1000, u'c'), sets + bars));
  EXPECT_FALSE(withSets(std::u16string(1000, u'b') + std::u16string(1000, u'|'), sets + bars));
}

TEST(WildcardMatching, Strings) {
  const Cases<String, String, bool, bool, bool, bool> cases = {
      {u"", u"*", false, false, false, false},
      {String(), u"*", false, false, false, false},
      {u"a", u"", false, false, false, false},
      {u"a", String(), false, false, false, false},
      {u"a", u"*", true, true, true, true},
      {u"ABC", u"a*C", false, true, false, true},
      {u"b", u"[A-C]", false, false, false, true},
      {u"[a-c]", u"[A-C]", false, true, false, false},
      {u"stra\x00DF\x0065", u"STRA?E", false, true, false, true},
      {u"\x00C4rger", u"\x00E4*", false, true, false, true},
  };
  for (const auto& [string, pattern, like, likeNoCase, unixLike, unixLikeNoCase] : cases) {
    EXPECT_EQ(isLikeWildcard(string, pattern), like) << pattern.toUTF8();
    EXPECT_EQ(isCaseInsensitiveLikeWildcard(string, pattern), likeNoCase) << pattern.toUTF8();
    EXPECT_EQ(isLikeUnixWildcard(string, pattern), unixLike) << pattern.toUTF8();
    EXPECT_EQ(isCaseInsensitiveLikeUnixWildcard(string, pattern), unixLikeNoCase) << pattern.toUTF8();
  }
  // Only the text is converted: a pattern that was not prepared stays as it is.
  const View text = u"abc", pattern = u"a*";
  EXPECT_FALSE(stringMatchesWildcardUsingUnicharTable(text.begin(), text.end(), pattern.begin(), pattern.end(),
                                                      upperCharsTable()));
}

}  // namespace
}  // namespace velan
