// The SHA-1 kernels: each feeds `count` 64-byte blocks into the five words of `state`.
#ifndef VELAN_TEXT_DIGEST_SHA1_INTERNAL_H
#define VELAN_TEXT_DIGEST_SHA1_INTERNAL_H

#include <cstddef>
#include <cstdint>

#include "velan/base/kernels/KernelsInternal.h"

namespace velan {

using SHA1Run = void (*)(uint32_t* state, const uint8_t* blocks, size_t count);
const Kernels<SHA1Run>& sha1Kernels();

/// The reference.
void sha1Scalar(uint32_t* state, const uint8_t* blocks, size_t count);
/// With the SHA instructions; only where the CPU has them.
void sha1Instructions(uint32_t* state, const uint8_t* blocks, size_t count);

}  // namespace velan

#endif  // VELAN_TEXT_DIGEST_SHA1_INTERNAL_H
