// Numbers at the beginning of UTF-8 texts, read the way programs read what people typed.
#ifndef VELAN_KEYED_TEXT_NUMBERS_INTERNAL_H
#define VELAN_KEYED_TEXT_NUMBERS_INTERNAL_H

#include <cstdint>
#include <string_view>

namespace velan::keyed {

/// Whether the text, after white space, one sign and zeros, goes on with one of "YyTt" or a digit from 1 to 9.
bool booleanReading(std::string_view text);
/// The decimal integer at the beginning, after white space; the nearest 64-bit one when it is out of range, 0 if there
/// is none.
int64_t leadingInteger(std::string_view text);
/// The decimal number at the beginning, with fraction and exponent, after white space; infinite when it is too large, 0
/// if there is none.
double leadingDouble(std::string_view text);

}  // namespace velan::keyed

#endif  // VELAN_KEYED_TEXT_NUMBERS_INTERNAL_H
