// Opening, closing, positions. Reading, writing, compaction and verification have files of their own.
#include "velan/storage/BlockStorage.h"

#include <cerrno>
#include <utility>

#include "velan/base/Log.h"
#include "velan/base/UTF.h"
#include "velan/storage/BlockFormatInternal.h"
#include "velan/storage/BlockPathInternal.h"

namespace velan {

std::optional<std::string> fileSystemRepresentation(const String& path) {
  auto representation = utf8FromUTF16(path.view());
  const bool cut = representation && representation->find('\0') != std::string::npos;
  if (representation && !cut) return representation;
  logFormat("getFileSystemRepresentation '%s':\n%s\n%s", path.toUTF8().c_str(), "InvalidPath",
            cut ? "it holds U+0000" : "it holds half a surrogate pair");
  return std::nullopt;
}

std::unique_ptr<File> BlockStorage::openFile(const String& path, FileAccess access) {
  if (path.isEmpty()) return nullptr;
  const auto name = fileSystemRepresentation(path);
  if (!name) return nullptr;
  if (access != FileAccess::Reading && !createFileIfMissing(*name)) return nullptr;
  const int descriptor = openFileDescriptor(*name, access);
  if (descriptor < 0) return nullptr;
  auto file = File::withDescriptor(descriptor, access);
  if (!file) {
    logFormat("Failed fdopen: %s %d", name->c_str(), errno);
    closeFileDescriptor(descriptor);
    return nullptr;
  }
  if (!file->lock(access != FileAccess::Reading)) return nullptr;
  return file;
}

std::unique_ptr<BlockStorage> BlockStorage::opened(const String& path, FileAccess access) {
  auto file = openFile(path, access);
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
  return openFile(openFile(_path, access), access == FileAccess::Appending);
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
  if (path.isEmpty() || !synchronizeFile()) return false;
  const auto from = fileSystemRepresentation(_path);
  const auto to = fileSystemRepresentation(path);
  return from && to && copyFile(*from, *to);
}

}  // namespace velan
