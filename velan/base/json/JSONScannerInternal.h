// The grammar of JSON (RFC 8259), over the bytes of UTF-8 or over UTF-16 units.
#ifndef VELAN_BASE_JSON_JSON_SCANNER_INTERNAL_H
#define VELAN_BASE_JSON_JSON_SCANNER_INTERNAL_H

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "velan/base/ASCII.h"
#include "velan/base/utf/UTF.h"

namespace velan {

enum class JSONToken : uint8_t {
  Error,
  End,
  ArrayBegin,
  ArrayEnd,
  ObjectBegin,
  ObjectEnd,
  Key,
  String,
  Number,
  True,
  False,
  Null,
};

/// Hands out the tokens of one JSON text in order, checked against the grammar: where `End` comes, the text is JSON.
/// After `Error` nothing more is to be asked. Whether bytes are well-formed UTF-8 is not looked at.
template <CharacterLike Unit>
class JSONScanner {
 public:
  using View = std::basic_string_view<Unit>;

  explicit JSONScanner(View text) : _rest(text) {}

  JSONToken next() {
    skipSpace();
    if (_expected == Expected::Separator) {
      if (_open.empty()) return _rest.empty() ? JSONToken::End : JSONToken::Error;
      if (!take(',')) return close();
      skipSpace();
      _expected = _open.back() ? Expected::Key : Expected::Value;
    } else if (_expected == Expected::FirstMember) {
      if (begins(_open.back() ? '}' : ']')) return close();
      _expected = _open.back() ? Expected::Key : Expected::Value;
    }
    return _expected == Expected::Key ? key() : value();
  }

  /// The last key or string as it is spelled, without its quotation marks; or the last number.
  View token() const { return _token; }
  /// How many arrays and objects are open.
  size_t depth() const { return _open.size(); }

 private:
  enum class Expected : uint8_t { Value, FirstMember, Key, Separator };

  bool begins(char c) const { return !_rest.empty() && _rest.front() == static_cast<Unit>(c); }
  bool take(char c) {
    if (!begins(c)) return false;
    _rest.remove_prefix(1);
    return true;
  }
  void skipSpace() {
    while (begins(' ') || begins('\n') || begins('\r') || begins('\t')) _rest.remove_prefix(1);
  }

  JSONToken open(bool object) {
    _rest.remove_prefix(1);
    _open.push_back(object);
    _expected = Expected::FirstMember;
    return object ? JSONToken::ObjectBegin : JSONToken::ArrayBegin;
  }

  JSONToken close() {
    const bool object = _open.back();
    if (!take(object ? '}' : ']')) return JSONToken::Error;
    _open.pop_back();
    _expected = Expected::Separator;
    return object ? JSONToken::ObjectEnd : JSONToken::ArrayEnd;
  }

  JSONToken key() {
    if (!takeString()) return JSONToken::Error;
    skipSpace();
    if (!take(':')) return JSONToken::Error;
    _expected = Expected::Value;
    return JSONToken::Key;
  }

  JSONToken value() {
    if (begins('{') || begins('[')) return open(begins('{'));
    _expected = Expected::Separator;
    if (begins('"')) return takeString() ? JSONToken::String : JSONToken::Error;
    if (begins('t')) return takeWord("true") ? JSONToken::True : JSONToken::Error;
    if (begins('f')) return takeWord("false") ? JSONToken::False : JSONToken::Error;
    if (begins('n')) return takeWord("null") ? JSONToken::Null : JSONToken::Error;
    return takeNumber() ? JSONToken::Number : JSONToken::Error;
  }

  bool takeWord(std::string_view word) {
    return std::all_of(word.begin(), word.end(), [this](char c) { return take(c); });
  }

  bool takeDigits() {
    size_t count = 0;
    while (count < _rest.size() && isASCIIDigit(_rest[count])) ++count;
    _rest.remove_prefix(count);
    return count > 0;
  }

  bool takeNumber() {
    const View start = _rest;
    take('-');
    if (!take('0') && !takeDigits()) return false;
    if (take('.') && !takeDigits()) return false;
    if (take('e') || take('E')) {
      if (!take('+')) take('-');
      if (!takeDigits()) return false;
    }
    _token = start.substr(0, start.size() - _rest.size());
    return true;
  }

  bool takeString() {
    if (!take('"')) return false;
    for (size_t i = 0; i < _rest.size(); ++i) {
      const auto unit = static_cast<std::make_unsigned_t<Unit>>(_rest[i]);
      if (unit == '"') {
        _token = _rest.substr(0, i);
        _rest.remove_prefix(i + 1);
        return true;
      }
      if (unit < 0x20) return false;
      if (unit != '\\') continue;
      const size_t length = escapeLength(_rest.substr(i + 1));
      if (length == 0) return false;
      i += length;
    }
    return false;
  }

  // Of the escape after a backslash; 0 when there is none.
  static size_t escapeLength(View rest) {
    if (rest.empty()) return 0;
    if (rest[0] == Unit{'u'}) {
      if (rest.size() < 5) return 0;
      const View digits = rest.substr(1, 4);
      const bool valid =
          std::all_of(digits.begin(), digits.end(), [](Unit c) { return hexadecimalDigitValue(c) >= 0; });
      return valid ? 5 : 0;
    }
    const auto isUnit = [&](char c) { return rest[0] == static_cast<Unit>(c); };
    constexpr std::string_view kEscapes = "\"\\/bfnrt";
    return std::any_of(kEscapes.begin(), kEscapes.end(), isUnit) ? 1 : 0;
  }

  View _rest;
  View _token;
  std::vector<bool> _open;  // one bit a level: whether it is an object
  Expected _expected = Expected::Value;
};

/// Appends `run`; false when it is malformed UTF-8, and what was appended is then of no use.
inline bool appendUnits(std::u16string_view run, std::u16string& units) {
  units += run;
  return true;
}
inline bool appendUnits(std::string_view run, std::u16string& units) {
  const size_t before = units.size();
  units.resize(before + run.size());
  const Transcoded done = convertUTF8ToUTF16(run, units.data() + before);
  units.resize(before + done.written);
  return done.consumed == run.size();
}

/// Appends the text of a string token, whose escapes the scanner has checked; false when it is malformed UTF-8.
template <CharacterLike Unit>
bool appendJSONText(std::basic_string_view<Unit> token, std::u16string& units) {
  for (;;) {
    const size_t length = std::min(token.find(Unit{'\\'}), token.size());
    if (!appendUnits(token.substr(0, length), units)) return false;
    token.remove_prefix(length);
    if (token.empty()) return true;
    if (token[1] == Unit{'u'}) {
      unsigned unit = 0;
      for (const Unit digit : token.substr(2, 4))
        unit = unit << 4 | static_cast<unsigned>(hexadecimalDigitValue(digit));
      units.push_back(static_cast<unichar>(unit));
      token.remove_prefix(6);
    } else {
      const auto escape = static_cast<char>(token[1]);
      units.push_back(u"\"\\/\b\f\n\r\t"[std::string_view("\"\\/bfnrt").find(escape)]);
      token.remove_prefix(2);
    }
  }
}

}  // namespace velan

#endif  // VELAN_BASE_JSON_JSON_SCANNER_INTERNAL_H
