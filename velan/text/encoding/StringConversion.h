// Strings from bytes in a given encoding, and back. All of it may be called from any thread.
#ifndef VELAN_TEXT_ENCODING_STRING_CONVERSION_H
#define VELAN_TEXT_ENCODING_STRING_CONVERSION_H

#include <string_view>

#include "velan/base/Data.h"
#include "velan/base/String.h"
#include "velan/base/StringEncoding.h"

namespace velan {

/// `defaultEncoding`: the encoding of the whole library where none is given; UTF-8 until it is set.
VELAN_EXPORT StringEncoding defaultEncoding();
/// `setDefaultEncoding:`: takes any number.
VELAN_EXPORT void setDefaultEncoding(StringEncoding encoding);

/// `stringWithData:encoding:` and `initWithData:encoding:`: the text of `data` in `encoding`. Absent when any byte does
/// not fit the encoding (malformed, cut off, or a code that stands for no character), for an unknown encoding, one that
/// asks for detection (see `stringByDetectingEncodingOfData`), and for absent data. The UTF-16 forms take any units, a
/// surrogate without its partner too. A byte-order mark that begins UTF-8 or a form without a byte order is left out;
/// in an explicit order it is kept as U+FEFF.
VELAN_EXPORT String stringWithData(const Data& data, StringEncoding encoding);

/// `stringWithBytes:length:encoding:` and `initWithBytes:length:encoding:`: the same of `bytes[0, length)`. Absent for
/// null bytes, unless `length` is 0.
VELAN_EXPORT String stringWithBytes(const void* bytes, size_t length, StringEncoding encoding);

/// `stringWithCString:length:encoding:` and `initWithCString:length:encoding:`: the same; no terminating NUL is needed,
/// and one within is a character.
VELAN_EXPORT String stringWithCString(const char* bytes, size_t length, StringEncoding encoding);

/// `stringWithNullTerminatedCString:encoding:` and `initWithNullTerminatedCString:encoding:`: the same of the bytes
/// before the first NUL. Absent for a null pointer.
VELAN_EXPORT String stringWithNullTerminatedCString(const char* bytes, StringEncoding encoding);

/// `stringWithCharacter:` and `initWithCharacter:`: the string of one code unit.
VELAN_EXPORT String stringWithCharacter(unichar character);

/// `dataUsingEncoding`: the bytes of `text` in `encoding`. Absent when the encoding cannot express all of it, a lone
/// surrogate included (the UTF-16 forms take any units), or is not supported. Only `UTF16` and `UTF32` write a
/// byte-order mark.
VELAN_EXPORT Data dataUsingEncoding(std::u16string_view text, StringEncoding encoding);

/// `fastestEncoding`: the encoding that takes the least work to make from `string`: UTF-16.
VELAN_EXPORT StringEncoding fastestEncoding(const String& string);
/// `smallestEncoding`: ASCII where `string` fits into it, otherwise UTF-16.
VELAN_EXPORT StringEncoding smallestEncoding(const String& string);

}  // namespace velan

#endif  // VELAN_TEXT_ENCODING_STRING_CONVERSION_H
