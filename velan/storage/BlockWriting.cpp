// Appending, updating, deleting and moving blocks.
#include "velan/storage/BlockFormatInternal.h"
#include "velan/storage/BlockStorage.h"
#include "velan/storage/Compression.h"
#include "velan/text/digest/Checksums.h"

namespace velan {
namespace {

constexpr int kCompressionLevel = 1;
constexpr int64_t kSectorSize = 512;  // what a disk writes as one

}  // namespace

BlockStorage::Stored BlockStorage::_blockForWriting(const Data& data) const {
  if (_compressed && data) {
    const Data deflated = dataByDeflatingData(data, kCompressionLevel);
    if (deflated && deflated.length() < data.length()) return {deflated, kCompressedMarker};
  }
  return {data, kPlainMarker};
}

// Nothing when the length or the padding does not fit the header.
std::optional<uint32_t> BlockStorage::paddingFor(size_t length) const {
  if (length > UINT32_MAX) return std::nullopt;
  if (_blockSize == 0) return 0;
  const uint64_t used = (length + kHeaderSize) % _blockSize;
  const uint64_t padding = used ? _blockSize - used : 0;
  return padding <= UINT32_MAX ? std::optional(static_cast<uint32_t>(padding)) : std::nullopt;
}

bool BlockStorage::_appendBlock(const Stored& block) {
  _error = {};
  if (!_file || _file->access() == FileAccess::Reading || block.bytes.isEmpty()) return false;
  const auto padding = paddingFor(block.bytes.length());
  if (!padding) return failWith(FileReason::TooLarge);
  const BlockHeader header{block.marker, static_cast<uint32_t>(block.bytes.length()), *padding, crc32(block.bytes)};
  return _file->write({header.bytes(), block.bytes.span()}, *padding) || failWith(_file->error());
}

bool BlockStorage::appendBlock(const Data& data) {
  if (data.length() > UINT32_MAX) return failWith(FileReason::TooLarge);
  return _appendBlock(_blockForWriting(data));
}

bool BlockStorage::appendCompressedBlock(const Data& data) { return _appendBlock({data, kCompressedMarker}); }

bool BlockStorage::appendUncompressedBlock(const Data& data) { return _appendBlock({data, kPlainMarker}); }

std::optional<BlockHeader> BlockStorage::headerForChanging(int64_t offset) {
  HeaderBytes bytes{};
  const int64_t got = isUpdating() && offset >= 0 ? _file->readAt(offset, bytes.data(), bytes.size()) : 0;
  if (got < 0) failReading(_file->error(), offset);
  if (got <= 0) return std::nullopt;
  const BlockHeader header = BlockHeader::fromBytes(bytes);
  if (got == kHeaderSize && header.hasKnownMarker()) return header;
  complain("Invalid header at", offset);
  return std::nullopt;
}

// A marker must never meet a payload of the other kind whose checksum holds: compressed bytes would be taken for data.
// So what the marker depends on is written before it, also across a crash: where the header lies across two sectors,
// which reach the disk in any order, that takes waiting for the disk.
bool BlockStorage::settle(int64_t offset, const BlockHeader& old, const BlockHeader& header) {
  const bool acrossSectors = offset % kSectorSize > kSectorSize - kHeaderSize;
  return old.marker == header.marker || !acrossSectors || _file->barrier() || failWith(_file->error());
}

// A failure may leave half a header, which would hide the blocks behind it: then the old one is put back if possible.
bool BlockStorage::overwriteHeader(int64_t offset, const BlockHeader& old, const BlockHeader& header) {
  if (_file->overwrite(offset, {header.bytes()}, 0)) return true;
  failWith(_file->error());
  _file->overwrite(offset, {old.bytes()}, 0);
  return false;
}

bool BlockStorage::overwriteBlock(int64_t offset, const BlockHeader& old, const BlockHeader& header,
                                  const Data& payload, uint64_t zeros) {
  if (!_file->overwrite(offset + kHeaderSize, {payload.span()}, zeros)) return failWith(_file->error());
  return settle(offset, old, header) && overwriteHeader(offset, old, header);
}

bool BlockStorage::updateBlock(const Data& data, int64_t offset) {
  _error = {};
  if (data.length() > UINT32_MAX) return failWith(FileReason::TooLarge);
  const auto old = data.isAbsent() ? std::nullopt : headerForChanging(offset);
  if (!old) return false;
  const Stored block = _blockForWriting(data);
  const int64_t padding = old->room() - static_cast<int64_t>(block.bytes.length());
  if (padding < 0 || padding > UINT32_MAX) return false;
  const auto length = static_cast<uint32_t>(block.bytes.length());
  return overwriteBlock(offset, *old, {block.marker, length, static_cast<uint32_t>(padding), crc32(block.bytes)},
                        block.bytes, 0);
}

bool BlockStorage::deleteBlockAtFileOffset(int64_t offset) {
  _error = {};
  const auto old = headerForChanging(offset);
  if (!old || old->length == 0) return old.has_value();
  if (old->room() > UINT32_MAX) return false;
  const BlockHeader deleted{kPlainMarker, 0, static_cast<uint32_t>(old->room()), 0};
  BlockHeader lengths = deleted;
  lengths.marker = old->marker;
  if (lengths.marker == deleted.marker) return overwriteHeader(offset, *old, deleted);
  return overwriteHeader(offset, *old, lengths) && settle(offset, *old, deleted) &&
         overwriteHeader(offset, lengths, deleted);
}

bool BlockStorage::optimizeLastBlock(const Data& data, const Data& compressed, int64_t offset, int64_t* nextOffset) {
  _error = {};
  const int64_t oldEnd = _lastPosition + static_cast<int64_t>(_lastLength);
  if (nextOffset) *nextOffset = oldEnd;
  if (!_file) return false;
  if (!_file->seek(oldEnd)) return failWith(_file->error());
  const Stored block = compressed && _compressed ? Stored{compressed, kCompressedMarker} : _blockForWriting(data);
  const auto padding = paddingFor(block.bytes.length());
  if (block.bytes.isEmpty() || !padding || offset < 0) return false;
  const BlockHeader header{block.marker, static_cast<uint32_t>(block.bytes.length()), *padding, crc32(block.bytes)};
  const bool isBestPlace = _lastPosition <= offset && static_cast<int64_t>(_lastLength) <= header.extent();
  if (isBestPlace || header.extent() > oldEnd - offset) return false;
  HeaderBytes there{};
  const int64_t got = isUpdating() ? _file->readAt(offset, there.data(), there.size()) : 0;
  if (got < 0) return failReading(_file->error(), offset);
  if (got < kHeaderSize) return false;
  if (!overwriteBlock(offset, BlockHeader::fromBytes(there), header, block.bytes, *padding)) return false;
  if (nextOffset) *nextOffset = offset + header.extent();
  return true;
}

}  // namespace velan
