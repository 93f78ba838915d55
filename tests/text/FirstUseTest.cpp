// A process of its own: here the threads race through the very first use of every table, set and separator.
#include <barrier>

#include "tests/Testing.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/Separators.h"

namespace velan {
namespace {

using Seen = std::vector<std::pair<const void*, int>>;  // where, and what is there

Seen useEverything(int thread) {
  if (thread % 2) initSeparatorsAndTables();
  if (thread % 3 == 0) toAscii(0xE4);
  Seen seen;
  const auto table = [&](const unichar* at, unichar c) { seen.emplace_back(at, at[c]); };
  const auto set = [&](const uint8_t* at, unichar c) { seen.emplace_back(at, isMemberOfCharacterSetRep(at, c)); };
  table(initUpperUmlautsCharsTable(), 0xE4);
  table(initLowerUmlautsCharsTable(), 0xC4);
  table(initLowerCharsTable(), 0xFF3A);
  table(initUpperCharsTable(), 0xFF5A);
  table(initUmlautsCharsTable(), 0x1EF9);
  set(defaultWildcardSeparators(), '*');
  set(defaultWordSeparators(), 0xFFFF);
  set(defaultSentenceSeparators(), '.');
  set(defaultLineSeparators(), '\n');
  set(emptyCharacterSetRep(), 0);
  set(spaceCharacterSetRep(), 0x3000);
  set(whiteCharacterSetRep(), 0xFFFC);
  set(alphaCharacterSetRep(), 0xFFDC);
  set(alphaNumCharacterSetRep(), 0xFFDC);
  set(digitCharacterSetRep(), 0xFF19);
  set(lowerCharacterSetRep(), 0xFF5A);
  set(upperCharacterSetRep(), 0xFF3A);
  set(bitmap(CharacterSet::Illegal), 0xFFFF);
  return seen;
}

TEST(FirstUse, OfEverythingBySixteenThreads) {
  constexpr int kThreads = 16;
  std::barrier start(kThreads);
  Seen seen[kThreads];
  inThreads(kThreads, [&](int i) {
    start.arrive_and_wait();
    seen[i] = useEverything(i);
  });
  const std::vector<int> expected = {'A', 'a', 0xFF5A, 0xFF3A, 'y', 0, 1, 1, 1, 0, 1, 1, 1, 1, 1, 1, 1, 1};
  for (size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(seen[0].at(i).second, expected[i]) << i;
  for (const auto& other : seen) EXPECT_EQ(other, seen[0]);
}

// Here because the change is for good and for the whole process.
TEST(FirstUse, RemovedSymbolsAreWordCharacters) {
  const unichar c = '-';
  ASSERT_TRUE(isMemberOfCharacterSetRep(defaultWordSeparators(), c));
  removeSymbolsFromWordSeparators(u"-@");
  for (const uint8_t* rep : {defaultWordSeparators(), defaultWildcardSeparators()}) {
    EXPECT_FALSE(isMemberOfCharacterSetRep(rep, c));
    EXPECT_FALSE(isMemberOfCharacterSetRep(rep, '@'));
    EXPECT_TRUE(isMemberOfCharacterSetRep(rep, '+'));
  }
  EXPECT_TRUE(isMemberOfCharacterSetRep(defaultWordSeparators(), '*'));
}

}  // namespace
}  // namespace velan
