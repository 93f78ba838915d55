// Deflating and inflating whole buffers by libraries that are faster at it than zlib. Both are optional, and both may
// decline: then zlib does the work, and says what is wrong.
#ifndef VELAN_PLATFORM_COMPRESSION_FAST_DEFLATE_INTERNAL_H
#define VELAN_PLATFORM_COMPRESSION_FAST_DEFLATE_INTERNAL_H

#include <cstddef>
#include <cstdint>
#include <span>

#include "velan/base/Data.h"

namespace velan {

/// The `bytes` in about the size that zlib's level 1 gives, with the gzip or the zlib wrapper. Absent when it declines.
Data fastDeflated(std::span<const uint8_t> bytes, bool useGzip);

/// What a stream with either wrapper inflates to. Absent when it declines: for anything but one whole and sound stream
/// of at most `limit` bytes, and when memory runs out. Codes that no compressor writes (the two unused lengths and
/// distances) are no fault here if the checksum holds.
Data fastInflated(std::span<const uint8_t> stream, size_t limit);

}  // namespace velan

#endif  // VELAN_PLATFORM_COMPRESSION_FAST_DEFLATE_INTERNAL_H
