#include "tools/keyed/KeyedText.h"

#include <charconv>
#include <limits>

#include "velan/base/Base64.h"
#include "velan/base/ByteOrder.h"
#include "velan/base/dates/CivilTime.h"
#include "velan/base/json/JSON.h"
#include "velan/keyed/KeyedWriting.h"

namespace velan::tool {
namespace {

std::string quoted(const Value& value) {
  std::string json;
  return appendJSON(value, json) ? json : "(too large to show)";
}

// JSON has no numbers for these: they are written as words.
Value realFromJson(const Value& value) {
  if (value.isNumber()) return value;
  const std::string text = value.string().toUTF8();
  if (text == "inf") return std::numeric_limits<double>::infinity();
  if (text == "-inf") return -std::numeric_limits<double>::infinity();
  return text == "nan" ? Value(std::numeric_limits<double>::quiet_NaN()) : Value();
}

std::string descriptionOf(const Data& data, const KeyedRecord& record) {
  const Value value = valueOfRecord(data, record);
  if (value.isAbsent()) return "(cannot be decoded)";
  if (record.marker == VLda) return textOfDate(value);
  if (record.marker == VLdt) return std::to_string(value.data().length()) + " bytes " + quoted(value);
  return quoted(value);
}

void appendBytesMember(const Data& bytes, std::string& json) {
  json += ",\"bytes\":\"";
  appendBase64(bytes.span(), json);
  json += '"';
}

std::string jsonOfRecord(const Data& data, const KeyedRecord& record) {
  std::string value;
  if (!appendJSON(valueOfRecord(data, record), value)) value = "null";
  const std::string key = textFromKey(record.key);
  std::string json =
      "{\"offset\":" + std::to_string(record.offset) + ",\"marker\":\"" + textFromKey(record.marker) + "\",\"key\":";
  if (key.size() == 4 && key != std::to_string(record.key)) {
    appendJSONString(String::fromUTF8(key), json);
  } else {
    json += std::to_string(record.key);
  }
  json += ",\"value\":" + value;
  MutableData again;
  const auto read = readJSON(value);
  const Data bytes = data.subdata({static_cast<int64_t>(record.offset), static_cast<int64_t>(record.length)});
  if (!read || !addRecord(again, record.marker, record.key, valueFromJson(record.marker, *read)) ||
      again.view() != bytes.view()) {
    appendBytesMember(bytes, json);
  }
  return json + "}";
}

std::optional<uint32_t> keyFromJson(const Value& key) {
  if (key.kind() == ValueKind::String) return keyFromText(key.string().toUTF8());
  const auto number = static_cast<uint32_t>(key.uint64Value());
  return key.isInteger() && Value(number) == key ? std::optional(number) : std::nullopt;
}

// Appends what one element of the array describes.
bool appendElement(const ValueDictionary& element, MutableData& data) {
  if (element.find(u"bytes")) {
    const Value& text = element[u"bytes"];
    const Data bytes = text.string() ? dataFromBase64(text.string().toUTF8()) : Data();
    data.appendData(bytes);
    return !bytes.isAbsent();
  }
  const auto marker = keyFromText(element[u"marker"].string().toUTF8());
  const auto number = keyFromJson(element[u"key"]);
  return marker && number && addRecord(data, *marker, *number, valueFromJson(*marker, element[u"value"]));
}

}  // namespace

std::optional<uint32_t> keyFromText(std::string_view text) {
  const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
  const std::string_view digits = text.substr(hexadecimal ? 2 : 0);
  uint32_t number = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number, hexadecimal ? 16 : 10);
  if (result.ec == std::errc() && result.ptr == digits.data() + digits.size()) return number;
  if (text.size() != 4) return std::nullopt;
  const char code[5] = {text[0], text[1], text[2], text[3], 0};
  return fourCharacterCode(code);
}

std::string textFromKey(uint32_t key) {
  std::string text(sizeof key, '\0');
  storeBigEndian(text.data(), key);
  for (const char c : text) {
    if (c <= 0x20 || c >= 0x7F) return std::to_string(key);
  }
  // A code of digits alone would be taken for a number.
  return keyFromText(text) == key ? text : std::to_string(key);
}

Value valueFromJson(uint32_t marker, const Value& value) {
  switch (marker) {
    case VLfl:
    case VLdb:
      return realFromJson(value);
    case VLda:
      return realFromJson(value).isNumber() ? Value(Date(realFromJson(value).doubleValue())) : Value();
    case VLdt:
      return dataFromBase64(value.string().toUTF8());
    default:
      return value;
  }
}

std::string describeDamage(const Data& data, const KeyedInspection& inspection) {
  const size_t rest = data.length() - inspection.damageOffset;
  std::string where = "offset " + std::to_string(inspection.damageOffset) + ": ";
  std::string marker;
  appendJSONString(String::fromUTF8Lossy(data.view().substr(inspection.damageOffset, 4)), marker);
  switch (inspection.damage) {
    case KeyedDamage::None:
      return "valid";
    case KeyedDamage::UnknownMarker:
      return where + "unknown marker " + marker;
    case KeyedDamage::RecordTooLong:
      return where + "the " + marker + " record is longer than the " + std::to_string(rest) + " bytes that remain";
    case KeyedDamage::Fragment:
      return where + std::to_string(rest) + " bytes, fewer than a header has";
  }
  return where;
}

std::string textOfDate(const Value& date) {
  const String text = formatDate(date.date(), u"%Y-%m-%d %H:%M:%S.%F UTC");
  return text ? text.toUTF8() : quoted(date);
}

std::string lineOfRecord(const Data& data, const KeyedRecord& record) {
  return std::to_string(record.offset) + "\t" + textFromKey(record.marker) + "\t" + textFromKey(record.key) + "\t" +
         descriptionOf(data, record);
}

std::string jsonOfRecords(const Data& data) {
  const KeyedInspection inspection = inspectKeyedData(data);
  std::string json = "[";
  const char* separator = "\n";
  for (const KeyedRecord& record : inspection.records) {
    json += separator + jsonOfRecord(data, record);
    separator = ",\n";
  }
  if (inspection.damage != KeyedDamage::None) {
    json += separator;
    json += "{\"offset\":" + std::to_string(inspection.damageOffset) + ",\"damage\":";
    appendJSONString(String::fromUTF8(describeDamage(data, inspection)), json);
    appendBytesMember(data.subdata({static_cast<int64_t>(inspection.damageOffset), INT64_MAX}), json);
    json += "}";
  }
  return json + "\n]\n";
}

Data recordsFromJson(std::string_view json, std::string& why) {
  const auto list = readJSON(json);
  if (!list || list->kind() != ValueKind::Array) {
    why = "not a JSON array";
    return Data();
  }
  MutableData data;
  for (const Value& element : list->array()) {
    if (appendElement(element.dictionary(), data)) continue;
    why = "element " + std::to_string(&element - list->array().data()) + " is no record";
    return Data();
  }
  return data.takeData();
}

}  // namespace velan::tool
