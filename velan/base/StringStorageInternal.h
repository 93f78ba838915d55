// How the units of strings lie in memory.
#ifndef VELAN_BASE_STRING_STORAGE_INTERNAL_H
#define VELAN_BASE_STRING_STORAGE_INTERNAL_H

#include <atomic>
#include <cstdint>
#include <cstdlib>

#include "velan/base/String.h"

namespace velan {

/// One allocation, from malloc: this header, directly followed by the units when the storage holds them itself. A slice
/// refers to another storage's units and keeps it alive; slices of slices refer to the outermost storage.
struct String::Storage : Header {
  static constexpr auto kLongest = static_cast<int64_t>(SIZE_MAX / 4);  // in units, of which none fills all memory

  /// Where the block begins that holds such units.
  static void* blockOf(unichar* units) { return reinterpret_cast<char*>(units) - sizeof(Storage); }
  /// Room for `capacity` units, at most `kLongest`, and the header; the units at `units` keep their contents, so far as
  /// there is room, and are invalid afterwards. Null, with everything as it was, when there is no memory.
  static unichar* reallocateUnits(unichar* units, int64_t capacity) {
    void* block = std::realloc(units ? blockOf(units) : nullptr,
                               sizeof(Storage) + static_cast<size_t>(capacity) * sizeof(unichar));
    return block ? reinterpret_cast<unichar*>(static_cast<char*>(block) + sizeof(Storage)) : nullptr;
  }
  /// The same units without the room that they do not use, if there is much of it and it can be given back.
  static unichar* fittedUnits(unichar* units, int64_t capacity, int64_t length) {
    unichar* fitted = capacity - length > 64 ? reallocateUnits(units, length) : nullptr;
    return fitted ? fitted : units;
  }
  static void freeUnits(unichar* units) {
    if (units) std::free(blockOf(units));
  }

  std::atomic<uint32_t> references{1};
  bool freesCharacters = false;
  Header* parent = nullptr;
  int64_t capacity = 0;  // units of the storage that the characters lie in
};

}  // namespace velan

#endif  // VELAN_BASE_STRING_STORAGE_INTERNAL_H
