// Transcoding with 512-bit vectors, after Clausecker and Lemire, "Transcoding Unicode Characters with AVX-512
// Instructions" (2023): masks tell where characters begin and end, and compressing byte permutations bring together
// what belongs together. Written from the description.
#ifdef __x86_64__

#ifndef __clang__
#pragma GCC diagnostic ignored "-Wuninitialized"  // of the compiler's own intrinsics
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>

#include "velan/base/utf/UTFKernelsInternal.h"

namespace velan {
namespace {

constexpr size_t kBlock = kUTF8Block;

__m512i bytesOf(int byte) { return _mm512_set1_epi8(static_cast<char>(byte)); }
__m512i unitsOf(int unit) { return _mm512_set1_epi16(static_cast<short>(unit)); }

__mmask64 lowest(size_t count) { return count >= 64 ? ~0ull : (1ull << count) - 1; }
__mmask32 lowest32(size_t count) { return count >= 32 ? ~0u : (1u << count) - 1; }

const uint8_t kIdentity[kBlock] = {0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15,
                                   16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31,
                                   32, 33, 34, 35, 36, 37, 38, 39, 40, 41, 42, 43, 44, 45, 46, 47,
                                   48, 49, 50, 51, 52, 53, 54, 55, 56, 57, 58, 59, 60, 61, 62, 63};

// The first `count` of 32 units; all of them when there is room, whatever the rest holds.
void store(__m512i vector, size_t count, unichar* units, bool roomy) {
  if (roomy) {
    _mm512_storeu_si512(units, vector);
  } else {
    _mm512_mask_storeu_epi16(units, lowest32(count), vector);
  }
}

void store(__m512i vector, size_t count, char* bytes, bool roomy) {
  if (roomy) {
    _mm512_storeu_si512(bytes, vector);
  } else {
    _mm512_mask_storeu_epi8(bytes, lowest(count), vector);
  }
}

// For each byte the one `back` places before it.
__m512i before(__m512i block, int back) {
  const __m512i from = _mm512_sub_epi8(_mm512_loadu_si512(kIdentity), bytesOf(back));
  return _mm512_maskz_permutexvar_epi8(~0ull << back, from, block);
}

// The bits of `yes` where the mask has ones, those of `no` elsewhere.
__m512i either(__m512i mask, __m512i yes, __m512i no) { return _mm512_ternarylogic_epi32(mask, yes, no, 0xCA); }

// Writes the units of the first `count` bytes, which are whole characters if the block is well-formed; returns how many
// they are, and 0 where it is malformed. Both bytes of a unit are calculated where its last byte stands: of
// 110abcde 10ABCDEF they are 00000abc and deABCDEF; of three bytes, with 1110xxxx before, xxxxbcde and so on.
size_t putUnits(__m512i block, __mmask64 notASCII, size_t count, unichar* units, bool roomy) {
  const __mmask64 lead2 = _mm512_cmpge_epu8_mask(block, bytesOf(0xC0));  // of two bytes or more
  const __mmask64 lead3 = _mm512_cmpge_epu8_mask(block, bytesOf(0xE0));
  const __mmask64 continuation = notASCII & ~lead2;
  const __m512i before1 = before(block, 1);
  __m512i low = either(bytesOf(0xC0), _mm512_slli_epi16(before1, 6), block);
  low = _mm512_mask_mov_epi8(block, continuation, low);
  __m512i high = _mm512_and_si512(bytesOf(0x0F), _mm512_srli_epi16(before1, 2));
  __mmask64 expected = (lead2 << 1) | (lead3 << 2);
  __mmask64 ends = ~(continuation >> 1);
  __mmask64 bad = _mm512_mask_cmplt_epu8_mask(lead2, block, bytesOf(0xC2));
  if (lead3) {
    const __mmask64 lead4 = _mm512_cmpge_epu8_mask(block, bytesOf(0xF0));
    const __m512i before2 = before(block, 2);
    const __mmask64 ofThree = (lead3 & ~lead4) << 2;
    high = _mm512_mask_mov_epi8(high, lead3 << 2, either(bytesOf(0x0F), high, _mm512_slli_epi16(before2, 4)));
    // Overlong below U+0800; and no surrogates.
    bad |= _mm512_mask_cmplt_epu8_mask(ofThree, high, bytesOf(0x08)) |
           _mm512_mask_cmpeq_epi8_mask(ofThree, _mm512_and_si512(high, bytesOf(0xF8)), bytesOf(0xD8));
    if (lead4) {
      // The third byte of four ends the high surrogate, the fourth the low one. The high one is 0xD7C0 and the 11
      // upper bits of the code point, of which the lower eight carry when they reach 0x40.
      const __mmask64 third = lead4 << 2;
      const __mmask64 fourth = lead4 << 3;
      ends |= third;
      expected |= fourth;
      const __m512i middle = _mm512_and_si512(before1, bytesOf(0x3F));
      const __m512i lower = either(bytesOf(0xFC), _mm512_slli_epi16(middle, 2),
                                   _mm512_and_si512(_mm512_srli_epi16(block, 4), bytesOf(3)));
      const __m512i upper = _mm512_add_epi8(_mm512_and_si512(before2, bytesOf(7)), bytesOf(0xD7));
      low = _mm512_mask_add_epi8(low, third, lower, bytesOf(0xC0));
      high = _mm512_mask_mov_epi8(high, third, upper);
      high = _mm512_mask_add_epi8(high, _mm512_mask_cmpge_epu8_mask(third, middle, bytesOf(0x10)), high, bytesOf(1));
      high = _mm512_mask_mov_epi8(high, fourth, either(bytesOf(3), high, bytesOf(0xDC)));
      // Anything else than a high surrogate comes from an overlong form or from above U+10FFFF.
      bad |= _mm512_mask_cmpneq_epi8_mask(third, _mm512_and_si512(high, bytesOf(0xFC)), bytesOf(0xD8)) |
             _mm512_mask_cmpge_epu8_mask(lead4, block, bytesOf(0xF8));
    }
  }
  if ((expected ^ continuation) | bad) return 0;
  high = _mm512_maskz_mov_epi8(continuation, high);
  ends &= lowest(count);
  const auto written = static_cast<size_t>(__builtin_popcountll(ends));
  // Interleaving works within lanes of 16 bytes: the first of two takes their lower halves.
  const __m512i halves = _mm512_setr_epi64(0, 4, 1, 5, 2, 6, 3, 7);
  low = _mm512_permutexvar_epi64(halves, _mm512_maskz_compress_epi8(ends, low));
  high = _mm512_permutexvar_epi64(halves, _mm512_maskz_compress_epi8(ends, high));
  store(_mm512_unpacklo_epi8(low, high), written, units, roomy);
  if (written > 32) store(_mm512_unpackhi_epi8(low, high), written - 32, units + 32, roomy);
  return written;
}

void putASCIIUnits(__m512i block, size_t count, unichar* units, bool roomy) {
  store(_mm512_cvtepu8_epi16(_mm512_castsi512_si256(block)), count, units, roomy);
  if (count > 32) store(_mm512_cvtepu8_epi16(_mm512_extracti64x4_epi64(block, 1)), count - 32, units + 32, roomy);
}

// Two blocks at a time, as long as both are ASCII; returns how many bytes.
size_t putASCIIPairs(const uint8_t* bytes, size_t length, unichar* units) {
  size_t i = 0;
  for (; length - i >= 2 * kBlock; i += 2 * kBlock) {
    const __m512i first = _mm512_loadu_si512(bytes + i);
    const __m512i second = _mm512_loadu_si512(bytes + i + kBlock);
    if (_mm512_movepi8_mask(_mm512_or_si512(first, second))) break;
    putASCIIUnits(first, kBlock, units + i, true);
    putASCIIUnits(second, kBlock, units + i + kBlock, true);
  }
  return i;
}

}  // namespace

Transcoded beginUTF16Avx512(const uint8_t* bytes, size_t length, unichar* units) {
  size_t in = 0;
  size_t out = 0;
  while (in < length) {
    const size_t left = length - in;
    const bool roomy = left >= kBlock;  // a byte gives at most one unit
    const __m512i block = roomy ? _mm512_loadu_si512(bytes + in) : _mm512_maskz_loadu_epi8(lowest(left), bytes + in);
    size_t count = roomy ? kBlock : left;
    const __mmask64 notASCII = _mm512_movepi8_mask(block);
    if (notASCII == 0) {
      putASCIIUnits(block, count, units + out, roomy);
      const size_t more = putASCIIPairs(bytes + in + count, left - count, units + out + count);
      in += count + more;
      out += count + more;
      continue;
    }
    if (roomy) count = wholeCharacters(bytes + in);
    const size_t written = putUnits(block, notASCII, count, units + out, roomy);
    if (written == 0) break;
    out += written;
    in += count;
  }
  return {in, out};
}

namespace {

// The bytes of up to 32 units below U+0800: lanes of two bytes, of which the second is left out for ASCII.
size_t putShortBytes(__m512i units, size_t count, __mmask32 ascii, char* bytes, bool roomy) {
  const __m512i first = _mm512_or_si512(_mm512_srli_epi16(units, 6), unitsOf(0xC0));
  const __m512i second = _mm512_or_si512(_mm512_slli_epi16(_mm512_and_si512(units, unitsOf(0x3F)), 8), unitsOf(0x8000));
  const __m512i pairs = _mm512_mask_mov_epi16(_mm512_or_si512(first, second), ascii, units);
  const __m512i wanted = _mm512_mask_mov_epi16(unitsOf(-1), ascii, unitsOf(0xFF));
  const __mmask64 kept = _mm512_movepi8_mask(wanted) & lowest(2 * count);
  const auto written = static_cast<size_t>(__builtin_popcountll(kept));
  const __m512i packed = _mm512_maskz_compress_epi8(kept, pairs);
  store(packed, written, bytes, roomy);
  return written;
}

// The bytes of up to 32 units, of which `high` and `low` are surrogates in pairs. Each unit has a group of four bytes,
// of which those with the highest bit and the last one are kept: U+20AC is 0x00 0xE2 0x82 0xAC, U+0041 0x00 0x00 0x00
// 0x41. Each surrogate gives two bytes of its character's four.
size_t putLongBytes(__m512i units, __mmask32 ascii, __mmask32 high, __mmask32 low, size_t count, char* bytes,
                    bool roomy) {
  const __mmask32 three = _mm512_cmpge_epu16_mask(units, unitsOf(0x800)) & ~(high | low);
  const __m512i ends = either(unitsOf(0x3F00), _mm512_slli_epi16(units, 8), _mm512_srli_epi16(units, 6));
  __m512i pairs = _mm512_or_si512(_mm512_and_si512(ends, unitsOf(0x3F3F)), unitsOf(0x8080));
  pairs = _mm512_mask_mov_epi16(_mm512_or_si512(pairs, unitsOf(0x40)), three, pairs);
  pairs = _mm512_mask_slli_epi16(pairs, ascii, units, 8);
  if (high) {
    const __m512i upper = _mm512_add_epi16(_mm512_and_si512(units, unitsOf(0x3FF)), unitsOf(0x40));  // 11 bits
    const __m512i ofHigh = either(unitsOf(0x3F00), _mm512_slli_epi16(upper, 6), _mm512_srli_epi16(upper, 8));
    const __m512i shared = _mm512_and_si512(_mm512_slli_epi16(before(units, 2), 4), unitsOf(0x30));
    const __m512i ofLow = either(unitsOf(0x3F0F), ends, shared);
    pairs = _mm512_mask_mov_epi16(pairs, high, _mm512_or_si512(ofHigh, unitsOf(0x80F0)));
    pairs = _mm512_mask_mov_epi16(pairs, low, _mm512_or_si512(ofLow, unitsOf(0x8080)));
  }
  const __m512i marked = either(unitsOf(0x0F00), _mm512_srli_epi16(units, 4), unitsOf(0xE000));
  // Interleaving works within lanes of 16 bytes: the first of two takes their lower halves.
  const __m512i halves = _mm512_setr_epi64(0, 4, 1, 5, 2, 6, 3, 7);
  const __m512i first = _mm512_permutexvar_epi64(halves, _mm512_maskz_mov_epi16(three, marked));
  const __m512i rest = _mm512_permutexvar_epi64(halves, pairs);
  size_t out = 0;
  const auto put = [&](__m512i groups, size_t left) {
    const __mmask64 kept = (_mm512_movepi8_mask(groups) | 0x8888888888888888u) & lowest(4 * left);
    const auto written = static_cast<size_t>(__builtin_popcountll(kept));
    store(_mm512_maskz_compress_epi8(kept, groups), written, bytes + out, roomy);
    out += written;
  };
  put(_mm512_unpacklo_epi16(first, rest), count);
  if (count > 16) put(_mm512_unpackhi_epi16(first, rest), count - 16);
  return out;
}

// As many ASCII units as two vectors hold at a time, as long as there are no others; returns how many.
size_t putASCIIPairs(const unichar* units, size_t length, char* bytes) {
  const __m512i identity = _mm512_loadu_si512(kIdentity);
  const __m512i lowBytes = _mm512_add_epi8(identity, identity);
  size_t i = 0;
  for (; length - i >= kBlock; i += kBlock) {
    const __m512i first = _mm512_loadu_si512(units + i);
    const __m512i second = _mm512_loadu_si512(units + i + kBlock / 2);
    if (_mm512_cmpge_epu16_mask(_mm512_or_si512(first, second), unitsOf(0x80))) break;
    _mm512_storeu_si512(bytes + i, _mm512_permutex2var_epi8(first, lowBytes, second));
  }
  return i;
}

}  // namespace

Transcoded beginUTF8Avx512(const unichar* units, size_t length, char* bytes) {
  constexpr size_t kUnits = 32;
  size_t in = 0;
  size_t out = 0;
  while (in < length) {
    const size_t left = length - in;
    // With so many units there is room for two whole vectors, whatever the units are.
    const bool roomy = left >= 2 * kUnits;
    size_t count = left < kUnits ? left : kUnits;
    const __m512i block =
        count == kUnits ? _mm512_loadu_si512(units + in) : _mm512_maskz_loadu_epi16(lowest32(count), units + in);
    const __mmask32 ascii = _mm512_cmplt_epu16_mask(block, unitsOf(0x80));
    if (ascii == ~0u) {
      store(_mm512_castsi256_si512(_mm512_cvtepi16_epi8(block)), count, bytes + out, roomy);
      const size_t more = putASCIIPairs(units + in + count, left - count, bytes + out + count);
      in += count + more;
      out += count + more;
      continue;
    }
    if (_mm512_cmplt_epu16_mask(block, unitsOf(0x800)) == ~0u) {
      out += putShortBytes(block, count, ascii, bytes + out, roomy);
      in += count;
      continue;
    }
    const __m512i top = _mm512_and_si512(block, unitsOf(0xFC00));
    __mmask32 high = _mm512_cmpeq_epi16_mask(top, unitsOf(0xD800));
    const __mmask32 low = _mm512_cmpeq_epi16_mask(top, unitsOf(0xDC00));
    if (high >> (count - 1) & 1) {  // its partner, if there is one, is not in this block
      if (--count == 0) break;
      high &= lowest32(count);
    }
    if ((high << 1) != low) break;
    out += putLongBytes(block, ascii, high, low, count, bytes + out, roomy);
    in += count;
  }
  return {in, out};
}

}  // namespace velan
#endif  // __x86_64__
