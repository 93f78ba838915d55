#include "velan/text/Separators.h"

#include <atomic>
#include <mutex>

#include "velan/base/String.h"
#include "velan/text/CharacterSetBitsInternal.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/ConversionTables.h"

namespace velan {
namespace {

struct LazyBits {
  std::once_flag once;
  CharacterSetBits bits;
};
LazyBits word, wildcard;

void removeUnit(CharacterSetBits& bits, unichar c) {
  // Two callers may remove symbols that share a byte.
  __atomic_fetch_and(&bits[c >> 3], static_cast<uint8_t>(~(1u << (c & 7))), __ATOMIC_RELAXED);
}

CharacterSetBits& wordSeparators() {
  std::call_once(word.once, [] {
    for (const CharacterSet set : {CharacterSet::WhitespaceAndNewline, CharacterSet::Punctuation, CharacterSet::Illegal,
                                   CharacterSet::Control, CharacterSet::Symbol}) {
      addSet(word.bits, bitmap(set));
    }
    // Listed whether or not their categories bring them in already: the result must not depend on Unicode's version.
    addUnits(word.bits,
             {0x0020, 0x002C, 0x002E, 0x003B, 0x003A, 0x0027, 0x0022, 0x0021, 0x003F, 0x0028, 0x0029, 0x003D, 0x002F,
              0x005C, 0x002A, 0x002B, 0x002D, 0x005F, 0x0025, 0x2030, 0x0026, 0x007B, 0x007D, 0x005B, 0x005D, 0x007C,
              0x003C, 0x003E, 0x0023, 0x0040, 0x005E, 0x00B4, 0x0060, 0x2018, 0x2019, 0x201A, 0x201C, 0x201D, 0x00A8,
              0x201E, 0x00A7, 0x00AB, 0x00BB, 0x00A9, 0x00AE, 0x2039, 0x203A, 0x00B1, 0x2014, 0x02C6, 0x2122, 0x00BD,
              0x00BC, 0x00B9, 0x00B2, 0x00B3, 0x00B0, 0x00A6, 0x007E, 0xFFFD, 0x00A4, 0x000C, 0x00A0, 0x000A, 0x000D,
              0x2028, 0x2029, 0x0003, 0xFFFC, 0x0009, 0xFEFF, 0x2013, 0x0000});
    addRange(word.bits, 0xD800, 0xDFFF);  // surrogates
    addRange(word.bits, 0xF400, 0xF8FF);  // the upper part of the private-use units
  });
  return word.bits;
}

CharacterSetBits& wildcardSeparators() {
  std::call_once(wildcard.once, [] {
    wildcard.bits = wordSeparators();
    for (const unichar c : {u'*', u'?', u'[', u']'}) removeUnit(wildcard.bits, c);
  });
  return wildcard.bits;
}

constexpr CharacterSetBits setOf(std::initializer_list<unichar> units) {
  CharacterSetBits bits{};
  addUnits(bits, units);
  return bits;
}
constexpr CharacterSetBits kSentenceSeparators = setOf({'!', '.', ':', '?'});
constexpr CharacterSetBits kLineSeparators = setOf({0x000D, 0x000A, 0x000C, 0x2029, 0x2028, 0x0003, 0xFFFC, 0x0085});

std::atomic<int64_t> separationMode{0};

}  // namespace

const uint8_t* defaultWordSeparators() { return wordSeparators().data(); }
const uint8_t* defaultSentenceSeparators() { return kSentenceSeparators.data(); }
const uint8_t* defaultLineSeparators() { return kLineSeparators.data(); }
const uint8_t* defaultWildcardSeparators() { return wildcardSeparators().data(); }

void initSeparators() { wordSeparators(); }  // the other two are constants
void initWildcardSeparators() { wildcardSeparators(); }
void initWildcardTables() { initUpperUmlautsCharsTable(); }

void initSeparatorsAndTables() {
  initSeparators();
  initWildcardSeparators();
  initWildcardTables();
}

int64_t defaultWordSeparationMode() { return separationMode.load(std::memory_order_relaxed); }
void setDefaultWordSeparationMode(int64_t mode) { separationMode.store(mode, std::memory_order_relaxed); }

void removeSymbolsFromWordSeparators(const String& symbols) {
  CharacterSetBits& words = wordSeparators();
  CharacterSetBits& wildcards = wildcardSeparators();  // both before the first change: one is copied from the other
  for (const unichar c : symbols.view()) {
    removeUnit(words, c);
    removeUnit(wildcards, c);
  }
}

}  // namespace velan
