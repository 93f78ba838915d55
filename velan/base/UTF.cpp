#include "velan/base/UTF.h"

#include <algorithm>
#include <cstring>

#include "velan/base/UTFInternal.h"

namespace velan {
namespace {

constexpr uint64_t kHighBits = 0x8080808080808080u;

// Copies ASCII bytes, eight at a time, up to the first other byte; returns how many.
size_t widenASCII(const uint8_t* bytes, size_t length, unichar* units) {
  size_t i = 0;
  for (; length - i >= 8; i += 8) {
    uint64_t block = 0;
    std::memcpy(&block, bytes + i, 8);
    if (block & kHighBits) break;
    for (size_t k = 0; k < 8; ++k) units[i + k] = bytes[i + k];
  }
  for (; i < length && bytes[i] < 0x80; ++i) units[i] = bytes[i];
  return i;
}

// Copies ASCII units up to the first other unit; returns how many.
size_t narrowASCII(const unichar* units, size_t length, char* bytes) {
  size_t i = 0;
  for (; length - i >= 8; i += 8) {
    unichar all = 0;
    for (size_t k = 0; k < 8; ++k) all = static_cast<unichar>(all | units[i + k]);
    if (all >= 0x80) break;
    for (size_t k = 0; k < 8; ++k) bytes[i + k] = static_cast<char>(units[i + k]);
  }
  for (; i < length && units[i] < 0x80; ++i) bytes[i] = static_cast<char>(units[i]);
  return i;
}

size_t putUTF8(uint32_t codePoint, char* bytes) {
  const auto put = [bytes](size_t i, uint32_t value) { bytes[i] = static_cast<char>(value); };
  if (codePoint < 0x800) {
    put(0, 0xC0 | (codePoint >> 6));
    put(1, 0x80 | (codePoint & 0x3F));
    return 2;
  }
  if (codePoint < 0x10000) {
    put(0, 0xE0 | (codePoint >> 12));
    put(1, 0x80 | ((codePoint >> 6) & 0x3F));
    put(2, 0x80 | (codePoint & 0x3F));
    return 3;
  }
  put(0, 0xF0 | (codePoint >> 18));
  put(1, 0x80 | ((codePoint >> 12) & 0x3F));
  put(2, 0x80 | ((codePoint >> 6) & 0x3F));
  put(3, 0x80 | (codePoint & 0x3F));
  return 4;
}

// `lossy` replaces what is malformed; otherwise the conversion stops there.
template <bool lossy>
Transcoded toUTF16(std::string_view utf8, unichar* units) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(utf8.data());
  const size_t length = utf8.size();
  size_t in = 0;
  size_t out = 0;
  while (in < length) {
    const size_t ascii = widenASCII(bytes + in, length - in, units + out);
    in += ascii;
    out += ascii;
    while (in < length && bytes[in] >= 0x80) {
      const UTF8Sequence sequence = decodeUTF8Sequence(bytes + in, length - in);
      if (!sequence.valid && !lossy) return {in, out};
      out += sequence.valid ? putUTF16(sequence.codePoint, units + out) : putUTF16(0xFFFD, units + out);
      in += sequence.length;
    }
  }
  return {in, out};
}

template <bool lossy>
Transcoded toUTF8(std::u16string_view utf16, char* bytes) {
  const unichar* units = utf16.data();
  const size_t length = utf16.size();
  size_t in = 0;
  size_t out = 0;
  while (in < length) {
    const size_t ascii = narrowASCII(units + in, length - in, bytes + out);
    in += ascii;
    out += ascii;
    while (in < length && units[in] >= 0x80) {
      const unichar unit = units[in];
      if (!isSurrogate(unit)) {
        out += putUTF8(unit, bytes + out);
        ++in;
      } else if (isHighSurrogate(unit) && in + 1 < length && isLowSurrogate(units[in + 1])) {
        out += putUTF8(0x10000u + ((unit & 0x3FFu) << 10) + (units[in + 1] & 0x3FFu), bytes + out);
        in += 2;
      } else if (lossy) {
        out += putUTF8(0xFFFD, bytes + out);
        ++in;
      } else {
        return {in, out};
      }
    }
  }
  return {in, out};
}

}  // namespace

Transcoded convertUTF8ToUTF16(std::string_view utf8, unichar* units) { return toUTF16<false>(utf8, units); }

size_t convertUTF8ToUTF16Lossy(std::string_view utf8, unichar* units) { return toUTF16<true>(utf8, units).written; }

Transcoded convertUTF16ToUTF8(std::u16string_view utf16, char* bytes) { return toUTF8<false>(utf16, bytes); }

void appendUTF8Lossy(std::u16string_view utf16, std::string& utf8) {
  // In pieces, so that a long text does not reserve three times its size.
  constexpr size_t kPiece = 1024;
  char bytes[kPiece * kMaxUTF8BytesPerUnit];
  while (!utf16.empty()) {
    size_t count = std::min(kPiece, utf16.size());
    if (count < utf16.size() && isHighSurrogate(utf16[count - 1])) --count;
    utf8.append(bytes, toUTF8<true>(utf16.substr(0, count), bytes).written);
    utf16.remove_prefix(count);
  }
}

std::optional<std::string> utf8FromUTF16(std::u16string_view utf16) {
  std::string utf8(utf16.size() * kMaxUTF8BytesPerUnit, '\0');
  const Transcoded result = convertUTF16ToUTF8(utf16, utf8.data());
  if (result.consumed != utf16.size()) return std::nullopt;
  utf8.resize(result.written);
  return utf8;
}

}  // namespace velan
