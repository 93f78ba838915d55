// What is known of the library's own conversion tables beyond their entries.
#ifndef VELAN_TEXT_CONVERSION_TABLES_INTERNAL_H
#define VELAN_TEXT_CONVERSION_TABLES_INTERNAL_H

#include "velan/text/kernels/UnitKernelsInternal.h"

namespace velan {

struct Preimages;

/// What units become which; null for a table that is not the library's. Made when it is first asked for.
const Preimages* preimagesOfTable(const unichar* table);

/// What the kernels need to know of a table, which may be any; without one, units stay as they are.
UnitMapping mappingOf(const unichar* table);

}  // namespace velan

#endif  // VELAN_TEXT_CONVERSION_TABLES_INTERNAL_H
