// Verifying, recovering the tail, and repairing into a new file.
#include <algorithm>
#include <cstdlib>
#include <utility>

#include "velan/base/Log.h"
#include "velan/platform/files/FileReplacementInternal.h"
#include "velan/storage/BlockScannerInternal.h"
#include "velan/storage/CompressionInternal.h"

namespace velan {
namespace {

Data payloadOf(File& file, const StoredBlock& block) {
  void* const bytes = std::malloc(block.length);
  const Data payload = Data::withBytesNoCopy(bytes, block.length, true);
  const bool whole = payload && file.readAt(block.offset + kHeaderSize, bytes, block.length) == int64_t{block.length};
  return whole ? payload : Data();
}

bool inflates(const Data& payload) {
  return inflateInParts(payload.bytes(), payload.length(), [](std::span<const uint8_t>) { return true; });
}

// Padding beyond any sensible block size is a damaged number, not a torn write.
constexpr int64_t kMostMissingPadding = 1 << 20;

// A block that is whole but for its marker, or its length, is damaged, not torn: its checksum still tells.
bool hasWholePayload(BlockScanner& scanner, const BlockHeader& header, int64_t offset, int64_t size) {
  const int64_t room = size - offset - kHeaderSize;
  const auto matches = [&](int64_t length) {
    return length > 0 && length <= room && header.crc != 0 &&
           scanner.checksum(offset + kHeaderSize, length) == header.crc;
  };
  return matches(header.length) || matches(room - header.padding);
}

// What a crash leaves of a header: bytes of it, and zeros where they did not reach the disk. Anything else was never
// appended here, and the file may be no block file at all.
bool canBeTorn(const HeaderBytes& bytes, int64_t count) {
  const auto matches = [&](uint32_t marker) {
    const HeaderBytes written = BlockHeader{marker, 0, 0, 0}.bytes();
    for (int64_t i = 0; i < std::min<int64_t>(count, 4); ++i) {
      const auto at = static_cast<size_t>(i);
      if (bytes[at] != 0 && bytes[at] != written[at]) return false;
    }
    return true;
  };
  return matches(kPlainMarker) || matches(kCompressedMarker) || matches(kOldMarker);
}

}  // namespace

bool BlockStorage::enumerateStoredBlocks(FunctionRef<bool(const StoredBlock&)> found,
                                         FunctionRef<bool(const DamagedPlace&)> damaged) {
  const int64_t size = isReadable() ? _file->length() : -1;
  return size >= 0 && !BlockScanner(*_file, size).walk(found, damaged);
}

std::optional<BlockSurvey> BlockStorage::verify() { return verify(nullptr); }

std::optional<BlockSurvey> BlockStorage::verify(Progress progress) {
  BlockSurvey survey;
  const int64_t total = isReadable() ? _file->length() : 0;
  const auto found = [&](const StoredBlock& block) {
    ++(block.deleted() ? survey.deleted : survey.blocks);
    if (block.compressed && !inflates(payloadOf(*_file, block))) {
      survey.damages.push_back({BlockDamage::DoesNotInflate, block.offset, block.end() - block.offset});
    }
    return progress && progress(block.offset, total);
  };
  const auto damaged = [&](const DamagedPlace& place) {
    survey.damages.push_back(place);
    return false;
  };
  return enumerateStoredBlocks(found, damaged) ? std::optional(survey) : std::nullopt;
}

bool BlockStorage::recoverTail() {
  const int64_t size = isUpdating() ? _file->length() : -1;
  if (size < 0) return false;
  BlockScanner scanner(*_file, size);
  int64_t offset = 0;
  std::optional<BlockHeader> header;
  while (offset < size) {
    header = scanner.headerAt(offset);
    if (!header || header->extent() > size - offset) break;
    offset += header->extent();
  }
  if (offset == size) return true;
  const int64_t position = _file->position();
  int64_t end = offset;
  const char* what = "cut off a torn block";
  if (header && scanner.payloadFits(offset, *header) && scanner.isSound(offset, *header)) {
    end = offset + header->extent();
    if (end - size > kMostMissingPadding) return false;
    what = "completed the padding of the last block";
  } else {
    HeaderBytes bytes{};
    const int64_t got = _file->readAt(offset, bytes.data(), bytes.size());
    const bool damaged = got == kHeaderSize && hasWholePayload(scanner, BlockHeader::fromBytes(bytes), offset, size);
    if (got < 0 || damaged || !canBeTorn(bytes, got)) return false;
  }
  if (scanner.findBlock(offset + 1) < size || !_file->truncate(end)) return false;
  logFormat("WARNING: %s at %lld in file %s", what, static_cast<long long>(offset), _path.toUTF8().c_str());
  return _file->seek(std::min(position, end));
}

bool BlockStorage::copyStored(const StoredBlock& block, BlockStorage& target) {
  return target._appendBlock({payloadOf(*_file, block), block.compressed ? kCompressedMarker : kPlainMarker});
}

std::optional<BlockSurvey> BlockStorage::repairToPath(const String& path) { return repairToPath(path, nullptr); }

std::optional<BlockSurvey> BlockStorage::repairToPath(const String& path, Progress progress) {
  const int64_t total = isReadable() ? _file->length() : -1;
  FileError error;
  const FileReplacement::Options options{.mustBeNew = true, .createsFolders = true, .like = _file.get()};
  const auto replacement = total >= 0 ? FileReplacement::begin(path, options, error) : nullptr;
  auto file = replacement ? replacement->createSuccessor(error) : nullptr;
  if (!file) return std::nullopt;
  const auto target = initWithFile(std::move(file), path, true);
  target->_blockSize = _blockSize;
  BlockSurvey survey;
  const auto found = [&](const StoredBlock& block) {
    ++(block.deleted() ? survey.deleted : survey.blocks);
    return (!block.deleted() && !copyStored(block, *target)) || (progress && progress(block.offset, total));
  };
  const auto damaged = [&](const DamagedPlace& place) {
    survey.damages.push_back(place);
    return false;
  };
  const bool copied = enumerateStoredBlocks(found, damaged) && target->synchronizeFile();
  const bool done = target->closeFile() && copied && !replacement->commit();
  return done ? std::optional(survey) : std::nullopt;
}

}  // namespace velan
