// Encodings by the names that documents and protocols give them. All of it may be called from any thread.
#ifndef VELAN_TEXT_ENCODING_CHARSET_NAMES_H
#define VELAN_TEXT_ENCODING_CHARSET_NAMES_H

#include <string_view>

#include "velan/base/Data.h"
#include "velan/base/String.h"
#include "velan/base/StringEncoding.h"

namespace velan {

/// `NSEncodingFromName`: the encoding that is registered with IANA under `name`, or that pages mean by it. Case,
/// blanks, punctuation and quotation marks do not matter. `Invalid` for a name that nobody knows, and for an empty or
/// absent one. That there is a converter for it is not promised ("x-mac-japanese").
VELAN_EXPORT StringEncoding NSEncodingFromName(const String& name);

/// `charset2NSStringEncoding`: the same for a name in bytes.
VELAN_EXPORT StringEncoding charset2NSStringEncoding(std::string_view charset);

/// `charset2CFStringEncoding`: the same as the number of the converter.
VELAN_EXPORT TextEncoding charset2CFStringEncoding(std::string_view charset);

/// The name of `encoding`, as IANA has it where it does; `charset2NSStringEncoding` gives it back for the name. Null
/// for an encoding that the library has no converter for.
VELAN_EXPORT const char* charsetName(StringEncoding encoding);

/// `initWithKoi8cs2Data:`: the text of bytes in KOI8-CS2 (ČSN 36 9103), U+FFFD for those that stand for nothing. Absent
/// for absent data.
VELAN_EXPORT String stringWithKoi8cs2Data(const Data& data);

/// `initWithKamenickyData:`: the same for the code page of the brothers Kamenický.
VELAN_EXPORT String stringWithKamenickyData(const Data& data);

}  // namespace velan

#endif  // VELAN_TEXT_ENCODING_CHARSET_NAMES_H
