// Compaction into a new file.
#include <algorithm>
#include <utility>

#include "velan/platform/files/FileReplacementInternal.h"
#include "velan/storage/BlockStorage.h"
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
    if (reading.outcome == Outcome::Block &&
        (!handler || handler->storageHandleDataKey(target, reading.data, target.lengthOfFile()))) {
      const bool asStored = _compressed && reading.compressed;
      if (!(asStored ? target.appendCompressedBlock(reading.compressed) : target.appendBlock(reading.data))) {
        return false;
      }
    }
    const bool ended = reading.outcome == Outcome::End;
    const bool error = reading.skippedError || (!ended && reading.outcome != Outcome::Block);
    if (error && !skipErrors) return false;
    if (ended || reading.outcome == Outcome::Error) return true;
    if (handler && handler->shouldCancelIterationOfStorage(*this)) return false;
  }
}

bool BlockStorage::optimizeToPath(const String& path, bool skipErrors, BlockStorageHandler* handler) {
  if (path.isEmpty() || !isReadable() || equalIgnoringCase(path, _path)) return false;
  FileError error;
  const auto replacement = FileReplacement::begin(path, {.createsFolders = true, .like = _file.get()}, error);
  auto file = replacement ? replacement->createSuccessor(error) : nullptr;
  if (!file) return false;
  const auto target = initWithFile(std::move(file), path, true);
  target->_blockSize = _blockSize;
  const bool copied = copyBlocks(*target, skipErrors, handler) && target->synchronizeFile();
  return target->closeFile() && copied && !replacement->commit();
}

}  // namespace velan
