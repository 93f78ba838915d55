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

#ifdef __x86_64__
/// Transcode a well-formed beginning and leave the rest, which may be well-formed too, to the reference.
Transcoded beginUTF16Avx512(const uint8_t* bytes, size_t length, unichar* units);
Transcoded beginUTF8Avx512(const unichar* units, size_t length, char* bytes);
#endif

}  // namespace velan

#endif  // VELAN_BASE_UTF_UTF_KERNELS_INTERNAL_H
