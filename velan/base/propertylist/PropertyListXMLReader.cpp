#include <algorithm>
#include <charconv>
#include <initializer_list>
#include <optional>

#include "velan/base/ASCII.h"
#include "velan/base/Base64.h"
#include "velan/base/ByteOrder.h"
#include "velan/base/Log.h"
#include "velan/base/OutOfMemory.h"
#include "velan/base/TextNumbers.h"
#include "velan/base/dates/ISODate.h"
#include "velan/base/propertylist/PropertyListInternal.h"
#include "velan/base/utf/UTF.h"

namespace velan::plist {
namespace {

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
  return text;
}

// Consumes `text` whole, as a number in `base`.
template <typename Number>
bool parseWhole(std::string_view text, Number& number, int base) {
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number, base);
  return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

Value integerFromText(std::string_view text) {
  text = trimmed(text);
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (hexadecimal) text.remove_prefix(2);
  uint64_t magnitude = 0;
  if (!parseWhole(text, magnitude, hexadecimal ? 16 : 10)) return Value();
  constexpr uint64_t kTwoTo63 = uint64_t{1} << 63;
  if (negative) return magnitude <= kTwoTo63 ? Value(static_cast<int64_t>(0 - magnitude)) : Value();
  return magnitude < kTwoTo63 ? Value(static_cast<int64_t>(magnitude)) : Value(magnitude);
}

Value realFromText(std::string_view text) {
  const auto number = doubleFromText(trimmed(text));
  return number ? Value(*number) : Value();
}

Value dateFromText(std::string_view text) {
  const auto date = dateFromISOText(trimmed(text), ISODateForm::UniversalSeconds);
  return date ? Value(*date) : Value();
}

// The encoding that the XML declaration at the beginning names; empty when there is none.
std::string_view declaredEncoding(std::string_view text) {
  if (!text.starts_with("<?xml") || text.size() < 6 || !isSpace(text[5])) return {};
  text = text.substr(0, text.find("?>"));
  const size_t at = text.find("encoding");
  if (at == std::string_view::npos) return {};
  text = trimmed(text.substr(at + 8));
  if (!text.starts_with('=')) return {};
  text = trimmed(text.substr(1));
  const char quote = text.empty() ? '\0' : text.front();
  if (quote != '"' && quote != '\'') return {};
  return text.substr(1, text.find(quote, 1) - 1);
}

// A document without a byte-order mark as UTF-8.
std::optional<std::string_view> fromDeclaredEncoding(std::string_view text, std::string& storage) {
  const std::string_view name = declaredEncoding(text);
  const auto isAnyOf = [name](std::initializer_list<std::string_view> names) {
    return std::any_of(names.begin(), names.end(),
                       [name](std::string_view each) { return equalsIgnoringASCIICase(name, each); });
  };
  const auto isASCII = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
  if (name.empty() || isAnyOf({"UTF-8", "UTF8"})) return text;
  if (isAnyOf({"US-ASCII", "ASCII", "ISO646-US"})) {
    return std::all_of(text.begin(), text.end(), isASCII) ? std::optional(text) : std::nullopt;
  }
  if (isAnyOf({"ISO-8859-1", "ISO8859-1", "ISO_8859-1", "LATIN1", "LATIN-1", "L1"})) {
    storage.reserve(text.size());
    for (const char c : text) {
      const auto byte = static_cast<unsigned char>(c);
      if (isASCII(c)) {
        storage.push_back(c);
      } else {
        storage.append({static_cast<char>(0xC0 | byte >> 6), static_cast<char>(0x80 | (byte & 0x3F))});
      }
    }
    return storage;
  }
  logMessage("WARNING: Property list in an encoding that is not read: " + std::string(name.substr(0, 40)));
  return std::nullopt;
}

// The document as UTF-8, which `storage` holds when it has to be converted.
std::optional<std::string_view> utf8Document(std::span<const uint8_t> bytes, std::string& storage) {
  const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  if (text.starts_with("\xEF\xBB\xBF")) return text.substr(3);
  const bool bigEndian = text.starts_with("\xFE\xFF");
  if (!bigEndian && !text.starts_with("\xFF\xFE")) return fromDeclaredEncoding(text, storage);
  if (bytes.size() % 2 != 0) return std::nullopt;
  std::u16string units;
  units.reserve(bytes.size() / 2);
  for (size_t i = 2; i < bytes.size(); i += 2) {
    units.push_back(bigEndian ? loadBigEndian<uint16_t>(&bytes[i]) : loadLittleEndian<uint16_t>(&bytes[i]));
  }
  auto converted = utf8FromUTF16(units);
  if (!converted) return std::nullopt;
  storage = std::move(*converted);
  return storage;
}

// Splits a document into tags and text.
class XMLScanner {
 public:
  explicit XMLScanner(std::string_view text) : _text(text) {}

  struct Tag {
    std::string_view name;
    bool closes = false;  // </name>
    bool empty = false;   // <name/>
  };

  bool atEnd() const { return _at == _text.size(); }

  // Moves behind white space, comments, processing instructions and the document type; false when one is not closed.
  bool skipBetweenTags() {
    for (;;) {
      while (!atEnd() && isSpace(_text[_at])) ++_at;
      if (skipPast("<!--", "-->") || skipPast("<?", "?>")) continue;
      if (!rest().starts_with("<!DOCTYPE")) return !rest().starts_with("<!") && !rest().starts_with("<?");
      if (!skipDocumentType()) return false;
    }
  }

  // Reads the tag that begins here; its attributes mean nothing here.
  std::optional<Tag> readTag() {
    if (!rest().starts_with('<')) return std::nullopt;
    ++_at;
    Tag tag;
    tag.closes = rest().starts_with('/');
    if (tag.closes) ++_at;
    const size_t length = rest().find_first_of(" \t\r\n/><\"'=");
    if (length == std::string_view::npos || length == 0) return std::nullopt;
    tag.name = rest().substr(0, length);
    _at += length;
    const size_t end = findOutsideQuotes(">");
    if (end == std::string_view::npos) return std::nullopt;
    tag.empty = !tag.closes && _text[end - 1] == '/';
    _at = end + 1;
    return tag;
  }

  // Appends the text up to the closing tag `name`, which is read too.
  bool readText(std::string_view name, std::string& text) {
    for (;;) {
      const size_t length = rest().find_first_of("<&\r");
      if (length == std::string_view::npos) return false;
      text.append(rest().substr(0, length));
      _at += length;
      if (_text[_at] == '&') {
        if (!readReference(text)) return false;
      } else if (_text[_at] == '\r') {
        readLineEnd(text);
      } else if (rest().starts_with("<![CDATA[")) {
        if (!readCharacterData(text)) return false;
      } else if (!skipPast("<!--", "-->") && !skipPast("<?", "?>")) {
        const auto tag = readTag();
        return tag && tag->closes && tag->name == name;
      }
    }
  }

 private:
  std::string_view rest() const { return _text.substr(_at); }

  bool skipPast(std::string_view start, std::string_view end) {
    if (!rest().starts_with(start)) return false;
    const size_t found = _text.find(end, _at + start.size());
    if (found == std::string_view::npos) return false;
    _at = found + end.size();
    return true;
  }

  // Without declarations inside the document: they could define entities.
  bool skipDocumentType() {
    _at += std::string_view("<!DOCTYPE").size();
    const size_t end = findOutsideQuotes("[>");
    if (end == std::string_view::npos || _text[end] == '[') return false;
    _at = end + 1;
    return true;
  }

  size_t findOutsideQuotes(std::string_view wanted) const {
    char quote = 0;
    for (size_t i = _at; i < _text.size(); ++i) {
      const char c = _text[i];
      if (quote) {
        if (c == quote) quote = 0;
      } else if (c == '"' || c == '\'') {
        quote = c;
      } else if (wanted.find(c) != std::string_view::npos) {
        return i;
      } else if (c == '<') {
        break;
      }
    }
    return std::string_view::npos;
  }

  // Any line end is read as a line feed (XML 1.0, section 2.11).
  void readLineEnd(std::string& text) {
    text.push_back('\n');
    _at += rest().starts_with("\r\n") ? 2 : 1;
  }

  bool readCharacterData(std::string& text) {
    _at += std::string_view("<![CDATA[").size();
    const size_t end = _text.find("]]>", _at);
    if (end == std::string_view::npos) return false;
    while (_at < end) {
      if (_text[_at] == '\r') {
        readLineEnd(text);
      } else {
        text.push_back(_text[_at++]);
      }
    }
    _at = end + 3;
    return true;
  }

  bool readReference(std::string& text) {
    constexpr size_t kLongest = 12;
    const size_t length = rest().substr(0, kLongest).find(';');
    if (length == std::string_view::npos) return false;
    const std::string_view name = rest().substr(1, length - 1);
    _at += length + 1;
    if (name.starts_with('#')) return appendCharacter(name.substr(1), text);
    constexpr std::pair<std::string_view, char> kEntities[] = {
        {"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};
    for (const auto& [entity, c] : kEntities) {
      if (name != entity) continue;
      text.push_back(c);
      return true;
    }
    return false;
  }

  static bool appendCharacter(std::string_view digits, std::string& text) {
    const bool hexadecimal = digits.starts_with('x');
    uint32_t c = 0;
    if (!parseWhole(digits.substr(hexadecimal), c, hexadecimal ? 16 : 10) || !isXMLCharacter(c)) return false;
    const bool isPair = c >= 0x10000;
    const unichar units[2] = {static_cast<unichar>(isPair ? 0xD7C0 + (c >> 10) : c),
                              static_cast<unichar>(0xDC00 + (c & 0x3FF))};
    appendUTF8Lossy({units, isPair ? 2u : 1u}, text);
    return true;
  }

  std::string_view _text;
  size_t _at = 0;
};

bool hasOnlyXMLCharacters(std::string_view utf8) {
  for (size_t i = 0; i < utf8.size(); ++i) {
    const auto byte = static_cast<unsigned char>(utf8[i]);
    if (byte < 0x20 && !isXMLCharacter(byte)) return false;
    // U+FFFE and U+FFFF are EF BF BE and EF BF BF.
    if (byte == 0xEF && utf8.substr(i).size() > 2 && utf8[i + 1] == '\xBF' && (utf8[i + 2] & '\xFE') == '\xBE') {
      return false;
    }
  }
  return true;
}

class XMLReader {
 public:
  explicit XMLReader(std::string_view text) : _scanner(text) {}

  Value read() {
    bool insideList = false;  // <plist>
    bool afterList = false;
    while (_scanner.skipBetweenTags()) {
      if (_scanner.atEnd()) return insideList || !_stack.empty() ? Value() : _root;
      const auto tag = _scanner.readTag();
      if (!tag || afterList) return Value();
      if (tag->name == "plist" && _stack.empty()) {
        if (tag->empty || tag->closes != insideList || tag->closes != !_root.isAbsent()) return Value();
        afterList = tag->closes;
        insideList = !tag->closes;
      } else if (!readElement(*tag)) {
        return Value();
      }
    }
    return Value();
  }

 private:
  struct Frame {
    bool isDictionary;
    String key;  // absent when a key is due
    ValueArray values;
    std::vector<ValueDictionary::Entry> entries;
  };

  bool readElement(const XMLScanner::Tag& tag) {
    if (tag.name == "array" || tag.name == "dict") return readContainer(tag);
    if (tag.closes) return false;
    if (tag.name == "true" || tag.name == "false") {
      std::string text;
      return (tag.empty || (_scanner.readText(tag.name, text) && trimmed(text).empty())) && deliver(tag.name == "true");
    }
    _text.clear();
    if (!tag.empty && !_scanner.readText(tag.name, _text)) return false;
    if (tag.name == "key") return readKey();
    return deliver(scalar(tag.name));
  }

  bool readContainer(const XMLScanner::Tag& tag) {
    const bool isDictionary = tag.name == "dict";
    if (tag.closes) {
      return !_stack.empty() && _stack.back().isDictionary == isDictionary && close();
    }
    if (_stack.size() == kPropertyListDepth) return false;
    _stack.push_back({isDictionary, String(), {}, {}});
    return tag.empty ? close() : true;
  }

  bool close() {
    Frame frame = std::move(_stack.back());
    _stack.pop_back();
    if (frame.key) return false;  // without its value
    return deliver(frame.isDictionary ? Value(ValueDictionary(std::move(frame.entries)))
                                      : Value(std::move(frame.values)));
  }

  bool readKey() {
    if (_stack.empty() || !_stack.back().isDictionary || _stack.back().key) return false;
    _stack.back().key = stringFromText();
    return !_stack.back().key.isAbsent();
  }

  // Puts a finished value where it belongs.
  bool deliver(Value value) {
    if (value.isAbsent()) return false;
    if (_stack.empty()) {
      if (!_root.isAbsent()) return false;
      _root = std::move(value);
      return true;
    }
    Frame& frame = _stack.back();
    if (!frame.isDictionary) {
      frame.values.push_back(std::move(value));
      return true;
    }
    if (frame.key.isAbsent()) return false;
    frame.entries.push_back({std::exchange(frame.key, String()), std::move(value)});
    return true;
  }

  String stringFromText() const { return hasOnlyXMLCharacters(_text) ? decodedUTF8(_text) : String(); }

  Value scalar(std::string_view name) const {
    if (name == "string") return stringFromText();
    if (name == "integer") return integerFromText(_text);
    if (name == "real") return realFromText(_text);
    if (name == "date") return dateFromText(_text);
    if (name == "data") return dataFromBase64(_text);
    return Value();
  }

  XMLScanner _scanner;
  std::vector<Frame> _stack;
  Value _root;
  std::string _text;
};

}  // namespace

Value readXML(std::span<const uint8_t> bytes) {
  std::string storage;
  const auto text = utf8Document(bytes, storage);
  return text ? XMLReader(*text).read() : Value();
}

}  // namespace velan::plist
