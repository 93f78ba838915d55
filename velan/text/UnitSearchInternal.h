// The exact search behind the containment functions, for other folders that search units.
#ifndef VELAN_TEXT_UNIT_SEARCH_INTERNAL_H
#define VELAN_TEXT_UNIT_SEARCH_INTERNAL_H

#include "velan/base/CTypes.h"

namespace velan {

/// The first position of `needle` in `haystack`, or `length` if there is none; an empty needle is never found. Takes time
/// linear in both lengths, whatever the units.
size_t findUnits(const unichar* haystack, size_t length, const unichar* needle, size_t needleLength);

}  // namespace velan

#endif  // VELAN_TEXT_UNIT_SEARCH_INTERNAL_H
