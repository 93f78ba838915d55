// Appending parts of other texts. Both throw `std::bad_alloc` when memory runs out, as the members of `MutableString`
// do.
#ifndef VELAN_TEXT_EDITING_APPENDING_H
#define VELAN_TEXT_EDITING_APPENDING_H

#include "velan/base/MutableString.h"

namespace velan {

/// `appendSubstring:range:`: appends the units of `range` of `string`, clipped to `string`; nothing when it is absent.
VELAN_EXPORT void appendSubstring(MutableString& text, const String& string, Range range);

/// `appendTrimmedString:`: appends `string` without the members of `whiteCharacterSetRep` at its ends.
VELAN_EXPORT void appendTrimmedString(MutableString& text, const String& string);

}  // namespace velan

#endif  // VELAN_TEXT_EDITING_APPENDING_H
