// The units that a conversion table turns into a given one: comparing units of text with these finds what is equal
// through the table without looking any of them up.
#ifndef VELAN_TEXT_PREIMAGES_INTERNAL_H
#define VELAN_TEXT_PREIMAGES_INTERNAL_H

#include "velan/text/ConversionTablesInternal.h"
#include "velan/text/kernels/UnitKernelsInternal.h"

namespace velan {

/// Calls `add(unit)` for each unit that `table` turns into `c`, which is one of its entries.
template <typename Add>
void forEachPreimage(unichar c, const unichar* table, Add add) {
  if (const unichar* rings = ringsOfTable(table)) {
    add(c);
    for (unichar unit = rings[c]; unit != c; unit = rings[unit]) add(unit);
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
