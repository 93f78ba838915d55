// SHA-1 with the processor's SHA instructions. Compiled for processors with SHA and SSE4.1.
#ifdef __x86_64__

#include <immintrin.h>

#include "velan/text/digest/SHA1Internal.h"

namespace velan {
namespace {

// The state in the order that the instructions want: a in the highest word, e on its own.
struct State {
  __m128i abcd;
  __m128i e;
};

// Four rounds; `e` enters as the a of the four rounds before, or added to the words in the first.
template <int function>
void fourRounds(State& state, __m128i wordsWithE) {
  const __m128i before = state.abcd;
  state.abcd = _mm_sha1rnds4_epu32(state.abcd, wordsWithE, function);
  state.e = before;
}

// The next four words of the schedule, from the sixteen before them; `first` becomes them.
void extend(__m128i& first, __m128i second, __m128i third, __m128i fourth) {
  first = _mm_sha1msg2_epu32(_mm_xor_si128(_mm_sha1msg1_epu32(first, second), third), fourth);
}

template <int group>
void rounds(State& state, __m128i (&words)[4]) {
  constexpr int kFunction = group / 5;
  if constexpr (group >= 4) {
    extend(words[group % 4], words[(group + 1) % 4], words[(group + 2) % 4], words[(group + 3) % 4]);
  }
  const __m128i mine = words[group % 4];
  fourRounds<kFunction>(state, group == 0 ? _mm_add_epi32(state.e, mine) : _mm_sha1nexte_epu32(state.e, mine));
  if constexpr (group < 19) rounds<group + 1>(state, words);
}

}  // namespace

void sha1Instructions(uint32_t* state, const uint8_t* blocks, size_t count) {
  const __m128i bigEndian = _mm_set_epi64x(0x0001020304050607, 0x08090a0b0c0d0e0f);
  auto* stored = reinterpret_cast<__m128i*>(state);
  State now{_mm_shuffle_epi32(_mm_loadu_si128(stored), 0x1B), _mm_set_epi32(static_cast<int>(state[4]), 0, 0, 0)};
  for (; count > 0; --count, blocks += 64) {
    const State before = now;
    __m128i words[4];
    for (int i = 0; i < 4; ++i) {
      words[i] = _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(blocks) + i), bigEndian);
    }
    rounds<0>(now, words);
    now.e = _mm_sha1nexte_epu32(now.e, before.e);
    now.abcd = _mm_add_epi32(now.abcd, before.abcd);
  }
  _mm_storeu_si128(stored, _mm_shuffle_epi32(now.abcd, 0x1B));
  state[4] = static_cast<uint32_t>(_mm_extract_epi32(now.e, 3));
}

}  // namespace velan

#endif  // __x86_64__
