// Finding places in bytes that may be the beginning of one of several things.
#ifndef VELAN_QUERY_FILTER_BYTE_SEARCH_H
#define VELAN_QUERY_FILTER_BYTE_SEARCH_H

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "velan/base/CTypes.h"

namespace velan {

inline constexpr size_t kPrintLength = 3;
/// What each of three bytes in a row may be.
using BytePrint = std::array<std::bitset<256>, kPrintLength>;

/// Up to eight kinds of prints, looked up by the halves of bytes: bit k of `low[i][b & 15] & high[i][b >> 4]` is set
/// for every byte b that a print of kind k allows at i, and perhaps for more: the less, the more alike the prints of a
/// kind are.
struct PrintTable {
  alignas(16) uint8_t low[kPrintLength][16] = {};
  alignas(16) uint8_t high[kPrintLength][16] = {};

  /// `PrintTable::add`: allows the bytes of `print` to the kind with this number, below 8, besides those it has.
  VELAN_EXPORT void add(const BytePrint& print, unsigned kind);
  /// The kinds of which all three bytes are possible.
  uint8_t kindsAt(const uint8_t* bytes) const {
    uint8_t kinds = 0xFF;
    for (size_t i = 0; i < kPrintLength; ++i) kinds &= low[i][bytes[i] & 15] & high[i][bytes[i] >> 4];
    return kinds;
  }
};

/// `findPrint`: the least position in bytes from `from` on where some kind is possible. One of the last two positions
/// where there is none before them: for those nothing is asked. The length of `bytes` for a `from` that is not less.
VELAN_EXPORT size_t findPrint(std::string_view bytes, size_t from, const PrintTable& table);

}  // namespace velan

#endif  // VELAN_QUERY_FILTER_BYTE_SEARCH_H
