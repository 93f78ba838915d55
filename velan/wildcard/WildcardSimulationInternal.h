// Matching by following all ways through a pattern at once, for patterns with sets whose end depends on the text.
#ifndef VELAN_WILDCARD_WILDCARD_SIMULATION_INTERNAL_H
#define VELAN_WILDCARD_WILDCARD_SIMULATION_INTERNAL_H

#include "velan/base/CTypes.h"

namespace velan {

/// Whether the text matches the Unix pattern, as `stringMatchesUnixWildcard` defines it. `table` may be null. Takes
/// at most about pattern length times text length steps; most of them are spared where text units are alike to the
/// pattern. Needs some 20 KiB of stack and, above 4,096 units, up to 16 MiB of heap or eight bytes per unit of the
/// pattern, whichever is more; false when the heap has no room.
bool simulateUnixWildcard(const unichar* text, const unichar* textEnd, const unichar* pattern,
                          const unichar* patternEnd, const unichar* table);

}  // namespace velan

#endif  // VELAN_WILDCARD_WILDCARD_SIMULATION_INTERNAL_H
