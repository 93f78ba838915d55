#include <charconv>
#include <cmath>
#include <vector>

#include "velan/base/ASCII.h"
#include "velan/base/Base64.h"
#include "velan/base/json/JSON.h"
#include "velan/base/utf/UTF.h"

namespace velan {
namespace {

constexpr size_t kMostValues = 1000000;

// How many units from `i` on stay as they are: 2 for a pair of surrogates, 0 where an escape is needed.
size_t plainLength(std::u16string_view units, size_t i) {
  const unichar unit = units[i];
  if (isSurrogate(unit)) {
    return isHighSurrogate(unit) && i + 1 < units.size() && isLowSurrogate(units[i + 1]) ? 2 : 0;
  }
  return unit < 0x20 || unit == 0x7F || unit == u'"' || unit == u'\\' ? 0 : 1;
}

void appendEscape(unichar unit, std::u16string& text) {
  text.push_back(u'\\');
  if (const size_t index = std::u16string_view(u"\"\\\b\f\n\r\t").find(unit); index != std::u16string_view::npos) {
    text.push_back(u"\"\\bfnrt"[index]);
    return;
  }
  text.push_back(u'u');
  for (int shift = 12; shift >= 0; shift -= 4) {
    text.push_back(static_cast<unichar>(lowerHexadecimalDigit(static_cast<unsigned>(unit) >> shift)));
  }
}

// The text with its escapes; empty when it has none.
std::u16string escaped(std::u16string_view units) {
  std::u16string text;
  size_t done = 0;
  for (size_t i = 0; i < units.size();) {
    const size_t length = plainLength(units, i);
    if (length == 0) {
      text += units.substr(done, i - done);
      appendEscape(units[i], text);
      done = i + 1;
    }
    i += length == 0 ? 1 : length;
  }
  if (done > 0) text += units.substr(done);
  return text;
}

template <typename Number>
void appendNumber(Number number, std::string& json) {
  char text[40];
  const std::string_view written(text, static_cast<size_t>(std::to_chars(text, text + sizeof text, number).ptr - text));
  json += written;
  if (std::is_floating_point_v<Number> && written.find_first_of(".e") == std::string_view::npos) json += ".0";
}

template <typename Real>
void appendReal(Real number, std::string& json) {
  if (std::isfinite(number)) return appendNumber(number, json);
  json += std::isnan(number) ? "\"nan\"" : number < 0 ? "\"-inf\"" : "\"inf\"";
}

void appendScalar(const Value& value, std::string& json) {
  switch (value.kind()) {
    case ValueKind::Absent:
      json += "null";
      break;
    case ValueKind::Boolean:
      json += value.boolValue() ? "true" : "false";
      break;
    case ValueKind::Float:
      appendReal(static_cast<float>(value.doubleValue()), json);
      break;
    case ValueKind::Double:
      appendReal(value.doubleValue(), json);
      break;
    case ValueKind::Date:
      appendReal(value.date().timeIntervalSinceReferenceDate(), json);
      break;
    case ValueKind::UInt64:
      appendNumber(value.uint64Value(), json);
      break;
    case ValueKind::String:
      appendJSONString(value.string(), json);
      break;
    case ValueKind::URL:
      appendJSONString(value.url().absoluteString(), json);
      break;
    case ValueKind::Data:
      json.push_back('"');
      appendBase64(value.data().span(), json);
      json.push_back('"');
      break;
    default:
      appendNumber(value.int64Value(), json);
  }
}

}  // namespace

String stringByConvertingCharactersToJSON(const String& string) {
  const std::u16string text = escaped(string.view());
  return text.empty() ? string : String(text);
}

void appendJSONString(const String& text, std::string& json) {
  const std::u16string units = escaped(text.view());
  json.push_back('"');
  appendUTF8Lossy(units.empty() ? text.view() : units, json);
  json.push_back('"');
}

bool appendJSON(const Value& root, std::string& json) {
  struct Frame {
    const Value* container;
    size_t next;
  };
  std::vector<Frame> stack;
  size_t count = 0;
  const Value* value = &root;
  for (;;) {
    if (++count > kMostValues) return false;
    const bool isArray = value->kind() == ValueKind::Array;
    if (isArray || value->kind() == ValueKind::Dictionary) {
      json.push_back(isArray ? '[' : '{');
      stack.push_back({value, 0});
    } else {
      appendScalar(*value, json);
    }
    // To the next member, out of all containers that end here.
    for (;; stack.pop_back()) {
      if (stack.empty()) return true;
      Frame& frame = stack.back();
      const bool inArray = frame.container->kind() == ValueKind::Array;
      const size_t members = inArray ? frame.container->array().size() : frame.container->dictionary().size();
      if (frame.next < members) break;
      json.push_back(inArray ? ']' : '}');
    }
    Frame& frame = stack.back();
    if (frame.next > 0) json.push_back(',');
    if (frame.container->kind() == ValueKind::Array) {
      value = &frame.container->array()[frame.next++];
    } else {
      const auto& entry = frame.container->dictionary().entries()[frame.next++];
      appendJSONString(entry.key, json);
      json.push_back(':');
      value = &entry.value;
    }
  }
}

}  // namespace velan
