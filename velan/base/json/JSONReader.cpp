#include <charconv>
#include <new>
#include <utility>

#include "velan/base/TextNumbers.h"
#include "velan/base/json/JSON.h"
#include "velan/base/json/JSONScannerInternal.h"

namespace velan {
namespace {

Value numberValue(std::string_view number) {
  const char* end = number.data() + number.size();
  if (number.find_first_of(".eE") == std::string_view::npos) {
    int64_t integer = 0;
    uint64_t large = 0;
    if (std::from_chars(number.data(), end, integer).ec == std::errc()) return integer;
    if (!number.starts_with('-') && std::from_chars(number.data(), end, large).ec == std::errc()) return large;
  }
  return doubleFromText(number).value_or(0);
}

class JSONReader {
 public:
  explicit JSONReader(std::string_view text) : _scanner(text) {}

  std::optional<Value> read() {
    for (;;) {
      const JSONToken token = _scanner.next();
      if (token == JSONToken::End) return std::move(_result);
      if (!take(token)) return std::nullopt;
    }
  }

 private:
  // A container that is open, and the name under which it will be put into the one around it.
  struct Frame {
    String name;
    ValueArray values;
    std::vector<ValueDictionary::Entry> entries;
  };

  bool take(JSONToken token) {
    switch (token) {
      case JSONToken::ArrayBegin:
      case JSONToken::ObjectBegin:
        if (_stack.size() == kJSONDepth) return false;
        _stack.push_back({std::exchange(_name, String()), {}, {}});
        return true;
      case JSONToken::ArrayEnd:
        return close([](Frame& frame) { return Value(std::move(frame.values)); });
      case JSONToken::ObjectEnd:
        return close([](Frame& frame) { return Value(ValueDictionary(std::move(frame.entries))); });
      case JSONToken::Key:
        _name = text();
        return !_name.isAbsent();
      case JSONToken::String: {
        const String string = text();
        return string && deliver(string);
      }
      case JSONToken::Number:
        return deliver(numberValue(_scanner.token()));
      case JSONToken::True:
        return deliver(true);
      case JSONToken::False:
        return deliver(false);
      case JSONToken::Null:
        return deliver(Value());
      default:
        return false;
    }
  }

  template <typename Contents>
  bool close(Contents contents) {
    Frame frame = std::move(_stack.back());
    _stack.pop_back();
    _name = std::move(frame.name);
    return deliver(contents(frame));
  }

  // A value with a name goes into an object: an open array never has one.
  bool deliver(Value value) {
    if (_stack.empty()) {
      _result = std::move(value);
    } else if (_name) {
      _stack.back().entries.push_back({std::exchange(_name, String()), std::move(value)});
    } else {
      _stack.back().values.push_back(std::move(value));
    }
    return true;
  }

  // Absent when it is malformed UTF-8.
  String text() {
    const std::string_view token = _scanner.token();
    if (token.find('\\') == std::string_view::npos) return String::fromUTF8(token);
    _units.clear();
    return appendJSONText(token, _units) ? String(_units) : String();
  }

  JSONScanner<char> _scanner;
  std::vector<Frame> _stack;
  String _name;
  Value _result;
  std::u16string _units;
};

// Calls `see(token)` for each; whether the end came.
template <typename See>
bool scan(JSONScanner<unichar>& scanner, See see) {
  try {
    for (;;) {
      const JSONToken token = scanner.next();
      if (token == JSONToken::End || token == JSONToken::Error) return token == JSONToken::End;
      see(token);
    }
  } catch (const std::bad_alloc&) {
    return false;
  }
}

}  // namespace

std::optional<Value> readJSON(std::string_view json) { return JSONReader(json).read(); }

bool isJSON(const String& string) {
  JSONScanner<unichar> scanner(string.view());
  return scan(scanner, [](JSONToken) {});
}

bool isJSONFeed(const String& string) {
  JSONScanner<unichar> scanner(string.view());
  std::u16string text;
  std::u16string name;  // of the member of the outer object that comes next
  bool isObject = false;
  bool hasVersion = false;
  bool hasItems = false;
  const bool valid = scan(scanner, [&](JSONToken token) {
    if (token == JSONToken::Key && scanner.depth() == 1) {
      name.clear();
      appendJSONText(scanner.token(), name);
      return;
    }
    const bool opens = token == JSONToken::ArrayBegin || token == JSONToken::ObjectBegin;
    if (opens && scanner.depth() == 1) isObject = token == JSONToken::ObjectBegin;
    if (name == u"version") {
      text.clear();
      if (token == JSONToken::String) appendJSONText(scanner.token(), text);
      hasVersion = text.starts_with(u"https://jsonfeed.org/version/");
    } else if (name == u"items") {
      hasItems = token == JSONToken::ArrayBegin;
    }
    name.clear();
  });
  return valid && isObject && hasVersion && hasItems;
}

}  // namespace velan
