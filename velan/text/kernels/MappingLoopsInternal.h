// Units through a conversion table, and comparing what it makes of them: ASCII is calculated where the table is known,
// blocks of other units are looked up in a register where the instruction set has such look-ups.
#ifndef VELAN_TEXT_KERNELS_MAPPING_LOOPS_INTERNAL_H
#define VELAN_TEXT_KERNELS_MAPPING_LOOPS_INTERNAL_H

#include <algorithm>

#include "velan/base/kernels/UnitVectorsInternal.h"
#include "velan/text/kernels/PositionLoopsInternal.h"
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

/// The windows of a table where units were looked up, the latest first.
struct TableWindows {
  unichar first[3] = {0x400, 0x380, 0x80};
};

/// Maps the units at `at` that `others` tells to `mapped`, a window of a vector at a time, and keeps in mind where.
template <typename V>
[[gnu::noinline]] TableWindows mapElsewhere(const unichar* at, const unichar* table, TableWindows windows,
                                            uint64_t others, unichar* mapped) {
  constexpr unsigned kMostWindows = 3;
  const V units = V::load(at);
  V found = V::load(mapped);
  for (unsigned k = 0; others != 0 && k < kMostWindows; ++k) {
    const unichar other = at[static_cast<unsigned>(__builtin_ctzll(others)) / V::kBits];
    addRecent(static_cast<unichar>(other & -V::kTableWindow), windows.first);
    const auto window = V::of(static_cast<unichar>(windows.first[0] / V::kTableWindow));
    const auto within = units.tableWindow() == window;
    found = V::choose(within, units.inTable(typename V::Table(table + windows.first[0])), found);
    others &= ~V::bits(within);
  }
  found.store(mapped);
  for (size_t i = 0; others != 0; ++i, others >>= V::kBits) {
    if (others & 1) mapped[i] = table[at[i]];
  }
  return windows;
}

/// Maps units of which some are not ASCII, or of a table that is not known, in registers. The latest window is mostly
/// enough; where it often is not, all are looked at, as a branch would be mispredicted.
template <typename V>
class WindowMapper {
 public:
  [[gnu::always_inline]] explicit WindowMapper(const UnitMapping& mapping, TableWindows windows = {})
      : _mapping(mapping), _windows(windows) {}

  TableWindows windows() const { return _windows; }

  /// The units at `at`; anything where they do not count.
  [[gnu::always_inline]] V mapped(const unichar* at, typename V::Matches counts) {
    const V units = V::load(at), window = units.tableWindow();
    auto known = V::either(units.tableWindow().inBitmap(_mapping.settled), V::inverse(counts));
    V found = units;
    if (_mapping.knowsASCII) {
      found = asciiMapped(units, _mapping);
    } else {
      add(units, window == V::of(0), typename V::Table(_mapping.table), known, found);
    }
    add(units, window == _first, _firstTable, known, found);
    const unsigned isEnough = V::bits(V::inverse(known)) == 0;
    if (_missed < kMany && isEnough != 0) {
      _missed -= _missed > 0;
      return found;
    }
    _missed = std::min(_missed + 4, kMost) - 5 * isEnough;
    add(units, window == _second, _secondTable, known, found);
    add(units, window == _third, _thirdTable, known, found);
    const uint64_t others = V::bits(V::inverse(known));
    return others == 0 ? found : elsewhere(at, others, found);
  }

 private:
  using Table = typename V::Table;
  static constexpr unsigned kMany = 8, kMost = 64;

  [[gnu::always_inline]] static void add(V units, typename V::Matches within, const Table& table,
                                         typename V::Matches& known, V& found) {
    known = V::either(known, within);
    found = V::choose(within, units.inTable(table), found);
  }

  [[gnu::always_inline]] V elsewhere(const unichar* at, uint64_t others, V found) {
    unichar units[V::kUnits];
    found.store(units);
    _windows = mapElsewhere<V>(at, _mapping.table, _windows, others, units);
    _first = number(0), _second = number(1), _third = number(2);
    _firstTable = table(0), _secondTable = table(1), _thirdTable = table(2);
    return V::load(units);
  }

  [[gnu::always_inline]] V number(size_t k) const {
    return V::of(static_cast<unichar>(_windows.first[k] / V::kTableWindow));
  }
  [[gnu::always_inline]] Table table(size_t k) const { return Table(_mapping.table + _windows.first[k]); }

  const UnitMapping _mapping;  // a copy, so that nothing that is written can change it
  TableWindows _windows;
  unsigned _missed = 0;  // up when the latest window was not enough, down slowly when it was
  V _first = number(0), _second = number(1), _third = number(2);
  Table _firstTable = table(0), _secondTable = table(1), _thirdTable = table(2);
};

/// Writes the mapped units one block after the other, so that `mapped` may be `units`.
template <typename V>
void mapEach(const unichar* units, size_t count, const UnitMapping& mapping, unichar* mapped) {
  size_t i = 0;
  if constexpr (V::kUnits > 1) {
    const auto mapBlocks = [&](auto mapOther) {
      for (; count - i >= V::kUnits; i += V::kUnits) {
        const V block = V::load(units + i);
        const bool isASCII = V::bits(V::inverse(block <= V::of(0x7F))) == 0;
        if (isASCII && mapping.knowsASCII) {
          asciiMapped(block, mapping).store(mapped + i);
        } else {
          mapOther();
        }
      }
    };
    if constexpr (V::kTableWindow != 0) {
      WindowMapper<V> mapper(mapping);
      const V all = V::of(0);
      mapBlocks([&] { mapper.mapped(units + i, all == all).store(mapped + i); });
    } else {
      mapBlocks([&] {
        for (size_t k = i; k < i + V::kUnits; ++k) mapped[k] = mapping.table[units[k]];
      });
    }
    mapEach<typename V::Narrower>(units + i, count - i, mapping, mapped + i);
  } else {
    for (; i < count; ++i) mapped[i] = mapping.table[units[i]];
  }
}

/// Which of the units that may differ do.
template <typename V>
[[gnu::noinline]] typename V::Matches differAnywhere(const unichar* a, const unichar* b, const UnitMapping& mapping,
                                                     TableWindows& windows, typename V::Matches mayDiffer) {
  if constexpr (V::kTableWindow != 0) {
    WindowMapper<V> mapper(mapping, windows);
    const V left = mapper.mapped(a, mayDiffer), right = mapper.mapped(b, mayDiffer);
    windows = mapper.windows();
    return V::both(mayDiffer, V::inverse(left == right));
  } else {
    unichar difference[V::kUnits];
    for (size_t i = 0; i < V::kUnits; ++i) {
      difference[i] = static_cast<unichar>(mapping.table[a[i]] ^ mapping.table[b[i]]);
    }
    return V::both(mayDiffer, V::inverse(V::load(difference) == V::of(0)));
  }
}

/// Positions where the units of two runs differ when their ASCII is mapped; in vectors also through the table if
/// there is one.
template <bool hasTable>
struct MismatchTest {
  const unichar* a;
  const unichar* b;
  const UnitMapping& mapping;

  const unichar* address(size_t i) const { return a + i; }
  bool one(size_t i) const { return asciiMappedUnit(a[i], mapping) != asciiMappedUnit(b[i], mapping); }
  template <typename V>
  typename V::Matches block(size_t i) const {
    const V left = V::load(a + i), right = V::load(b + i);
    auto different = V::inverse(left == right);
    if (V::bits(different) == 0) return different;
    different = V::inverse(asciiMapped(left, mapping) == asciiMapped(right, mapping));
    if constexpr (hasTable) {
      TableWindows windows;
      if (V::bits(different) != 0) return differAnywhere<V>(a + i, b + i, mapping, windows, different);
    }
    return different;
  }
};

/// The first position where two runs differ through a table.
template <typename V>
size_t mismatchOf(const unichar* a, const unichar* b, size_t length, const UnitMapping& mapping) {
  size_t i = 0;
  if constexpr (V::kTableWindow != 0) {
    WindowMapper<V> mapper(mapping);
    for (; length - i >= V::kUnits; i += V::kUnits) {
      const V left = V::load(a + i), right = V::load(b + i);
      if (V::bits(V::inverse(left == right)) == 0) continue;
      const auto mayDiffer = V::inverse(asciiMapped(left, mapping) == asciiMapped(right, mapping));
      if (V::bits(mayDiffer) == 0) continue;
      const V mapped = mapper.mapped(a + i, mayDiffer);
      const auto different = V::both(mayDiffer, V::inverse(mapped == mapper.mapped(b + i, mayDiffer)));
      if (const uint64_t bits = V::bits(different); bits != 0) {
        return i + static_cast<unsigned>(__builtin_ctzll(bits)) / V::kBits;
      }
    }
    return i + mismatchOf<typename V::Narrower>(a + i, b + i, length - i, mapping);
  } else {
    return firstWhere<V>(0, length, MismatchTest<true>{a, b, mapping},
                         [&](size_t k) { return mapping.table[a[k]] != mapping.table[b[k]]; });
  }
}

}  // namespace
}  // namespace velan

#endif  // VELAN_TEXT_KERNELS_MAPPING_LOOPS_INTERNAL_H
