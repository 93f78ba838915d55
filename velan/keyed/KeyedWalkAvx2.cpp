#ifdef __x86_64__

#include <immintrin.h>

#include "velan/keyed/KeyedFindInternal.h"

namespace velan::keyed {
namespace {

__m256i loadTwo(const void* bytes) { return _mm256_loadu_si256(static_cast<const __m256i*>(bytes)); }

// The first numbers of 32 bits of each half lane: those of `a` before those of `b` in each of the two lanes.
__m256i evenOf(__m256i a, __m256i b) {
  return _mm256_castps_si256(
      _mm256_shuffle_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b), _MM_SHUFFLE(2, 0, 2, 0)));
}

// Eight headers at a time; the vectors hold the first, third, fifth, seventh, second, fourth, sixth and eighth.
size_t skipFixed(const uint8_t* bytes, size_t length, uint64_t sought) {
  constexpr size_t kStep = 8 * kKeyedHeaderSize;
  const __m256i markers = loadTwo(kFixedMarkers.data());
  const __m256i wanted = _mm256_set1_epi64x(static_cast<long long>(sought));
  size_t at = 0;
  for (; length - at >= kStep; at += kStep) {
    const __m256i first = _mm256_unpacklo_epi64(loadTwo(bytes + at), loadTwo(bytes + at + 32));
    const __m256i second = _mm256_unpacklo_epi64(loadTwo(bytes + at + 64), loadTwo(bytes + at + 96));
    const __m256i found = evenOf(_mm256_cmpeq_epi64(first, wanted), _mm256_cmpeq_epi64(second, wanted));
    const __m256i these = evenOf(first, second);
    const __m256i slots = _mm256_srli_epi32(_mm256_mullo_epi32(these, _mm256_set1_epi32(kSlotFactor)), kSlotShift);
    const __m256i fixed = _mm256_cmpeq_epi32(_mm256_permutevar8x32_epi32(markers, slots), these);
    const __m256i skipped = _mm256_andnot_si256(found, fixed);
    if (_mm256_movemask_epi8(skipped) == -1) continue;
    const __m256i inOrder = _mm256_permutevar8x32_epi32(skipped, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
    const auto mask = static_cast<unsigned>(_mm256_movemask_ps(_mm256_castsi256_ps(inOrder)));
    return at + static_cast<size_t>(__builtin_ctz(~mask)) * kKeyedHeaderSize;
  }
  return at + skipSome(bytes + at, length - at, sought, SIZE_MAX);
}

}  // namespace

size_t findIdentityAvx2(const uint8_t* bytes, size_t length, uint64_t sought) {
  return findWith<skipFixed>(bytes, length, sought);
}

}  // namespace velan::keyed
#endif  // __x86_64__
