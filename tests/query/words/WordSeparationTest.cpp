#include <gmock/gmock.h>

#include <set>

#include "tests/Testing.h"
#include "velan/query/words/Components.h"
#include "velan/query/words/Hashtags.h"
#include "velan/query/words/WordSeparation.h"

namespace velan {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string joined(const std::vector<String>& words) {
  std::string text;
  for (const String& word : words) text.append(text.empty() ? "" : "|").append(word.toUTF8());
  return text;
}

TEST(WordSeparation, EnumerationListsAndCountsAgree) {
  const Cases<String, std::string, int64_t> cases = {
      {u""_s, "", 0},       {u" ,.\n"_s, "", 0},    {u"  a  b "_s, "a|b", 2},          {u"x--y"_s, "x|y", 2},
      {u"a'b"_s, "a|b", 2}, {u"日本"_s, "日本", 1}, {u"ab\U0001F600cd"_s, "ab|cd", 2}, {u"Ende"_s, "Ende", 1},
  };
  for (const auto& [text, expected, count] : cases) {
    std::vector<String> words;
    const auto collect = [&words](const String& string, const unichar* units, int64_t start, int64_t length) {
      EXPECT_EQ(units, string.characters());
      words.push_back(string.substring({start, length}));
      return false;
    };
    EXPECT_EQ(enumerateWordsUsingBlock(text, collect), count) << expected;
    EXPECT_EQ(joined(words), expected);
    EXPECT_EQ(numberOfWordsUsingDefaultSeparation(text), count) << expected;
    EXPECT_EQ(wordsUsingDefaultSeparation(text).has_value(), !text.isEmpty()) << expected;
    EXPECT_EQ(wordsUsingDefaultSeparation(text).value_or(std::vector<String>()), words);
    EXPECT_EQ(firstWord(text), words.empty() ? String() : words.front());
    EXPECT_EQ(lastWord(text), words.empty() ? String() : words.back());
  }
}

TEST(WordSeparation, StopsWhenAsked) {
  const String text = u"one two three"_s;
  int calls = 0;
  const auto stopAtThird = [](const String&, const unichar*, int64_t start, int64_t, void* context) {
    ++*static_cast<int*>(context);
    return start == 8;
  };
  EXPECT_EQ(enumerateWordsUsingHandler(text, stopAtThird, &calls), 2);
  EXPECT_EQ(calls, 3);
  EXPECT_EQ(enumerateWordsUsingHandler(text, nullptr, &calls), 0);
  EXPECT_EQ(enumerateWordsUsingBlock(text, nullptr), 0);
}

TEST(WordSeparation, ListsOfAnyClass) {
  const String text = u"to be or not to be"_s;
  EXPECT_EQ(wordsUsingDefaultSeparation<std::set<String>>(text)->size(), 4u);
  EXPECT_EQ(joined(*wordsUsingDefaultSeparation(text, 3)), "not");
  EXPECT_EQ(numberOfWordsUsingDefaultSeparation(text, 3), 1);
}

TEST(WordSeparation, WildcardPatternsStayWhole) {
  bool hyphenated = true;
  EXPECT_EQ(joined(*wordsUsingWildcardSeparation(u"a[ ,]b *c? d"_s, &hyphenated)), "a[ ,]b|*c?|d");
  EXPECT_FALSE(hyphenated);
  EXPECT_EQ(joined(*wordsUsingWildcardSeparation(u"se-\nparated*"_s, &hyphenated)), "separated*");
  EXPECT_TRUE(hyphenated);
  EXPECT_FALSE(wordsUsingWildcardSeparation(u""_s, &hyphenated).has_value());
  EXPECT_FALSE(hyphenated);
  EXPECT_EQ(numberOfWordsUsingWildcardSeparation(u"a[ ,]b c"_s), 2);
}

TEST(WordSeparation, SingleWordsFollowTheAsianSetting) {
  const String text = u"x 吾輩は猫である y 研究生命"_s;
  FastWordEnumerator::setSplitAsianWords(true);
  const std::vector<String> words = *wordsUsingDefaultSeparation(text);
  const String last = lastWord(text);
  const Range inside = getWordRangeAtIndex(text, 5);
  FastWordEnumerator::setSplitAsianWords(false);
  EXPECT_EQ(last, words.back());
  EXPECT_LT(last.length(), 4);
  EXPECT_THAT(words, testing::Contains(text.substring(inside)));
  EXPECT_EQ(lastWord(text), u"研究生命"_s);
}

TEST(Components, AnySeparators) {
  const String text = u" one,\ttwo  --\n three\r\n"_s;
  EXPECT_EQ(joined(componentsUsingWhiteSeparation(text)), "one,|two|--|three");
  EXPECT_EQ(joined(componentsUsingWhiteSeparation(text, 4)), "one,|three");
  EXPECT_EQ(joined(componentsUsingLineSeparation(text, 1)), " one,\ttwo  --| three");
  EXPECT_EQ(numberOfComponentsUsingWhiteSeparation(text), 4);
  EXPECT_EQ(numberOfComponentsUsingLineSeparation(text), 2);
  EXPECT_EQ(numberOfComponentsUsingLineSeparation(u""_s), 0);
  EXPECT_THAT(componentsUsingSeparators(text, nullptr), IsEmpty());

  std::vector<Range> ranges;
  EXPECT_EQ(componentsOfCharacters(text.characters(), 6, whiteCharacterSetRep(), &ranges), 1);
  EXPECT_THAT(ranges, ElementsAre(Range{1, 4}));

  std::string decorations;
  const auto note = [](const String&, const unichar*, int64_t, int64_t, bool isDecoration, void* context) {
    *static_cast<std::string*>(context) += isDecoration ? '-' : 'w';
    return false;
  };
  EXPECT_EQ(enumerateComponentsUsingHandler(text, note, &decorations, whiteCharacterSetRep()), 4);
  EXPECT_EQ(decorations, "ww-w");
}

TEST(Hashtags, Rule) {
  const Cases<const char*, String, bool, std::string> cases = {
      {"slash", u"see #tag, #x1 #123 #12 #a/b"_s, true, "tag|x1|123|a/b"},
      {"three digits are enough, two are not", u"#2024 #123, #12; #1-2_3"_s, false, "2024|123|1-2_3"},
      {"other units reject", u"#a.b #(c) x#d #e! #\U0001F600"_s, false, ""},
      {"only the last unit is cut off", u"#a,b #c;"_s, false, "a,|c"},
      {"letters of any script", u"#Übung #日本 #\u0663\u0664\u0665"_s, false, "Übung|日本|\u0663\u0664\u0665"},
  };
  for (const auto& [why, text, allowSlash, expected] : cases) {
    const auto tags = hashtags(text, allowSlash);
    EXPECT_EQ(tags.has_value(), !expected.empty()) << why;
    EXPECT_EQ(joined(tags.value_or(std::vector<String>())), expected) << why;
  }
  EXPECT_FALSE(hashtags(String(), true).has_value());
}

}  // namespace
}  // namespace velan
