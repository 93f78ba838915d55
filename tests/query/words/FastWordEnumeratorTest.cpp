#include <cstdlib>
#include <cstring>
#include <list>

#include "tests/Testing.h"
#include "velan/query/WordFinder.h"
#include "velan/query/words/EastAsianWords.h"
#include "velan/query/words/FastWordEnumerator.h"
#include "velan/query/words/WordIndexInternal.h"
#include "velan/query/words/WordSeparation.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/Separators.h"

namespace velan {
namespace {

bool separates(unichar c) { return isMemberOfCharacterSetRep(defaultWordSeparators(), c); }

std::string typesOf(const FastWordEnumerator& enumerator) {
  std::string types;
  for (int64_t i = 0; i < enumerator.length(); ++i) types += static_cast<char>('0' + enumerator.typeAtIndex(i));
  return types;
}

std::vector<Range> wordsOf(const FastWordEnumerator& enumerator) {
  std::vector<Range> words;
  int64_t index = 0;
  for (Range word; isPresent(word = enumerator.enumerateNextWordAtIndex(&index));) words.push_back(word);
  return words;
}

// A word at a time, as one would say it: the independent check of the index.
std::vector<Range> slowWords(std::u16string_view text, Range range = {0, NSNotFound}) {
  std::vector<Range> words;
  range = clippedRange(range, std::ssize(text));
  for (int64_t i = range.location, start = i; i <= endOf(range); ++i) {
    if (i < endOf(range) && !separates(text[static_cast<size_t>(i)])) continue;
    if (i > start) words.push_back({start, i - start});
    start = i + 1;
  }
  return words;
}

std::u16string randomText(std::mt19937& random, size_t length) {
  static constexpr std::u16string_view alphabet(u"abcXYZäßıµÿđ÷., -\n#\u4E2D\xD83D\xDE00\0", 23);
  std::u16string text(length, u' ');
  const auto separatorsInTen = random() % 10;
  for (auto& c : text) c = random() % 10 < separatorsInTen ? u' ' : alphabet[random() % alphabet.size()];
  return text;
}

TEST(FastWordEnumerator, Types) {
  const Cases<const char*, String, bool, const char*, int64_t> cases = {
      {"start, end, separator", u"ab\U0001F600c"_s, false, "24116", 2},
      {"a set belongs to its word", u"a[ ,]b c"_s, true, "20000416", 2},
      {"an empty set is no set", u"a[] b"_s, true, "20416", 2},
      {"an open set reaches to the end", u"a[b, c"_s, true, "200004", 1},
      {"a bracket at the end", u"a b["_s, true, "6124", 2},
      {"a pattern stays one word", u"*a?b* c"_s, true, "2000416", 2},
  };
  for (const auto& [why, text, wildcard, types, words] : cases) {
    const auto enumerator = FastWordEnumerator::enumeratorWithString(text, false, wildcard);
    ASSERT_TRUE(enumerator) << why;
    EXPECT_EQ(typesOf(*enumerator), types) << why;
    EXPECT_EQ(enumerator->numberOfWords(), words) << why;
  }
}

TEST(FastWordEnumerator, EqualsASlowClassification) {
  std::mt19937 random(7);
  for (size_t length = 1; length <= 9000; length += length < 70 ? 1 : 997) {  // beyond two blocks of the index
    const std::u16string text = randomText(random, length);
    const auto enumerator = FastWordEnumerator::enumeratorWithString(String(text), length % 2 == 1, false);
    ASSERT_TRUE(enumerator);
    const std::vector<Range> words = slowWords(text);
    ASSERT_EQ(wordsOf(*enumerator), words) << length;
    for (const int64_t minimum : {0, 1, 2, 5}) {
      const auto isLong = [&](const Range& word) { return word.length >= minimum; };
      EXPECT_EQ(enumerator->numberOfWords(minimum), std::ranges::count_if(words, isLong));
    }
    for (size_t i = 0; i < length; ++i) {
      EXPECT_EQ(enumerator->isWordSeparatorAtIndex(static_cast<int64_t>(i)), separates(text[i]));
      EXPECT_EQ(enumerator->characters()[i], length % 2 == 1 ? toUpper(text[i]) : text[i]);
    }
  }
}

// Each query at each index against a walk over the list of words.
TEST(FastWordEnumerator, QueriesEqualASlowWalk) {
  std::mt19937 random(8);
  for (size_t length : {1u, 2u, 7u, 8u, 9u, 40u, 41u}) {
    std::u16string text = randomText(random, length);
    if (length > 40) text.replace(3, 30, 30, u'a');  // a long word
    const auto n = static_cast<int64_t>(length);
    const auto enumerator = FastWordEnumerator::initWithCharacters(text.data(), n, false);
    ASSERT_TRUE(enumerator);
    const std::vector<Range> words = slowWords(text);
    for (int64_t index = -2; index <= n + 2; ++index) {
      for (int64_t limit = -1; limit <= n + 2; ++limit) {
        Range previous = kAbsentRange;
        Range next = kAbsentRange;
        const bool inside = index >= 0 && index < n;
        for (const Range& word : words) {
          if (inside && word.location <= index && word.location >= limit) previous = word;
          if (inside && !isPresent(next) && word.location >= index && word.location < limit) next = word;
        }
        EXPECT_EQ(enumerator->rangeOfPreviousWordFromIndex(index, limit), previous) << index << ' ' << limit;
        EXPECT_EQ(enumerator->rangeOfNextWordFromIndex(index, limit), next) << index << ' ' << limit;
        EXPECT_EQ(enumerator->locationOfNextWordFromIndex(index, limit), next.location);
        const Range range = clippedRange({index, limit}, n);
        const std::vector<Range> parts = slowWords(text, range);
        std::vector<Range> enumerated;
        const auto collect = [&](const FastWordEnumerator&, int64_t start, int64_t count) {
          return enumerated.push_back({start, count}), false;
        };
        EXPECT_EQ(enumerator->enumerateWordsInRange({index, limit}, collect), std::ssize(parts));
        EXPECT_EQ(enumerated, parts) << index << ' ' << limit;
        EXPECT_EQ(enumerator->containsSeparatorInRange({index, limit}),
                  std::ranges::any_of(String(text).substring(range), separates));
      }
      const auto next = std::ranges::find_if(words, [&](const Range& word) { return word.location >= index; });
      int64_t behind = index;
      EXPECT_EQ(enumerator->enumerateNextWordAtIndex(&behind), next == words.end() ? kAbsentRange : *next) << index;
      EXPECT_EQ(behind, next == words.end() ? n : endOf(*next)) << index;
      Range around = kAbsentRange;
      bool endBefore = false;
      for (const Range& word : words) {
        if (word.location <= index && index < endOf(word)) around = word;
        endBefore |= endOf(word) == index;
      }
      EXPECT_EQ(enumerator->rangeOfWordAtIndex(index), around) << index;
      EXPECT_EQ(getWordRangeAtIndex(text, index), around) << index;
      EXPECT_EQ(enumerator->isWordEndBeforeIndex(index), endBefore) << index;
    }
  }
}

// Words of up to a thousand units in ranges that begin and end anywhere, and walks that end early.
TEST(FastWordEnumerator, EnumeratesLongWordsInAnyRange) {
  Chance chance(10);
  for (int round = 0; round < 300; ++round) {
    std::u16string text;
    while (text.size() < 3000) {
      text.append(1 + chance.below(round % 3 == 0 ? 1000 : 9), chance.oneOf(u"ab日の"));
      text.append(chance.below(3), u' ');
    }
    const String string(text);
    const auto words = round % 2 == 0 ? FastWordEnumerator::enumeratorWithString(string)
                                      : FastWordEnumerator::enumeratorDividingOnDemand(string, false);
    const Range range = clippedRange(
        {static_cast<int64_t>(chance.below(3000)), static_cast<int64_t>(chance.below(3000))}, string.length());
    std::vector<Range> expected = slowWords(text, range);
    expected.resize(std::min(expected.size(), chance.below(300)));
    std::vector<Range> handed;
    const auto stops = [&](const FastWordEnumerator&, int64_t start, int64_t length) {
      if (handed.size() == expected.size()) return true;
      handed.push_back({start, length});
      return false;
    };
    EXPECT_EQ(words->enumerateWordsInRange(range, stops), std::ssize(expected)) << round;
    EXPECT_EQ(handed, expected) << round;
  }
}

// In blocks of any size, which may be smaller than what is looked at together.
TEST(FastWordEnumerator, GivesWordsInBlocks) {
  Chance chance(11);
  for (int round = 0; round < 300; ++round) {
    std::u16string text;
    while (text.size() < 3000) {
      text.append(1 + chance.below(round % 3 == 0 ? 1000 : 6), chance.oneOf(u"ab日の"));
      text.append(chance.below(3), u' ');
    }
    const auto words = FastWordEnumerator::enumeratorWithString(String(text));
    Range left = {static_cast<int64_t>(chance.below(3000)), static_cast<int64_t>(chance.below(4000))};
    const std::vector<Range> expected = slowWords(text, left);
    std::vector<Range> given;
    const size_t most = 1 + chance.below(200);
    const auto block = std::make_unique<Range[]>(most);
    while (const size_t count = words->wordsInRange(&left, block.get(), most)) {
      EXPECT_EQ(left.location, endOf(block[count - 1]));
      given.insert(given.end(), block.get(), block.get() + count);
    }
    EXPECT_EQ(given, expected) << round;
    EXPECT_EQ(left.length, 0);
  }
  const auto words = FastWordEnumerator::enumeratorWithString(u"a b"_s);
  Range left = {0, 3}, one;
  EXPECT_EQ(words->wordsInRange(&left, &one, 0) + words->wordsInRange(nullptr, &one, 1), 0u);
  EXPECT_EQ(words->wordsInRange(&left, &one, 1), 1u);
  words->invalidate();
  EXPECT_EQ(words->wordsInRange(&left, &one, 1), 0u);
}

TEST(FastWordEnumerator, EnumeratesWordsDividedOnDemand) {
  const String text(repeated(u"吾輩は猫である。名前は NAME まだ無い", 60));
  const std::vector<Range> expected = wordsOf(*FastWordEnumerator::enumeratorSplittingAsianWords(text));
  FastWordEnumerator::setSplitAsianWords(true);
  const auto words = FastWordEnumerator::enumeratorDividingOnDemand(text, false);
  FastWordEnumerator::setSplitAsianWords(false);
  std::vector<Range> handed;
  words->enumerateWordsInRange({0, text.length()}, [&](const FastWordEnumerator&, int64_t start, int64_t length) {
    return handed.push_back({start, length}), false;
  });
  EXPECT_EQ(handed, expected);
  EXPECT_GT(expected.size(), 400u);
}

TEST(FastWordEnumerator, StopsEnumeratingWhenAsked) {
  const auto enumerator = FastWordEnumerator::initWithString(u"one two, three"_s);
  int calls = 0;
  const auto stopAtSecond = [](const FastWordEnumerator&, int64_t, int64_t, void* context) {
    return ++*static_cast<int*>(context) == 2;
  };
  EXPECT_EQ(enumerator->enumerateWordsInRange({0, 14}, stopAtSecond, &calls), 1);
  EXPECT_EQ(calls, 2);
  EXPECT_EQ(enumerator->enumerateWordsInRange({0, 14}, nullptr, nullptr), 0);
  EXPECT_EQ(enumerator->enumerateWordsInRange({0, 14}, nullptr), 0);
  bool (*plain)(const FastWordEnumerator&, int64_t, int64_t) = [](auto&, int64_t start, int64_t) { return start > 4; };
  EXPECT_EQ(enumerator->enumerateWordsInRange({0, 14}, plain), 2);
  plain = nullptr;
  EXPECT_EQ(enumerator->enumerateWordsInRange({0, 14}, plain), 0);
  auto counter = [count = 0](const auto&...) mutable { return ++count == 3; };
  EXPECT_EQ(enumerator->enumerateWordsInRange({0, 4}, counter), 1);
  EXPECT_EQ(enumerator->enumerateWordsInRange({0, 14}, FastWordEnumerator::WordBlock(counter)), 1);  // the same closure
}

TEST(FastWordEnumerator, SharesCopiesAndOwnsUnits) {
  const String text = u"Straße Öl"_s;
  const auto borrowing = FastWordEnumerator::enumeratorWithString(text);
  EXPECT_EQ(borrowing->characters(), text.characters());
  const auto upper = FastWordEnumerator::enumeratorWithString(text, true, false);
  EXPECT_EQ(upper->substringWithRange({0, 9}), u"STRAßE ÖL"_s);
  EXPECT_EQ(upper->lowercaseSubstringWithRange({4, 50}), u"ße öl"_s);
  EXPECT_EQ(borrowing->uppercaseSubstringWithRange({7, 2}), u"ÖL"_s);
  EXPECT_TRUE(upper->string().isSameObject(text));

  // The address sanitizer sees units that are freed twice or never.
  const auto unitsFromMalloc = [] {
    auto* units = static_cast<unichar*>(std::malloc(2 * sizeof(unichar)));
    return static_cast<unichar*>(std::memcpy(units, u"ab", 2 * sizeof(unichar)));
  };
  EXPECT_FALSE(FastWordEnumerator::initWithCharactersNoCopy(unitsFromMalloc(), 0, true));
  const auto owning = FastWordEnumerator::initWithCharactersNoCopy(unitsFromMalloc(), 2, true);
  EXPECT_EQ(owning->string(), u"ab"_s);
  EXPECT_TRUE(owning->setCharacters(text.characters(), text.length(), false));
  EXPECT_EQ(owning->numberOfWords(), 2);
  EXPECT_TRUE(owning->setCharacters(unitsFromMalloc(), 2, true));
  EXPECT_FALSE(owning->setCharacters(unitsFromMalloc(), -1, true));
  EXPECT_EQ(owning->length(), 0);
}

// Searches take units in any case for those in upper case: no unit that has another case may divide words.
TEST(FastWordEnumerator, NothingThatDividesWordsHasCase) {
  for (size_t i = 0; i < VelanTableLength; ++i) {
    const auto c = static_cast<unichar>(i), upper = toUpper(c);
    for (const unichar either : {c, upper}) {
      if (c == upper) continue;
      for (const uint8_t* rep : {defaultWordSeparators(), defaultWildcardSeparators(), defaultLineSeparators()}) {
        EXPECT_FALSE(isMemberOfCharacterSetRep(rep, either)) << i;
      }
      EXPECT_FALSE(isMemberOfCharacterSetRep(spaceCharacterSetRep(), either) || isEastAsianUnichar(either)) << i;
      EXPECT_EQ(std::u16string_view(u"*?[]-\xAD\x2010").find(either), std::u16string_view::npos) << i;
    }
  }
}

TEST(FastWordEnumerator, CopiesInUpperCaseOnce) {
  const String text(repeated(u"Straße Öl ", 5000));
  const auto words = FastWordEnumerator::enumeratorWithString(text, true, false);
  EXPECT_EQ(FindWordInString(*words, 0, text.length(), u"öl", 2, QueryComparison::IgnoreCase, true), 7);
  const std::u16string expected = repeated(u"STRAßE ÖL ", 5000);
  const unichar* seen[8];
  inThreads(8, [&](int i) {
    seen[i] = words->characters();
    EXPECT_EQ(std::u16string_view(seen[i], expected.size()), expected);
    EXPECT_EQ(FindWordInString(*words, 0, text.length(), u"öl", 2, QueryComparison::IgnoreCase, true), 7);
  });
  for (const unichar* units : seen) EXPECT_EQ(units, seen[0]);
  EXPECT_EQ(FindWordInString(*words, 0, text.length(), u"OL", 2, QueryComparison::IgnoreDiacritics, true), 7);
  EXPECT_EQ(text.characters()[1], u't');
  words->setCharacters(u"a b", 3, false);  // as they are from now on
  EXPECT_EQ(FindWordInString(*words, 0, 3, u"b", 1, QueryComparison::Exact, true), 2);
  EXPECT_EQ(words->characters()[2], u'b');
}

TEST(FastWordEnumerator, IsNeutralWithoutText) {
  EXPECT_FALSE(FastWordEnumerator::enumeratorWithString(u""_s));
  EXPECT_FALSE(FastWordEnumerator::enumeratorWithString(String(), true, true));
  EXPECT_FALSE(FastWordEnumerator::initWithCharacters(nullptr, 3, true));
  const auto enumerator = FastWordEnumerator::initWithString(u"some words"_s);
  enumerator->invalidate();
  EXPECT_EQ(enumerator->characters(), nullptr);
  EXPECT_TRUE(enumerator->string().isAbsent());
  EXPECT_EQ(enumerator->numberOfWords() + enumerator->numberOfWords(3) + enumerator->typeAtIndex(0), 0);
  EXPECT_FALSE(enumerator->containsSeparatorInRange({0, 10}) || enumerator->isWordEndBeforeIndex(4));
  EXPECT_EQ(wordsOf(*enumerator).size(), 0u);
  EXPECT_TRUE(enumerator->stringBySeparatingWords().isAbsent());
}

TEST(FastWordEnumerator, JoinsHyphenatedWords) {
  const Cases<const char*, String, std::string, bool> cases = {
      {"LF", u"a Donau-\ndampfer b"_s, "a Donaudampfer b ", true},
      {"CR LF and indentation", u"Donau-\r\n\t dampfer"_s, "Donaudampfer ", true},
      {"soft hyphen, twice", u"ex\u00AD\ntra\u00AD\u2028ordinary"_s, "extraordinary ", true},
      {"inside a line", u"e-mail"_s, "e mail ", false},
      {"a blank after the hyphen", u"Donau- \ndampfer"_s, "Donau dampfer ", false},
      {"a dash stands alone", u"Donau -\ndampfer"_s, "Donau dampfer ", false},
      {"the end of the text", u"Donau-\n"_s, "Donau ", false},
  };
  for (const auto& [why, text, expected, isHyphenated] : cases) {
    const auto enumerator = FastWordEnumerator::initWithString(text);
    std::list<String> words;
    bool hyphenated = !isHyphenated;
    enumerator->addWordsTo(words, 1, &hyphenated);
    std::string joined;
    for (const String& word : words) joined += word.toUTF8() + ' ';
    EXPECT_EQ(joined, expected) << why;
    EXPECT_EQ(hyphenated, isHyphenated) << why;
  }
  std::vector<String> words;
  bool hyphenated = false;
  const auto enumerator = FastWordEnumerator::initWithString(u"ab-\ncd e"_s);
  enumerator->addWordsTo(words, 2, nullptr);
  enumerator->addWordsTo(words, 4, &hyphenated);
  EXPECT_EQ(words, (std::vector<String>{u"ab"_s, u"cd"_s, u"abcd"_s}));
  EXPECT_EQ(enumerator->stringBySeparatingWords(), u"ab cd e"_s);
}

// What the words are is the tokenizer's judgement: only that there are several, and that they cover the runs.
TEST(FastWordEnumerator, SplitsAsianWords) {
  const String text = u"I read 吾輩は猫である。日本abc語 twice"_s;
  const int64_t unsplit = FastWordEnumerator::initWithString(text)->numberOfWords();
  EXPECT_EQ(unsplit, 5);
  FastWordEnumerator::setSplitAsianWords(true);
  const auto enumerator = FastWordEnumerator::initWithString(text);
  std::u16string blocks =
      repeated(u"plain words, ", 50) + repeated(u"吾輩は猫である", 80) + repeated(u" 日本abc語 twice", 90);
  blocks.insert(256, 1, u'。');  // a run begins with a block
  blocks.insert(257, u"日本語");
  for (const String& each : {text, String(blocks)}) {
    const auto divided = FastWordEnumerator::initWithString(each);
    for (int64_t i = 0; i < each.length(); i += 1 + each.length() / 99) {
      const auto fresh = [&each] { return FastWordEnumerator::enumeratorDividingOnDemand(each, false); };
      EXPECT_EQ(fresh()->typeAtIndex(i), divided->typeAtIndex(i)) << i;
      EXPECT_EQ(fresh()->rangeOfNextWordFromIndex(i, each.length()),
                divided->rangeOfNextWordFromIndex(i, each.length()));
      const auto onDemand = fresh();
      EXPECT_EQ(onDemand->rangeOfPreviousWordFromIndex(i, 0), divided->rangeOfPreviousWordFromIndex(i, 0)) << i;
      EXPECT_EQ(onDemand->numberOfWords(), divided->numberOfWords());
      EXPECT_EQ(typesOf(*onDemand), typesOf(*divided));
    }
  }
  FastWordEnumerator::setSplitAsianWords(false);
  EXPECT_GT(enumerator->numberOfWords(), unsplit + 2);
  EXPECT_EQ(enumerator->numberOfWords(), std::ssize(wordsOf(*enumerator)));
  for (int64_t i = 0; i < text.length(); ++i) {
    EXPECT_NE(isPresent(enumerator->rangeOfWordAtIndex(i)), separates(text[i])) << i;
  }

  const String spaced = stringBySeparatingAsianWords(text);
  EXPECT_EQ(FastWordEnumerator::initWithString(spaced)->numberOfWords(), enumerator->numberOfWords());
  const String latin = u"no such words"_s;
  EXPECT_TRUE(stringBySeparatingAsianWords(latin).isSameObject(latin));
}

}  // namespace
}  // namespace velan
