#include <algorithm>

#include "velan/text/PreimagesInternal.h"

namespace velan {
namespace {

constexpr size_t kMostCollected = 128;

// Ranges that hold `units`, which are in rising order, with the widest gaps between them.
UnitFilter filterOfRanges(const unichar* units, size_t count) {
  size_t gaps[UnitFilter::kMost - 1] = {};  // where the widest gaps end, the widest first; 0 for none
  const auto width = [units](size_t i) { return i == 0 ? 0 : units[i] - units[i - 1]; };
  for (size_t i = 1; i < count; ++i) {
    size_t end = i;
    if (width(end) <= width(gaps[UnitFilter::kMost - 2])) continue;
    for (size_t& gap : gaps) {
      if (width(end) > width(gap)) std::swap(end, gap);
    }
  }
  std::ranges::sort(gaps);
  UnitFilter filter(units[0]);
  filter.kind = UnitFilter::Kind::Ranges;
  size_t first = 0;
  for (size_t k = 0; k < UnitFilter::kMost; ++k) {
    const size_t end = k < std::size(gaps) ? gaps[k] : count;
    if (end == 0) continue;  // stays the first unit alone
    filter.low[k] = units[first];
    filter.span[k] = static_cast<unichar>(units[end - 1] - units[first]);
    first = end;
  }
  return filter;
}

UnitFilter filterOfAll() {
  UnitFilter filter(0);
  filter.kind = UnitFilter::Kind::Ranges;
  filter.span[0] = 0xFFFF;
  return filter;
}

UnitFilter filterOfRing(unichar c, const unichar* rings) {
  const unichar second = rings[c];
  if (second == c) return UnitFilter(c);
  if (rings[second] == c) return UnitFilter(c, second);
  unichar units[kMostCollected];
  size_t count = 0, own = 0;
  for (unichar unit = second; unit != c; unit = rings[unit]) {  // in rising order
    if (count == kMostCollected - 1) return filterOfAll();
    own += unit < c;
    units[count++] = unit;
  }
  std::copy_backward(units + own, units + count, units + count + 1);
  units[own] = c;
  ++count;
  return filterOfRanges(units, count);
}

// Each unit joins the ring of its entry, which therefore has to be its own entry. From there the others rise.
bool fillRings(const unichar* table, unichar* rings) {
  for (size_t c = 0; c < VelanTableLength; ++c) rings[c] = static_cast<unichar>(c);
  for (size_t c = VelanTableLength; c-- > 0;) {
    const unichar entry = table[c];
    if (entry == c) continue;
    if (table[entry] != entry) return false;
    rings[c] = rings[entry];
    rings[entry] = static_cast<unichar>(c);
  }
  return true;
}

// The mask that all units of ASCII pass which become `c`: they mostly differ in one bit, which is left out.
void setMask(unichar c, const unichar* rings, NeedleHead::Probe& probe) {
  probe.mask = 0xFFFF;
  probe.bits = 0xFFFF;
  unichar unit = c;
  do {
    if (unit < 0x80 && probe.bits == 0xFFFF) probe.bits = unit;
    if (unit < 0x80) probe.mask &= static_cast<unichar>(~(unit ^ probe.bits));
    unit = rings[unit];
  } while (unit != c);
  probe.bits &= probe.mask;
}

}  // namespace

bool fillPreimages(const unichar* table, Preimages& preimages) {
  if (!fillRings(table, preimages.rings)) return false;
  preimages.costs = kUnitCosts;
  for (size_t c = 0; c < kRankedUnits; ++c) {
    uint16_t& cost = preimages.costs[c];
    const auto entry = static_cast<unichar>(c);
    for (unichar unit = preimages.rings[c]; unit != entry; unit = preimages.rings[unit]) {
      if (unit < kRankedUnits) cost = std::max(cost, kUnitCosts[unit]);
    }
    if (preimages.hasMany(entry)) cost = costOfMany(cost);
  }
  for (unichar c = 0; c < 0x80; ++c) {
    preimages.ascii[c].position = 0;
    preimages.ascii[c].filter = filterOfRing(c, preimages.rings);
    setMask(c, preimages.rings, preimages.ascii[c]);
  }
  return true;
}

void setFilter(unichar c, const Preimages& preimages, NeedleHead::Probe& probe) {
  const size_t position = probe.position;
  if (c < 0x80) {
    probe = preimages.ascii[c];
    probe.position = position;
    return;
  }
  probe.filter = filterOfRing(c, preimages.rings);
  setMask(c, preimages.rings, probe);
}

UnitFilter filterOfPreimages(unichar c, const unichar* table) {
  if (!table) return UnitFilter(c);
  const Preimages* preimages = preimagesOfTable(table);
  return preimages ? filterOfRing(c, preimages->rings) : filterOfAll();
}

}  // namespace velan
