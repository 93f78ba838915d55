// Inflating without keeping the result.
#ifndef VELAN_STORAGE_COMPRESSION_INTERNAL_H
#define VELAN_STORAGE_COMPRESSION_INTERNAL_H

#include <cstddef>
#include <cstdint>
#include <span>

#include "velan/base/Data.h"
#include "velan/base/FunctionRef.h"

namespace velan {

enum class Inflation {
  Whole,    // the stream has ended, and nothing follows it
  Damaged,  // no stream, a damaged or an unfinished one, or bytes behind it
  Stopped,  // somebody had enough
  NoMemory,
};

/// Hands the inflated bytes over in parts until `sink` answers false.
Inflation inflateInParts(const void* bytes, size_t length, FunctionRef<bool(std::span<const uint8_t>)> sink);

/// Sets `result` to what `data` inflates to, or leaves it alone; stops when more than `limit` bytes would come out.
Inflation inflateInto(Data& result, const Data& data, size_t limit);

/// Whether bytes can be inflated at all: not null, 1 to 4,294,967,295.
bool fitsZlib(const void* bytes, size_t length);

}  // namespace velan

#endif  // VELAN_STORAGE_COMPRESSION_INTERNAL_H
