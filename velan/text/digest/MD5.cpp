#include "velan/text/digest/MD5.h"

#include <bit>

#include "velan/base/ByteOrder.h"
#include "velan/text/digest/BlockDigestInternal.h"

namespace velan {
namespace {

// The whole part of 2^32 times |sin(i + 1)|.
constexpr uint32_t kSines[64] = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391};

constexpr int kShifts[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

uint32_t mix(int round, uint32_t b, uint32_t c, uint32_t d) {
  switch (round) {
    case 0:
      return (b & c) | (~b & d);
    case 1:
      return (b & d) | (c & ~d);
    case 2:
      return b ^ c ^ d;
    default:
      return c ^ (b | ~d);
  }
}

// Which word of the block step i of a round uses.
constexpr size_t wordOf(int round, int i) {
  constexpr int kFactor[] = {1, 5, 3, 7};
  constexpr int kOffset[] = {0, 1, 5, 0};
  return static_cast<size_t>(i * kFactor[round] + kOffset[round]) % 16;
}

void transform(uint32_t* state, const uint8_t* block, size_t count) {
  for (; count > 0; --count, block += 64) {
    uint32_t a = state[0], b = state[1], c = state[2], d = state[3];
#pragma GCC unroll 4
    for (int round = 0; round < 4; ++round) {
#pragma GCC unroll 16
      for (int i = 0; i < 16; ++i) {
        const uint32_t sum =
            a + mix(round, b, c, d) + kSines[16 * round + i] + loadLittleEndian<uint32_t>(block + 4 * wordOf(round, i));
        a = d;
        d = c;
        c = b;
        b += std::rotl(sum, kShifts[round][i % 4]);
      }
    }
    state[0] += a;
    state[1] += b;
    state[2] += c;
    state[3] += d;
  }
}

}  // namespace

void isc_md5_init(isc_md5_t* context) {
  if (context) *context = {{0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476}, 0, {}};
}

void isc_md5_update(isc_md5_t* context, const void* bytes, size_t length) {
  if (context) updateDigest(*context, bytes, length, transform);
}

void isc_md5_final(isc_md5_t* context, uint8_t* digest) {
  if (!context || !digest) return;
  padDigest(*context, transform, storeLittleEndian<uint64_t>);
  for (size_t i = 0; i < 4; ++i) storeLittleEndian(digest + 4 * i, context->state[i]);
  clearDigest(*context);
}

void isc_md5_invalidate(isc_md5_t* context) {
  if (context) clearDigest(*context);
}

}  // namespace velan
