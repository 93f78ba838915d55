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

constexpr size_t kBlock = 64;  // bytes

__m512i bytesOf(int byte) { return _mm512_set1_epi8(static_cast<char>(byte)); }
__m512i unitsOf(int unit) { return _mm512_set1_epi16(static_cast<short>(unit)); }
__m512i wordsOf(uint32_t word) { return _mm512_set1_epi32(static_cast<int>(word)); }

__mmask64 lowest(size_t count) { return count >= 64 ? ~0ull : (1ull << count) - 1; }
__mmask32 lowest32(size_t count) { return count >= 32 ? ~0u : (1u << count) - 1; }

// Where the bytes of a block have a role.
struct Roles {
  __mmask64 lead2;  // of two bytes or more
  __mmask64 lead3;  // of three or more
  __mmask64 lead4;
  __mmask64 continuation;
};

Roles rolesOf(__m512i block) {
  return {_mm512_cmpge_epu8_mask(block, bytesOf(0xC0)), _mm512_cmpge_epu8_mask(block, bytesOf(0xE0)),
          _mm512_cmpge_epu8_mask(block, bytesOf(0xF0)),
          _mm512_cmplt_epi8_mask(block, bytesOf(0xC0))};  // as signed numbers the least
}

// Where the last character of the block is cut off it is left to the next block.
size_t wholeCharacters(const Roles& roles) {
  if (roles.lead2 >> 63) return 63;
  if (roles.lead3 >> 62) return 62;
  return roles.lead4 >> 61 ? 61 : kBlock;
}

// Whether each lead byte has its continuation bytes and no other byte is one, and whether no sequence is overlong, a
// surrogate or too large, which the byte behind the lead byte tells.
bool isWellFormed(__m512i block, const Roles& roles) {
  const __mmask64 expected = (roles.lead2 << 1) | (roles.lead3 << 2) | (roles.lead4 << 3);
  const __mmask64 overlong2 = roles.lead2 & _mm512_cmplt_epu8_mask(block, bytesOf(0xC2));
  if ((expected ^ roles.continuation) | overlong2) return false;
  if (!roles.lead3) return true;
  const __mmask64 below0xA0 = _mm512_cmplt_epu8_mask(block, bytesOf(0xA0));
  __mmask64 bad = (_mm512_cmpeq_epi8_mask(block, bytesOf(0xE0)) << 1) & below0xA0;
  bad |= (_mm512_cmpeq_epi8_mask(block, bytesOf(0xED)) << 1) & ~below0xA0;
  if (roles.lead4) {
    const __mmask64 below0x90 = _mm512_cmplt_epu8_mask(block, bytesOf(0x90));
    bad |= (_mm512_cmpeq_epi8_mask(block, bytesOf(0xF0)) << 1) & below0x90;
    bad |= (_mm512_cmpeq_epi8_mask(block, bytesOf(0xF4)) << 1) & ~below0x90;
    bad |= _mm512_cmpgt_epu8_mask(block, bytesOf(0xF4));
  }
  return bad == 0;
}

struct UnitSources {
  __m512i payload;      // the block without the marks of continuation bytes and of leads of two
  __mmask64 hasSecond;  // at the last byte of a unit: the byte before belongs to it
  __mmask64 hasThird;
  __mmask64 high;  // at the third byte of four, which gives the high surrogate
  __mmask64 low;   // at the fourth
};

__m512i shiftedTo(__m512i payload, __m512i positions, int back, __mmask32 present, unsigned shift) {
  const __m512i from = _mm512_sub_epi16(positions, unitsOf(back));
  const __m512i bytes = _mm512_permutexvar_epi8(from, payload);  // an odd index picks what the mask below removes
  return _mm512_slli_epi16(_mm512_and_si512(bytes, _mm512_maskz_mov_epi16(present, unitsOf(0xFF))), shift);
}

// One unit for each of 32 positions in the block, at which the unit's last byte stands. A unit has bits of three bytes
// at most: of 4-byte sequences the first three give the high surrogate, the last three the low one.
__m512i unitsAt(const UnitSources& sources, __m256i last) {
  const __m512i positions = _mm512_cvtepu8_epi16(last);
  const auto at = [&](__mmask64 mask) {  // the bits of `mask` at the positions
    const __m512i spread = _mm512_movm_epi8(mask);
    const __m512i picked = _mm512_permutexvar_epi8(positions, spread);
    return _mm512_test_epi16_mask(picked, unitsOf(0xFF));
  };
  __m512i units = shiftedTo(sources.payload, positions, 0, ~0u, 0);
  units = _mm512_or_si512(units, shiftedTo(sources.payload, positions, 1, at(sources.hasSecond), 6));
  if (sources.hasThird) {
    units = _mm512_or_si512(units, shiftedTo(sources.payload, positions, 2, at(sources.hasThird), 12));
  }
  if (sources.high) {
    const __m512i high = _mm512_add_epi16(_mm512_srli_epi16(units, 4), unitsOf(0xD7C0));
    const __m512i low = _mm512_or_si512(_mm512_and_si512(units, unitsOf(0x3FF)), unitsOf(0xDC00));
    units = _mm512_mask_mov_epi16(units, at(sources.high), high);
    units = _mm512_mask_mov_epi16(units, at(sources.low), low);
  }
  return units;
}

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

// Writes the units of the first `count` bytes, which are whole characters; returns how many.
size_t putUnits(__m512i block, const Roles& roles, size_t count, unichar* units, bool roomy) {
  const __mmask64 within = lowest(count);
  const __mmask64 begins = ~roles.continuation;
  const __mmask64 thirdOfFour = roles.lead4 << 2;
  const __mmask64 ends = (((begins >> 1) | (1ull << (count - 1))) | thirdOfFour) & within;
  UnitSources sources;
  sources.payload = _mm512_mask_mov_epi8(block, roles.continuation, _mm512_and_si512(block, bytesOf(0x3F)));
  sources.payload =
      _mm512_mask_mov_epi8(sources.payload, roles.lead2 & ~roles.lead3, _mm512_and_si512(block, bytesOf(0x1F)));
  sources.hasSecond = roles.continuation;
  sources.hasThird = roles.lead3 << 2 | roles.lead4 << 3;
  sources.high = thirdOfFour & within;
  sources.low = roles.lead4 << 3;
  const __m512i positions = _mm512_maskz_compress_epi8(ends, _mm512_loadu_si512(kIdentity));
  const auto written = static_cast<size_t>(__builtin_popcountll(ends));
  store(unitsAt(sources, _mm512_castsi512_si256(positions)), written, units, roomy);
  if (written > 32) {
    store(unitsAt(sources, _mm512_extracti64x4_epi64(positions, 1)), written - 32, units + 32, roomy);
  }
  return written;
}

void putASCIIUnits(__m512i block, size_t count, unichar* units, bool roomy) {
  store(_mm512_cvtepu8_epi16(_mm512_castsi512_si256(block)), count, units, roomy);
  if (count > 32) store(_mm512_cvtepu8_epi16(_mm512_extracti64x4_epi64(block, 1)), count - 32, units + 32, roomy);
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
    if (_mm512_movepi8_mask(block) == 0) {
      putASCIIUnits(block, count, units + out, roomy);
      in += count;
      out += count;
      continue;
    }
    Roles roles = rolesOf(block);
    if (count == kBlock) count = wholeCharacters(roles);
    if (!isWellFormed(block, roles)) break;
    roles.lead2 &= lowest(count);
    roles.lead3 &= lowest(count);
    roles.lead4 &= lowest(count);
    out += putUnits(block, roles, count, units + out, roomy);
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

// The bytes of up to 16 units, of which `high` are high surrogates whose partners are in `next`, and `low` the
// partners. Each lane holds the last byte of its character highest, so that the bytes stand in their order in memory:
// U+20AC is 0x00 0xE2 0x82 0xAC, of which the last three are kept.
size_t putBytes(__m512i units, __m512i next, __mmask16 high, __mmask16 low, size_t count, char* bytes, bool roomy) {
  const __m512i pairs = _mm512_add_epi32(
      _mm512_add_epi32(_mm512_slli_epi32(_mm512_and_si512(units, wordsOf(0x3FF)), 10), wordsOf(0x10000)),
      _mm512_and_si512(next, wordsOf(0x3FF)));
  const __m512i codePoints = _mm512_mask_mov_epi32(units, high, pairs);
  const __mmask16 one = _mm512_cmplt_epu32_mask(codePoints, wordsOf(0x80));
  const __mmask16 two = _mm512_cmplt_epu32_mask(codePoints, wordsOf(0x800));
  __m512i marks = wordsOf(0x8080E000);
  marks = _mm512_mask_mov_epi32(marks, two, wordsOf(0x80C00000));
  marks = _mm512_mask_mov_epi32(marks, high, wordsOf(0x808080F0));
  marks = _mm512_mask_mov_epi32(marks, one, wordsOf(0x80000000));
  marks = _mm512_maskz_mov_epi32(static_cast<__mmask16>(~low & lowest(count)), marks);
  __m512i lanes = _mm512_slli_epi32(_mm512_and_si512(codePoints, wordsOf(0x3F)), 24);
  lanes = _mm512_or_si512(lanes, _mm512_slli_epi32(_mm512_and_si512(codePoints, wordsOf(0xFC0)), 10));
  lanes = _mm512_or_si512(lanes, _mm512_srli_epi32(_mm512_and_si512(codePoints, wordsOf(0x3F000)), 4));
  lanes = _mm512_or_si512(lanes, _mm512_srli_epi32(codePoints, 18));
  lanes = _mm512_or_si512(lanes, marks);
  lanes = _mm512_mask_slli_epi32(lanes, one, codePoints, 24);
  const __mmask64 kept = _mm512_movepi8_mask(marks);
  const auto written = static_cast<size_t>(__builtin_popcountll(kept));
  const __m512i packed = _mm512_maskz_compress_epi8(kept, lanes);
  store(packed, written, bytes, roomy);
  return written;
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
      in += count;
      out += count;
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
    const __m256i first = _mm512_castsi512_si256(block);
    const __m256i second = _mm512_extracti64x4_epi64(block, 1);
    const __m512i nextUnits = _mm512_maskz_permutexvar_epi16(
        ~0u >> 1,
        _mm512_add_epi16(_mm512_cvtepu8_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(kIdentity))),
                         unitsOf(1)),
        block);
    out += putBytes(_mm512_cvtepu16_epi32(first), _mm512_cvtepu16_epi32(_mm512_castsi512_si256(nextUnits)),
                    static_cast<__mmask16>(high), static_cast<__mmask16>(low), count, bytes + out, roomy);
    if (count > 16) {
      out += putBytes(_mm512_cvtepu16_epi32(second), _mm512_cvtepu16_epi32(_mm512_extracti64x4_epi64(nextUnits, 1)),
                      static_cast<__mmask16>(high >> 16), static_cast<__mmask16>(low >> 16), count - 16, bytes + out,
                      roomy);
    }
    in += count;
  }
  return {in, out};
}

}  // namespace velan
#endif  // __x86_64__
