#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

#include "velan/wildcard/WildcardMatching.h"
#include "velan/wildcard/WordKernelsInternal.h"

namespace velan {
namespace {

constexpr size_t kLongestScan = 512;
constexpr size_t kNone = SIZE_MAX;

// Pairs each unit of the shorter word with a free equal one of the longer: with the one that continues the last pair's
// distance, else with the first. `free` knows which are left.
template <typename Free, typename Map>
WordPairs pairUnits(std::u16string_view shorter, Free& free, Map map) {
  WordPairs result;
  size_t shift = 0;  // from a unit's partner to itself, modulo 2^64
  for (size_t i = 0; i < shorter.size(); ++i) {
    const unichar unit = map(shorter[i]);
    const size_t expected = i - shift;
    const size_t partner = free.holds(expected, unit) ? expected : free.first(unit);
    if (partner == kNone) continue;
    free.take(partner);
    ++result.pairs;
    if (i != 0 && partner != expected) ++result.jumps;
    shift = i - partner;
  }
  return result;
}

template <typename Map>
class ScannedPositions {
 public:
  ScannedPositions(std::u16string_view units, Map map) : _units(units), _map(map) {
    std::fill_n(_isTaken, units.size(), false);
  }
  bool holds(size_t i, unichar unit) const { return i < _units.size() && !_isTaken[i] && _map(_units[i]) == unit; }
  size_t first(unichar unit) const {
    for (size_t i = 0; i < _units.size(); ++i) {
      if (holds(i, unit)) return i;
    }
    return kNone;
  }
  void take(size_t i) { _isTaken[i] = true; }

 private:
  std::u16string_view _units;
  Map _map;
  bool _isTaken[kLongestScan];
};

// For long words: a queue of positions for each unit, so that finding the first takes no scan. A position that was
// taken out of turn leaves its queue when it comes to the front.
template <typename Map>
class QueuedPositions {
 public:
  QueuedPositions(std::u16string_view units, Map map) : _units(units), _map(map) {
    const size_t links = VelanTableLength + units.size();
    _memory.reset(static_cast<size_t*>(std::malloc(links * sizeof(size_t) + units.size())));
    if (!_memory) return;
    _heads = _memory.get();
    _nexts = _heads + VelanTableLength;
    _isTaken = reinterpret_cast<bool*>(_memory.get() + links);
    std::fill_n(_heads, VelanTableLength, kNone);
    std::fill_n(_isTaken, units.size(), false);
    for (size_t i = units.size(); i-- > 0;) _nexts[i] = std::exchange(_heads[map(units[i])], i);
  }
  explicit operator bool() const { return _memory != nullptr; }
  bool holds(size_t i, unichar unit) const { return i < _units.size() && !_isTaken[i] && _map(_units[i]) == unit; }
  size_t first(unichar unit) {
    size_t& head = _heads[unit];
    while (head != kNone && _isTaken[head]) head = _nexts[head];
    return head;
  }
  void take(size_t i) { _isTaken[i] = true; }

 private:
  struct Deleter {
    void operator()(size_t* memory) const { std::free(memory); }
  };
  std::u16string_view _units;
  Map _map;
  std::unique_ptr<size_t, Deleter> _memory;  // for the three below
  size_t* _heads = nullptr;                  // by unit
  size_t* _nexts = nullptr;                  // by position
  bool* _isTaken = nullptr;                  // by position
};

template <typename Map>
double similarityOfLongWords(std::u16string_view a, std::u16string_view b, Map map) {
  const auto [shorter, longer] = a.size() > b.size() ? std::pair(b, a) : std::pair(a, b);
  WordPairs pairs;
  if (longer.size() <= kLongestScan) {
    ScannedPositions free(longer, map);
    pairs = pairUnits(shorter, free, map);
  } else {
    QueuedPositions free(longer, map);
    if (!free) return 0;
    pairs = pairUnits(shorter, free, map);
  }
  for (size_t i = 0; i < shorter.size(); ++i) pairs.inPlace += map(longer[i]) == map(shorter[i]);
  return similarityFromPairs(pairs, longer.size());
}

std::u16string_view viewOf(const unichar* units, size_t length) { return {units, units ? length : 0}; }

bool areShort(size_t lengthA, size_t lengthB) { return lengthA <= kMostShortUnits && lengthB <= kMostShortUnits; }

}  // namespace

double similarityFromPairs(const WordPairs& pairs, size_t length) {
  return similarityFromCounts(pairs.inPlace, pairs.pairs, pairs.jumps, length);
}

double stringMatchesUnixWildcardFuzzy(const unichar* a, size_t lengthA, const unichar* b, size_t lengthB) {
  const std::u16string_view left = viewOf(a, lengthA), right = viewOf(b, lengthB);
  if (!areShort(left.size(), right.size())) return similarityOfLongWords(left, right, [](unichar c) { return c; });
  return similarityFromPairs(wordKernels().pair(left, right), std::max(left.size(), right.size()));
}

double stringMatchesUnixWildcardFuzzyUsingUnicharTable(const unichar* a, size_t lengthA, const unichar* b,
                                                       size_t lengthB, const unichar* table) {
  const std::u16string_view left = viewOf(a, lengthA), right = viewOf(b, lengthB);
  if (!table) return stringMatchesUnixWildcardFuzzy(a, lengthA, b, lengthB);
  if (!areShort(left.size(), right.size())) {
    return similarityOfLongWords(left, right, [table](unichar c) { return table[c]; });
  }
  unichar units[2][kMostShortUnits];
  const auto map = [table](unichar c) { return table[c]; };
  std::transform(left.begin(), left.end(), units[0], map);
  std::transform(right.begin(), right.end(), units[1], map);
  return stringMatchesUnixWildcardFuzzy(units[0], left.size(), units[1], right.size());
}

}  // namespace velan
