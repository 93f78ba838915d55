// What is done to short words in vectors, each for one pattern or word that was prepared: one list of kernels for all
// of it. The operations are templates in WordLoopsInternal.h, and each instruction set a source of some lines.
#ifndef VELAN_WILDCARD_WORD_KERNELS_INTERNAL_H
#define VELAN_WILDCARD_WORD_KERNELS_INTERNAL_H

#include <algorithm>
#include <array>
#include <string_view>

#include "velan/base/CTypes.h"
#include "velan/base/kernels/KernelsInternal.h"

namespace velan {

/// Words of at most so many units are short, so that a number has a bit for each position and one for their end.
inline constexpr size_t kMostShortUnits = 63;

/// What one unit of a word may be: one of some ranges, or none of them.
struct UnitClass {
  static constexpr size_t kMost = 8;
  enum class Kind : uint8_t { OneUnit, Ranges };

  bool operator==(const UnitClass&) const = default;

  unichar low[kMost] = {};
  unichar span[kMost] = {};  // the last unit of the range less the first
  uint8_t count = 0;
  bool isNegated = false;
  Kind kind = Kind::Ranges;
};

/// Units in a row, each in a range of its own. Behind them is room for any unit.
struct UnitRanges {
  static constexpr unichar kAll = 0xFFFF;

  constexpr UnitRanges() { std::ranges::fill(span, kAll); }

  unichar low[kMostShortUnits + 1] = {};
  unichar span[kMostShortUnits + 1];
  size_t length = 0;
};

/// A pattern whose elements stand for one unit each, but for the stars: what is before the first star, behind the last,
/// and between two of them.
struct WordProgram {
  static constexpr size_t kMostClasses = 24, kMostElements = 63;
  static constexpr uint8_t kAnyUnit = 0xFF;

  struct Piece {
    uint8_t first = 0, length = 0;  // elements
  };

  size_t minLength = 0, maxLength = 0;
  uint8_t classCount = 0, elementCount = 0, middleCount = 0;
  bool endsAreRanges = false;  // so that they say all about head and tail
  UnitRanges headRanges, tailRanges;
  Piece head, tail;
  Piece middles[kMostElements];
  uint8_t elements[kMostElements];  // the numbers of their classes
  UnitClass classes[kMostClasses];
};

/// How two words have been paired, unit by unit.
struct WordPairs {
  size_t inPlace = 0;  // units that both have in the same place
  size_t pairs = 0;
  size_t jumps = 0;  // pairs that do not follow the one before
};

/// The similarity of two words of which the longer one has `length` units.
double similarityFromPairs(const WordPairs& pairs, size_t length);

/// The same for counts of any type. (Static, because each file compiles it for other instructions.)
template <typename Count>
static inline double similarityFromCounts(Count inPlace, Count pairs, Count jumps, Count length) {
  const auto all = static_cast<double>(length);
  const double positional = static_cast<double>(inPlace) / all;
  const double paired = static_cast<double>(pairs) * (1 - static_cast<double>(jumps) / all) / all;
  return positional > paired ? positional : paired;
}

/// Words of at most so many units fit into a lane of 16 bits.
inline constexpr size_t kMostLaneUnits = 16;

/// For each 64 positions of a pattern those that hold a unit, and those of `-` that stand between the ends of a range
/// that does.
struct KnownPositions {
  uint64_t equals, ranges;
};

/// How many units a short word has to share, by its length.
using LeastShared = std::array<size_t, kMostShortUnits + 1>;

struct WordKernels {
  /// Whether each of the words matches. False when there are long ones, which are left to others.
  bool (*match)(const WordProgram& program, const std::u16string_view* words, size_t count, bool* matches);
  /// How many units of a short word are among `units`.
  size_t (*countUnits)(std::u16string_view word, std::u16string_view units);
  /// Writes the numbers of the words that have at least `least[length]` units among `units`, and of all long ones, to
  /// `found`, which has room for one more than all, and returns how many there are. `units` is not empty.
  size_t (*findSharing)(const std::u16string_view* words, size_t count, std::u16string_view units,
                        const LeastShared& least, uint32_t* found);
  /// The similarities of many words with `word`, which has only the units `different`. Returns how many words it leaves
  /// to others, and writes their numbers to `others`, which has room for one more than all.
  size_t (*compare)(std::u16string_view word, std::u16string_view different, const std::u16string_view* words,
                    size_t count, double* similarities, uint32_t* others);
  /// Of two short words.
  WordPairs (*pair)(std::u16string_view a, std::u16string_view b);
  /// For `length / 64 + 1` numbers each; the first and the last unit are between none.
  void (*findPositions)(const unichar* pattern, size_t length, unichar unit, KnownPositions* positions);
};

const Kernels<WordKernels>& wordKernelList();
inline const WordKernels& wordKernels() {
  static const WordKernels& kernels = wordKernelList().best();
  return kernels;
}

#ifdef __x86_64__
extern const WordKernels kWordKernelsSse4, kWordKernelsAvx2, kWordKernelsAvx512;
#elif defined(__AARCH64EL__)
extern const WordKernels kWordKernelsNeon;
#endif

}  // namespace velan

#endif  // VELAN_WILDCARD_WORD_KERNELS_INTERNAL_H
