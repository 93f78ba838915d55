// Transcoding between UTF-8 and UTF-16 (RFC 3629, RFC 2781). Nothing here allocates except the functions that say so.
#ifndef VELAN_BASE_UTF_UTF_H
#define VELAN_BASE_UTF_UTF_H

#include <optional>
#include <string>
#include <string_view>

#include "velan/base/CTypes.h"

namespace velan {

/// What a conversion consumed and produced, in units of the source and of the destination. It was complete when
/// `consumed` equals the source's length; otherwise it stopped before the first malformed sequence.
struct Transcoded {
  size_t consumed;
  size_t written;
};

constexpr bool isHighSurrogate(unichar c) { return (c & 0xFC00) == 0xD800; }
constexpr bool isLowSurrogate(unichar c) { return (c & 0xFC00) == 0xDC00; }
constexpr bool isSurrogate(unichar c) { return (c & 0xF800) == 0xD800; }

/// A UTF-16 text of n units needs at most 3 n bytes in UTF-8; a UTF-8 text of n bytes at most n units in UTF-16.
inline constexpr size_t kMaxUTF8BytesPerUnit = 3;

/// Converts UTF-8 to UTF-16, strictly: overlong forms, surrogates, values above U+10FFFF and truncated sequences are
/// malformed. `units` has room for `utf8.size()` units. A byte-order mark is kept as U+FEFF.
VELAN_EXPORT Transcoded convertUTF8ToUTF16(std::string_view utf8, unichar* units);

/// As above, but each maximal malformed part (the practice of the Unicode Standard, chapter 3.9) becomes one U+FFFD.
/// Returns the number of units written.
VELAN_EXPORT size_t convertUTF8ToUTF16Lossy(std::string_view utf8, unichar* units);

/// Whether the whole text is well-formed UTF-8.
VELAN_EXPORT bool isUTF8(std::string_view utf8);

/// Converts UTF-16 to UTF-8; a surrogate without its partner is malformed. `bytes` has room for 3 bytes per unit.
VELAN_EXPORT Transcoded convertUTF16ToUTF8(std::u16string_view utf16, char* bytes);

/// Appends the UTF-8 form of `utf16` to `utf8`, U+FFFD for each lone surrogate.
VELAN_EXPORT void appendUTF8Lossy(std::u16string_view utf16, std::string& utf8);

/// Appends the UTF-8 form of `utf16` to `utf8`. False when it holds a lone surrogate; a part of it may then be there.
VELAN_EXPORT bool appendUTF8(std::u16string_view utf16, std::string& utf8);

/// The UTF-8 form of `utf16`, or nothing when it holds a lone surrogate.
VELAN_EXPORT std::optional<std::string> utf8FromUTF16(std::u16string_view utf16);

}  // namespace velan

#endif  // VELAN_BASE_UTF_UTF_H
