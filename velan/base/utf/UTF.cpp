#include "velan/base/utf/UTF.h"

#include <algorithm>
#include <cstring>

#include "velan/base/utf/UTFInternal.h"
#include "velan/base/utf/UTFKernelsInternal.h"

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

Transcoded toUTF16Scalar(const uint8_t* bytes, size_t length, unichar* units) {
  size_t in = 0;
  size_t out = 0;
  while (in < length) {
    const size_t ascii = widenASCII(bytes + in, length - in, units + out);
    in += ascii;
    out += ascii;
    while (in < length && bytes[in] >= 0x80) {
      const UTF8Sequence sequence = decodeUTF8Sequence(bytes + in, length - in);
      if (!sequence.valid) return {in, out};
      out += putUTF16(sequence.codePoint, units + out);
      in += sequence.length;
    }
  }
  return {in, out};
}

Transcoded toUTF8Scalar(const unichar* units, size_t length, char* bytes) {
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
      } else {
        return {in, out};
      }
    }
  }
  return {in, out};
}

#ifdef __x86_64__
// The reference finishes what a kernel begins.
template <auto begin>
Transcoded toUTF16With(const uint8_t* bytes, size_t length, unichar* units) {
  const Transcoded done = begin(bytes, length, units);
  const Transcoded rest = toUTF16Scalar(bytes + done.consumed, length - done.consumed, units + done.written);
  return {done.consumed + rest.consumed, done.written + rest.written};
}

template <auto begin>
Transcoded toUTF8With(const unichar* units, size_t length, char* bytes) {
  const Transcoded done = begin(units, length, bytes);
  const Transcoded rest = toUTF8Scalar(units + done.consumed, length - done.consumed, bytes + done.written);
  return {done.consumed + rest.consumed, done.written + rest.written};
}
#endif

const UTFTranscoding& transcoding() {
  static const UTFTranscoding best = utfKernels().best();
  return best;
}

// U+FFFD for each lone surrogate.
size_t toUTF8Lossy(std::u16string_view utf16, char* bytes) {
  size_t out = 0;
  for (;;) {
    const Transcoded piece = transcoding().toUTF8(utf16.data(), utf16.size(), bytes + out);
    out += piece.written;
    utf16.remove_prefix(piece.consumed);
    if (utf16.empty()) return out;
    out += putUTF8(0xFFFD, bytes + out);
    utf16.remove_prefix(1);
  }
}

}  // namespace

const Kernels<UTFTranscoding>& utfKernels() {
  using enum CPUFeatures;
  static const Kernels<UTFTranscoding> kernels({
      {"scalar", None, {toUTF16Scalar, toUTF8Scalar}},
#ifdef __x86_64__
      {"AVX-512", AVX512 | VBMI2, {toUTF16With<beginUTF16Avx512>, toUTF8With<beginUTF8Avx512>}},
#endif
  });
  return kernels;
}

Transcoded convertUTF8ToUTF16(std::string_view utf8, unichar* units) {
  return transcoding().toUTF16(reinterpret_cast<const uint8_t*>(utf8.data()), utf8.size(), units);
}

size_t convertUTF8ToUTF16Lossy(std::string_view utf8, unichar* units) {
  size_t out = 0;
  for (;;) {
    const Transcoded piece = convertUTF8ToUTF16(utf8, units + out);
    out += piece.written;
    utf8.remove_prefix(piece.consumed);
    if (utf8.empty()) return out;
    units[out++] = 0xFFFD;
    utf8.remove_prefix(decodeUTF8Sequence(reinterpret_cast<const uint8_t*>(utf8.data()), utf8.size()).length);
  }
}

Transcoded convertUTF16ToUTF8(std::u16string_view utf16, char* bytes) {
  return transcoding().toUTF8(utf16.data(), utf16.size(), bytes);
}

void appendUTF8Lossy(std::u16string_view utf16, std::string& utf8) {
  // In pieces, so that a long text does not reserve three times its size.
  constexpr size_t kPiece = 1024;
  char bytes[kPiece * kMaxUTF8BytesPerUnit];
  while (!utf16.empty()) {
    size_t count = std::min(kPiece, utf16.size());
    if (count < utf16.size() && isHighSurrogate(utf16[count - 1])) --count;
    utf8.append(bytes, toUTF8Lossy(utf16.substr(0, count), bytes));
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

bool isUTF8(std::string_view utf8) {
  unichar units[256];
  while (!utf8.empty()) {
    // What the end of a piece cuts begins the next one.
    const size_t consumed = convertUTF8ToUTF16(utf8.substr(0, 256), units).consumed;
    if (consumed == 0) return false;
    utf8.remove_prefix(consumed);
  }
  return true;
}

}  // namespace velan
