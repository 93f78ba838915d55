// Settings in plain text: one a line, a key, white space and a value; "#" begins a line that is a comment. Lines end as
// in `velan/text/inspection/Lines.h`; white space is `whiteCharacterSetRep`. Any thread may call these.
//
//     # where the server listens
//     Host     localhost
//     Port     8080
#ifndef VELAN_TEXT_INSPECTION_CONFIGURATION_H
#define VELAN_TEXT_INSPECTION_CONFIGURATION_H

#include <vector>

#include "velan/base/String.h"
#include "velan/base/Value.h"

namespace velan {

/// `configLines`: the lines of `text` that hold settings, in order, without white space at their ends. Comments are
/// left out, and so are lines of fewer than two units. May throw `std::bad_alloc`.
VELAN_EXPORT std::vector<String> configLines(const String& text);

/// `configValueForKey:`: the value of `key` when `line`, one of `configLines`, sets it: what follows the key without
/// white space at its ends. The line must begin with the key, in any case, and white space must follow. Absent
/// otherwise, for a setting without a value, for an empty or absent key, and when memory runs out.
VELAN_EXPORT String configValueForKey(const String& line, const String& key);

/// `typedValueForKeys:`: what `text`, all of a configuration, sets the first of `keys` to that it sets at all; of
/// several lines the first counts. An absent key ends the list. The value's kind is what all of its text reads as, the
/// first in this table:
///
/// | text | kind |
/// |---|---|
/// | on, yes, true, off, no, false, in any case | Boolean |
/// | decimal digits, perhaps after one sign, if the number has room in 64 bits | Int64 |
/// | any other decimal number: 1.5, -.5, 1e3 | Double |
/// | a date of ISO 8601: 2001-02-03, perhaps with a time of day, a fraction and an offset | Date |
/// | anything else | String |
///
/// `NSNotFound` as a number when no key is found. May throw `std::bad_alloc`.
VELAN_EXPORT Value typedValueForKeys(const String& text, const std::vector<String>& keys);

/// `boolValue`: how people write yes in a setting. An integer at the beginning, after white space and perhaps a sign,
/// decides unless it is 0; then "on", "yes" and "true", in any case and nothing else, are true. Everything else is
/// false, an absent string too. (Keyed values read texts in another way.)
VELAN_EXPORT bool boolValue(const String& string);

}  // namespace velan

#endif  // VELAN_TEXT_INSPECTION_CONFIGURATION_H
