// The named character entities.
#ifndef VELAN_MARKUP_ENTITY_TABLE_INTERNAL_H
#define VELAN_MARKUP_ENTITY_TABLE_INTERNAL_H

#include "velan/base/CTypes.h"

namespace velan {

inline constexpr size_t kEntityCount = 246;

/// Names and their characters in one order; a null pointer and a 0 after the last.
extern const char* const entityStrings[kEntityCount + 1];
extern const unichar entityCharacters[kEntityCount + 1];

/// A perfect hash over the names: with the FNV-1a hash h of a name, the slot (h / 64 ^ moves[h % 64]) % 512 holds its
/// index plus 1; other slots hold 0.
extern const uint16_t kEntityMoves[64];
extern const uint8_t kEntitySlots[512];

}  // namespace velan

#endif  // VELAN_MARKUP_ENTITY_TABLE_INTERNAL_H
