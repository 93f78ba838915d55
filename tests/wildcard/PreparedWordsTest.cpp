// What is prepared gives what the plain operations give, and so does every kernel: for words of all lengths, of several
// scripts and with unpaired surrogates, in buffers of exactly their size.
#include <cmath>

#include "tests/Testing.h"
#include "velan/text/ConversionTables.h"
#include "velan/wildcard/PreparedSimilarity.h"
#include "velan/wildcard/PreparedWildcard.h"
#include "velan/wildcard/WildcardMatching.h"
#include "velan/wildcard/WildcardPattern.h"
#include "velan/wildcard/WordKernelsInternal.h"

namespace velan {
namespace {

using View = std::u16string_view;

constexpr View kAlphabets[] = {u"aaab",         u"abcdeA[]-^?*|", u"a\u00E4\u00C4\u00DFA", u"\u0430\u0431\u0410",
                               u"\u65E5\u672C", u"a\xD800\xDC00", View(u"\0a\uFFFF", 3)};

const unichar* someTable(Chance& chance) {
  const unichar* const tables[] = {nullptr, upperCharsTable(), upperUmlautsCharsTable()};
  return chance.oneOf(tables);
}

// Both ends lie where the address sanitizer sees what is read beyond them.
struct ExactWord {
  explicit ExactWord(const std::u16string& units) : copy(exactCopy<unichar>(units)), view(copy.get(), units.size()) {}
  std::unique_ptr<unichar[]> copy;
  View view;
};

std::u16string somePattern(Chance& chance, View alphabet) {
  constexpr View kPieces[] = {u"*", u"?", u"[^a]", u"[a-c\u0430-\u0433]", u"[aeiou]", u"[acegikmoq]", u"[", u"[a-]b]"};
  std::u16string pattern;
  for (size_t count = 1 + chance.below(6); count > 0; --count) {
    if (chance.below(2)) pattern += chance.oneOf(kPieces);
    pattern += chance.text(chance.below(chance.below(30) ? 3 : 40), alphabet);
  }
  return pattern;
}

TEST(PreparedWildcard, EqualsThePlainMatchers) {
  initUpperUmlautsCharsTable();
  Chance chance(1);
  size_t found = 0;
  for (int round = 0; round < 3000; ++round) {
    const View alphabet = chance.oneOf(kAlphabets);
    const unichar* const table = someTable(chance);
    std::u16string pattern = somePattern(chance, alphabet);
    const auto withSets = PreparedWildcard::preparedUnixWildcard(pattern, table);
    const auto plain = PreparedWildcard::preparedWildcard(pattern, table);
    prepareWildcardUsingUnicharTable(pattern.data(), pattern.data() + pattern.size(), table);
    std::vector<ExactWord> exact;
    std::vector<View> words;
    for (size_t i = 0; i < 40; ++i) {
      exact.emplace_back(chance.text(chance.below(i % 8 ? 12 : 70), alphabet));
      words.push_back(exact.back().view);
    }
    const auto matches = std::make_unique<bool[]>(words.size());
    withSets->matchWords(words, matches.get());
    for (size_t i = 0; i < words.size(); ++i) {
      const auto expected = [&](auto matcher) {
        return matcher(words[i].begin(), words[i].end(), pattern.data(), pattern.data() + pattern.size(), table);
      };
      const bool matchesSets = expected(stringMatchesUnixWildcardUsingUnicharTable);
      const std::string shown = String(pattern).toUTF8() + ' ' + String(words[i]).toUTF8();
      ASSERT_EQ(matches[i], matchesSets) << shown;
      ASSERT_EQ(withSets->matches(words[i]), matchesSets) << shown;
      ASSERT_EQ(plain->matches(words[i]), expected(stringMatchesWildcardUsingUnicharTable)) << shown;
      found += matchesSets;
    }
  }
  EXPECT_GT(found, 2000u);
}

// Longer and shorter than any vector.
TEST(PreparedWildcard, EndsWithOneOtherUnit) {
  for (size_t length = 1; length <= 40; ++length) {
    const std::u16string word(length, u'b');
    for (const std::u16string& pattern : {word, word + u"*", u"*" + word, u"[ab]*" + word, word + u"*[a-c]"}) {
      const auto prepared = PreparedWildcard::preparedUnixWildcard(pattern, nullptr);
      for (size_t i = 0; i <= length; ++i) {
        for (const std::u16string_view more : {u"", u"b"}) {
          std::u16string other = word + std::u16string(more);
          if (i < length) other[i] = u'd';
          EXPECT_EQ(prepared->matches(other),
                    stringMatchesUnixWildcard(other.data(), other.data() + other.size(), pattern.data(),
                                              pattern.data() + pattern.size()))
              << String(pattern).toUTF8() << ' ' << String(other).toUTF8();
        }
      }
    }
  }
}

// Ranges that touch, hold each other, are empty or all there is, in every order.
TEST(PreparedWildcard, SetsOfRanges) {
  Chance chance(7);
  constexpr View kMembers(u"abcdefgh--|\0\x1\uFFFE\uFFFF", 15),
      kUnits(u"\0\x1\x2 abcdefghi\x8000\uFFFD\uFFFE\uFFFF", 17);
  for (int round = 0; round < 2000; ++round) {
    const std::u16string set = (chance.below(3) ? u"[" : u"[^") + chance.text(1 + chance.below(8), kMembers) + u"]";
    for (const std::u16string& pattern : {set, set + u"*", u"*" + set, u"*" + set + u"*"}) {
      const auto prepared = PreparedWildcard::preparedUnixWildcard(pattern, nullptr);
      for (const unichar& unit : kUnits) {
        EXPECT_EQ(prepared->matches({&unit, 1}),
                  stringMatchesUnixWildcard(&unit, &unit + 1, pattern.data(), pattern.data() + pattern.size()))
            << String(pattern).toUTF8() << ' ' << int{unit};
      }
    }
  }
}

TEST(PreparedSimilarity, EqualsThePlainOne) {
  Chance chance(2);
  size_t found = 0;
  for (int round = 0; round < 3000; ++round) {
    const View alphabet = round % 2 ? chance.oneOf(kAlphabets) : u"abcdefghijklm";
    const unichar* const table = someTable(chance);
    const std::u16string word = chance.text(chance.below(round % 8 ? 14 : 80), alphabet);
    const auto prepared = PreparedSimilarity::preparedSimilarity(word, table);
    for (int i = 0; i < 10; ++i) {
      std::u16string changed = chance.below(4) ? word : chance.text(chance.below(14), alphabet);
      for (auto swaps = chance.below(3); swaps > 0 && !changed.empty(); --swaps) {
        std::swap(changed[chance.below(changed.size())], changed[chance.below(changed.size())]);
      }
      changed.resize(changed.size() - std::min(changed.size(), chance.below(3)));
      const ExactWord other(changed);
      const double expected = stringMatchesUnixWildcardFuzzyUsingUnicharTable(
          word.data(), word.size(), other.view.data(), other.view.size(), table);
      const double given = prepared->similarity(other.view);
      ASSERT_TRUE(given == expected || (std::isnan(given) && std::isnan(expected)));
      for (const double least : {0.0, 0.5, 0.75, 0.8, expected, std::nextafter(expected, 2), double{NAN}}) {
        ASSERT_EQ(prepared->isSimilar(other.view, least), expected >= least) << String(word).toUTF8();
        found += expected >= least;
      }
    }
  }
  EXPECT_GT(found, 20000u);
}

WordPairs pairedOneByOne(View a, View b) {
  const View longer = a.size() > b.size() ? a : b, shorter = a.size() > b.size() ? b : a;
  std::vector<bool> isTaken(longer.size());
  WordPairs result;
  for (size_t i = 0, expected = 0; i < shorter.size(); ++i, ++expected) {
    result.inPlace += longer[i] == shorter[i];
    const auto isFree = [&](size_t j) { return j < longer.size() && !isTaken[j] && longer[j] == shorter[i]; };
    size_t partner = 0;
    while (partner < longer.size() && !isFree(partner)) ++partner;
    if (partner == longer.size()) continue;
    if (isFree(expected)) partner = expected;
    isTaken[partner] = true;
    ++result.pairs;
    result.jumps += i != 0 && partner != expected;
    expected = partner;
  }
  return result;
}

TEST(PreparedSimilarity, FindsTheSimilarAmongMany) {
  Chance chance(5);
  for (int round = 0; round < 30; ++round) {
    const std::u16string word = chance.text(chance.below(round % 8 ? 14 : 80), u"abcdef");
    const unichar* const table = someTable(chance);
    std::vector<ExactWord> exact;
    std::vector<View> words;
    for (size_t i = 0; i < 600; ++i) {
      const std::u16string other = chance.below(2) ? word : chance.text(chance.below(i % 9 ? 14 : 80), u"abcdefgh");
      exact.emplace_back(other + chance.text(chance.below(4), u"abA"));
      words.push_back(exact.back().view);
    }
    const auto prepared = PreparedSimilarity::preparedSimilarity(word, table);
    const auto similar = std::make_unique<bool[]>(words.size());
    for (const double least : {0.0, 0.5, 0.75, 1.0, double{NAN}}) {
      prepared->findSimilarWords(words, least, similar.get());
      for (size_t i = 0; i < words.size(); ++i) {
        ASSERT_EQ(similar[i], prepared->similarity(words[i]) >= least) << String(words[i]).toUTF8() << ' ' << least;
      }
    }
  }
}

// Words that fit into lanes and words that do not, in all orders.
TEST(PreparedSimilarity, ComparesMany) {
  Chance chance(6);
  for (int round = 0; round < 300; ++round) {
    const View alphabet = round % 2 ? chance.oneOf(kAlphabets) : u"abcdefghijklmnop";
    const std::u16string word = chance.text(chance.below(round % 8 ? 18 : 80), alphabet);
    const unichar* const table = someTable(chance);
    std::vector<ExactWord> exact;
    std::vector<View> words;
    for (size_t i = chance.below(round % 7 ? 80 : 600); i > 0; --i) {
      std::u16string other = chance.below(2) ? word : chance.text(chance.below(i % 9 ? 18 : 80), alphabet);
      other.resize(other.size() - std::min(other.size(), chance.below(3)));
      exact.emplace_back(chance.text(chance.below(3), alphabet) + other);
      words.push_back(exact.back().view);
    }
    const auto similarities = std::make_unique<double[]>(words.size());
    PreparedSimilarity::preparedSimilarity(word, table)->compareWords(words, similarities.get());
    for (size_t i = 0; i < words.size(); ++i) {
      const double expected = stringMatchesUnixWildcardFuzzyUsingUnicharTable(word.data(), word.size(), words[i].data(),
                                                                              words[i].size(), table);
      ASSERT_TRUE(similarities[i] == expected || (std::isnan(similarities[i]) && std::isnan(expected)))
          << String(word).toUTF8() << ' ' << String(words[i]).toUTF8();
    }
  }
}

TEST(WordKernels, EqualOneByOne) {
  Chance chance(3);
  for (int round = 0; round < 20000; ++round) {
    const View alphabet = chance.oneOf(kAlphabets);
    const ExactWord a(chance.text(chance.below(64), alphabet)), b(chance.text(chance.below(64), alphabet));
    const WordPairs expected = pairedOneByOne(a.view, b.view);
    const auto shared =
        static_cast<size_t>(std::ranges::count_if(a.view, [&](unichar c) { return b.view.find(c) != View::npos; }));
    for (const auto& kernel : wordKernelList()) {
      const WordPairs pairs = kernel.run.pair(a.view, b.view);
      ASSERT_EQ(std::tie(pairs.inPlace, pairs.pairs, pairs.jumps),
                std::tie(expected.inPlace, expected.pairs, expected.jumps))
          << kernel.name;
      ASSERT_EQ(kernel.run.countUnits(a.view, b.view), shared) << kernel.name;
      if (b.view.empty()) continue;
      LeastShared least{};
      least[a.view.size()] = shared + static_cast<size_t>(round % 2);
      const View words[] = {a.view, u"", a.view};
      uint32_t found[4];
      const size_t expectedCount = round % 2 == 0 ? 3 : a.view.empty() ? 0 : 1;
      ASSERT_EQ(kernel.run.findSharing(words, 3, b.view, least, found), expectedCount) << kernel.name;
    }
  }
}

TEST(WordKernels, FindPositionsInPatterns) {
  Chance chance(4);
  for (size_t length = 1; length < 400; ++length) {
    const ExactWord pattern(chance.text(length, u"abcdefgh-\uFFFE\uFFFF"));
    const unichar unit = chance.oneOf(pattern.view);
    for (const auto& kernel : wordKernelList()) {
      std::vector<KnownPositions> positions(length / 64 + 1, {~uint64_t{0}, ~uint64_t{0}});
      kernel.run.findPositions(pattern.view.data(), length, unit, positions.data());
      for (size_t i = 0; i < positions.size() * 64; ++i) {
        const bool isInside = i > 0 && i + 1 < length;
        const bool isBetween = isInside && pattern.view[i - 1] <= unit && unit <= pattern.view[i + 1];
        ASSERT_EQ(positions[i / 64].equals >> (i % 64) & 1, i < length && pattern.view[i] == unit) << kernel.name;
        ASSERT_EQ(positions[i / 64].ranges >> (i % 64) & 1, isBetween) << kernel.name;
      }
    }
  }
}

}  // namespace
}  // namespace velan
