// Units through a conversion table, and comparing what it makes of them: ASCII is calculated where the table is known,
// blocks of other units are looked up in a register where the instruction set has such look-ups.
#ifndef VELAN_TEXT_KERNELS_MAPPING_LOOPS_INTERNAL_H
#define VELAN_TEXT_KERNELS_MAPPING_LOOPS_INTERNAL_H

#include "velan/base/kernels/UnitVectorsInternal.h"
#include "velan/text/kernels/RecentWindowsInternal.h"
#include "velan/text/kernels/UnitKernelsInternal.h"

namespace velan {
namespace {

/// The letters of ASCII in their other case where `mapping` has them changed; all other units as they are.
template <typename V>
V asciiMapped(V units, const UnitMapping& mapping) {
  const auto letters = units - V::of(mapping.firstLetter) <= V::of('z' - 'a');
  return units.lessWhere(letters, V::of(mapping.difference));
}

inline unichar asciiMappedUnit(unichar c, const UnitMapping& mapping) {
  const bool isLetter = static_cast<unichar>(c - mapping.firstLetter) <= 'z' - 'a';
  return isLetter ? static_cast<unichar>(c - mapping.difference) : c;
}

/// Units of which some are not ASCII, or of a table that is not known, looked up in registers; anything where they do
/// not count.
template <typename V>
V mappedAnywhere(const unichar* at, const UnitMapping& mapping, unichar (&windows)[3], typename V::Matches counts) {
  constexpr auto kWindowMask = static_cast<unichar>(-V::kTableWindow);
  const V units = V::load(at);
  const V bases = units.differing(V::of(kWindowMask), V::of(0));
  auto known = bases == V::of(0);
  V mapped = mapping.knowsASCII ? asciiMapped(units, mapping) : V::choose(known, units.inTable(mapping.table), units);
  const auto addWindow = [&](unichar base) {
    const auto within = bases == V::of(base);
    known = V::either(known, within);
    mapped = V::choose(within, units.inTable(mapping.table + base), mapped);
  };
  known = V::either(known, V::inverse(counts));
  addWindow(windows[0]);
  uint64_t others = V::bits(V::inverse(known));
  if (others == 0) return mapped;
  addWindow(windows[1]);
  addWindow(windows[2]);
  known = V::either(known, units - V::of(mapping.firstUnchanged) <= V::of(mapping.unchangedSpan));
  constexpr unsigned kMostSteps = 3;
  for (unsigned k = 0; (others = V::bits(V::inverse(known))) != 0 && k < kMostSteps; ++k) {
    addRecent(static_cast<unichar>(at[static_cast<unsigned>(__builtin_ctzll(others)) / V::kBits] & kWindowMask),
              windows);
    addWindow(windows[0]);
  }
  if (others == 0) return mapped;
  unichar each[V::kUnits];
  mapped.store(each);
  for (size_t i = 0; i < V::kUnits; ++i) {
    if (others >> (i * V::kBits) & 1) each[i] = mapping.table[at[i]];
  }
  return V::load(each);
}

/// One block; `mapped` may be `units`.
template <typename V>
__attribute__((noinline)) void mapAnywhere(const unichar* units, const UnitMapping& mapping, unichar (&windows)[3],
                                           unichar* mapped) {
  if constexpr (V::kTableWindow != 0) {
    const V all = V::of(0);
    mappedAnywhere<V>(units, mapping, windows, all == all).store(mapped);
  } else {
    for (size_t i = 0; i < V::kUnits; ++i) mapped[i] = mapping.table[units[i]];
  }
}

/// Which of the units that may differ do.
template <typename V>
__attribute__((noinline)) typename V::Matches differAnywhere(const unichar* a, const unichar* b,
                                                             const UnitMapping& mapping, unichar (&windows)[3],
                                                             typename V::Matches mayDiffer) {
  if constexpr (V::kTableWindow != 0) {
    const V left = mappedAnywhere<V>(a, mapping, windows, mayDiffer);
    return V::both(mayDiffer, V::inverse(left == mappedAnywhere<V>(b, mapping, windows, mayDiffer)));
  } else {
    unichar difference[V::kUnits];
    for (size_t i = 0; i < V::kUnits; ++i) {
      difference[i] = static_cast<unichar>(mapping.table[a[i]] ^ mapping.table[b[i]]);
    }
    return V::inverse(V::load(difference) == V::of(0));
  }
}

/// Writes the mapped units one block after the other, so that `mapped` may be `units`.
template <typename V>
void mapEach(const unichar* units, size_t count, const UnitMapping& mapping, unichar (&windows)[3], unichar* mapped) {
  size_t i = 0;
  if constexpr (V::kUnits > 1) {
    for (; count - i >= V::kUnits; i += V::kUnits) {
      const V block = V::load(units + i);
      const bool isASCII = V::bits(V::inverse(block <= V::of(0x7F))) == 0;
      if (isASCII && mapping.knowsASCII) {
        asciiMapped(block, mapping).store(mapped + i);
      } else {
        mapAnywhere<V>(units + i, mapping, windows, mapped + i);
      }
    }
    mapEach<typename V::Narrower>(units + i, count - i, mapping, windows, mapped + i);
  } else {
    for (; i < count; ++i) mapped[i] = mapping.table[units[i]];
  }
}

/// Positions where the units of two runs differ when their ASCII is mapped; in vectors also through the table if
/// there is one.
template <bool hasTable>
struct MismatchTest {
  const unichar* a;
  const unichar* b;
  const UnitMapping& mapping;
  unichar (&windows)[3];

  const unichar* address(size_t i) const { return a + i; }
  bool one(size_t i) const { return asciiMappedUnit(a[i], mapping) != asciiMappedUnit(b[i], mapping); }
  template <typename V>
  typename V::Matches block(size_t i) const {
    const V left = V::load(a + i), right = V::load(b + i);
    auto different = V::inverse(left == right);
    if (V::bits(different) == 0) return different;
    different = V::inverse(asciiMapped(left, mapping) == asciiMapped(right, mapping));
    if constexpr (hasTable) {
      if (V::bits(different) != 0) return differAnywhere<V>(a + i, b + i, mapping, windows, different);
    }
    return different;
  }
};

}  // namespace
}  // namespace velan

#endif  // VELAN_TEXT_KERNELS_MAPPING_LOOPS_INTERNAL_H
