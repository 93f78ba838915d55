// Records of keyed data as text that people and programs read, and back.
#ifndef VELAN_TOOLS_KEYED_KEYED_TEXT_H
#define VELAN_TOOLS_KEYED_KEYED_TEXT_H

#include <optional>
#include <string>
#include <string_view>

#include "velan/base/MutableData.h"
#include "velan/base/Value.h"
#include "velan/keyed/KeyedInspection.h"

namespace velan::tool {

/// The number that a key or marker is written as: four ASCII characters of a code, or a number in decimal or (0x)
/// hexadecimal.
std::optional<uint32_t> keyFromText(std::string_view text);
/// Four characters when all of them are printable, otherwise the decimal number.
std::string textFromKey(uint32_t key);

/// The value that a record with this marker holds, from one that was read as JSON: dates are numbers there, data is
/// Base64, and numbers that JSON has no word for are strings. What has no such meaning stays as it is.
Value valueFromJson(uint32_t marker, const Value& value);

/// Why and where a buffer is not valid, in words.
std::string describeDamage(const Data& data, const KeyedInspection& inspection);

/// A date as people read it, in UTC; in seconds where it lies beyond the calendar.
std::string textOfDate(const Value& date);

/// The record as one line of text: offset, marker, key, value.
std::string lineOfRecord(const Data& data, const KeyedRecord& record);
/// All records as a JSON array, one line each. A record that its marker, key and value do not give back byte by byte
/// has its bytes in Base64 too, and so has a damaged end.
std::string jsonOfRecords(const Data& data);
/// The bytes that such JSON describes. Absent when it is malformed; `why` then says where.
Data recordsFromJson(std::string_view json, std::string& why);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_KEYED_KEYED_TEXT_H
