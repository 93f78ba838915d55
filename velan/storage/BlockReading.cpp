// Reading blocks one after another.
#include <cstdlib>
#include <utility>

#include "velan/base/Log.h"
#include "velan/storage/BlockFormatInternal.h"
#include "velan/storage/BlockStorage.h"
#include "velan/storage/Compression.h"
#include "velan/text/digest/Checksums.h"

namespace velan {

void BlockStorage::complain(const char* what, int64_t offset) const {
  logFormat("ERROR: %s %lld in file %s", what, static_cast<long long>(offset), _path.toUTF8().c_str());
}

// The payload at the position. Nothing is allocated before the file is known to be long enough.
BlockStorage::Outcome BlockStorage::readPayload(const BlockHeader& header, Data& payload) {
  if (!_file->reaches(_file->position() + header.length)) return Outcome::Error;
  void* const bytes = std::malloc(header.length);
  payload = Data::withBytesNoCopy(bytes, header.length, true);
  if (!payload) return Outcome::Error;
  return _file->read(bytes, header.length) == int64_t{header.length} ? Outcome::Block : Outcome::Error;
}

// `_mutableCopyOfNextAvailableBlock:error`: damaged blocks are skipped deliberately, with a message.
BlockStorage::Reading BlockStorage::readNext() {
  Reading reading{Outcome::End, Data(), Data(), false};
  while (isReadable()) {
    const int64_t offset = _file->position();
    HeaderBytes bytes{};
    const int64_t got = _file->read(bytes.data(), bytes.size());
    if (got == 0) break;
    const BlockHeader header = BlockHeader::fromBytes(bytes);
    if (got != kHeaderSize || !header.hasKnownMarker()) {
      complain("Invalid header at", offset);
      _file->seek(offset);
      reading.outcome = Outcome::Error;
      break;
    }
    const int64_t next = offset + header.extent();
    _lastPosition = offset;
    _lastLength = static_cast<uint64_t>(header.extent());
    if (header.length == 0) {
      _file->seek(next);
      continue;
    }
    Data payload;
    if (readPayload(header, payload) != Outcome::Block) {
      complain("Truncated data at", offset);
      _file->seek(offset);
      reading.outcome = Outcome::Error;
      break;
    }
    const bool sound = crc32(payload) == header.crc;
    const bool moved = _file->seek(next);
    VELAN_DEBUG_ASSERT(moved, "seekToFileOffset(_file,o=n)");
    if (!sound) {
      complain("Invalid checksum at", offset);
      reading.skippedError = true;
      continue;
    }
    reading.outcome = Outcome::Block;
    reading.data = std::move(payload);
    if (header.isCompressed()) {
      reading.compressed = std::exchange(reading.data, dataByInflatingData(reading.data));
      if (!reading.data) reading.outcome = Outcome::DoesNotInflate;
    }
    break;
  }
  return reading;
}

Data BlockStorage::nextAvailableBlock() { return readNext().data; }

Data BlockStorage::copyOfNextAvailableBlock() { return readNext().data; }

std::optional<MutableData> BlockStorage::mutableCopyOfNextAvailableBlock() {
  return mutableCopyOfNextAvailableBlock(nullptr);
}

std::optional<MutableData> BlockStorage::mutableCopyOfNextAvailableBlock(Data* compressed) {
  const Reading reading = readNext();
  if (compressed) *compressed = reading.outcome == Outcome::Block ? reading.compressed : Data();
  return reading.data ? std::optional<MutableData>(std::in_place, reading.data) : std::nullopt;
}

}  // namespace velan
