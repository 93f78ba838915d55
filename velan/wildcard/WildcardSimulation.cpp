#include <algorithm>
#include <bit>
#include <cstring>

#include "velan/base/ScratchBuffer.h"
#include "velan/wildcard/WildcardSimulationInternal.h"

namespace velan {
namespace {

constexpr size_t kUnitsOnStack = 4096;
constexpr size_t kPositionsPerWord = 64;

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
  uint64_t equals;                                 // the positions that hold the text unit being read
};

class Simulation {
 public:
  Simulation(const unichar* pattern, size_t length, Words* words)
      : _pattern(pattern), _length(length), _wordCount(length / kPositionsPerWord + 1), _words(words) {
    for (size_t w = 0; w < _wordCount; ++w) {
      _words[w] = {0, 0, where(w, '*'), where(w, '?'), where(w, '['), where(w, ']'), where(w, '-'), 0};
    }
  }

  template <typename Map>
  bool run(const unichar* text, const unichar* textEnd, Map map) {
    add(0);
    for (bool isAlive = arrive(); isAlive && text < textEnd; ++text) {
      const unichar c = map(*text);
      for (size_t w = 0; w < _wordCount; ++w) _words[w].equals = where(w, c);
      readSets(c);
      readOthers();
      isAlive = arrive();
    }
    return text == textEnd && (_words[_wordCount - 1].now >> (_length % kPositionsPerWord) & 1) != 0;
  }

 private:
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
  void readOthers() {
    uint64_t carry = 0;
    for (size_t w = 0; w < _wordCount; ++w) {
      Words& word = _words[w];
      const uint64_t passed = word.now & (word.anyOnes | (word.equals & ~word.opens & ~word.stars));
      word.next |= passed << 1 | carry | (word.now & word.stars);
      carry = passed >> (kPositionsPerWord - 1);
    }
  }

  // From right to left: what comes of a set is known from the members behind its start, and all of them together cost
  // one step per position, however sets overlap. Only `]`, `-` and members equal to `c` change what comes of it.
  void readSets(unichar c) {
    size_t least = 0;
    while (least < _wordCount && (_words[least].now & _words[least].opens) == 0) ++least;
    FromTheRight<SetOutcome> outcome{{_length, false}, {_length, false}, _length};
    FromTheRight<size_t> close{_length, _length, _length};
    for (size_t w = _wordCount; w-- > least;) {
      const Words& word = _words[w];
      const uint64_t starts = word.now & word.opens;
      const uint64_t members = word.closes | word.dashes | (c == '|' ? 0 : word.equals);
      for (uint64_t left = starts | members; left != 0;) {
        const auto bit = kPositionsPerWord - 1 - static_cast<size_t>(std::countl_zero(left));
        const uint64_t mask = uint64_t{1} << bit;
        const size_t i = w * kPositionsPerWord + bit;
        left ^= mask;
        if (starts & mask) followSet(i, outcome);
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

  void followSet(size_t i, const FromTheRight<SetOutcome>& outcomes) {
    if (i + 1 == _length) return;
    const bool isNegated = _pattern[i + 1] == '^';
    const SetOutcome outcome = outcomes.at(isNegated ? i + 2 : i + 1);
    if (outcome.matches != isNegated) add(outcome.next);
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
  Words* const _words;
};

}  // namespace

bool simulateUnixWildcard(const unichar* text, const unichar* textEnd, const unichar* pattern,
                          const unichar* patternEnd, const unichar* table) {
  const auto length = static_cast<size_t>(patternEnd - pattern);
  ScratchBuffer<Words, kUnitsOnStack / kPositionsPerWord + 1> words(length / kPositionsPerWord + 1);
  if (!words) return false;
  Simulation simulation(pattern, length, words.data());
  if (table) return simulation.run(text, textEnd, [table](unichar c) { return table[c]; });
  return simulation.run(text, textEnd, [](unichar c) { return c; });
}

}  // namespace velan
