// Strings as bytes in a given encoding.
#ifndef VELAN_PLATFORM_STRING_CONVERSION_H
#define VELAN_PLATFORM_STRING_CONVERSION_H

#include <string_view>

#include "velan/base/Data.h"
#include "velan/base/StringEncoding.h"

namespace velan {

/// `dataUsingEncoding`: the bytes of `text` in `encoding`. Absent when the encoding cannot express all of it, a lone
/// surrogate included (the UTF-16 forms take any units), or is not supported. Only `UTF16` and `UTF32` write a
/// byte-order mark. May be called from several threads.
VELAN_EXPORT Data dataUsingEncoding(std::u16string_view text, StringEncoding encoding);

}  // namespace velan

#endif  // VELAN_PLATFORM_STRING_CONVERSION_H
