// Attributes of tags and styles; header fields are in HeaderFields.cpp.
#include "velan/markup/Attributes.h"

#include <algorithm>
#include <string>

#include "velan/markup/AttributesInternal.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/search/UnitBlocksInternal.h"

namespace velan {
namespace {

bool isQuote(unichar c) { return c == u'"' || c == u'\''; }

// What the readers differ in.
struct AttributeSyntax {
  size_t minimumExcess;  // of the whole over the name, in units
  unichar assignment;
  unichar terminator;
  bool underscoreIsPartOfNames;
  bool assignmentRepeats;
  bool tolerant;
};
constexpr AttributeSyntax kTagCharacters{5, u'=', u'>', true, true, false};
constexpr AttributeSyntax kContent{5, u'=', u'>', true, true, true};
constexpr AttributeSyntax kTag{5, u'=', u'>', false, false, false};
constexpr AttributeSyntax kStyle{1, u':', u';', false, false, false};

class AttributeReader {
 public:
  AttributeReader(std::u16string_view text, const AttributeSyntax& syntax) : _text(text), _syntax(syntax) {}

  // The value in the text; absent when there is none.
  Range valueOf(std::u16string_view upperName) const {
    const size_t nameLength = upperName.size();
    if (nameLength == 0 || _text.size() <= _syntax.minimumExcess ||
        nameLength >= _text.size() - _syntax.minimumExcess) {
      return kAbsentRange;
    }
    for (size_t i = 0; i < _text.size() - nameLength; ++i) {
      if (isQuote(_text[i])) {
        i = endOfQuotation(i + 1, _text[i]);
      } else if (isNameAt(i, upperName)) {
        const size_t assigned = skipWhite(i + nameLength);
        if (assigned < _text.size() && _text[assigned] == _syntax.assignment) return valueAt(assigned + 1);
      }
    }
    return kAbsentRange;
  }

 private:
  size_t endOfQuotation(size_t from, unichar quote) const {
    return from + positionOfUnit(_text.data() + from, _text.size() - from, quote);
  }

  size_t skipWhite(size_t i) const {
    while (i < _text.size() && isMemberOfCharacterSetRep(_white, _text[i])) ++i;
    return i;
  }

  bool isNameAt(size_t i, std::u16string_view upperName) const {
    if (_upper[_text[i]] != upperName[0]) return false;
    if (i > 0) {
      const unichar before = _text[i - 1];
      if (before == u'-' || (before == u'_' && _syntax.underscoreIsPartOfNames)) return false;
      if (isMemberOfCharacterSetRep(_alphanumeric, before)) return false;
    }
    return std::ranges::equal(_text.substr(i, upperName.size()), upperName,
                              [this](unichar unit, unichar wanted) { return _upper[unit] == wanted; });
  }

  Range valueAt(size_t i) const {
    while (_syntax.assignmentRepeats && i < _text.size() && _text[i] == _syntax.assignment) ++i;
    i = skipWhite(i);
    if (i == _text.size()) return kAbsentRange;
    const bool quoted = isQuote(_text[i]);
    const size_t begin = quoted ? i + 1 : i;
    size_t end = !quoted            ? endOfPlain(i)
                 : _syntax.tolerant ? endOfTolerant(begin, _text[i])
                                    : endOfQuoted(begin, _text[i]);
    while (end > begin && isMemberOfCharacterSetRep(_white, _text[end - 1])) --end;
    return end == begin ? kAbsentRange : Range{static_cast<int64_t>(begin), static_cast<int64_t>(end - begin)};
  }

  size_t endOfPlain(size_t i) const {
    while (i < _text.size() && _text[i] != _syntax.terminator && !isMemberOfCharacterSetRep(_white, _text[i])) ++i;
    return i;
  }

  size_t endOfQuoted(size_t i, unichar quote) const {
    while (i < _text.size() && _text[i] != quote && _text[i] != _syntax.terminator) ++i;
    return i;
  }

  // A quoted value that may run into the next tag: what the brackets in it open they close before it ends.
  size_t endOfTolerant(size_t begin, unichar quote) const {
    int64_t nesting = 0;
    for (size_t i = begin; i < _text.size(); ++i) {
      const unichar c = _text[i];
      if (c == quote) return nesting == 1 ? withoutBracket(begin, i) : i;
      if (c == u'<') {
        if (isMetaAt(i + 1)) return i;
        ++nesting;
      } else if (c == u'>') {
        if (nesting == 0 && i > begin) return i;
        --nesting;
      }
    }
    return _text.size();
  }

  bool isMetaAt(size_t i) const {
    return std::ranges::equal(_text.substr(i, 4), std::u16string_view(u"META"),
                              [this](unichar unit, unichar wanted) { return _upper[unit] == wanted; });
  }

  size_t withoutBracket(size_t begin, size_t end) const {
    const std::u16string_view value = _text.substr(begin, end - begin);
    return value.ends_with(u'<') ? end - 1 : value.ends_with(u"</") ? end - 2 : end;
  }

  const std::u16string_view _text;
  const AttributeSyntax& _syntax;
  const unichar* const _upper = initUpperCharsTable();
  const uint8_t* const _white = whiteCharacterSetRep();
  const uint8_t* const _alphanumeric = alphaNumCharacterSetRep();
};

Range attributeOfCharacters(const unichar* characters, Range range, const char* name, const AttributeSyntax& syntax) {
  if (!characters || !name || !isPresent(range) || range.location < 0 || range.length <= 0) return kAbsentRange;
  const std::u16string_view tag(characters + range.location, static_cast<size_t>(range.length));
  std::u16string upperName;
  for (; *name != '\0'; ++name) upperName.push_back(toUpper(widened(*name)));
  Range value = AttributeReader(tag, syntax).valueOf(upperName);
  if (isPresent(value)) value.location += range.location;
  return value;
}

String attributeOfString(const String& string, Range range, const String& name, const AttributeSyntax& syntax) {
  const Range inside = clippedRange(range, string.length());
  const auto text = string.view().substr(static_cast<size_t>(inside.location), static_cast<size_t>(inside.length));
  Range value = AttributeReader(text, syntax).valueOf(upperCase(name));
  if (!isPresent(value)) return String();
  value.location += inside.location;
  return string.substring(value);
}

String stringInRange(const unichar* characters, Range range) {
  return isPresent(range) ? String::withCharacters(characters + range.location, range.length) : String();
}

}  // namespace

std::u16string upperCase(const String& name) {
  std::u16string upperName(name.view());
  for (unichar& c : upperName) c = toUpper(c);
  return upperName;
}

Range rangeOfAttributeOfTagCharacters(const unichar* characters, Range range, const char* name) {
  return attributeOfCharacters(characters, range, name, kTagCharacters);
}

String attributeOfTagCharacters(const unichar* characters, Range range, const char* name) {
  return stringInRange(characters, rangeOfAttributeOfTagCharacters(characters, range, name));
}

String contentAttributeOfTagCharacters(const unichar* characters, Range range) {
  return stringInRange(characters, attributeOfCharacters(characters, range, "CONTENT", kContent));
}

String attributeOfTagInRange(const String& string, Range range, const String& name) {
  return attributeOfString(string, range, name, kTag);
}

String attributeOfStyleInRange(const String& string, Range range, const String& name) {
  return attributeOfString(string, range, name, kStyle);
}

}  // namespace velan
