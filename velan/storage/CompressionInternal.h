// Inflating without keeping the result.
#ifndef VELAN_STORAGE_COMPRESSION_INTERNAL_H
#define VELAN_STORAGE_COMPRESSION_INTERNAL_H

#include <cstddef>
#include <cstdint>
#include <span>

#include "velan/base/FunctionRef.h"

namespace velan {

/// Hands the inflated bytes over in parts until `sink` answers false. True when the stream is whole, nothing follows
/// it, and every part was taken.
bool inflateInParts(const void* bytes, size_t length, FunctionRef<bool(std::span<const uint8_t>)> sink);

/// Whether bytes can be inflated at all: not null, 1 to 4,294,967,295.
bool fitsZlib(const void* bytes, size_t length);

}  // namespace velan

#endif  // VELAN_STORAGE_COMPRESSION_INTERNAL_H
