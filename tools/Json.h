// Values as JSON (RFC 8259) and back.
#ifndef VELAN_TOOLS_JSON_H
#define VELAN_TOOLS_JSON_H

#include <optional>
#include <string>
#include <string_view>

#include "velan/base/Value.h"

namespace velan::tool {

/// Appends `value` as JSON in UTF-8 without line ends. Data becomes Base64, a date the seconds since 2001, an absent
/// value null, a number that JSON has no word for a string. False, with a part of it appended, when there would be more
/// than a million values because shared parts are written out at each place.
bool appendJson(const Value& value, std::string& json);
/// Appends `text` as a JSON string.
void appendJsonString(const String& text, std::string& json);

/// The value that `json` spells, nothing when it is malformed or nested more than 600 levels deep. Whole numbers that
/// fit become 64-bit integers, others doubles.
std::optional<Value> readJson(std::string_view json);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_JSON_H
