#include <algorithm>

#include "velan/markup/Attributes.h"
#include "velan/markup/AttributesInternal.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/search/UnitSearchInternal.h"

namespace velan {
namespace {

bool isWhite(unichar c) { return isMemberOfCharacterSetRep(whiteCharacterSetRep(), c); }

class FieldReader {
 public:
  FieldReader(std::u16string_view text, unichar quotation, bool tolerant, unichar separator)
      : _text(text), _quotation(quotation), _separator(separator), _tolerant(tolerant) {}

  String field(std::u16string_view upperName) {
    const unichar* const upper = initUpperCharsTable();
    const size_t length = upperName.size();
    for (size_t from = 0; _text.size() - from > length;) {
      const size_t rest = _text.size() - from;
      const size_t found = findMappedUnits(_text.data() + from, rest, upperName.data(), length, upper);
      if (found == rest) break;
      const size_t equals = skipWhite(from + found + length);
      if (equals < _text.size() && _text[equals] == u'=') {
        if (String value = valueAt(equals + 1)) return value;
      }
      from += found + 1;
    }
    return String();
  }

 private:
  // Remembers the last run of white space: matches inside it do not walk it again.
  size_t skipWhite(size_t i) {
    if (i >= _whiteBegin && i < _whiteEnd) return _whiteEnd;
    _whiteBegin = i;
    while (i < _text.size() && isWhite(_text[i])) ++i;
    return _whiteEnd = i;
  }

  bool opensValue(unichar c) const {
    return (_quotation != 0 && c == _quotation) || (_tolerant && (c == u'"' || c == u'\''));
  }

  bool endsPlainValue(unichar c) const {
    if (_separator != 0 && c == _separator) return true;
    return _tolerant && (c == u'"' || c == u'\'' || c == u'>' || isWhite(c));
  }

  // Absent for an empty value in quotation marks.
  String valueAt(size_t begin) {
    if (_tolerant) begin = skipWhite(begin);
    if (begin < _text.size() && opensValue(_text[begin])) {
      const size_t end = std::min(_text.find(_text[begin], begin + 1), _text.size());
      return end == begin + 1 ? String() : String(_text.substr(begin + 1, end - begin - 1));
    }
    size_t end = begin;
    while (end < _text.size() && !endsPlainValue(_text[end])) ++end;
    return String(_text.substr(begin, end - begin));
  }

  const std::u16string_view _text;
  const unichar _quotation;
  const unichar _separator;
  const bool _tolerant;
  size_t _whiteBegin = 0;
  size_t _whiteEnd = 0;
};

// The rest of a line that begins with the name and a colon, without white space around it.
String valueBehindColon(std::u16string_view line, std::u16string_view upperName) {
  const auto isNamed = std::ranges::equal(line.substr(0, upperName.size()), upperName,
                                          [](unichar c, unichar wanted) { return toUpper(c) == wanted; });
  if (!isNamed) return String();
  line.remove_prefix(upperName.size());
  const auto trim = [&line] {
    while (!line.empty() && isWhite(line.front())) line.remove_prefix(1);
  };
  trim();
  if (!line.starts_with(u':')) return String();
  line.remove_prefix(1);
  trim();
  while (!line.empty() && isWhite(line.back())) line.remove_suffix(1);
  return line.empty() ? String() : String(line);
}

}  // namespace

String headerField(std::u16string_view text, std::u16string_view upperName, unichar quotation, bool tolerant,
                   unichar separator) {
  return upperName.empty() ? String() : FieldReader(text, quotation, tolerant, separator).field(upperName);
}

String headerFieldNamed(const String& string, const String& name, unichar quotation, unichar separator) {
  return headerField(string.view(), upperCase(name), quotation, false, separator);
}

String headerFieldNamed(const String& string, const String& name) {
  return headerField(string.view(), upperCase(name), u'"', true, u';');
}

String HTTPHeaderFieldNamed(const String& string, const String& name) {
  const std::u16string upperName = upperCase(name);
  if (upperName.empty()) return String();
  for (std::u16string_view rest = string.view(); !rest.empty();) {
    const size_t length = std::min(rest.find_first_of(u"\r\n"), rest.size());
    const std::u16string_view line = rest.substr(0, length);
    String value = valueBehindColon(line, upperName);
    if (!value) value = headerField(line, upperName, u'"', true, u';');
    if (value) return value;
    rest.remove_prefix(std::min(length + 1, rest.size()));
  }
  return String();
}

}  // namespace velan
