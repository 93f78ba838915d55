// The ways to transcode between UTF-8 and UTF-16 that this processor offers.
#ifndef VELAN_BASE_UTF_UTF_KERNELS_INTERNAL_H
#define VELAN_BASE_UTF_UTF_KERNELS_INTERNAL_H

#include "velan/base/kernels/KernelsInternal.h"
#include "velan/base/utf/UTF.h"

namespace velan {

/// Both stop before the first malformed sequence. They read nothing behind the source, and write nothing behind the
/// room that `convertUTF8ToUTF16` and `convertUTF16ToUTF8` ask for.
struct UTFTranscoding {
  Transcoded (*toUTF16)(const uint8_t* bytes, size_t length, unichar* units);
  Transcoded (*toUTF8)(const unichar* units, size_t length, char* bytes);
};

const Kernels<UTFTranscoding>& utfKernels();

/// The bytes of UTF-8 that kernels look at together, each time from the beginning of a character on.
inline constexpr size_t kUTF8Block = 64;

/// How many bytes of a block are whole characters, if it is well-formed. What is cut off is left to the next block.
/// (Static, because each file compiles it for other instructions; by numbers, because the next block waits for it.)
static inline size_t wholeCharacters(const uint8_t* block) {
  return kUTF8Block - ((block[61] >= 0xF0 ? 3u : 0u) | (block[62] >= 0xE0 ? 2u : 0u) | (block[63] >= 0xC0 ? 1u : 0u));
}

/// Transcode a well-formed beginning and leave the rest, which may be well-formed too, to the reference.
#ifdef __x86_64__
Transcoded beginUTF16Sse4(const uint8_t* bytes, size_t length, unichar* units);
Transcoded beginUTF8Sse4(const unichar* units, size_t length, char* bytes);
Transcoded beginUTF16Avx2(const uint8_t* bytes, size_t length, unichar* units);
Transcoded beginUTF8Avx2(const unichar* units, size_t length, char* bytes);
Transcoded beginUTF16Avx512(const uint8_t* bytes, size_t length, unichar* units);
Transcoded beginUTF8Avx512(const unichar* units, size_t length, char* bytes);
#elif defined(__AARCH64EL__)
Transcoded beginUTF16Neon(const uint8_t* bytes, size_t length, unichar* units);
Transcoded beginUTF8Neon(const unichar* units, size_t length, char* bytes);
#endif

}  // namespace velan

#endif  // VELAN_BASE_UTF_UTF_KERNELS_INTERNAL_H
