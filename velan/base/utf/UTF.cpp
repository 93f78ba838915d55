#include "velan/base/utf/UTF.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "velan/base/ByteOrder.h"
#include "velan/base/utf/UTFInternal.h"
#include "velan/base/utf/UTFKernelsInternal.h"

namespace velan {
namespace {

constexpr uint64_t kHighBits = 0x8080808080808080u;
constexpr uint64_t kAboveASCII = 0xFF80FF80FF80FF80u;  // of four units
constexpr uint64_t kAboveTwoBytes = 0xF800F800F800F800u;

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
    uint64_t blocks[2];
    std::memcpy(blocks, units + i, 16);
    if ((blocks[0] | blocks[1]) & kAboveASCII) break;
    for (size_t k = 0; k < 8; ++k) bytes[i + k] = static_cast<char>(units[i + k]);
  }
  for (; i < length && units[i] < 0x80; ++i) bytes[i] = static_cast<char>(units[i]);
  return i;
}

// Writes the bytes of four units below U+0800, with room for eight; returns how many. By numbers, because in most texts
// nothing tells which units need one byte and which two.
size_t putShortBytes(uint64_t units, char* bytes) {
  constexpr uint64_t kOfEach = 0x0001000100010001u;
  const uint64_t isTwo = (units + 0x7F80 * kOfEach) >> 15 & kOfEach;
  const uint64_t two = 0x80C0 * kOfEach | (units >> 6 & 0x1F * kOfEach) | (units & 0x3F * kOfEach) << 8;
  const uint64_t pairs = units ^ ((units ^ two) & isTwo * 0xFFFF);
  size_t out = 0;
  for (unsigned i = 0; i < 4; ++i) {
    const unsigned shift = 16 * (std::endian::native == std::endian::little ? i : 3 - i);
    storeLittleEndian(bytes + out, static_cast<uint16_t>(pairs >> shift));
    out += 1 + (isTwo >> shift & 1);
  }
  return out;
}

constexpr bool needsTwo(unichar unit) { return unit >= 0x80 && unit < 0x800; }
constexpr bool needsThree(unichar unit) { return unit >= 0x800 && !isSurrogate(unit); }

// Converts the sequence of two or three bytes at `bytes`, which at least four begin with; its length, or 0 where it is
// none of these, malformed ones included.
size_t shortSequence(const uint8_t* bytes, unichar& unit) {
  const auto word = loadLittleEndian<uint32_t>(bytes);
  if ((word & 0xC0E0) == 0x80C0) {
    unit = static_cast<unichar>((word & 0x1F) << 6 | (word >> 8 & 0x3F));
    return unit >= 0x80 ? 2 : 0;
  }
  if ((word & 0xC0C0F0) == 0x8080E0) {
    unit = static_cast<unichar>((word & 0x0F) << 12 | (word >> 2 & 0xFC0) | (word >> 16 & 0x3F));
    return unit >= 0x800 && !isSurrogate(unit) ? 3 : 0;
  }
  return 0;
}

Transcoded toUTF16Scalar(const uint8_t* bytes, size_t length, unichar* units) {
  size_t in = 0;
  size_t out = 0;
  while (in < length) {
    const size_t ascii = widenASCII(bytes + in, length - in, units + out);
    in += ascii;
    out += ascii;
    while (length - in >= 4) {
      const size_t count = shortSequence(bytes + in, units[out]);
      if (count == 0) break;
      in += count;
      ++out;
    }
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
    if (length - in >= 4) {
      uint64_t block = 0;
      std::memcpy(&block, units + in, 8);
      if ((block & kAboveASCII) == 0) {
        const size_t ascii = narrowASCII(units + in, length - in, bytes + out);
        in += ascii;
        out += ascii;
        continue;
      }
      if ((block & kAboveTwoBytes) == 0) {
        out += putShortBytes(block, bytes + out);
        in += 4;
        continue;
      }
    }
    const unichar unit = units[in];
    if (unit < 0x80) {
      bytes[out++] = static_cast<char>(unit);
      ++in;
    } else if (needsTwo(unit)) {
      putTwoBytes(unit, bytes + out);
      ++in;
      out += 2;
    } else if (needsThree(unit)) {
      for (; in < length && needsThree(units[in]); out += 3) putThreeBytes(units[in++], bytes + out);
    } else if (isHighSurrogate(unit) && in + 1 < length && isLowSurrogate(units[in + 1])) {
      putFourBytes(unit, units[in + 1], bytes + out);
      in += 2;
      out += 4;
    } else {
      break;
    }
  }
  return {in, out};
}

#if defined(__x86_64__) || defined(__AARCH64EL__)
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
Transcoded toUTF8Lossy(std::u16string_view utf16, char* bytes) {
  size_t in = 0;
  size_t out = 0;
  for (;;) {
    const Transcoded piece = transcoding().toUTF8(utf16.data() + in, utf16.size() - in, bytes + out);
    in += piece.consumed;
    out += piece.written;
    if (in == utf16.size()) return {in, out};
    putThreeBytes(0xFFFD, bytes + out);
    in += 1;
    out += 3;
  }
}

// Appends what `convert` makes of a text, in pieces: the room that is cleared for a piece stays in the nearest cache,
// and the string reserves what the text needs if it goes on as it began. A short text takes no more than its bytes.
// False, with a part appended, when a piece was not converted to its end.
template <typename Convert>
bool appendPieces(std::u16string_view utf16, std::string& utf8, Convert convert) {
  constexpr size_t kPiece = 4096;  // units
  constexpr size_t kShort = 128;
  if (utf16.size() <= kShort) {
    char bytes[kShort * kMaxUTF8BytesPerUnit];
    const Transcoded whole = convert(utf16, bytes);
    utf8.append(bytes, whole.written);
    return whole.consumed == utf16.size();
  }
  const size_t before = utf8.size();
  size_t in = 0;
  while (in < utf16.size()) {
    size_t count = std::min(kPiece, utf16.size() - in);
    if (in + count < utf16.size() && isHighSurrogate(utf16[in + count - 1])) --count;
    const size_t start = utf8.size();
    const size_t room = count * kMaxUTF8BytesPerUnit;
    if (in > 0 && utf8.capacity() - start < room) {
      const double perUnit = static_cast<double>(start - before) / static_cast<double>(in);
      utf8.reserve(start + room + static_cast<size_t>(perUnit * static_cast<double>(utf16.size() - in)));
    }
    utf8.resize(start + room);
    const Transcoded piece = convert(utf16.substr(in, count), utf8.data() + start);
    utf8.resize(start + piece.written);
    if (piece.consumed < count) return false;
    in += count;
  }
  return true;
}

}  // namespace

const Kernels<UTFTranscoding>& utfKernels() {
  using enum CPUFeatures;
  static const Kernels<UTFTranscoding> kernels({
      {"scalar", None, {toUTF16Scalar, toUTF8Scalar}},
#ifdef __x86_64__
      {"SSE4.1", SSE41, {toUTF16With<beginUTF16Sse4>, toUTF8With<beginUTF8Sse4>}},
      {"AVX2", AVX2, {toUTF16With<beginUTF16Avx2>, toUTF8With<beginUTF8Avx2>}},
      {"AVX-512", AVX512 | VBMI2, {toUTF16With<beginUTF16Avx512>, toUTF8With<beginUTF8Avx512>}},
#elif defined(__AARCH64EL__)
      {"NEON", NEON, {toUTF16With<beginUTF16Neon>, toUTF8With<beginUTF8Neon>}},
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

void appendUTF8Lossy(std::u16string_view utf16, std::string& utf8) { appendPieces(utf16, utf8, toUTF8Lossy); }

bool appendUTF8(std::u16string_view utf16, std::string& utf8) { return appendPieces(utf16, utf8, convertUTF16ToUTF8); }

std::optional<std::string> utf8FromUTF16(std::u16string_view utf16) {
  std::string utf8;
  if (!appendUTF8(utf16, utf8)) return std::nullopt;
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
