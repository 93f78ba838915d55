// New strings: identifiers, and lists joined to one text. Any thread may call these.
#ifndef VELAN_TEXT_INSPECTION_STRING_CREATION_H
#define VELAN_TEXT_INSPECTION_STRING_CREATION_H

#include <vector>

#include "velan/base/String.h"

namespace velan {

/// `uniqueString`: a new identifier on each call: a UUID of version 4 (RFC 9562), 122 random bits, written as 36 units
/// with lower-case digits. Absent when the system has no random bytes or memory runs out.
VELAN_EXPORT String uniqueString();

/// `stringWithComponents:`: `components` with one space between each two; an absent one counts as empty. Empty for an
/// empty list. May throw `std::bad_alloc`.
VELAN_EXPORT String stringWithComponents(const std::vector<String>& components);

}  // namespace velan

#endif  // VELAN_TEXT_INSPECTION_STRING_CREATION_H
