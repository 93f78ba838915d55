// The CRC kernels, and checksums of data that arrives in pieces.
#ifndef VELAN_TEXT_DIGEST_CHECKSUMS_INTERNAL_H
#define VELAN_TEXT_DIGEST_CHECKSUMS_INTERNAL_H

#include <cstddef>
#include <cstdint>

#include "velan/base/CTypes.h"
#include "velan/base/kernels/KernelsInternal.h"

namespace velan {

/// Both continue from the register `crc`.
struct Crc32Run {
  uint32_t (*bytes)(uint32_t crc, const uint8_t* bytes, size_t length);
  uint32_t (*units)(uint32_t crc, const unichar* units, size_t length);
};
const Kernels<Crc32Run>& crc32Kernels();

/// `CRC32` of a text whose first part has the checksum `crc`, and whose rest is `bytes`.
uint32_t crc32Continued(uint32_t crc, const void* bytes, size_t length);

/// The checksum of a part with the checksum `crc` after `zeros` further zero bytes. So the checksum of B alone follows
/// from those of A and of A and B together: `crc32(AB) ^ crc32WithZeros(crc32(A), length of B)`.
uint32_t crc32WithZeros(uint32_t crc, uint64_t zeros);

/// The reference, also for the shortest texts.
uint32_t crc32Scalar(uint32_t crc, const uint8_t* bytes, size_t length);
uint32_t crc32UnitsScalar(uint32_t crc, const unichar* units, size_t length);

/// x^n modulo the polynomial, in the bit order of the register, one place up as the carry-less multiplication of
/// reflected numbers wants it. Found with n single steps from x^0.
constexpr int64_t crc32Power(int n) {
  uint32_t value = 0x80000000;
  for (int i = 0; i < n; ++i) value = (value & 1) ? (value >> 1) ^ 0xEDB88320 : value >> 1;
  return static_cast<int64_t>(static_cast<uint64_t>(value) << 1);
}

#ifdef __x86_64__
/// Carry-less multiplication in registers of 128, 256 and 512 bits.
uint32_t crc32Clmul(uint32_t crc, const uint8_t* bytes, size_t length);
uint32_t crc32UnitsClmul(uint32_t crc, const unichar* units, size_t length);
uint32_t crc32Avx2(uint32_t crc, const uint8_t* bytes, size_t length);
uint32_t crc32UnitsAvx2(uint32_t crc, const unichar* units, size_t length);
uint32_t crc32Avx512(uint32_t crc, const uint8_t* bytes, size_t length);
uint32_t crc32UnitsAvx512(uint32_t crc, const unichar* units, size_t length);
#endif

}  // namespace velan

#endif  // VELAN_TEXT_DIGEST_CHECKSUMS_INTERNAL_H
