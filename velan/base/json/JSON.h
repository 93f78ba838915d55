// JSON (RFC 8259): values as text and back, the test whether a text is JSON, and the escapes of its strings.
// Nothing here recurses by the nesting of a text.
#ifndef VELAN_BASE_JSON_JSON_H
#define VELAN_BASE_JSON_JSON_H

#include <optional>
#include <string>
#include <string_view>

#include "velan/base/Value.h"

namespace velan {

/// How deep arrays and objects may lie inside each other in what `readJSON` reads.
inline constexpr size_t kJSONDepth = 600;

/// The value that `json`, in UTF-8, spells; nothing when it is malformed, begins with a byte-order mark, or is nested
/// deeper than `kJSONDepth`. Whole numbers that fit become 64-bit integers, others doubles; a number too large for a
/// double is infinite, one too small is 0. Of several members with one name the last stays.
VELAN_EXPORT std::optional<Value> readJSON(std::string_view json);

/// Appends `value` as JSON in UTF-8 without line ends. Data becomes Base64, a date the seconds since 2001, an absent
/// value null, a number that JSON has no word for a string. False, with a part of it appended, when there would be more
/// than a million values because shared parts are written out at each place.
VELAN_EXPORT bool appendJSON(const Value& value, std::string& json);
/// Appends `text` as a JSON string with its quotation marks, in UTF-8.
VELAN_EXPORT void appendJSONString(const String& text, std::string& json);

/// `stringByConvertingCharactersToJSON`: `string` with the escapes that it needs inside the quotation marks of a JSON
/// string, which are not added: quotation marks, backslashes, control characters and lone surrogates are escaped. The
/// receiver itself when nothing is.
VELAN_EXPORT String stringByConvertingCharactersToJSON(const String& string);

/// `isJSON`: whether `string` is JSON: one value of any kind, white space around it, nothing else. There is no limit to
/// the nesting; each open level takes one bit of memory, and false comes back when that runs out. A byte-order mark is
/// no JSON; a lone surrogate inside a string is accepted.
VELAN_EXPORT bool isJSON(const String& string);
/// `isJSONFeed`: whether `string` is JSON whose value is an object with a "version" that begins with
/// "https://jsonfeed.org/version/" and with an array of "items". False also when memory runs out.
VELAN_EXPORT bool isJSONFeed(const String& string);

}  // namespace velan

#endif  // VELAN_BASE_JSON_JSON_H
