// Opening, closing, positions. Reading, writing, compaction and verification have files of their own.
#include <algorithm>
#include <new>
#include <utility>

#include "velan/base/Log.h"
#include "velan/storage/BlockStorageInternal.h"

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

std::unique_ptr<BlockStorage> BlockStorage::opened(const String& path, FileAccess access, FileError* error) {
  FileError why;
  auto storage = unlessMemoryRunsOut(why, std::unique_ptr<BlockStorage>(), [&] {
    auto file = openFile(path, access, why);
    return file ? initWithFile(std::move(file), path, access == FileAccess::Appending) : nullptr;
  });
  if (!storage && !why) why = FileReason::NoMemory;
  if (error) *error = why;
  return storage;
}

std::unique_ptr<BlockStorage> BlockStorage::blockStorageForReadingAtPath(const String& path) {
  return opened(path, FileAccess::Reading, nullptr);
}
std::unique_ptr<BlockStorage> BlockStorage::blockStorageForReadingAtPath(const String& path, FileError* error) {
  return opened(path, FileAccess::Reading, error);
}
std::unique_ptr<BlockStorage> BlockStorage::initForReadingAtPath(const String& path) {
  return opened(path, FileAccess::Reading, nullptr);
}
std::unique_ptr<BlockStorage> BlockStorage::blockStorageForUpdatingAtPath(const String& path) {
  return opened(path, FileAccess::Updating, nullptr);
}
std::unique_ptr<BlockStorage> BlockStorage::blockStorageForUpdatingAtPath(const String& path, FileError* error) {
  return opened(path, FileAccess::Updating, error);
}
std::unique_ptr<BlockStorage> BlockStorage::initForUpdatingAtPath(const String& path) {
  return opened(path, FileAccess::Updating, nullptr);
}
std::unique_ptr<BlockStorage> BlockStorage::blockStorageForAppendingAtPath(const String& path) {
  return opened(path, FileAccess::Appending, nullptr);
}
std::unique_ptr<BlockStorage> BlockStorage::blockStorageForAppendingAtPath(const String& path, FileError* error) {
  return opened(path, FileAccess::Appending, error);
}
std::unique_ptr<BlockStorage> BlockStorage::initForAppendingAtPath(const String& path) {
  return opened(path, FileAccess::Appending, nullptr);
}

std::unique_ptr<BlockStorage> BlockStorage::initWithFile(std::unique_ptr<File> file, const String& path, bool append) {
  std::unique_ptr<BlockStorage> storage(new (std::nothrow) BlockStorage);
  if (storage && storage->openFile(std::move(file), append)) storage->_path = path;
  return storage;
}

BlockStorage::~BlockStorage() { closeFile(); }

bool BlockStorage::openFile(std::unique_ptr<File> file, bool append) {
  _file = std::move(file);
  _lastPosition = 0;
  _lastLength = 0;
  if (!_file) return false;
  _file->seek(append ? std::max<int64_t>(_file->length(), 0) : 0);
  return true;
}

bool BlockStorage::reopen(FileAccess access) {
  closeFile();
  return guarded(false, [&] { return openFile(openFile(_path, access, _error), access == FileAccess::Appending); });
}

bool BlockStorage::openFileForReading() { return reopen(FileAccess::Reading); }
bool BlockStorage::openFileForUpdating() { return reopen(FileAccess::Updating); }
bool BlockStorage::openFileForAppending() { return reopen(FileAccess::Appending); }

bool BlockStorage::closeFile() {
  _error = {};
  const bool written = !_file || _file->close() || failWith(_file->error());
  _file.reset();
  return written;
}

void BlockStorage::setBlockSize(uint64_t blockSize) {
  VELAN_DEBUG_ASSERT(blockSize % 512 == 0, "(blockSize%512)==0");
  _blockSize = blockSize;
}

int64_t BlockStorage::offsetInFile() const { return _file ? _file->position() : 0; }

int64_t BlockStorage::lengthOfFile() {
  _error = {};
  if (!_file) return 0;
  const int64_t length = _file->length();
  if (length >= 0 && (length == _file->position() || _file->seek(length))) return length;
  return failWith(_file->error()) ? length : 0;
}

int64_t BlockStorage::seekToEndOfFile() { return lengthOfFile(); }

bool BlockStorage::seekToFileOffset(int64_t offset) {
  _error = {};
  if (!_file || offset < 0) return false;
  return _file->seek(offset) || failWith(_file->error());
}

bool BlockStorage::truncateFileAtOffset(int64_t offset) {
  _error = {};
  if (!_file || offset < 0) return false;
  const bool done = _file->length() == offset ? _file->seek(offset) : _file->truncate(offset);
  return done || failWith(_file->error());
}

bool BlockStorage::synchronizeFile() {
  _error = {};
  return _file && (_file->synchronize() || failWith(_file->error()));
}

bool BlockStorage::backupToPath(const String& path) {
  if (path.isEmpty() || !synchronizeFile()) return false;
  _error = copyFile(_path, path);
  return !_error;
}

}  // namespace velan
