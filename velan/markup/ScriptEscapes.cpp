#include "velan/markup/ScriptEscapes.h"

#include <algorithm>

#include "velan/base/ASCII.h"
#include "velan/text/search/UnitBlocksInternal.h"

namespace velan {
namespace {

bool isBracket(unichar c) { return c == u'(' || c == u')' || c == u'[' || c == u']'; }

// The value of `count` digits; what is no digit, or missing, counts as 0.
unichar unitFromDigits(std::u16string_view digits, size_t count) {
  unsigned value = 0;
  for (size_t i = 0; i < count; ++i) {
    const int digit = i < digits.size() ? hexadecimalDigitValue(digits[i]) : 0;
    value = value << 4 | static_cast<unsigned>(std::max(digit, 0));
  }
  return static_cast<unichar>(value);
}

// What stands after a backslash: the unit it means, and its length.
struct Meaning {
  unichar unit;
  size_t length;
};

Meaning meaningOf(std::u16string_view escape, bool javaScript) {
  constexpr std::u16string_view kLetters = u"bfnrtvO";
  constexpr size_t kLettersOfJSON = 5;
  const unichar c = escape.front();
  const size_t digits = c == u'u' ? 4 : c == u'x' && javaScript ? 2 : 0;
  if (digits > 0) return {unitFromDigits(escape.substr(1), digits), std::min(digits + 1, escape.size())};
  const size_t letter = kLetters.substr(0, javaScript ? kLetters.size() : kLettersOfJSON).find(c);
  return {letter == std::u16string_view::npos ? c : u"\b\f\n\r\t\v\0"[letter], 1};
}

}  // namespace

String stringByConvertingJSONToCharacters(const String& string, bool javaScript) {
  const std::u16string_view units = string.view();
  const size_t first = positionOfUnit(units.data(), units.size(), u'\\');
  if (first + 1 >= units.size()) return string;
  return String::filled(string.length(), [&](unichar* const begin) {
    unichar* out = std::copy_n(units.data(), first, begin);
    for (size_t i = first; i < units.size();) {
      if (i + 1 == units.size()) {
        *out++ = u'\\';
        break;
      }
      const Meaning meaning = meaningOf(units.substr(i + 1), javaScript);
      *out++ = meaning.unit;
      i += 1 + meaning.length;
      const size_t plain = positionOfUnit(units.data() + i, units.size() - i, u'\\');
      out = std::copy_n(units.data() + i, plain, out);
      i += plain;
    }
    return out - begin;
  });
}

String stringByConvertingCharactersToMarkdown(const String& string) {
  const auto brackets = std::ranges::count_if(string, isBracket);
  if (brackets == 0) return string;
  return String::filled(string.length() + brackets, [&](unichar* const begin) {
    unichar* out = begin;
    for (const unichar c : string) {
      if (isBracket(c)) *out++ = u'\\';
      *out++ = c;
    }
    return out - begin;
  });
}

String stringByConvertingMarkdownToCharacters(const String& string) {
  const std::u16string_view units = string.view();
  const auto isEscape = [units](size_t i) {
    return units[i] == u'\\' && i + 1 < units.size() && isBracket(units[i + 1]);
  };
  size_t escapes = 0;
  for (size_t i = 0; i < units.size(); ++i) escapes += isEscape(i) ? 1 : 0;
  if (escapes == 0) return string;
  return String::filled(string.length() - static_cast<int64_t>(escapes), [&](unichar* const begin) {
    unichar* out = begin;
    for (size_t i = 0; i < units.size(); ++i) {
      if (!isEscape(i)) *out++ = units[i];
    }
    return out - begin;
  });
}

}  // namespace velan
