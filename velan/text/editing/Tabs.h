// Tabs to spaces and back, by columns. A column is a code unit; the first is 0, also after each line end (those of
// `velan/text/inspection/Lines.h`). A tab stop is every column that is a multiple of `width`. A `width` below 1 fails a
// debug assertion and leaves the text alone. Linear time.
#ifndef VELAN_TEXT_EDITING_TABS_H
#define VELAN_TEXT_EDITING_TABS_H

#include "velan/base/MutableString.h"

namespace velan {

/// `decodeTabs:`: replaces each TAB by spaces up to the next tab stop, at least one. False, and `text` as it was, when
/// memory runs out.
VELAN_EXPORT bool decodeTabs(MutableString& text, int64_t width);

/// `encodeTabs:`: replaces each run of units of `spaceCharacterSetRep` (U+0020, TAB, U+00A0, U+0000 and others) that
/// ends on a tab stop by one TAB, also a run of one; a run that crosses a tab stop is cut there. Allocates nothing.
VELAN_EXPORT void encodeTabs(MutableString& text, int64_t width);

}  // namespace velan

#endif  // VELAN_TEXT_EDITING_TABS_H
