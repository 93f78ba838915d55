// Numbers in texts, read the way programs read what people typed; no locale is asked and nothing allocates.
#ifndef VELAN_BASE_TEXT_NUMBERS_H
#define VELAN_BASE_TEXT_NUMBERS_H

#include <cstdint>
#include <optional>
#include <string_view>

#include "velan/base/CTypes.h"

namespace velan {

/// Whether the text, after white space, one sign and zeros, goes on with one of "YyTt" or a digit from 1 to 9.
VELAN_EXPORT bool booleanReading(std::string_view text);

/// The decimal integer at the beginning, after white space and one sign; the nearest 64-bit one when it is out of
/// range, 0 if there is none.
VELAN_EXPORT int64_t leadingInteger(std::string_view text);
VELAN_EXPORT int64_t leadingInteger(std::u16string_view text);

/// The decimal number at the beginning, with fraction and exponent, after white space and one sign; infinite when it is
/// too large, 0 when it is too small or if there is none.
VELAN_EXPORT double leadingDouble(std::string_view text);

/// The number that the whole text is: digits with fraction and exponent, "inf", "infinity" or "nan" in any case, one
/// sign before them. Infinite when it is too large, 0 when it is too small.
VELAN_EXPORT std::optional<double> doubleFromText(std::string_view text);

}  // namespace velan

#endif  // VELAN_BASE_TEXT_NUMBERS_H
