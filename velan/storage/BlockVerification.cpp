// Verifying, recovering the tail, and repairing into a new file.
#include <algorithm>
#include <utility>

#include "velan/base/Log.h"
#include "velan/storage/BlockScannerInternal.h"
#include "velan/storage/BlockStorageInternal.h"
#include "velan/storage/CompressionInternal.h"

namespace velan {
namespace {

// Padding beyond any sensible block size is a damaged number, not a torn write.
constexpr int64_t kMostMissingPadding = 1 << 20;

}  // namespace

// A failure is none of the file's blocks: whatever was found until then counts for nothing.
bool BlockStorage::finished(const BlockScanner& scanner) {
  if (!scanner.failure()) return true;
  return scanner.failure().reason() == FileReason::Cancelled ? failWith(scanner.failure())
                                                             : failReading(scanner.failure(), scanner.failedOffset());
}

bool BlockStorage::walk(Progress progress, FunctionRef<bool(BlockScanner&, const StoredBlock&)> found,
                        FunctionRef<bool(const DamagedPlace&)> damaged) {
  const int64_t size = isReadable() ? _file->length() : -1;
  if (size < 0) return _file && isReadable() ? failWith(_file->error()) : false;
  BlockScanner scanner(*_file, size, progress);
  const auto each = [&](const StoredBlock& block) { return found && found(scanner, block); };
  const bool stopped = scanner.walk(each, damaged);
  return finished(scanner) && !stopped;
}

bool BlockStorage::enumerateStoredBlocks(FunctionRef<bool(const StoredBlock&)> found,
                                         FunctionRef<bool(const DamagedPlace&)> damaged) {
  return guarded(false, [&] {
    return walk(
        nullptr, [&](BlockScanner&, const StoredBlock& block) { return found && found(block); }, damaged);
  });
}

std::optional<BlockSurvey> BlockStorage::verify() { return verify(nullptr); }

std::optional<BlockSurvey> BlockStorage::verify(Progress progress) {
  return guarded(std::optional<BlockSurvey>(), [&]() -> std::optional<BlockSurvey> {
    BlockSurvey survey;
    const auto found = [&](BlockScanner& scanner, const StoredBlock& block) {
      ++(block.deleted() ? survey.deleted : survey.blocks);
      if (!block.compressed || block.deleted()) return false;
      const Data payload = scanner.payloadOf(block);
      if (!payload) return true;
      switch (inflateInParts(payload.bytes(), payload.length(), [](std::span<const uint8_t>) { return true; })) {
        case Inflation::Whole:
          return false;
        case Inflation::NoMemory:
          failReading(FileReason::NoMemory, block.offset);
          return true;
        default:
          survey.damages.push_back({BlockDamage::DoesNotInflate, block.offset, block.end() - block.offset});
          return false;
      }
    };
    const auto damaged = [&](const DamagedPlace& place) {
      survey.damages.push_back(place);
      return false;
    };
    return walk(progress, found, damaged) ? std::optional(std::move(survey)) : std::nullopt;
  });
}

bool BlockStorage::recoverTail() {
  return guarded(false, [&] { return isUpdating() && recoverTailUpTo(_file->length()); });
}

bool BlockStorage::recoverTailUpTo(int64_t size) {
  if (size < 0) return failWith(_file->error());
  BlockScanner scanner(*_file, size, nullptr);
  if (size == 0 || scanner.endsWithWholeBlock()) return true;
  const int64_t offset = scanner.endOfHeaders(size);
  if (offset == size) return finished(scanner);
  const int64_t position = _file->position();
  const auto header = scanner.headerAt(offset);
  const bool whole = header && scanner.payloadFits(offset, *header) && scanner.isSound(offset, *header);
  const int64_t end = whole ? offset + header->extent() : offset;
  const bool recoverable = whole ? end - size <= kMostMissingPadding : scanner.isTorn(offset);
  const bool hidesNothing = recoverable && scanner.findBlock(offset + 1) == size;
  if (!finished(scanner) || !hidesNothing) return false;
  const std::string path = _path.toUTF8();  // behind the truncation too little memory would come too late
  if (!_file->truncate(end)) return failWith(_file->error());
  logFormat("WARNING: %s at %lld in file %s",
            whole ? "completed the padding of the last block" : "cut off a torn block", static_cast<long long>(offset),
            path.c_str());
  return _file->seek(std::min(position, end));
}

bool BlockStorage::isBlockAtFileOffset(int64_t offset) {
  return guarded(false, [&] {
    const int64_t size = isReadable() ? _file->length() : -1;
    if (size < 0 || offset < 0) return false;
    BlockScanner scanner(*_file, size, nullptr);
    bool found = scanner.endOfHeaders(offset) == offset && scanner.headerAt(offset);
    if (!finished(scanner) || found) return found && !scanner.failure();
    // Behind damage only the search for blocks can tell.
    const auto isIt = [&](BlockScanner&, const StoredBlock& block) {
      found = block.offset == offset;
      return block.offset >= offset;
    };
    walk(nullptr, isIt, nullptr);
    return found && !_error;
  });
}

std::optional<BlockSurvey> BlockStorage::repairToPath(const String& path) { return repairToPath(path, nullptr); }

std::optional<BlockSurvey> BlockStorage::repairToPath(const String& path, Progress progress) {
  return rewriteToPath(path, true, false, progress);
}

std::optional<BlockSurvey> BlockStorage::compactToPath(const String& path, bool skipErrors, Progress progress) {
  return rewriteToPath(path, skipErrors, _compressed, progress);
}

std::optional<BlockSurvey> BlockStorage::rewriteToPath(const String& path, bool skipErrors, bool compresses,
                                                       Progress progress) {
  BlockSurvey survey;
  const auto copy = [&](BlockStorage& target) {
    target._compressed = compresses;
    const auto found = [&](BlockScanner& scanner, const StoredBlock& block) {
      ++(block.deleted() ? survey.deleted : survey.blocks);
      const Data payload = block.deleted() ? Data() : scanner.payloadOf(block);
      if (!payload) return !block.deleted();
      return !(block.compressed ? target.appendCompressedBlock(payload) : target.appendBlock(payload)) &&
             !failWith(target._error);
    };
    const auto damaged = [&](const DamagedPlace& place) {
      survey.damages.push_back(place);
      return !skipErrors;
    };
    return walk(progress, found, damaged);
  };
  return writeNewFile(path, true, copy) ? std::optional(std::move(survey)) : std::nullopt;
}

}  // namespace velan
