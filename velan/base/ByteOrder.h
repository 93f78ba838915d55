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

}  // namespace velan

#endif  // VELAN_BASE_BYTE_ORDER_H
