#include <algorithm>
#include <utility>

#include "velan/base/ScratchBuffer.h"
#include "velan/wildcard/WildcardSimulationInternal.h"

namespace velan {
namespace {

constexpr size_t kUnitsOnStack = 4096;
constexpr size_t kBitsPerWord = 64;

// How reading a set's members from some position on comes out for one text unit: whether a member matches, and where
// the pattern goes on.
struct SetOutcome {
  size_t next;
  bool matches;
};

// The state is the set of pattern positions that the text read so far can lead to. "`*` here" implies "behind it".
class Simulation {
 public:
  Simulation(const unichar* pattern, size_t length, uint64_t* words, size_t wordCount)
      : _pattern(pattern), _length(length), _now(words), _next(words + wordCount), _wordCount(wordCount) {}

  template <typename Map>
  bool run(const unichar* text, const unichar* textEnd, Map map) {
    std::fill_n(_next, _wordCount, 0);
    _least = _length + 1;
    add(0);
    for (; text < textEnd; ++text) {
      if (_least > _length) return false;
      std::swap(_now, _next);
      std::fill_n(_next, _wordCount, 0);
      read(map(*text), std::exchange(_least, _length + 1));
    }
    return isIn(_next, _length);
  }

 private:
  // From right to left, so that the outcome of a set is known from the members behind its start, and all of them
  // together cost one step per position, however sets overlap.
  void read(unichar c, size_t least) {
    SetOutcome after{_length, false}, after2 = after;  // from the next position on, and from the one behind it
    size_t close = _length, close2 = _length;          // one past the first `]` from there on
    for (size_t i = _length; i-- > least;) {
      const unichar unit = _pattern[i];
      if (isIn(_now, i)) follow(i, unit, c, after, after2);
      SetOutcome outcome = after;
      size_t closeHere = close;
      if (unit == ']') {
        closeHere = i + 1;
        outcome = {closeHere, false};
      } else if (unit == '-') {
        if (i + 1 == _length) {
          outcome = {_length, false};
        } else if (i > 0 && _pattern[i - 1] <= c && c <= _pattern[i + 1]) {
          outcome = {close2, true};
        } else {
          outcome = after2;
        }
      } else if (unit == c && unit != '|') {
        outcome = {close, true};
      }
      after2 = std::exchange(after, outcome);
      close2 = std::exchange(close, closeHere);
    }
  }

  void follow(size_t i, unichar unit, unichar c, SetOutcome after, SetOutcome after2) {
    if (unit == '*') {
      add(i);
    } else if (unit == '[') {
      if (i + 1 == _length) return;
      const bool isNegated = _pattern[i + 1] == '^';
      const SetOutcome outcome = isNegated ? after2 : after;
      if (outcome.matches != isNegated) add(outcome.next);
    } else if (unit == '?' || unit == c) {
      add(i + 1);
    }
  }

  void add(size_t i) {
    _least = std::min(_least, i);
    for (; !isIn(_next, i); ++i) {
      _next[i / kBitsPerWord] |= uint64_t{1} << (i % kBitsPerWord);
      if (i == _length || _pattern[i] != '*') break;
    }
  }

  static bool isIn(const uint64_t* words, size_t i) { return words[i / kBitsPerWord] >> (i % kBitsPerWord) & 1; }

  const unichar* const _pattern;
  const size_t _length;
  uint64_t* _now;
  uint64_t* _next;
  const size_t _wordCount;
  size_t _least = 0;  // position in _next; beyond the pattern when there is none
};

}  // namespace

bool simulateUnixWildcard(const unichar* text, const unichar* textEnd, const unichar* pattern,
                          const unichar* patternEnd, const unichar* table) {
  const auto length = static_cast<size_t>(patternEnd - pattern);
  const size_t wordCount = length / kBitsPerWord + 1;
  ScratchBuffer<uint64_t, 2 * (kUnitsOnStack / kBitsPerWord + 1)> words(2 * wordCount);
  if (!words) return false;
  Simulation simulation(pattern, length, words.data(), wordCount);
  if (table) return simulation.run(text, textEnd, [table](unichar c) { return table[c]; });
  return simulation.run(text, textEnd, [](unichar c) { return c; });
}

}  // namespace velan
