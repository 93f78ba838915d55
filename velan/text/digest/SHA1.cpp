#include "velan/text/digest/SHA1.h"

#include <bit>

#include "velan/base/ByteOrder.h"
#include "velan/text/digest/BlockDigestInternal.h"
#include "velan/text/digest/SHA1Internal.h"

namespace velan {
namespace {

uint32_t mix(int step, uint32_t b, uint32_t c, uint32_t d) {
  constexpr uint32_t kRound[] = {0x5a827999, 0x6ed9eba1, 0x8f1bbcdc, 0xca62c1d6};
  const uint32_t value = step < 20                ? (b & c) | (~b & d)
                         : step < 40 || step > 59 ? b ^ c ^ d
                                                  : (b & c) | (b & d) | (c & d);
  return value + kRound[step / 20];
}

SHA1Run transform() {
  static const SHA1Run best = sha1Kernels().best();
  return best;
}

}  // namespace

void sha1Scalar(uint32_t* state, const uint8_t* blocks, size_t count) {
  for (; count > 0; --count, blocks += 64) {
    uint32_t words[80];
    for (size_t i = 0; i < 16; ++i) words[i] = loadBigEndian<uint32_t>(blocks + 4 * i);
    for (int i = 16; i < 80; ++i) {
      words[i] = std::rotl(words[i - 3] ^ words[i - 8] ^ words[i - 14] ^ words[i - 16], 1);
    }
    uint32_t a = state[0], b = state[1], c = state[2], d = state[3], e = state[4];
#pragma GCC unroll 80
    for (int i = 0; i < 80; ++i) {
      const uint32_t next = std::rotl(a, 5) + mix(i, b, c, d) + e + words[i];
      e = d;
      d = c;
      c = std::rotl(b, 30);
      b = a;
      a = next;
    }
    state[0] += a;
    state[1] += b;
    state[2] += c;
    state[3] += d;
    state[4] += e;
  }
}

const Kernels<SHA1Run>& sha1Kernels() {
  using enum CPUFeatures;
  static const Kernels<SHA1Run> kernels({
      {"scalar", None, sha1Scalar},
#ifdef __x86_64__
      {"instructions", SSE41 | SHA, sha1Instructions},
#endif
  });
  return kernels;
}

void isc_sha1_init(isc_sha1_t* context) {
  if (context) *context = {{0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476, 0xc3d2e1f0}, 0, {}};
}

void isc_sha1_update(isc_sha1_t* context, const void* bytes, size_t length) {
  if (context) updateDigest(*context, bytes, length, transform());
}

void isc_sha1_final(isc_sha1_t* context, uint8_t* digest) {
  if (!context || !digest) return;
  padDigest(*context, transform(), storeBigEndian<uint64_t>);
  for (size_t i = 0; i < 5; ++i) storeBigEndian(digest + 4 * i, context->state[i]);
  clearDigest(*context);
}

void isc_sha1_invalidate(isc_sha1_t* context) {
  if (context) clearDigest(*context);
}

}  // namespace velan
