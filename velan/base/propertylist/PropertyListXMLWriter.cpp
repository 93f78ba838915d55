#include <algorithm>
#include <charconv>
#include <cmath>

#include "velan/base/Base64.h"
#include "velan/base/dates/CivilTime.h"
#include "velan/base/propertylist/PropertyListInternal.h"
#include "velan/base/utf/UTF.h"

namespace velan::plist {
namespace {

constexpr std::string_view kHeader =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";
constexpr std::string_view kFooter = "</plist>\n";
constexpr size_t kMostValues = size_t{1} << 24;

bool isRepresentable(std::u16string_view text) {
  for (size_t i = 0; i < text.size(); ++i) {
    const bool isPair = isHighSurrogate(text[i]) && i + 1 < text.size() && isLowSurrogate(text[i + 1]);
    if (isPair) {
      ++i;
    } else if (!isXMLCharacter(text[i])) {
      return false;
    }
  }
  return true;
}

size_t memberCount(const Value& container) {
  return container.kind() == ValueKind::Array ? container.array().size() : container.dictionary().size();
}

const Value& member(const Value& container, size_t index) {
  return container.kind() == ValueKind::Array ? container.array()[index]
                                              : container.dictionary().entries()[index].value;
}

// A container whose members are being visited.
struct Frame {
  const Value* container;
  size_t next;
};

// Whether the tree, with shared parts counted at each place, is too deep or has too many values. Asked before anything
// is written: the text of such a tree could be gigabytes long.
bool isTooLarge(const Value& root) {
  std::vector<Frame> stack;
  size_t values = 1;
  const auto open = [&stack](const Value& value) {
    if (value.kind() >= ValueKind::Array) stack.push_back({&value, 0});
    return stack.size() <= kPropertyListDepth;
  };
  bool small = open(root);
  while (small && !stack.empty()) {
    Frame& frame = stack.back();
    if (frame.next == memberCount(*frame.container)) {
      stack.pop_back();
    } else {
      small = ++values <= kMostValues && open(member(*frame.container, frame.next++));
    }
  }
  return !small;
}

class XMLWriter {
 public:
  explicit XMLWriter(MutableData& out) : _out(out) {}

  bool write(const Value& root) {
    if (isTooLarge(root)) return false;
    append(kHeader);
    if (!writeValue(root)) return false;
    while (!_stack.empty()) {
      if (!writeNextMember()) return false;
    }
    append(kFooter);
    return true;
  }

 private:
  void append(std::string_view text) { _out.appendBytes(text.data(), text.size()); }

  void indent() {
    for (size_t i = 0; i < _stack.size(); ++i) append("\t");
  }

  void line(std::string_view text) {
    indent();
    append(text);
    append("\n");
  }

  void element(std::string_view name, std::string_view text) {
    indent();
    append("<"), append(name), append(">");
    append(text);
    append("</"), append(name), append(">\n");
  }

  bool writeNextMember() {
    Frame& frame = _stack.back();
    const Value& container = *frame.container;
    const bool isArray = container.kind() == ValueKind::Array;
    if (frame.next == memberCount(container)) {
      _stack.pop_back();
      line(isArray ? "</array>" : "</dict>");
      return true;
    }
    const size_t index = frame.next++;
    if (!isArray && !writeText("key", container.dictionary().entries()[index].key)) return false;
    return writeValue(member(container, index));
  }

  bool writeValue(const Value& value) {
    switch (value.kind()) {
      case ValueKind::Absent:
      case ValueKind::URL:
        return false;
      case ValueKind::Boolean:
        line(value.boolValue() ? "<true/>" : "<false/>");
        return true;
      case ValueKind::Float:
        return writeNumber("real", static_cast<float>(value.doubleValue()));
      case ValueKind::Double:
        return writeNumber("real", value.doubleValue());
      case ValueKind::UInt64:
        return writeNumber("integer", value.uint64Value());
      case ValueKind::String:
        return writeText("string", value.string());
      case ValueKind::Data:
        return writeData(value.data());
      case ValueKind::Date:
        return writeDate(value.date());
      case ValueKind::Array:
        return open(value, value.array().empty(), "array");
      case ValueKind::Dictionary:
        return open(value, value.dictionary().isEmpty(), "dict");
      default:
        return writeNumber("integer", value.int64Value());
    }
  }

  bool open(const Value& container, bool isEmpty, std::string_view name) {
    indent();
    append("<"), append(name), append(isEmpty ? "/>\n" : ">\n");
    if (!isEmpty) _stack.push_back({&container, 0});
    return true;
  }

  // The shortest text that gives back the same number.
  template <typename Number>
  bool writeNumber(std::string_view name, Number number) {
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, number).ptr;
    element(name, {text, static_cast<size_t>(end - text)});
    return true;
  }

  bool writeText(std::string_view name, const String& string) {
    if (string.isAbsent() || !isRepresentable(string.view())) return false;
    _text.clear();
    appendUTF8Lossy(string.view(), _text);
    indent();
    append("<"), append(name), append(">");
    appendEscaped(_text);
    append("</"), append(name), append(">\n");
    return true;
  }

  // A carriage return as it is would be read as a line feed.
  void appendEscaped(std::string_view text) {
    while (!text.empty()) {
      const size_t plain = std::min(text.find_first_of("&<>\r"), text.size());
      append(text.substr(0, plain));
      if (plain == text.size()) return;
      const char c = text[plain];
      append(c == '&' ? "&amp;" : c == '<' ? "&lt;" : c == '>' ? "&gt;" : "&#13;");
      text.remove_prefix(plain + 1);
    }
  }

  // Lines get shorter with the indentation, counted as eight columns for each of at most eight levels.
  bool writeData(const Data& data) {
    const size_t columns = 76 - 8 * std::min<size_t>(_stack.size(), 8);
    const size_t bytesPerLine = columns / 4 * 3;
    line("<data>");
    std::span<const uint8_t> rest = data.span();
    while (!rest.empty()) {
      const size_t count = std::min(bytesPerLine, rest.size());
      _text.clear();
      appendBase64(rest.first(count), _text);
      line(_text);
      rest = rest.subspan(count);
    }
    line("</data>");
    return true;
  }

  bool writeDate(Date date) {
    const auto time = civilTimeFromDate(date);
    if (!time || time->year < 0 || time->year > 9999) return false;
    element("date", formatDate(date, u"%Y-%m-%dT%H:%M:%SZ").toUTF8());
    return true;
  }

  MutableData& _out;
  std::vector<Frame> _stack;
  std::string _text;
};

}  // namespace

bool writeXML(const Value& value, MutableData& out) { return XMLWriter(out).write(value); }

}  // namespace velan::plist
