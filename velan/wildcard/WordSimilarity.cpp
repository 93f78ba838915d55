#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

#include "velan/wildcard/WildcardMatching.h"

namespace velan {
namespace {

constexpr size_t kLongestScan = 512;
constexpr size_t kNone = SIZE_MAX;

struct Pairing {
  size_t pairs = 0;
  size_t jumps = 0;
};

// Pairs each unit of the shorter word with a free equal one of the longer: with the one that continues the last pair's
// distance, else with the first. `free` knows which are left.
template <typename Free, typename Map>
Pairing pairUnits(std::u16string_view shorter, Free& free, Map map) {
  Pairing result;
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
double similarity(std::u16string_view a, std::u16string_view b, Map map) {
  const auto [shorter, longer] = a.size() > b.size() ? std::pair(b, a) : std::pair(a, b);
  const auto length = static_cast<double>(longer.size());

  size_t inPlace = 0;
  for (size_t i = 0; i < shorter.size(); ++i) inPlace += map(longer[i]) == map(shorter[i]);

  Pairing pairing;
  if (longer.size() <= kLongestScan) {
    ScannedPositions free(longer, map);
    pairing = pairUnits(shorter, free, map);
  } else {
    QueuedPositions free(longer, map);
    if (!free) return 0;
    pairing = pairUnits(shorter, free, map);
  }
  const double positional = static_cast<double>(inPlace) / length;
  const double paired = static_cast<double>(pairing.pairs) * (1 - static_cast<double>(pairing.jumps) / length) / length;
  return positional > paired ? positional : paired;
}

std::u16string_view viewOf(const unichar* units, size_t length) { return {units, units ? length : 0}; }

}  // namespace

double stringMatchesUnixWildcardFuzzy(const unichar* a, size_t lengthA, const unichar* b, size_t lengthB) {
  return similarity(viewOf(a, lengthA), viewOf(b, lengthB), [](unichar c) { return c; });
}

double stringMatchesUnixWildcardFuzzyUsingUnicharTable(const unichar* a, size_t lengthA, const unichar* b,
                                                       size_t lengthB, const unichar* table) {
  if (!table) return stringMatchesUnixWildcardFuzzy(a, lengthA, b, lengthB);
  return similarity(viewOf(a, lengthA), viewOf(b, lengthB), [table](unichar c) { return table[c]; });
}

}  // namespace velan
