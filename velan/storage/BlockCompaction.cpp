// Compaction into a new file.
#include <algorithm>
#include <utility>

#include "velan/platform/files/FileReplacementInternal.h"
#include "velan/storage/BlockStorageInternal.h"
#include "velan/text/ConversionTables.h"

namespace velan {
namespace {

// The same name on a file system that ignores case.
bool equalIgnoringCase(const String& a, const String& b) {
  const unichar* const upper = initUpperCharsTable();
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [upper](unichar x, unichar y) { return upper[x] == upper[y]; });
}

}  // namespace

bool BlockStorageHandler::storageHandleDataKey(BlockStorage&, const Data&, int64_t) { return true; }

bool BlockStorageHandler::shouldCancelIterationOfStorage(BlockStorage&) { return false; }

bool BlockStorage::copyBlocks(BlockStorage& target, bool skipErrors, BlockStorageHandler* handler) {
  if (!seekToFileOffset(0)) return false;
  while (true) {
    const Reading reading = readNext();
    if (reading.outcome == Outcome::Failed) return false;
    if (reading.outcome == Outcome::Block &&
        (!handler || handler->storageHandleDataKey(target, reading.data, target.lengthOfFile()))) {
      const bool asStored = _compressed && reading.compressed;
      if (!(asStored ? target.appendCompressedBlock(reading.compressed) : target.appendBlock(reading.data))) {
        return failWith(target._error);
      }
    }
    const bool ended = reading.outcome == Outcome::End;
    const bool error = reading.skippedError || (!ended && reading.outcome != Outcome::Block);
    if (error && !skipErrors) return false;
    if (ended || reading.outcome == Outcome::Error) return true;
    if (handler && handler->shouldCancelIterationOfStorage(*this)) return failWith(FileReason::Cancelled);
  }
}

bool BlockStorage::writeNewFile(const String& path, bool mustBeNew, FunctionRef<bool(BlockStorage& target)> write) {
  return guarded(false, [&] {
    if (!isReadable()) return false;
    const FileReplacement::Options options{.mustBeNew = mustBeNew, .createsFolders = true, .like = _file.get()};
    const auto replacement = FileReplacement::begin(path, options, _error);
    auto file = replacement ? replacement->createSuccessor(_error) : nullptr;
    if (!file) return false;
    file->keepMore();
    const auto target = initWithFile(std::move(file), path, true);
    if (!target) return failWith(FileReason::NoMemory);
    target->_blockSize = _blockSize;
    if (!write(*target)) return false;
    if (!target->synchronizeFile() || !target->closeFile()) return failWith(target->_error);
    _error = replacement->commit();
    return !_error;
  });
}

bool BlockStorage::optimizeToPath(const String& path, bool skipErrors, BlockStorageHandler* handler) {
  if (path.isEmpty() || equalIgnoringCase(path, _path)) return false;
  return writeNewFile(path, false, [&](BlockStorage& target) { return copyBlocks(target, skipErrors, handler); });
}

}  // namespace velan
