// Property lists: trees of values as bytes, in the binary and the XML form that property-list files have.
#ifndef VELAN_BASE_PROPERTYLIST_PROPERTY_LIST_H
#define VELAN_BASE_PROPERTYLIST_PROPERTY_LIST_H

#include <span>

#include "velan/base/Data.h"
#include "velan/base/Value.h"

namespace velan {

enum class PropertyListFormat { Binary, XML };

/// How deep arrays and dictionaries may lie inside each other, in what is read and in what is written.
inline constexpr size_t kPropertyListDepth = 512;

/// The values of a property list in either form, which is recognised; absent when `bytes` is not a well-formed one.
///
/// Booleans, integers (64 bits, unsigned from 2^63 on), floats, doubles, dates, strings, data, arrays and dictionaries
/// become values of these kinds; a set is read as an array, a UID as an unsigned 64-bit integer. The binary form keeps
/// strings with U+0000 and lone surrogates. An object that the file refers to in several places is decoded once and
/// shared. Time and memory are linear in the size of the file, whatever its bytes are: cycles, objects that overlap and
/// nesting beyond `kPropertyListDepth` are refused. XML may be UTF-8, ASCII or Latin-1 as it declares,
/// or UTF-16 with a byte-order mark, which counts more than the declaration; another encoding is refused with a warning
/// that names it. Document types with declarations of their own and all but the predefined entities are refused. Reals
/// that are too large are infinite, those too small 0.
VELAN_EXPORT Value readPropertyList(std::span<const uint8_t> bytes);
inline Value readPropertyList(const Data& data) { return readPropertyList(data.span()); }

/// `value` as a property list. Absent when it holds something that the form has no room for: an absent value or a URL,
/// nesting beyond `kPropertyListDepth`, and in XML also a character that XML excludes (control characters, lone
/// surrogates, U+FFFE, U+FFFF), a date outside the years 0 to 9999, or more than 2^24 values because shared parts are
/// written out at each place. XML keeps dates to the second and widens floats; the binary form keeps everything (a
/// character becomes an integer), writes equal strings, numbers, dates and data once, and shared containers too.
VELAN_EXPORT Data writePropertyList(const Value& value, PropertyListFormat format);

}  // namespace velan

#endif  // VELAN_BASE_PROPERTYLIST_PROPERTY_LIST_H
