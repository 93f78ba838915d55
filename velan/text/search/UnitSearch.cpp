#include <algorithm>
#include <bit>
#include <utility>

#include "velan/text/PreimagesInternal.h"
#include "velan/text/search/UnitSearchInternal.h"

namespace velan {
namespace {

// Where each unit is only itself.
struct NoPreimages {
  unsigned costOf(unichar c) const { return c < kRankedUnits ? kUnitCosts[c] : 0u; }
  bool hasMany(unichar) const { return false; }
  unichar maskOf(unichar) const { return 0xFFFF; }
};

// The positions of the rarest of the first units in each half of the first `length` ones, which are two at least.
template <typename Preimage>
std::pair<size_t, size_t> rarestUnits(const NeedleHead& head, size_t length, const Preimage& preimages) {
  constexpr size_t kFew = 12;
  static_assert(NeedleHead::kMost <= 0x100);
  const size_t half = (length + 1) / 2;
  unsigned first = ~0u, second = ~0u;  // the cost above the position: a minimum needs no branch
  const auto lessOf = [&](unsigned least, size_t i) {
    return std::min(least, preimages.costOf(head.units[i]) << 8 | static_cast<unsigned>(i));
  };
  for (size_t i = 0; i < std::min(length - half, kFew); ++i) {
    first = lessOf(first, i);
    second = lessOf(second, half + i);
  }
  if (half > length - half && half <= kFew) first = lessOf(first, half - 1);
  return {first & 0xFF, second & 0xFF};
}

// The rarest unit of each half and the last one besides: neighbours mostly come together, so that one says little when
// the other is there. True if filters have to tell, as one of the first two has many preimages.
template <typename Preimage>
bool setPositions(NeedleHead& head, const Preimage& preimages) {
  const auto hasMany = [&](size_t i) { return preimages.hasMany(head.units[i]); };
  const auto [first, second] = head.length == 1
                                   ? std::pair<size_t, size_t>()
                                   : rarestUnits(head, std::min(head.length, NeedleHead::kReach), preimages);
  const bool filters = hasMany(first) || hasMany(second);
  size_t third = second;
  for (size_t i = head.length; i-- > 0 && third == second;) {
    if (i != first && (filters || !hasMany(i))) third = i;
  }
  head.probes[0].position = first;
  head.probes[1].position = second;
  head.probes[2].position = third;
  return filters;
}

template <typename Preimage>
void setMasks(NeedleHead& head, const Preimage& preimages) {
  for (auto& probe : head.probes) {
    const unichar unit = head.units[probe.position];
    probe.mask = preimages.maskOf(unit);
    probe.bits = unit & probe.mask;
  }
}

// Short heads of which all is looked for, and no more than that passes.
bool probesTellAll(const NeedleHead& head) {
  if (head.telling != NeedleHead::Telling::Mask || head.length > NeedleHead::kProbes) return false;
  size_t positions = 0;
  for (const auto& probe : head.probes) {
    positions |= size_t{1} << probe.position;
    const unichar unit = head.units[probe.position];
    if (std::popcount(uint16_t{probe.mask}) < 15 || (head.table && head.table[unit] != unit)) return false;
  }
  const bool mayOverlap = head.length > 1 && head.units[0] == head.units[head.length - 1];
  return positions + 1 == size_t{1} << head.length && !mayOverlap;
}

}  // namespace

void chooseProbes(NeedleHead& head) {
  using enum NeedleHead::Telling;
  const Preimages* preimages = head.table ? preimagesOfTable(head.table) : nullptr;
  const bool filters = preimages ? setPositions(head, *preimages) : setPositions(head, NoPreimages());
  head.telling = head.table && !preimages ? Table : filters ? Filter : Mask;
  if (filters) {
    for (auto& probe : head.probes) setFilter(head.units[probe.position], *preimages, probe);
  } else if (preimages) {
    setMasks(head, *preimages);
  } else {
    setMasks(head, NoPreimages());
  }
  head.tellsAll = probesTellAll(head);
}

size_t findUnits(const unichar* haystack, size_t length, const unichar* needle, size_t needleLength) {
  return findMappedUnits(haystack, length, needle, needleLength, nullptr);
}

size_t findMappedUnits(const unichar* haystack, size_t length, const unichar* needle, size_t needleLength,
                       const unichar* table) {
  if (!haystack || !needle || needleLength > length) return length;
  return UnitSearch(NeedleUnits{needle}, needleLength, table).find(haystack, length);
}

}  // namespace velan
