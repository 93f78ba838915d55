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
std::optional<bool> simulated(View text, View pattern, WildcardSyntax syntax = WildcardSyntax::Unix) {
  return simulateWildcard(text.begin(), text.end(), pattern.begin(), pattern.end(), nullptr, syntax);
}

// Where the pattern goes on behind its element at `p`, no star, when that takes `c`.
std::optional<size_t> slowStep(View pattern, size_t p, unichar c, bool hasSets) {
  const unichar unit = pattern[p++];
  if (unit == '?' || (unit == c && !(hasSets && unit == '['))) return p;
  if (!hasSets || unit != '[' || p == pattern.size()) return std::nullopt;
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
  if (found == isNegated) return std::nullopt;
  while (p < pattern.size() && pattern[p] != ']') ++p;
  return std::min(p + 1, pattern.size());
}

// The definition, word for word: each `*` tries the rest of the pattern at every unit that is left, recursively.
bool slowMatches(View text, View pattern, bool hasSets) {
  size_t t = 0, p = 0;
  while (p < pattern.size()) {
    if (pattern[p] == '*') {
      if (t == text.size()) return pattern.find_first_not_of(u'*', p) == View::npos;
      if (p + 1 == pattern.size()) return true;
      for (; t < text.size(); ++t) {
        if (slowMatches(text.substr(t), pattern.substr(p + 1), hasSets)) return true;
      }
      return false;
    }
    if (t == text.size()) return false;
    const auto next = slowStep(pattern, p, text[t++], hasSets);
    if (!next) return false;
    p = *next;
  }
  return t == text.size();
}

// The same for long patterns: all places that the text read so far leads to.
bool slowMatchesLong(View text, View pattern) {
  std::vector<bool> now(pattern.size() + 1);
  now[0] = true;
  for (size_t t = 0;; ++t) {
    for (size_t p = 0; p < pattern.size(); ++p) {
      if (now[p] && pattern[p] == '*') now[p + 1] = true;
    }
    if (t == text.size()) return now[pattern.size()];
    std::vector<bool> next(pattern.size() + 1);
    for (size_t p = 0; p < pattern.size(); ++p) {
      if (!now[p]) continue;
      const auto behind = pattern[p] == '*' ? p : slowStep(pattern, p, text[t], true);
      if (behind) next[*behind] = true;
    }
    now = next;
  }
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

// Where the pattern lies among the words of 64 positions makes no difference, and what is kept of units of the text
// neither.
void checkBehindOthers(View pattern, View text, bool expected) {
  for (size_t count = 64 - pattern.size(); count <= 64; ++count) {
    const std::u16string before(count, u'a');
    ASSERT_EQ(simulated(before + std::u16string(text), before + std::u16string(pattern)), expected)
        << count << ' ' << String(pattern).toUTF8() << ' ' << String(text).toUTF8();
  }
  const std::u16string before(5000, u'a');
  ASSERT_EQ(simulated(before + std::u16string(text), before + std::u16string(pattern)), expected);
}

void checkPattern(View pattern, const std::vector<std::u16string>& texts) {
  for (const auto& text : texts) {
    const bool expected = slowMatches(text, pattern, true);
    ASSERT_EQ(withSets(text, pattern), expected) << String(pattern).toUTF8() << ' ' << String(text).toUTF8();
    ASSERT_EQ(simulated(text, pattern), expected) << String(pattern).toUTF8() << ' ' << String(text).toUTF8();
    const bool expectedPlain = slowMatches(text, pattern, false);
    ASSERT_EQ(plain(text, pattern), expectedPlain) << String(pattern).toUTF8() << ' ' << String(text).toUTF8();
    ASSERT_EQ(simulated(text, pattern, WildcardSyntax::Plain), expectedPlain);
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
    if (round % 100 == 0) checkBehindOthers(pattern, text, slowMatches(text, pattern, true));
  }
}

TEST(WildcardMatching, EqualsTheDefinitionForLongPatterns) {
  const View pieces[] = {u"*", u"[-]", u"[^-]", u"[^b]", u"[a", u"[^", u"-", u"]", u"?", u"a", u"[", u"|", u"^"};
  Chance chance(4);
  size_t found = 0;
  for (int round = 0; round < 20000; ++round) {
    const std::u16string pattern = chance.text(1, u"*") + chance.text(1 + chance.below(60), pieces);
    const std::u16string text = chance.text(chance.below(40), round % 2 ? View(u"a]") : View(u"ab]^-\\|"));
    const bool expected = slowMatchesLong(text, pattern);
    const std::string shown = String(pattern).toUTF8() + ' ' + String(text).toUTF8();
    ASSERT_EQ(simulated(text, pattern), expected) << shown;
    ASSERT_EQ(withSets(text, pattern), expected) << shown;
    found += expected;
  }
  EXPECT_GT(found, 200u);
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
