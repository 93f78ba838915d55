#include <bit>

#include "velan/text/PreimagesInternal.h"
#include "velan/text/search/UnitSearchInternal.h"

namespace velan {
namespace {

unsigned costOf(unichar c, const Preimages* preimages) {
  if (c >= kRankedUnits) return preimages && preimages->hasMany(c) ? costOfMany(0) : 0;
  return (preimages ? preimages->costs : kUnitCosts)[c];
}

// The position of the rarest of the first units in `[first, end)`, which has one at least.
size_t rarestUnit(const NeedleHead& head, size_t first, size_t end, const Preimages* preimages) {
  constexpr size_t kFew = 12;
  static_assert(NeedleHead::kMost <= 0x100);
  unsigned least = ~0u;  // the cost above the position: a minimum needs no branch
  for (size_t i = first; i < std::min(end, first + kFew); ++i) {
    least = std::min(least, costOf(head.units[i], preimages) << 8 | static_cast<unsigned>(i));
  }
  return least & 0xFF;
}

bool hasManyPreimages(unichar c, const Preimages* preimages) { return (costOf(c, preimages) & kHasManyPreimages) != 0; }

// The rarest unit of each half and the last one besides: neighbours mostly come together, so that one says little when
// the other is there. True if filters have to tell, as one of the first two has many preimages.
bool setPositions(NeedleHead& head, const Preimages* preimages) {
  const size_t length = std::min(head.length, NeedleHead::kReach), half = (length + 1) / 2;
  const size_t first = rarestUnit(head, 0, half, preimages);
  const size_t second = length == 1 ? first : rarestUnit(head, half, length, preimages);
  const bool filters =
      hasManyPreimages(head.units[first], preimages) || hasManyPreimages(head.units[second], preimages);
  size_t third = second;
  for (size_t i = head.length; i-- > 0 && third == second;) {
    if (i != first && (filters || !hasManyPreimages(head.units[i], preimages))) third = i;
  }
  head.probes[0].position = first;
  head.probes[1].position = second;
  head.probes[2].position = third;
  return filters;
}

void setMask(NeedleHead::Probe& probe, unichar unit, const Preimages* preimages) {
  // A letter mostly differs in one bit from its other case, and that bit is left out.
  probe.mask = static_cast<unichar>(preimages ? ~(unit ^ preimages->rings[unit]) : 0xFFFF);
  probe.bits = unit & probe.mask;
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
  const bool filters = setPositions(head, preimages);
  head.telling = head.table && !preimages ? Table : filters ? Filter : Mask;
  for (auto& probe : head.probes) {
    const unichar unit = head.units[probe.position];
    if (head.telling == Filter) {
      setFilter(unit, *preimages, probe);
    } else {
      setMask(probe, unit, preimages);
    }
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
