// The exact search behind the containment functions, for other folders that search units.
#ifndef VELAN_TEXT_SEARCH_UNIT_SEARCH_INTERNAL_H
#define VELAN_TEXT_SEARCH_UNIT_SEARCH_INTERNAL_H

#include "velan/base/CTypes.h"

namespace velan {

/// The first position of `needle` in `haystack`, or `length` if there is none; an empty needle is never found. Takes
/// time linear in both lengths, whatever the units.
size_t findUnits(const unichar* haystack, size_t length, const unichar* needle, size_t needleLength);

/// The same in `table[unit]` of the haystack; the needle has gone through the table already.
size_t findMappedUnits(const unichar* haystack, size_t length, const unichar* needle, size_t needleLength,
                       const unichar* table);

}  // namespace velan

#endif  // VELAN_TEXT_SEARCH_UNIT_SEARCH_INTERNAL_H
