// Strings mapped through the tables of `velan/text/ConversionTables.h`, unit by unit: texts of the same length for
// comparing and for keys. The result is `string` itself when no unit changes, and absent when memory runs out. Linear
// time; any thread may call these.
#ifndef VELAN_TEXT_INSPECTION_FOLDED_STRINGS_H
#define VELAN_TEXT_INSPECTION_FOLDED_STRINGS_H

#include "velan/base/String.h"

namespace velan {

/// `stringUsingConversionTable:`: `table[unit]` for each unit; `table` has 65,536 entries, null stands for no mapping.
VELAN_EXPORT String stringUsingConversionTable(const String& string, const unichar* table);

/// `normalizedString`: without diacritics and in lower case: through `initLowerUmlautsCharsTable`. (`normalizeString`
/// is something else: it brings a text into the normal form C.)
VELAN_EXPORT String normalizedString(const String& string);

/// `nonUmlautedString`: without diacritics, the case as it is: through `initUmlautsCharsTable`.
VELAN_EXPORT String nonUmlautedString(const String& string);

}  // namespace velan

#endif  // VELAN_TEXT_INSPECTION_FOLDED_STRINGS_H
