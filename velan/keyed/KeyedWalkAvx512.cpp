#ifdef __x86_64__

#ifndef __clang__
#pragma GCC diagnostic ignored "-Wuninitialized"  // of the compiler's own intrinsics
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>

#include "velan/keyed/KeyedFindInternal.h"

namespace velan::keyed {
namespace {

constexpr size_t kStep = 16;  // headers

// Of so many headers, those that are of fixed size and not the one sought, one bit each.
class SkippedHeaders {
 public:
  explicit SkippedHeaders(uint64_t sought)
      : _markers(_mm512_broadcast_i64x4(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(kFixedMarkers.data())))),
        _sought(_mm512_set1_epi64(static_cast<long long>(sought))) {}

  // Reads `count` headers, at most `kStep`; the others are not skipped.
  __mmask16 in(const uint8_t* bytes, size_t count) const {
    const auto words = static_cast<uint32_t>((uint64_t{1} << (2 * count)) - 1);  // of 64 bits, two a header
    const auto load = [&](size_t i) {
      return _mm512_maskz_loadu_epi64(static_cast<__mmask8>(words >> (8 * i)), bytes + i * sizeof(__m512i));
    };
    return skipped(load(0), load(1), load(2), load(3));
  }
  __mmask16 inAll(const uint8_t* bytes) const {
    const auto load = [bytes](size_t i) { return _mm512_loadu_si512(bytes + i * sizeof(__m512i)); };
    return skipped(load(0), load(1), load(2), load(3));
  }

 private:
  // Four headers each.
  __mmask16 skipped(__m512i a, __m512i b, __m512i c, __m512i d) const {
    const __m512i everySecond = _mm512_setr_epi64(0, 2, 4, 6, 8, 10, 12, 14);
    const __m512i first = _mm512_permutex2var_epi64(a, everySecond, b);
    const __m512i second = _mm512_permutex2var_epi64(c, everySecond, d);
    const __m512i everySecondHalf = _mm512_setr_epi32(0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
    const __m512i these = _mm512_permutex2var_epi32(first, everySecondHalf, second);
    const __m512i slots = _mm512_srli_epi32(_mm512_mullo_epi32(these, _mm512_set1_epi32(kSlotFactor)), kSlotShift);
    const __mmask16 fixed = _mm512_cmpeq_epi32_mask(_mm512_permutexvar_epi32(slots, _markers), these);
    const __mmask16 found =
        _mm512_kunpackb(_mm512_cmpeq_epi64_mask(second, _sought), _mm512_cmpeq_epi64_mask(first, _sought));
    return _mm512_kandn(found, fixed);
  }

  const __m512i _markers, _sought;
};

// Of the headers up to the first that is not skipped.
size_t sizeOf(__mmask16 skipped) {
  return static_cast<size_t>(__builtin_ctz(~static_cast<unsigned>(skipped))) * kKeyedHeaderSize;
}

inline size_t skipFixed(const uint8_t* bytes, size_t length, uint64_t sought) {
  const SkippedHeaders headers(sought);
  size_t at = 0;
  for (; length - at >= kStep * kKeyedHeaderSize; at += kStep * kKeyedHeaderSize) {
    const __mmask16 skipped = headers.inAll(bytes + at);
    if (!_mm512_kortestc(skipped, skipped)) return at + sizeOf(skipped);
  }
  const size_t left = (length - at) / kKeyedHeaderSize;
  if (left == 0) return at;
  return at + sizeOf(headers.in(bytes + at, left));
}

}  // namespace

size_t findIdentityAvx512(const uint8_t* bytes, size_t length, uint64_t sought) {
  return findWith<skipFixed>(bytes, length, sought);
}

}  // namespace velan::keyed
#endif  // __x86_64__
