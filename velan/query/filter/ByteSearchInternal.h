// Finding places in bytes that may be the beginning of one of several things.
#ifndef VELAN_QUERY_FILTER_BYTE_SEARCH_INTERNAL_H
#define VELAN_QUERY_FILTER_BYTE_SEARCH_INTERNAL_H

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>

#include "velan/base/kernels/KernelsInternal.h"

namespace velan {

inline constexpr size_t kPrintLength = 3;
/// What each of three bytes in a row may be.
using BytePrint = std::array<std::bitset<256>, kPrintLength>;

/// Up to eight kinds of prints, looked up by the halves of bytes: bit k of `low[i][b & 15] & high[i][b >> 4]` is set
/// for every byte b that a print of kind k allows at i, and perhaps for more.
struct PrintTable {
  alignas(16) uint8_t low[kPrintLength][16] = {};
  alignas(16) uint8_t high[kPrintLength][16] = {};

  void add(const BytePrint& print, unsigned kind);
  /// The kinds of which all three bytes are possible.
  uint8_t kindsAt(const uint8_t* bytes) const {
    uint8_t kinds = 0xFF;
    for (size_t i = 0; i < kPrintLength; ++i) kinds &= low[i][bytes[i] & 15] & high[i][bytes[i] >> 4];
    return kinds;
  }
};

/// The least position from `from` on where some kind is possible in the `length` bytes; one with less than three bytes
/// behind it when there is none.
using FindPrint = size_t (*)(const uint8_t* bytes, size_t from, size_t length, const PrintTable& table);
const Kernels<FindPrint>& findPrintKernels();

/// The reference, also for kernels' tails.
size_t findPrintScalar(const uint8_t* bytes, size_t from, size_t length, const PrintTable& table);
/// 32 and 64 positions at a time. Only where the CPU has AVX2, and AVX512.
size_t findPrintAvx2(const uint8_t* bytes, size_t from, size_t length, const PrintTable& table);
size_t findPrintAvx512(const uint8_t* bytes, size_t from, size_t length, const PrintTable& table);

}  // namespace velan

#endif  // VELAN_QUERY_FILTER_BYTE_SEARCH_INTERNAL_H
