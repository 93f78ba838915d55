#include <algorithm>
#include <bit>
#include <cstring>
#include <span>
#include <utility>

#include "velan/base/ScratchBuffer.h"
#include "velan/wildcard/WildcardSetInternal.h"
#include "velan/wildcard/WildcardSimulationInternal.h"

namespace velan {
namespace {

constexpr size_t kUnitsOnStack = 4096;
constexpr size_t kPositionsPerWord = 64;
constexpr size_t kFewSets = 8;
// What is known of units may take so much memory.
constexpr size_t kMostMemory = 16 << 20;

// How reading a set's members from some position on comes out for one text unit: whether a member matches, and where
// the pattern goes on.
struct SetOutcome {
  size_t next;
  bool matches;
};

// A value for each position, as far as it was set: from right to left, a new one holds for its position and all before.
template <typename Value>
struct FromTheRight {
  Value here, behind;  // up to `position`, and behind it
  size_t position;     // where `here` was set
  Value at(size_t i) const { return i <= position ? here : behind; }
  void set(size_t i, Value value) { *this = {value, here, i}; }
};

// One word of the state or of a class of pattern positions per 64 positions.
struct Words {
  uint64_t now, next;  // where the text read so far can lead; "`*` here" implies "behind it"
  uint64_t stars, anyOnes, opens, closes, dashes;  // the positions that hold `*`, `?`, `[`, `]` and `-`
  uint64_t opensBefore;                            // how many `[` stand in the words before
};

// What is known of a text unit: the positions that hold it, and for each `[` where the pattern goes on behind the set.
struct KnownUnit {
  uint64_t* isComplete;  // whether all ways are known
  uint64_t* equals;
  uint32_t* next;
};
constexpr uint32_t kUnknown = UINT32_MAX;

constexpr uint64_t bitsBelow(size_t bit) { return (uint64_t{1} << bit) - 1; }

// The words that this takes, with the class of the unit before: a bit for each position, half a word for each way.
constexpr size_t slotSize(size_t length, size_t opens) { return 2 + length / kPositionsPerWord + 1 + (opens + 1) / 2; }

class Simulation {
 public:
  /// `memory` has room for `slots` times `slotSize` words; units that compare alike with all of `units`, which are in
  /// order, share what is known. Without units each is like itself only.
  Simulation(const unichar* pattern, size_t length, Words* words, uint64_t* memory, size_t slots,
             std::span<const unichar> units)
      : _pattern(pattern),
        _length(length),
        _wordCount(length / kPositionsPerWord + 1),
        _fails(static_cast<uint32_t>(_wordCount * kPositionsPerWord)),
        _words(words),
        _memory(memory),
        _slots(slots),
        _units(units) {
    for (size_t w = 0; w < _wordCount; ++w) {
      _words[w] = {0, 0, where(w, '*'), where(w, '?'), where(w, '['), where(w, ']'), where(w, '-'), _opens};
      _opens += static_cast<size_t>(std::popcount(_words[w].opens));
    }
    for (size_t slot = 0; slot < _slots; ++slot) _memory[slot * slotSize(_length, _opens)] = 0;
  }

  template <typename Map>
  bool run(const unichar* text, const unichar* textEnd, Map map) {
    add(0);
    for (bool isAlive = arrive(); isAlive && text < textEnd; ++text) {
      const unichar c = map(*text);
      const KnownUnit known = knownOf(c);
      readSets(c, known);
      readOthers(known);
      isAlive = arrive();
    }
    return text == textEnd && (_words[_wordCount - 1].now >> (_length % kPositionsPerWord) & 1) != 0;
  }

 private:
  // Two classes for each unit of the pattern, itself and what lies between it and the next one.
  uint64_t classOf(unichar c) const {
    if (_units.empty()) return c;
    const auto found = std::lower_bound(_units.begin(), _units.end(), c);
    const auto index = static_cast<uint64_t>(found - _units.begin());
    return 2 * index + (found != _units.end() && *found == c ? 1 : 0);
  }

  KnownUnit knownOf(unichar c) {
    const uint64_t label = classOf(c) + 1;
    uint64_t* slot = _memory + (label % _slots) * slotSize(_length, _opens);
    const KnownUnit known{slot + 1, slot + 2, reinterpret_cast<uint32_t*>(slot + 2 + _wordCount)};
    if (*slot == label) return known;
    *slot = label;
    *known.isComplete = 0;
    for (size_t w = 0; w < _wordCount; ++w) known.equals[w] = where(w, c);
    std::fill_n(known.next, _opens, kUnknown);
    return known;
  }

  // The positions of word `w` that hold `unit`.
  uint64_t where(size_t w, unichar unit) const {
    const unichar* units = _pattern + w * kPositionsPerWord;
    const size_t count = std::min(_length - w * kPositionsPerWord, kPositionsPerWord);
    if (count == kPositionsPerWord) return bitsWhere(units, unit);
    uint64_t bits = 0;
    for (size_t i = 0; i < count; ++i) bits |= uint64_t{units[i] == unit} << i;
    return bits;
  }

  // The loop of fixed length becomes vector instructions. The product gathers the lowest bits of eight bytes in its
  // highest one: byte k lies 8k from the right, and the factor has a bit 56 - 7k from there, which makes 56 + k.
  static uint64_t bitsWhere(const unichar* units, unichar unit) {
    static_assert(std::endian::native == std::endian::little);
    uint8_t holds[kPositionsPerWord];
    for (size_t i = 0; i < kPositionsPerWord; ++i) holds[i] = units[i] == unit;
    uint64_t bits = 0;
    for (size_t i = 0; i < kPositionsPerWord; i += 8) {
      uint64_t eight;
      std::memcpy(&eight, holds + i, sizeof eight);
      bits |= eight * 0x0102040810204080 >> 56 << i;
    }
    return bits;
  }

  void add(size_t i) { _words[i / kPositionsPerWord].next |= uint64_t{1} << (i % kPositionsPerWord); }

  // Everything but sets, 64 positions at a time.
  void readOthers(const KnownUnit& known) {
    uint64_t carry = 0;
    for (size_t w = 0; w < _wordCount; ++w) {
      Words& word = _words[w];
      const uint64_t passed = word.now & (word.anyOnes | (known.equals[w] & ~word.opens & ~word.stars));
      word.next |= passed << 1 | carry | (word.now & word.stars);
      carry = passed >> (kPositionsPerWord - 1);
    }
  }

  // Few ways that are not known are looked for one by one, more of them all at once.
  void readSets(unichar c, const KnownUnit& known) {
    if (*known.isComplete == 0) {
      size_t unknown = 0;
      forEachStart([&](size_t, size_t open) { unknown += known.next[open] == kUnknown; });
      if (unknown > kFewSets) {
        learnAllSets(c, known);
      } else if (unknown > 0) {
        forEachStart([&](size_t position, size_t open) {
          if (known.next[open] != kUnknown) return;
          const unichar* behind = stepOverSet(_pattern + position, _pattern + _length, c).next;
          known.next[open] = behind ? static_cast<uint32_t>(behind - _pattern) : _fails;
        });
      }
    }
    size_t w = 0;  // ways mostly lead on in order: those into one word are put there together
    uint64_t bits = 0;
    forEachStart([&](size_t, size_t open) {
      const uint32_t next = known.next[open];
      if (next / kPositionsPerWord != w) {
        _words[w].next |= std::exchange(bits, 0);
        w = next / kPositionsPerWord;
      }
      bits |= uint64_t{1} << (next % kPositionsPerWord);
    });
    _words[w].next |= bits;
    _words[_wordCount].next = 0;
  }

  // Calls `visit` for the position and the number of each `[` that the text read so far can lead to.
  void forEachStart(auto visit) {
    for (size_t w = 0; w < _wordCount; ++w) {
      const Words& word = _words[w];
      const uint64_t starts = word.now & word.opens;
      if (starts == word.opens) {
        size_t open = word.opensBefore;
        for (uint64_t left = starts; left != 0; left &= left - 1) {
          visit(w * kPositionsPerWord + static_cast<size_t>(std::countr_zero(left)), open++);
        }
      } else {
        for (uint64_t left = starts; left != 0; left &= left - 1) {
          const auto bit = static_cast<size_t>(std::countr_zero(left));
          visit(w * kPositionsPerWord + bit, openAt(word, bit));
        }
      }
    }
  }

  static size_t openAt(const Words& word, size_t bit) {
    return static_cast<size_t>(word.opensBefore) + static_cast<size_t>(std::popcount(word.opens & bitsBelow(bit)));
  }

  // From right to left: what comes of a set is known from the members behind its start, and all of them together cost
  // one step per position, however sets overlap. Only `]`, `-` and members equal to `c` change what comes of it.
  void learnAllSets(unichar c, const KnownUnit& known) {
    FromTheRight<SetOutcome> outcome{{_length, false}, {_length, false}, _length};
    FromTheRight<size_t> close{_length, _length, _length};
    *known.isComplete = 1;
    for (size_t w = _wordCount; w-- > 0;) {
      const Words& word = _words[w];
      const uint64_t members = word.closes | word.dashes | (c == '|' ? 0 : known.equals[w]);
      for (uint64_t left = word.opens | members; left != 0;) {
        const auto bit = kPositionsPerWord - 1 - static_cast<size_t>(std::countl_zero(left));
        const uint64_t mask = uint64_t{1} << bit;
        const size_t i = w * kPositionsPerWord + bit;
        left ^= mask;
        if (word.opens & mask) known.next[openAt(word, bit)] = behindSet(i, outcome);
        if (word.closes & mask) {
          close.set(i, i + 1);
          outcome.set(i, {i + 1, false});
        } else if (word.dashes & mask) {
          outcome.set(i, outcomeOfRange(i, c, outcome, close));
        } else if (members & mask) {
          outcome.set(i, {close.here, true});
        }
      }
    }
  }

  uint32_t behindSet(size_t i, const FromTheRight<SetOutcome>& outcomes) const {
    if (i + 1 == _length) return _fails;
    const bool isNegated = _pattern[i + 1] == '^';
    const SetOutcome outcome = outcomes.at(isNegated ? i + 2 : i + 1);
    return outcome.matches != isNegated ? static_cast<uint32_t>(outcome.next) : _fails;
  }

  SetOutcome outcomeOfRange(size_t i, unichar c, const FromTheRight<SetOutcome>& outcomes,
                            const FromTheRight<size_t>& close) const {
    if (i + 1 == _length) return {_length, false};
    if (i > 0 && _pattern[i - 1] <= c && c <= _pattern[i + 1]) return {close.at(i + 2), true};
    return outcomes.at(i + 2);
  }

  // Makes the next state the present one, with what lies behind the stars in it: adding carries through a run of them.
  bool arrive() {
    uint64_t any = 0, carry = 0;
    for (size_t w = 0; w < _wordCount; ++w) {
      Words& word = _words[w];
      uint64_t sum = 0;
      const bool overflows = __builtin_add_overflow(word.stars, word.next & word.stars, &sum);
      const bool overflowsAgain = __builtin_add_overflow(sum, carry, &sum);
      carry = overflows || overflowsAgain;
      word.now = word.next | (sum ^ word.stars);
      word.next = 0;
      any |= word.now;
    }
    return any != 0;
  }

  const unichar* const _pattern;
  const size_t _length;
  const size_t _wordCount;
  const uint32_t _fails;  // where a set that does not accept the unit leads: behind all positions
  Words* const _words;    // one more than needed, for what fails
  uint64_t* const _memory;
  const size_t _slots;
  const std::span<const unichar> _units;
  size_t _opens = 0;
};

// The units of a pattern in order, each once.
std::span<const unichar> distinctUnits(const unichar* pattern, size_t length, unichar* units) {
  unichar* end = std::copy_n(pattern, length, units);
  std::sort(units, end);
  return {units, static_cast<size_t>(std::unique(units, end) - units)};
}

}  // namespace

bool simulateUnixWildcard(const unichar* text, const unichar* textEnd, const unichar* pattern,
                          const unichar* patternEnd, const unichar* table) {
  const auto length = static_cast<size_t>(patternEnd - pattern);
  if (length >= kUnknown - 2 * kPositionsPerWord) return false;
  const bool isLong = length > kUnitsOnStack;
  const size_t size = slotSize(length, static_cast<size_t>(std::count(pattern, patternEnd, u'[')));
  ScratchBuffer<Words, kUnitsOnStack / kPositionsPerWord + 2> words(length / kPositionsPerWord + 2);
  ScratchBuffer<unichar, 1> units(isLong ? length : 1);
  if (!words || !units) return false;
  std::span<const unichar> distinct;
  if (isLong) distinct = distinctUnits(pattern, length, units.data());
  constexpr size_t kOnStack = slotSize(kUnitsOnStack, kUnitsOnStack);
  const size_t most = (isLong ? kMostMemory / sizeof(uint64_t) : kOnStack) / size;
  const size_t slots = std::clamp<size_t>(most, 1, isLong ? 2 * distinct.size() + 1 : most);
  ScratchBuffer<uint64_t, kOnStack> memory(slots * size);
  if (!memory) return false;
  Simulation simulation(pattern, length, words.data(), memory.data(), slots, distinct);
  if (table) return simulation.run(text, textEnd, [table](unichar c) { return table[c]; });
  return simulation.run(text, textEnd, [](unichar c) { return c; });
}

}  // namespace velan
