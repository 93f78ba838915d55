// Numbers in bytes, in a given order whatever the machine's, at any address.
#ifndef VELAN_BASE_BYTE_ORDER_H
#define VELAN_BASE_BYTE_ORDER_H

#include <bit>
#include <concepts>
#include <cstdint>
#include <cstring>

namespace velan {

/// The same bytes in the opposite order.
template <std::unsigned_integral T>
constexpr T byteSwapped(T value) {
  if constexpr (sizeof(T) == 8) return __builtin_bswap64(value);
  if constexpr (sizeof(T) == 4) return __builtin_bswap32(value);
  if constexpr (sizeof(T) == 2) return __builtin_bswap16(value);
  return value;
}

/// The number whose `sizeof(T)` bytes begin at `bytes`, which need not be aligned.
template <std::unsigned_integral T>
T loadBigEndian(const void* bytes) {
  T value;
  std::memcpy(&value, bytes, sizeof value);
  return std::endian::native == std::endian::big ? value : byteSwapped(value);
}
template <std::unsigned_integral T>
T loadLittleEndian(const void* bytes) {
  T value;
  std::memcpy(&value, bytes, sizeof value);
  return std::endian::native == std::endian::little ? value : byteSwapped(value);
}

/// The number that `size` bytes, at most 8, make.
constexpr uint64_t loadBigEndian(const uint8_t* bytes, size_t size) {
  uint64_t value = 0;
  for (size_t i = 0; i < size; ++i) value = value << 8 | bytes[i];
  return value;
}

/// Writes the `sizeof(T)` bytes of `value` to `bytes`.
template <std::unsigned_integral T>
void storeBigEndian(void* bytes, T value) {
  if (std::endian::native != std::endian::big) value = byteSwapped(value);
  std::memcpy(bytes, &value, sizeof value);
}
template <std::unsigned_integral T>
void storeLittleEndian(void* bytes, T value) {
  if (std::endian::native != std::endian::little) value = byteSwapped(value);
  std::memcpy(bytes, &value, sizeof value);
}

/// Writes the lowest `size` bytes of `value`, at most 8.
constexpr void storeBigEndian(uint8_t* bytes, uint64_t value, size_t size) {
  for (size_t i = size; i > 0; --i, value >>= 8) bytes[i - 1] = static_cast<uint8_t>(value);
}

}  // namespace velan

#endif  // VELAN_BASE_BYTE_ORDER_H
