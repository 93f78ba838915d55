// Matching by following all ways through a pattern at once: for patterns with sets whose end depends on the text, and
// where one way after the other would take many steps.
#ifndef VELAN_WILDCARD_WILDCARD_SIMULATION_INTERNAL_H
#define VELAN_WILDCARD_WILDCARD_SIMULATION_INTERNAL_H

#include <optional>

#include "velan/base/CTypes.h"

namespace velan {

enum class WildcardSyntax : uint8_t {
  Plain,  // `*` and `?`
  Unix    // and sets
};

/// Whether the text matches the pattern, as `stringMatchesWildcard` and `stringMatchesUnixWildcard` define it. `table`
/// may be null. Takes about as many steps as the text has units for each 64 units of the pattern. Needs some 24 KiB of
/// stack and, above 4,096 units, up to 2 MiB of heap and two bytes per unit of the pattern; nothing when the heap has
/// no room.
std::optional<bool> simulateWildcard(const unichar* text, const unichar* textEnd, const unichar* pattern,
                                     const unichar* patternEnd, const unichar* table, WildcardSyntax syntax);

}  // namespace velan

#endif  // VELAN_WILDCARD_WILDCARD_SIMULATION_INTERNAL_H
