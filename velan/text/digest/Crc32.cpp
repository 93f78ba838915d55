// The CRC-32 itself: the reference, the choice of a kernel, and arithmetic on checksums.
#include <array>

#include "velan/text/UnitMappingInternal.h"
#include "velan/text/digest/Checksums.h"
#include "velan/text/digest/ChecksumsInternal.h"

namespace velan {
namespace {

constexpr uint32_t kPolynomial = 0xEDB88320;

constexpr std::array<uint32_t, 256> makeCrc32Table() {
  std::array<uint32_t, 256> table{};
  for (uint32_t i = 0; i < 256; ++i) {
    uint32_t value = i;
    for (int bit = 0; bit < 8; ++bit) value = (value & 1) ? (value >> 1) ^ kPolynomial : value >> 1;
    table[i] = value;
  }
  return table;
}

constexpr std::array<uint32_t, 256> kCrc32Table = makeCrc32Table();
static_assert(kCrc32Table[1] == 0x77073096 && kCrc32Table[255] == 0x2D02EF8D);

constexpr uint32_t step(uint32_t crc, uint8_t byte) { return (crc >> 8) ^ kCrc32Table[(crc ^ byte) & 0xFF]; }

// The product of two polynomials modulo the CRC's; the most significant bit is the coefficient of x^0.
constexpr uint32_t product(uint32_t a, uint32_t b) {
  uint32_t result = 0;
  for (uint32_t bit = 0x80000000; bit; bit >>= 1) {
    if (a & bit) result ^= b;
    b = (b & 1) ? (b >> 1) ^ kPolynomial : b >> 1;
  }
  return result;
}

// x^(8 * 2^k): what 2^k zero bytes multiply a register by.
constexpr std::array<uint32_t, 64> makePowers() {
  std::array<uint32_t, 64> powers{};
  uint32_t power = 0x00800000;
  for (uint32_t& entry : powers) {
    entry = power;
    power = product(power, power);
  }
  return powers;
}

constexpr std::array<uint32_t, 64> kZeroPowers = makePowers();

}  // namespace

uint32_t crc32Scalar(uint32_t crc, const uint8_t* bytes, size_t length) {
  for (size_t i = 0; i < length; ++i) crc = step(crc, bytes[i]);
  return crc;
}

uint32_t crc32UnitsScalar(uint32_t crc, const unichar* units, size_t length) {
  for (size_t i = 0; i < length; ++i) {
    crc = step(crc, static_cast<uint8_t>(units[i] >> 8));
    crc = step(crc, static_cast<uint8_t>(units[i] & 0xFF));
  }
  return crc;
}

const Kernels<Crc32Run>& crc32Kernels() {
  using enum CPUFeatures;
  static const Kernels<Crc32Run> kernels({
      {"scalar", None, {crc32Scalar, crc32UnitsScalar}},
#ifdef __x86_64__
      {"PCLMUL", SSE41 | PCLMUL, {crc32Clmul, crc32UnitsClmul}},
      {"AVX2", PCLMUL | VPCLMUL | AVX2, {crc32Avx2, crc32UnitsAvx2}},
      {"AVX-512", PCLMUL | VPCLMUL | AVX512, {crc32Avx512, crc32UnitsAvx512}},
#endif
  });
  return kernels;
}

uint32_t crc32Continued(uint32_t crc, const void* bytes, size_t length) {
  static const auto kernel = crc32Kernels().best().bytes;
  return bytes ? kernel(crc, static_cast<const uint8_t*>(bytes), length) : crc;
}

uint32_t crc32WithZeros(uint32_t crc, uint64_t zeros) {
  for (size_t k = 0; zeros && crc; ++k, zeros >>= 1) {
    if (zeros & 1) crc = product(crc, kZeroPowers[k]);
  }
  return crc;
}

uint32_t CRC32(const void* bytes, size_t length) { return crc32Continued(0, bytes, length); }

uint32_t CRC32UniChars(const unichar* chars, size_t length) {
  static const auto kernel = crc32Kernels().best().units;
  return chars ? kernel(0, chars, length) : 0;
}

uint32_t CRC32UniCharsUsingConversionTable(const unichar* chars, size_t length, const unichar* table) {
  if (!chars || !table) return CRC32UniChars(chars, length);
  static const auto kernel = crc32Kernels().best().units;
  uint32_t crc = 0;
  unichar mapped[256];
  while (length > 0) {
    const size_t count = length < 256 ? length : 256;
    mapUnits(chars, count, table, mapped);
    crc = kernel(crc, mapped, count);
    chars += count;
    length -= count;
  }
  return crc;
}

}  // namespace velan
