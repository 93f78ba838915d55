#include <algorithm>
#include <utility>

#include "velan/base/ScratchBuffer.h"
#include "velan/wildcard/WildcardSimulationInternal.h"
#include "velan/wildcard/WordKernelsInternal.h"

namespace velan {
namespace {

constexpr size_t kUnitsOnStack = 4096;
constexpr size_t kPositionsPerWord = 64;
// What is known of units may take so many words, unless a single unit takes more.
constexpr size_t kKnownOnStack = 1024, kKnownOnHeap = 1 << 17;
constexpr size_t kMostSlots = 256;

// One word of the state or of a class of pattern positions per 64 positions.
//
// How members of a set are read is the same whichever `[` the reading began at: only a `-` takes in the unit behind it,
// and what stands directly behind a `[` or its `^` is never behind a `-`. So the first thing that ends a set is the
// next of certain positions, and all sets go there at once.
struct Words {
  uint64_t now;                // where the text read so far can lead; "`*` here" implies "behind it"
  uint64_t stars, anyOnes;     // the positions that hold `*` and `?`
  uint64_t literals;           // those that are literals where no set is read
  uint64_t opens, negations;   // the `[` that open a set, without and with a `^` behind
  uint64_t members;            // the units that are members where a set is read
  uint64_t dashes;             // the `-` that make ranges there
  uint64_t closers, brackets;  // the `]` that close sets that have not matched, and all `]`; with the end
  uint64_t end;                // behind the last unit
};

// Bits that go up through the positions, 64 at a time.
struct Shift {
  uint64_t by(unsigned count, uint64_t bits) {
    return bits << count | std::exchange(_carry, bits >> (kPositionsPerWord - count));
  }
  uint64_t carried() const { return _carry; }

 private:
  uint64_t _carry = 0;
};

// Bits that go up through the positions to the zero behind a run of ones, 64 at a time: adding a bit to a run carries
// it there. Several bits in a run have the same effect, as they make less than another run.
class Runs {
 public:
  uint64_t carried() const { return _carry; }

 protected:
  // What goes on from the 64 positions before is one more bit at the first one.
  uint64_t entered(uint64_t bits) const { return bits | _carry; }
  uint64_t sum(uint64_t ones, uint64_t bits) {
    uint64_t result = 0;
    _carry = __builtin_add_overflow(ones, ones & bits, &result);
    return result;
  }

 private:
  uint64_t _carry = 0;
};

// Bits that go up to the next of the places where they stop, which may be where they are.
struct Flow : Runs {
  uint64_t to(uint64_t stops, uint64_t bits) {
    bits = entered(bits);
    return (sum(~stops, bits) | bits) & stops;
  }
};

// Adds what lies behind stars: a `*` may stand for nothing.
struct StarFlow : Runs {
  uint64_t with(uint64_t stars, uint64_t bits) {
    bits = entered(bits);
    return bits | (sum(stars, bits) ^ stars);
  }
};

class Simulation {
 public:
  static constexpr size_t wordCount(size_t length) { return length / kPositionsPerWord + 1; }

  /// `words` has room for `wordCount(length)`, `known` for as many times `slots`, which are at most `kMostSlots`.
  Simulation(const unichar* pattern, size_t length, Words* words, KnownPositions* known, size_t slots, bool hasSets)
      : _pattern(pattern), _length(length), _wordCount(wordCount(length)), _words(words), _known(known), _slots(slots) {
    std::fill_n(_words, _wordCount, Words{});
    std::fill_n(_units, kMostSlots, -1);
    for (size_t i = 0; i < length; ++i) classify(i, hasSets);
    if (hasSets) classifyMembers();
    Words& last = _words[length / kPositionsPerWord];
    last.end = uint64_t{1} << (length % kPositionsPerWord);
    last.closers |= last.end;
    last.brackets |= last.end;
  }

  template <typename Map>
  bool run(const unichar* text, const unichar* textEnd, Map map) {
    begin();
    for (bool isAlive = true; isAlive && text < textEnd; ++text) {
      const unichar c = map(*text);
      isAlive = read(c, knownOf(c));
    }
    return text == textEnd && (_words[_wordCount - 1].now & _words[_wordCount - 1].end) != 0;
  }

 private:
  // What the unit is where no set is read.
  void classify(size_t i, bool hasSets) {
    Words& word = _words[i / kPositionsPerWord];
    const uint64_t bit = uint64_t{1} << (i % kPositionsPerWord);
    const unichar unit = _pattern[i];
    if (unit == '*') {
      word.stars |= bit;
    } else if (unit == '?') {
      word.anyOnes |= bit;
    } else if (unit != '[' || !hasSets) {
      word.literals |= bit;
    } else if (i + 1 < _length) {
      (_pattern[i + 1] == '^' ? word.negations : word.opens) |= bit;
    }
  }

  // What the units are where a set is read.
  void classifyMembers() {
    bool isTaken = false;  // by the `-` before
    for (size_t i = 0; i < _length; ++i) {
      Words& word = _words[i / kPositionsPerWord];
      const uint64_t bit = uint64_t{1} << (i % kPositionsPerWord);
      const unichar unit = _pattern[i];
      const bool isDash = unit == '-' && !isTaken;
      if (unit == ']') word.brackets |= bit;
      if (isDash) {
        if (i + 1 < _length) word.dashes |= bit;
      } else if (!isTaken) {
        (unit == ']' ? word.closers : word.members) |= bit;
      }
      isTaken = isDash;
    }
  }

  const KnownPositions* knownOf(unichar c) {
    const size_t slot = c % _slots;
    KnownPositions* known = _known + slot * _wordCount;
    if (_units[slot] == c) return known;
    _units[slot] = c;
    wordKernels().findPositions(_pattern, _length, c, known);
    return known;
  }

  void begin() {
    StarFlow stars;
    for (size_t w = 0; w < _wordCount; ++w) _words[w].now = stars.with(_words[w].stars, w == 0 ? 1 : 0);
  }

  // All ways on with a text unit, from the left to the right, since none leads back. False when none is left.
  bool read(unichar c, const KnownPositions* known) {
    const uint64_t isMember = c == '|' ? 0 : ~uint64_t{0};
    Shift behindUnit, behindOpen, behindNegation, behindMember, behindRange;
    Flow fromOpen, fromNegation, toBracket;
    StarFlow stars;
    const auto isCarried = [&] {
      return (behindUnit.carried() | behindOpen.carried() | behindNegation.carried() | behindMember.carried() |
              behindRange.carried() | fromOpen.carried() | fromNegation.carried() | toBracket.carried() |
              stars.carried()) != 0;
    };
    uint64_t any = 0;
    for (size_t w = 0; w < _wordCount; ++w) {
      Words& word = _words[w];
      const uint64_t now = word.now;
      if (now == 0 && !isCarried()) continue;
      const uint64_t equals = known[w].equals, ranges = known[w].ranges & word.dashes;
      const uint64_t matches = ranges | (equals & word.members & isMember);
      const uint64_t stops = matches | word.closers;
      const uint64_t opened = fromOpen.to(stops, behindOpen.by(1, now & word.opens)) & matches;
      const uint64_t negated = fromNegation.to(stops, behindNegation.by(2, now & word.negations)) & word.closers;
      const uint64_t rest = behindMember.by(1, opened & ~ranges) | behindRange.by(2, opened & ranges);
      const uint64_t closed = toBracket.to(word.brackets, rest) | negated;
      const uint64_t passed = now & (word.anyOnes | (equals & word.literals));
      const uint64_t next = behindUnit.by(1, passed | closed) | (closed & word.end);
      word.now = stars.with(word.stars, next | (now & word.stars));
      any |= word.now;
    }
    return any != 0;
  }

  const unichar* const _pattern;
  const size_t _length;
  const size_t _wordCount;
  Words* const _words;
  KnownPositions* const _known;  // of the units that were read last, one a slot
  const size_t _slots;
  int32_t _units[kMostSlots];  // whose, by slot
};

}  // namespace

std::optional<bool> simulateWildcard(const unichar* text, const unichar* textEnd, const unichar* pattern,
                                     const unichar* patternEnd, const unichar* table, WildcardSyntax syntax) {
  const auto length = static_cast<size_t>(patternEnd - pattern);
  const size_t wordCount = Simulation::wordCount(length);
  const bool isLong = length > kUnitsOnStack;
  const size_t slots = std::clamp<size_t>((isLong ? kKnownOnHeap : kKnownOnStack) / wordCount, 1, kMostSlots);
  ScratchBuffer<Words, Simulation::wordCount(kUnitsOnStack)> words(wordCount);
  ScratchBuffer<KnownPositions, kKnownOnStack> known(slots * wordCount);
  if (!words || !known) return std::nullopt;
  Simulation simulation(pattern, length, words.data(), known.data(), slots, syntax == WildcardSyntax::Unix);
  if (table) return simulation.run(text, textEnd, [table](unichar c) { return table[c]; });
  return simulation.run(text, textEnd, [](unichar c) { return c; });
}

}  // namespace velan
