// The header of a block. docs/block-storage-format.md has the whole format.
#ifndef VELAN_STORAGE_BLOCK_FORMAT_INTERNAL_H
#define VELAN_STORAGE_BLOCK_FORMAT_INTERNAL_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "velan/base/ByteOrder.h"

namespace velan {

inline constexpr uint32_t kPlainMarker = 0x31415926;
inline constexpr uint32_t kCompressedMarker = 0x98765432;
inline constexpr uint32_t kOldMarker = 0x53545354;  // "STST": plain; read, never written
inline constexpr int64_t kHeaderSize = 16;

using HeaderBytes = std::array<uint8_t, kHeaderSize>;

struct BlockHeader {
  uint32_t marker;
  uint32_t length;   // of the payload, in bytes
  uint32_t padding;  // bytes behind the payload
  uint32_t crc;      // of the payload as stored

  static BlockHeader fromBytes(std::span<const uint8_t, kHeaderSize> bytes) {
    const auto field = [bytes](std::size_t at) { return loadBigEndian<uint32_t>(&bytes[at]); };
    return {field(0), field(4), field(8), field(12)};
  }

  HeaderBytes bytes() const {
    HeaderBytes result{};
    uint8_t* at = result.data();
    for (const uint32_t field : {marker, length, padding, crc}) {
      storeBigEndian(at, field);
      at += sizeof field;
    }
    return result;
  }

  bool hasKnownMarker() const { return marker == kPlainMarker || marker == kCompressedMarker || marker == kOldMarker; }
  bool isCompressed() const { return marker == kCompressedMarker; }
  /// Payload and padding; at most 8 GB, so offsets never overflow.
  int64_t room() const { return int64_t{length} + padding; }
  /// With the header.
  int64_t extent() const { return kHeaderSize + room(); }
};

}  // namespace velan

#endif  // VELAN_STORAGE_BLOCK_FORMAT_INTERNAL_H
