// Letters, digits and case of ASCII, for bytes and for UTF-16 units alike; no locale and no table is asked.
#ifndef VELAN_BASE_ASCII_H
#define VELAN_BASE_ASCII_H

#include <concepts>
#include <cstddef>
#include <string_view>
#include <type_traits>

#include "velan/base/CTypes.h"

namespace velan {

/// What text is made of here: bytes of UTF-8, UTF-16 units, code points.
template <typename T>
concept CharacterLike =
    std::same_as<T, char> || std::same_as<T, unsigned char> || std::same_as<T, char16_t> || std::same_as<T, char32_t>;

constexpr bool isASCIIDigit(CharacterLike auto c) { return c >= '0' && c <= '9'; }
constexpr bool isASCIILowerCase(CharacterLike auto c) { return c >= 'a' && c <= 'z'; }
constexpr bool isASCIIUpperCase(CharacterLike auto c) { return c >= 'A' && c <= 'Z'; }
constexpr bool isASCIILetter(CharacterLike auto c) { return isASCIILowerCase(c) || isASCIIUpperCase(c); }
constexpr bool isASCIIAlphanumeric(CharacterLike auto c) { return isASCIILetter(c) || isASCIIDigit(c); }
/// The space and U+0009 to U+000D.
constexpr bool isASCIIWhiteSpace(CharacterLike auto c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// The same letter in the other case; anything but an ASCII letter stays.
template <CharacterLike T>
constexpr T toASCIILower(T c) {
  return isASCIIUpperCase(c) ? static_cast<T>(c | 0x20) : c;
}
template <CharacterLike T>
constexpr T toASCIIUpper(T c) {
  return isASCIILowerCase(c) ? static_cast<T>(c & ~0x20) : c;
}

/// 0 to 15 for a hexadecimal digit of either case, -1 for anything else.
constexpr int hexadecimalDigitValue(CharacterLike auto c) {
  if (isASCIIDigit(c)) return static_cast<int>(c - '0');
  const auto lower = toASCIILower(c);
  return lower >= 'a' && lower <= 'f' ? static_cast<int>(lower - 'a') + 10 : -1;
}

/// The digit for the low four bits of `value`.
constexpr char lowerHexadecimalDigit(unsigned value) { return "0123456789abcdef"[value & 15]; }
constexpr char upperHexadecimalDigit(unsigned value) { return "0123456789ABCDEF"[value & 15]; }

/// Whether both have the same length and the same units, ASCII letters in any case.
template <CharacterLike A, CharacterLike B>
constexpr bool equalsIgnoringASCIICase(std::basic_string_view<A> a, std::basic_string_view<B> b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    const auto x = static_cast<std::make_unsigned_t<A>>(toASCIILower(a[i]));
    const auto y = static_cast<std::make_unsigned_t<B>>(toASCIILower(b[i]));
    if (x != y) return false;
  }
  return true;
}

}  // namespace velan

#endif  // VELAN_BASE_ASCII_H
