// Ligatures as the letters that they stand for.
#ifndef VELAN_TEXT_EDITING_LIGATURES_H
#define VELAN_TEXT_EDITING_LIGATURES_H

#include "velan/base/MutableString.h"

namespace velan {

/// `convertLigaturesToCharacters`: replaces the Latin ligatures by their letters: U+FB00 to U+FB06 by "ff", "fi", "fl",
/// "ffi", "ffl", "st" (the one with a long s too) and "st", and "œ", "æ" and "ĳ" by "oe", "ae" and "ij", in upper case
/// by "OE", "AE" and "IJ". Linear time. False, and `text` as it was, when memory runs out.
VELAN_EXPORT bool convertLigaturesToCharacters(MutableString& text);

}  // namespace velan

#endif  // VELAN_TEXT_EDITING_LIGATURES_H
