// Runs of units through a conversion table.
#ifndef VELAN_TEXT_UNIT_MAPPING_INTERNAL_H
#define VELAN_TEXT_UNIT_MAPPING_INTERNAL_H

#include <string_view>

#include "velan/base/String.h"

namespace velan {

/// Writes `table[units[i]]` to `mapped[i]` for `count` units; `mapped` may be `units`.
void mapUnits(const unichar* units, size_t count, const unichar* table, unichar* mapped);

/// A string of `table[unit]` for each unit; absent when memory runs out.
String mappedString(std::u16string_view units, const unichar* table);

}  // namespace velan

#endif  // VELAN_TEXT_UNIT_MAPPING_INTERNAL_H
