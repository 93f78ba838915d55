// What is known of the library's own conversion tables beyond their entries.
#ifndef VELAN_TEXT_CONVERSION_TABLES_INTERNAL_H
#define VELAN_TEXT_CONVERSION_TABLES_INTERNAL_H

#include "velan/text/kernels/UnitKernelsInternal.h"

namespace velan {

/// For each unit the next one with the same entry, in a ring. Null for a table that is not the library's.
const unichar* ringsOfTable(const unichar* table);

/// What the kernels need to know of a table, which may be any; without one, units stay as they are.
UnitMapping mappingOf(const unichar* table);

}  // namespace velan

#endif  // VELAN_TEXT_CONVERSION_TABLES_INTERNAL_H
