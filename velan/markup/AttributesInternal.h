// What the readers of attributes and of header fields share.
#ifndef VELAN_MARKUP_ATTRIBUTES_INTERNAL_H
#define VELAN_MARKUP_ATTRIBUTES_INTERNAL_H

#include <string>

#include "velan/base/String.h"

namespace velan {

/// The name through the upper table.
std::u16string upperCase(const String& name);

/// The value of the first `name=value` in `text`; see `headerFieldNamed`. With `tolerant` white space and quotation
/// marks are treated as in its form without `quotation`.
String headerField(std::u16string_view text, std::u16string_view upperName, unichar quotation, bool tolerant,
                   unichar separator);

}  // namespace velan

#endif  // VELAN_MARKUP_ATTRIBUTES_INTERNAL_H
