#include "tools/Json.h"

#include <charconv>
#include <cmath>
#include <utility>
#include <vector>

#include "velan/base/Base64.h"
#include "velan/base/UTF.h"

namespace velan::tool {
namespace {

constexpr size_t kMostValues = 1000000;
constexpr size_t kDeepest = 600;

void appendEscape(unichar unit, std::string& json) {
  constexpr std::string_view kHexDigits = "0123456789abcdef";
  json += "\\u";
  for (int shift = 12; shift >= 0; shift -= 4) json.push_back(kHexDigits[(unit >> shift) & 15]);
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
      appendJsonString(value.string(), json);
      break;
    case ValueKind::URL:
      appendJsonString(value.url().absoluteString(), json);
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

class JsonReader {
 public:
  explicit JsonReader(std::string_view text) : _text(text) {}

  // Each turn reads one value, or one end of a container.
  std::optional<Value> read() {
    do {
      if (!readNext()) return std::nullopt;
    } while (!_stack.empty());
    skipSpace();
    return _text.empty() ? std::optional(_result) : std::nullopt;
  }

 private:
  struct Frame {
    bool isObject;
    ValueArray values;
    std::vector<ValueDictionary::Entry> entries;
    bool isEmpty() const { return values.empty() && entries.empty(); }
  };

  void skipSpace() { _text.remove_prefix(std::min(_text.find_first_not_of(" \t\r\n"), _text.size())); }

  bool take(char c) {
    skipSpace();
    if (!_text.starts_with(c)) return false;
    _text.remove_prefix(1);
    return true;
  }

  bool takeWord(std::string_view word) {
    if (!_text.starts_with(word)) return false;
    _text.remove_prefix(word.size());
    return true;
  }

  bool readNext() {
    if (_stack.empty()) return readValue(String());
    Frame& frame = _stack.back();
    if (take(frame.isObject ? '}' : ']')) return close();
    if (!frame.isEmpty() && !take(',')) return false;
    if (!frame.isObject) return readValue(String());
    skipSpace();
    const String key = readString();
    return key && take(':') && readValue(key);
  }

  bool readValue(const String& key) {
    skipSpace();
    if (_text.starts_with('[') || _text.starts_with('{')) {
      if (_stack.size() == kDeepest) return false;
      _keys.push_back(key);
      _stack.push_back({_text.front() == '{', {}, {}});
      _text.remove_prefix(1);
      return true;
    }
    if (_text.starts_with('"')) {
      const String string = readString();
      return string && deliver(key, string);
    }
    if (takeWord("true")) return deliver(key, true);
    if (takeWord("false")) return deliver(key, false);
    if (takeWord("null")) return deliver(key, Value());
    return readNumber(key);
  }

  bool close() {
    Frame frame = std::move(_stack.back());
    _stack.pop_back();
    const String key = std::exchange(_keys.back(), String());
    _keys.pop_back();
    return deliver(key,
                   frame.isObject ? Value(ValueDictionary(std::move(frame.entries))) : Value(std::move(frame.values)));
  }

  bool deliver(const String& key, Value value) {
    if (_stack.empty()) {
      _result = std::move(value);
    } else if (_stack.back().isObject) {
      _stack.back().entries.push_back({key, std::move(value)});
    } else {
      _stack.back().values.push_back(std::move(value));
    }
    return true;
  }

  bool readNumber(const String& key) {
    const std::string_view text = _text.substr(0, _text.find_first_not_of("+-.0123456789eE"));
    const char* end = text.data() + text.size();
    const auto isWhole = [end](std::from_chars_result result) { return result.ec == std::errc() && result.ptr == end; };
    int64_t integer = 0;
    uint64_t large = 0;
    double real = 0;
    _text.remove_prefix(text.size());
    if (isWhole(std::from_chars(text.data(), end, integer))) return deliver(key, integer);
    if (isWhole(std::from_chars(text.data(), end, large))) return deliver(key, large);
    return isWhole(std::from_chars(text.data(), end, real)) && deliver(key, real);
  }

  // Absent when it is malformed.
  String readString() {
    if (!takeWord("\"")) return String();
    std::u16string units;
    for (;;) {
      const size_t length = _text.find_first_of("\"\\");
      if (length == std::string_view::npos) return String();
      const String plain = String::fromUTF8(_text.substr(0, length));
      if (!plain) return String();
      for (const unichar unit : plain) {
        if (unit < 0x20) return String();
      }
      units += plain.view();
      const bool ends = _text[length] == '"';
      _text.remove_prefix(length + 1);
      if (ends) return String(units);
      if (!readEscape(units)) return String();
    }
  }

  bool readEscape(std::u16string& units) {
    if (_text.empty()) return false;
    const char c = _text.front();
    _text.remove_prefix(1);
    if (c == 'u') return readUnit(units);
    const size_t index = std::string_view("\"\\/bfnrt").find(c);
    if (index == std::string_view::npos) return false;
    units.push_back(u"\"\\/\b\f\n\r\t"[index]);
    return true;
  }

  bool readUnit(std::u16string& units) {
    uint16_t unit = 0;
    if (_text.size() < 4) return false;
    const auto result = std::from_chars(_text.data(), _text.data() + 4, unit, 16);
    if (result.ptr != _text.data() + 4) return false;
    units.push_back(unit);
    _text.remove_prefix(4);
    return true;
  }

  std::string_view _text;
  std::vector<Frame> _stack;
  std::vector<String> _keys;  // under which the open containers will be put
  Value _result;
};

}  // namespace

void appendJsonString(const String& text, std::string& json) {
  json.push_back('"');
  const std::u16string_view units = text.view();
  for (size_t i = 0; i < units.size(); ++i) {
    const unichar unit = units[i];
    const bool isPair = isHighSurrogate(unit) && i + 1 < units.size() && isLowSurrogate(units[i + 1]);
    if (unit == u'"' || unit == u'\\') {
      json += {'\\', static_cast<char>(unit)};
    } else if (unit == u'\n') {
      json += "\\n";
    } else if (unit < 0x20 || unit == 0x7F || (isSurrogate(unit) && !isPair)) {
      appendEscape(unit, json);
    } else {
      appendUTF8Lossy(units.substr(i, isPair ? 2 : 1), json);
      i += isPair;
    }
  }
  json.push_back('"');
}

bool appendJson(const Value& root, std::string& json) {
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
      appendJsonString(entry.key, json);
      json.push_back(':');
      value = &entry.value;
    }
  }
}

std::optional<Value> readJson(std::string_view json) { return JsonReader(json).read(); }

}  // namespace velan::tool
