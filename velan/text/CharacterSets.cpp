#include "velan/text/CharacterSets.h"

#include <algorithm>
#include <mutex>

#include "velan/platform/CharacterDataInternal.h"
#include "velan/text/CharacterSetBitsInternal.h"
#include "velan/text/kernels/UnitKernelsInternal.h"

namespace velan {
namespace {

constexpr Categories kLetters = Categories::UppercaseLetter | Categories::LowercaseLetter |
                                Categories::TitlecaseLetter | Categories::OtherLetter | Categories::Mark;

// In the order of `CharacterSet`.
constexpr Categories kCategories[] = {
    Categories::SpaceSeparator,
    Categories::SpaceSeparator | Categories::LineSeparator,
    kLetters,
    Categories::UppercaseLetter | Categories::TitlecaseLetter,
    Categories::LowercaseLetter,
    kLetters | Categories::DecimalDigit | Categories::OtherNumber,
    Categories::DecimalDigit,
    Categories::Punctuation,
    Categories::Symbol,
    Categories::ControlOrFormat,
    Categories::Unassigned,
};
constexpr size_t kSetCount = std::size(kCategories);
static_assert(kSetCount == static_cast<size_t>(CharacterSet::Illegal) + 1);

// All sets together: they come out of one pass over the character database, which costs more than filling them.
struct alignas(64) Sets {  // vectors of a set lie in one line of the cache
  CharacterSetBits platform[kSetCount];
  CharacterSetBits space;
  CharacterSetBits white;

  CharacterSetBits& operator[](CharacterSet set) { return platform[static_cast<size_t>(set)]; }
};

void build(Sets& sets) {
  enumerateCategories([&sets](Categories category, unichar first, unichar last) {
    for (size_t i = 0; i < kSetCount; ++i) {
      if (intersect(kCategories[i], category)) addRange(sets.platform[i], first, last);
    }
  });
  addUnits(sets[CharacterSet::Whitespace], {0x0009});
  addUnits(sets[CharacterSet::WhitespaceAndNewline], {0x000A, 0x000B, 0x000C, 0x000D, 0x0085});

  sets.space = sets[CharacterSet::Whitespace];
  addUnits(sets.space, {0x0000, 0x0009});
  sets.white = sets[CharacterSet::WhitespaceAndNewline];
  addUnits(sets.white, {0x0000, 0x0003, 0x0009, 0x000A, 0x000C, 0x000D, 0x00A0, 0x2028, 0x2029, 0xFEFF, 0xFFFC});
}

const Sets& builtSets() {
  static Sets sets;  // zero-initialised memory of the library: building cannot fail
  static std::once_flag once;
  std::call_once(once, build, sets);
  return sets;
}

constexpr CharacterSetBits kEmpty{};

}  // namespace

const uint8_t* bitmap(CharacterSet set) { return builtSets().platform[static_cast<size_t>(set)].data(); }

const uint8_t* emptyCharacterSetRep() { return kEmpty.data(); }
const uint8_t* spaceCharacterSetRep() { return builtSets().space.data(); }
const uint8_t* whiteCharacterSetRep() { return builtSets().white.data(); }
const uint8_t* alphaCharacterSetRep() { return bitmap(CharacterSet::Letter); }
const uint8_t* alphaNumCharacterSetRep() { return bitmap(CharacterSet::Alphanumeric); }
const uint8_t* digitCharacterSetRep() { return bitmap(CharacterSet::DecimalDigit); }
const uint8_t* lowerCharacterSetRep() { return bitmap(CharacterSet::LowercaseLetter); }
const uint8_t* upperCharacterSetRep() { return bitmap(CharacterSet::UppercaseLetter); }

bool onlyWhiteCharacters(const unichar* characters, size_t length) {
  if (length == 0) return true;
  return characters && unitKernels().findMember(characters, length, whiteCharacterSetRep(), false) == length;
}

}  // namespace velan
