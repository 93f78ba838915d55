// A process of its own: here the threads race through the very first use of every table, set and separator.
#include <gtest/gtest.h>

#include <barrier>
#include <thread>
#include <vector>

#include "velan/base/String.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/Separators.h"

namespace velan {
namespace {

struct Seen {
  std::vector<const void*> addresses;
  std::vector<int> values;

  void table(const unichar* table, unichar c) {
    addresses.push_back(table);
    values.push_back(table[c]);
  }
  void set(const uint8_t* set, unichar c) {
    addresses.push_back(set);
    values.push_back(isMemberOfCharacterSetRep(set, c));
  }
  bool operator==(const Seen&) const = default;
};

Seen useEverything(int thread) {
  Seen seen;
  if (thread % 2) initSeparatorsAndTables();
  if (thread % 3 == 0) toAscii(0xE4);
  seen.table(initUpperUmlautsCharsTable(), 0xE4);
  seen.table(initLowerUmlautsCharsTable(), 0xC4);
  seen.table(initLowerCharsTable(), 0xFF3A);
  seen.table(initUpperCharsTable(), 0xFF5A);
  seen.table(initUmlautsCharsTable(), 0x1EF9);
  seen.set(defaultWildcardSeparators(), '*');
  seen.set(defaultWordSeparators(), 0xFFFF);
  seen.set(defaultSentenceSeparators(), '.');
  seen.set(defaultLineSeparators(), '\n');
  seen.set(emptyCharacterSetRep(), 0);
  seen.set(spaceCharacterSetRep(), 0x3000);
  seen.set(whiteCharacterSetRep(), 0xFFFC);
  seen.set(alphaCharacterSetRep(), 0xFFDC);
  seen.set(alphaNumCharacterSetRep(), 0xFFDC);
  seen.set(digitCharacterSetRep(), 0xFF19);
  seen.set(lowerCharacterSetRep(), 0xFF5A);
  seen.set(upperCharacterSetRep(), 0xFF3A);
  seen.set(bitmap(CharacterSet::Illegal), 0xFFFF);
  return seen;
}

TEST(FirstUse, OfEverythingBySixteenThreads) {
  constexpr int kThreads = 16;
  std::barrier start(kThreads);
  Seen seen[kThreads];
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] {
      start.arrive_and_wait();
      seen[i] = useEverything(i);
    });
  }
  for (auto& thread : threads) thread.join();
  const std::vector<int> expected = {'A', 'a', 0xFF5A, 0xFF3A, 'y', 0, 1, 1, 1, 0, 1, 1, 1, 1, 1, 1, 1, 1};
  EXPECT_EQ(seen[0].values, expected);
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
