// Opening, closing, positions. Reading, writing, compaction and verification have files of their own.
#include "velan/storage/BlockStorage.h"

#include <utility>

#include "velan/base/Log.h"
#include "velan/storage/BlockFormatInternal.h"

namespace velan {

std::unique_ptr<File> BlockStorage::openFile(const String& path, FileAccess access, FileError& error) {
  std::unique_ptr<File> file;
  error = access == FileAccess::Reading ? FileError() : createFileIfMissing(path);
  if (!error) file = File::openLocked(path, access, &error);
  if (error.isAboutKind()) logFormat("Failed fdopen: %s %d", path.toUTF8().c_str(), error.number());
  if ((error.reason() == FileReason::NameNotText && path) || error.reason() == FileReason::NameHoldsNull) {
    logFormat("getFileSystemRepresentation '%s':\n%s\n%s", path.toUTF8().c_str(), "InvalidPath", error.words());
  }
  return file;
}

std::unique_ptr<BlockStorage> BlockStorage::opened(const String& path, FileAccess access) {
  FileError error;
  auto file = openFile(path, access, error);
  if (!file) return nullptr;
  return initWithFile(std::move(file), path, access == FileAccess::Appending);
}

std::unique_ptr<BlockStorage> BlockStorage::blockStorageForReadingAtPath(const String& path) {
  return opened(path, FileAccess::Reading);
}
std::unique_ptr<BlockStorage> BlockStorage::blockStorageForUpdatingAtPath(const String& path) {
  return opened(path, FileAccess::Updating);
}
std::unique_ptr<BlockStorage> BlockStorage::blockStorageForAppendingAtPath(const String& path) {
  return opened(path, FileAccess::Appending);
}
std::unique_ptr<BlockStorage> BlockStorage::initForReadingAtPath(const String& path) {
  return opened(path, FileAccess::Reading);
}
std::unique_ptr<BlockStorage> BlockStorage::initForUpdatingAtPath(const String& path) {
  return opened(path, FileAccess::Updating);
}
std::unique_ptr<BlockStorage> BlockStorage::initForAppendingAtPath(const String& path) {
  return opened(path, FileAccess::Appending);
}

std::unique_ptr<BlockStorage> BlockStorage::initWithFile(std::unique_ptr<File> file, const String& path, bool append) {
  std::unique_ptr<BlockStorage> storage(new BlockStorage);
  if (storage->openFile(std::move(file), append)) storage->_path = path;
  return storage;
}

BlockStorage::~BlockStorage() { closeFile(); }

bool BlockStorage::openFile(std::unique_ptr<File> file, bool append) {
  _file = std::move(file);
  _lastPosition = 0;
  _lastLength = 0;
  if (append) {
    seekToEndOfFile();
  } else {
    seekToFileOffset(0);
  }
  return _file != nullptr;
}

bool BlockStorage::reopen(FileAccess access) {
  closeFile();
  FileError error;
  return openFile(openFile(_path, access, error), access == FileAccess::Appending);
}

bool BlockStorage::openFileForReading() { return reopen(FileAccess::Reading); }
bool BlockStorage::openFileForUpdating() { return reopen(FileAccess::Updating); }
bool BlockStorage::openFileForAppending() { return reopen(FileAccess::Appending); }

bool BlockStorage::closeFile() {
  const bool written = !_file || _file->close();
  _file.reset();
  return written;
}

void BlockStorage::setBlockSize(uint64_t blockSize) {
  VELAN_DEBUG_ASSERT(blockSize % 512 == 0, "(blockSize%512)==0");
  _blockSize = blockSize;
}

int64_t BlockStorage::offsetInFile() const { return _file ? _file->position() : 0; }

int64_t BlockStorage::lengthOfFile() {
  const int64_t length = _file ? _file->length() : -1;
  return length >= 0 && (length == _file->position() || _file->seek(length)) ? length : 0;
}

int64_t BlockStorage::seekToEndOfFile() { return lengthOfFile(); }

bool BlockStorage::seekToFileOffset(int64_t offset) { return _file && _file->seek(offset); }

bool BlockStorage::truncateFileAtOffset(int64_t offset) {
  return _file && offset >= 0 && (_file->length() == offset ? _file->seek(offset) : _file->truncate(offset));
}

bool BlockStorage::synchronizeFile() { return _file && _file->synchronize(); }

bool BlockStorage::backupToPath(const String& path) {
  return !path.isEmpty() && synchronizeFile() && !copyFile(_path, path);
}

}  // namespace velan
