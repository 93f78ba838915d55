// The units that a conversion table turns into a given one: comparing units of text with these finds what is equal
// through the table without looking any of them up.
#ifndef VELAN_TEXT_PREIMAGES_INTERNAL_H
#define VELAN_TEXT_PREIMAGES_INTERNAL_H

#include "velan/text/ConversionTablesInternal.h"
#include "velan/text/UnitFrequenciesInternal.h"
#include "velan/text/kernels/UnitKernelsInternal.h"

namespace velan {

/// What units become which through one of the library's tables.
struct Preimages {
  unichar rings[VelanTableLength];  // for each unit the next one with the same entry
  UnitCosts costs;                  // of looking for all that becomes a unit
  NeedleHead::Probe ascii[0x80];    // their masks and filters

  bool hasMany(unichar c) const { return rings[rings[c]] != c; }
  unsigned costOf(unichar c) const { return c < kRankedUnits ? costs[c] : hasMany(c) ? costOfMany(0) : 0; }
  /// The bits of `c` that the next unit of its ring has, too: a letter mostly differs in one from its other case.
  unichar maskOf(unichar c) const { return static_cast<unichar>(~(c ^ rings[c])); }
};

/// Makes them for a table whose entries are their own entries; false for any other.
bool fillPreimages(const unichar* table, Preimages& preimages);

/// Sets the mask and the filter of a probe for the units that become `c`, which is an entry of their table.
void setFilter(unichar c, const Preimages& preimages, NeedleHead::Probe& probe);

/// Calls `add(unit)` for each unit that `table` turns into `c`, which is one of its entries.
template <typename Add>
void forEachPreimage(unichar c, const unichar* table, Add add) {
  if (const Preimages* preimages = preimagesOfTable(table)) {
    add(c);
    for (unichar unit = preimages->rings[c]; unit != c; unit = preimages->rings[unit]) add(unit);
    return;
  }
  for (size_t unit = 0; unit < VelanTableLength; ++unit) {
    if (table[unit] == c) add(static_cast<unichar>(unit));
  }
}

/// A filter that all units pass which `table` turns into `c`; no others if there are at most `UnitFilter::kMost` of
/// them and the table is one of the library's. Only `c` passes without a table, and any unit with a foreign one.
UnitFilter filterOfPreimages(unichar c, const unichar* table);

}  // namespace velan

#endif  // VELAN_TEXT_PREIMAGES_INTERNAL_H
