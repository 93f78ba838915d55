// Whether there is anything in a string, and what stands at its ends. Nothing allocates; any thread may call these.
#ifndef VELAN_TEXT_INSPECTION_STRING_ENDS_H
#define VELAN_TEXT_INSPECTION_STRING_ENDS_H

#include "velan/base/String.h"

namespace velan {

/// `isStringEmpty:`: whether `string` is absent or has no units.
inline bool isStringEmpty(const String& string) { return string.isEmpty(); }
/// `isStringNotEmpty:`: the opposite.
inline bool isStringNotEmpty(const String& string) { return !string.isEmpty(); }

/// `firstCharacter`: the first unit; 0 when `string` is empty or absent.
inline unichar firstCharacter(const String& string) { return string.isEmpty() ? u'\0' : string[0]; }
/// `lastCharacter`: the last unit; 0 when `string` is empty or absent.
inline unichar lastCharacter(const String& string) { return string.isEmpty() ? u'\0' : string[string.length() - 1]; }

}  // namespace velan

#endif  // VELAN_TEXT_INSPECTION_STRING_ENDS_H
