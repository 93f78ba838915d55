// Entities to characters; the other way round is in EntityEncoding.cpp.
#include "velan/markup/Entities.h"

#include <algorithm>
#include <string_view>

#include "velan/base/ASCII.h"
#include "velan/markup/EntityTableInternal.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/search/UnitBlocksInternal.h"

namespace velan {
namespace {

constexpr size_t kLongestReference = 31;  // without "&" and ";"

// The character that `name` stands for; 0 when there is none. Only the low bytes of the units count.
unichar namedEntity(std::u16string_view name) {
  uint32_t hash = 0x811C9DC5;  // FNV-1a, as the generator of the table computes it
  for (const unichar c : name) hash = (hash ^ (c & 0xFFu)) * 0x01000193;
  const size_t slot = kEntitySlots[(hash / 64 ^ kEntityMoves[hash % 64]) % 512];
  if (slot == 0) return 0;
  const std::string_view found = entityStrings[slot - 1];
  const bool same = found.size() == name.size() &&
                    std::equal(name.begin(), name.end(), found.begin(),
                               [](unichar a, char b) { return (a & 0xFF) == static_cast<unsigned char>(b); });
  return same ? entityCharacters[slot - 1] : unichar{0};
}

bool isMarkupCharacter(uint32_t c) { return c == '"' || c == '&' || c == '<' || c == '>'; }

// One pass over the units, which writes behind where it reads.
class Decoder {
 public:
  Decoder(const unichar* units, size_t length, unichar* out, bool standard, bool onlyNumeric, bool nonUmlauted)
      : _next(units),
        _end(units + length),
        _out(out),
        _standard(standard),
        _onlyNumeric(onlyNumeric),
        _plain(nonUmlauted ? initUmlautsCharsTable() : nullptr),
        _alphanumeric(alphaNumCharacterSetRep()) {}

  size_t decode() {
    const unichar* const begin = _out;
    while (_next < _end) {
      copyTo(_next + positionOfUnit(_next, left(), u'&'));
      if (_next == _end) break;
      if (!decodeFixed() && !decodeNumeric() && !decodeNamed()) copyTo(_next + 1);
    }
    return static_cast<size_t>(_out - begin);
  }

 private:
  size_t left() const { return static_cast<size_t>(_end - _next); }

  void copyTo(const unichar* until) {
    if (!_plain) {
      const auto count = static_cast<size_t>(until - _next);
      if (_out != _next) std::char_traits<unichar>::move(_out, _next, count);
      _out += count;
      _next = until;
    }
    while (_next < until) *_out++ = _plain[*_next++];
  }

  void write(unichar c) { *_out++ = _plain ? _plain[c] : c; }

  // Goes on at `after`, or behind the ";" that stands there.
  bool skipTo(const unichar* after) {
    _next = after < _end && *after == u';' ? after + 1 : after;
    return true;
  }

  bool takeFixed(std::u16string_view name, unichar c) {
    if (std::u16string_view(_next + 1, left() - 1).substr(0, name.size()) != name) return false;
    *_out++ = c;
    return skipTo(_next + 1 + name.size());
  }

  // The commonest names, which are also found at the head of a longer one.
  bool decodeFixed() {
    if (left() > 4) {
      if (takeFixed(u"apos", u'\'') || takeFixed(u"nbsp", 0xA0)) return true;
      if (_standard && takeFixed(u"quot", u'"')) return true;
    }
    if (!_standard || left() <= 3) return false;
    return takeFixed(u"amp", u'&') || takeFixed(u"lt", u'<') || takeFixed(u"gt", u'>');
  }

  bool decodeNumeric() {
    if (left() < 2 || _next[1] != u'#') return false;
    const unichar* digit = _next + 2;
    const bool hexadecimal = digit < _end && (*digit == u'x' || *digit == u'X');
    if (hexadecimal) ++digit;
    const unichar* const firstDigit = digit;
    uint32_t value = 0;
    for (; digit < _end && static_cast<size_t>(digit - _next) <= kLongestReference + 1; ++digit) {
      const int figure = hexadecimal || isASCIIDigit(*digit) ? hexadecimalDigitValue(*digit) : -1;
      if (figure < 0) break;
      value = std::min(value * (hexadecimal ? 16 : 10) + static_cast<uint32_t>(figure), uint32_t{0x110000});
    }
    if (digit == firstDigit || static_cast<size_t>(digit - (_next + 1)) > kLongestReference || value >= 0x110000) {
      return false;
    }
    if (!_standard && isMarkupCharacter(value)) return false;
    if (value < 0x10000) {
      write(static_cast<unichar>(value));
    } else {
      *_out++ = static_cast<unichar>(0xD7C0 + (value >> 10));
      *_out++ = static_cast<unichar>(0xDC00 | (value & 0x3FF));
    }
    return skipTo(digit);
  }

  bool decodeNamed() {
    if (_onlyNumeric) return false;
    const unichar* const name = _next + 1;
    const unichar* const limit = name + std::min(left() - 1, kLongestReference + 1);
    const unichar* const after =
        std::find_if_not(name, limit, [this](unichar c) { return isMemberOfCharacterSetRep(_alphanumeric, c); });
    const auto length = static_cast<size_t>(after - name);
    if (length < 2 || length > kLongestReference) return false;
    const unichar c = namedEntity({name, length});
    if (c == 0) return false;
    write(c);
    return skipTo(after);
  }

  const unichar* _next;
  const unichar* const _end;
  unichar* _out;
  const bool _standard;
  const bool _onlyNumeric;
  const unichar* const _plain;  // the table without diacritics, or null
  const uint8_t* const _alphanumeric;
};

// The character of the escape at the beginning of `text`, which begins with "&", and the length of the escape.
struct Escape {
  unichar character = 0;
  size_t length = 0;
};

Escape standardEscape(std::u16string_view text) {
  const auto endsAt = [text](size_t i) { return i < text.size() && text[i] == u';'; };
  const auto escape = [text](std::u16string_view form, unichar c) {
    return text.starts_with(form) ? Escape{c, form.size()} : Escape{};
  };
  if (endsAt(5)) return escape(u"&quot;", u'"');
  if (endsAt(4)) {
    for (const auto& [form, c] : {std::pair(u"&amp;", u'&'), std::pair(u"&#38;", u'&'), std::pair(u"&#34;", u'"'),
                                  std::pair(u"&#60;", u'<'), std::pair(u"&#62;", u'>')}) {
      if (const Escape found = escape(form, c); found.length > 0) return found;
    }
    return {};
  }
  if (!endsAt(3)) return {};
  const Escape less = escape(u"&lt;", u'<');
  return less.length > 0 ? less : escape(u"&gt;", u'>');
}

constexpr int64_t kShortestDecoded = 4;

// What `decode(units)` leaves of a copy; the receiver when nothing changed.
template <typename Decode>
String decoded(const String& string, Decode decode) {
  const String result = String::filled(string.length(), decode);
  return result.isAbsent() || result == string ? string : result;
}

bool holdsAmpersand(const String& string) {
  return positionOfUnit(string.characters(), string.view().size(), u'&') < string.view().size();
}

}  // namespace

size_t convertEntities2Characters(const unichar* source, unichar* destination, size_t start, size_t length,
                                  bool standard, bool onlyNumeric, bool nonUmlauted) {
  if (!source || !destination) return 0;
  return Decoder(source + start, length, destination, standard, onlyNumeric, nonUmlauted).decode();
}

size_t convertStdEntities2Characters(unichar* characters, size_t length) {
  if (!characters) return 0;
  const std::u16string_view text(characters, length);
  size_t written = 0;
  for (size_t i = 0; i < length;) {
    const size_t plain = positionOfUnit(characters + i, length - i, u'&');
    if (written != i) std::char_traits<unichar>::move(characters + written, characters + i, plain);
    written += plain;
    i += plain;
    if (i == length) break;
    const Escape escape = standardEscape(text.substr(i, 6));
    characters[written++] = escape.length > 0 ? escape.character : u'&';
    i += escape.length > 0 ? escape.length : 1;
  }
  return written;
}

String stringByConvertingEntitiesToCharacters(const String& string, bool standard, bool onlyNumeric, bool nonUmlauted) {
  if (string.length() < kShortestDecoded || (!nonUmlauted && !holdsAmpersand(string))) return string;
  return decoded(string, [&](unichar* units) {
    return static_cast<int64_t>(convertEntities2Characters(string.characters(), units, 0, string.view().size(),
                                                           standard, onlyNumeric, nonUmlauted));
  });
}

String stringByConvertingStandardEntitiesToCharacters(const String& string) {
  if (string.length() < kShortestDecoded || !holdsAmpersand(string)) return string;
  return decoded(string, [&](unichar* units) {
    std::ranges::copy(string.view(), units);
    return static_cast<int64_t>(convertStdEntities2Characters(units, string.view().size()));
  });
}

}  // namespace velan
