#include "velan/platform/files/FileReplacement.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <thread>
#include <utility>

#include "velan/base/Log.h"
#include "velan/platform/files/FileCallsInternal.h"
#include "velan/platform/files/FileCreationInternal.h"
#include "velan/platform/files/FileErrorInternal.h"
#include "velan/platform/files/FilePathInternal.h"
#include "velan/platform/files/FileReplacementInternal.h"
#include "velan/platform/files/RetryInternal.h"

namespace velan {
namespace {

constexpr mode_t kNewMode = 0666;
constexpr mode_t kOwnMode = 0600;
constexpr mode_t kAnyoneWrites = 0222;
constexpr int kMostNames = 1000;
constexpr size_t kLongestName = 200;  // of 255 bytes, which most volumes allow
constexpr auto kLongestWait = std::chrono::seconds(30);

// Repeats `attempt` while another process holds the lock.
template <typename Attempt>
void patiently(bool waits, const FileError& error, Attempt attempt) {
  const auto end = std::chrono::steady_clock::now() + kLongestWait;
  for (auto pause = std::chrono::milliseconds(1);; pause = std::min(pause * 2, std::chrono::milliseconds(20))) {
    attempt();
    if (!waits || error.reason() != FileReason::Locked || std::chrono::steady_clock::now() > end) return;
    std::this_thread::sleep_for(pause);
  }
}

std::string withoutLinks(const std::string& path, FileError& error) {
  const std::unique_ptr<char, void (*)(void*)> resolved(fileCalls().resolve(path.c_str()), std::free);
  if (resolved) return resolved.get();
  error = errno == ENOENT ? FileError(FileReason::DanglingLink, errno) : lastSystemError();
  return path;
}

Data contentsOf(File& file, FileError& error) {
  const int64_t length = file.length();
  void* const bytes = length >= 0 ? std::malloc(std::max<size_t>(static_cast<size_t>(length), 1)) : nullptr;
  Data contents = Data::withBytesNoCopy(bytes, static_cast<size_t>(std::max<int64_t>(length, 0)), true);
  if (bytes && contents && file.readAt(0, bytes, contents.length()) == length) return contents;
  error = length >= 0 && !contents ? FileError(FileReason::NoMemory) : file.error();
  if (!error) error = FileReason::InputOutput;  // shorter than it says
  return Data();
}

}  // namespace

std::unique_ptr<FileReplacement> FileReplacement::begin(const String& path, const Options& options, FileError& error) {
  return unlessMemoryRunsOut(error, std::unique_ptr<FileReplacement>(), [&]() -> std::unique_ptr<FileReplacement> {
    error = {};
    FileCalls& calls = fileCalls();
    const auto name = fileSystemPath(path, error);
    if (!name) return nullptr;
    std::unique_ptr<FileReplacement> result(new FileReplacement);
    result->_path = *name;
    struct stat status {};
    if (calls.statusOfPath(name->c_str(), false, status) == 0) {
      if (options.mustBeNew) return error = {FileReason::Exists, EEXIST}, nullptr;
      result->_path = withoutLinks(*name, error);
      if (error) return nullptr;
      patiently(options.waits, error, [&] {
        error = {};
        result->_existing = File::openedAndLocked(result->_path, FileAccess::Updating, error);
      });
      if (error && error.reason() != FileReason::NoSuchFile) return nullptr;
      error = {};
    } else if (errno != ENOENT) {
      return error = lastSystemError(), nullptr;
    }
    if (const File* existing = result->existing()) {
      if (calls.status(existing->_descriptor, status) != 0) return error = lastSystemError(), nullptr;
      if ((status.st_mode & kAnyoneWrites) == 0) return error = FileReason::MarkedReadOnly, nullptr;
      result->_inPlace = status.st_nlink > 1;
      result->_mode = kOwnMode;
    } else {
      result->_mode = kNewMode;
      if (options.like) {
        if (calls.status(options.like->_descriptor, status) != 0) return error = lastSystemError(), nullptr;
        result->_mode = (status.st_mode & kNewMode) | kOwnMode;
      }
      if (options.createsFolders && (error = createFoldersOf(result->_path))) return nullptr;
    }
    return result;
  });
}

FileReplacement::~FileReplacement() {
  if (!_successor.empty()) fileCalls().remove(_successor.c_str());
}

// Beside the file, with its name in front so that people see what it belongs to.
std::string FileReplacement::newName() const {
  static std::atomic<uint64_t> count = 0;
  const std::string folder = _path.substr(0, _path.rfind('/') + 1);
  const std::string name = _path.substr(folder.size());
  const auto now = static_cast<uint64_t>(std::chrono::system_clock::now().time_since_epoch().count());
  uint64_t seed = now ^ static_cast<uint64_t>(getpid()) << 32 ^ ++count * 0x9E3779B97F4A7C15;
  std::string ending = ".velan-";
  for (int i = 0; i < 8; ++i, seed /= 36) ending += "0123456789abcdefghijklmnopqrstuvwxyz"[seed % 36];
  return folder + (name.size() <= kLongestName ? name : "file") + ending;
}

std::unique_ptr<File> FileReplacement::createSuccessor(FileError& error) {
  return unlessMemoryRunsOut(error, std::unique_ptr<File>(), [&]() -> std::unique_ptr<File> {
    std::unique_ptr<File> file;
    for (int i = 0; i < kMostNames && !file; ++i) {
      _successor = newName();
      constexpr int kNew = O_WRONLY | O_APPEND | O_CREAT | O_EXCL;
      file = File::opened(_successor, FileAccess::Appending, kNew, _mode, error);
      if (file || error.reason() != FileReason::Exists) break;
      _successor.clear();  // it belongs to someone else
    }
    if (!file && _existing && error.reason() == FileReason::NotPermitted) error = FileReason::FolderNotPermitted;
    if (!file) return nullptr;
    error = {};
    if (_existing && !_inPlace) {
      _inPlace = fileCalls().copyAttributes(_existing->_descriptor, file->_descriptor) != 0;
    }
    return file;
  });
}

// What is enlarged has its room before a byte is overwritten.
FileError FileReplacement::writeInPlace() {
  FileError error;
  const auto successor = File::opened(_successor, FileAccess::Reading, O_RDONLY, 0, error);
  if (!successor) return error;
  const int64_t before = _existing->length();
  const int64_t length = successor->length();
  if (before < 0 || length < 0) return before < 0 ? _existing->error() : successor->error();
  if (length > before && fileCalls().reserve(_existing->_descriptor, length) != 0) {
    error = lastSystemError();
    if (error.reason() == FileReason::NoSpace || error.reason() == FileReason::TooLarge) {
      return _existing->truncate(before), error;
    }
  }
  const std::string name = std::exchange(_successor, {});
  uint8_t chunk[65536];
  for (int64_t got = 0; !error && (got = successor->read(chunk, sizeof chunk)) != 0;) {
    const int64_t offset = successor->position() - got;
    if (got < 0) {
      error = successor->error();
    } else if (!_existing->overwrite(offset, {{chunk, static_cast<size_t>(got)}}, 0)) {
      error = _existing->error();
    }
  }
  if (!error && !(_existing->truncate(length) && _existing->synchronize())) error = _existing->error();
  if (error) {
    logFormat("ERROR: %s is written in part; its new contents are in %s", _path.c_str(), name.c_str());
    return error;
  }
  fileCalls().remove(name.c_str());
  return {};
}

FileError FileReplacement::commit() {
  FileError error;
  return unlessMemoryRunsOut(error, FileError(FileReason::NoMemory), [&]() -> FileError {
    if (_inPlace) return writeInPlace();
    const std::string folder = folderOf(_path);
    FileCalls& calls = fileCalls();
    if (retried([&] { return calls.rename(_successor.c_str(), _path.c_str(), _existing != nullptr); }) != 0) {
      return lastSystemError();
    }
    _successor.clear();
    return synchronizeFolder(folder);
  });
}

namespace {

FileError writeAndCommit(FileReplacement& replacement, const Data& contents) {
  FileError error;
  const auto file = replacement.createSuccessor(error);
  if (!file) return error;
  if (!file->write({contents.span()}, 0) || !file->synchronize() || !file->close()) return file->error();
  return replacement.commit();
}

// Again where another process has created the file meanwhile.
FileError replaced(const String& path, bool reads, FunctionRef<Data(const Data&)> edit) {
  FileError error;
  return unlessMemoryRunsOut(error, FileError(FileReason::NoMemory), [&]() -> FileError {
    for (int i = 0; i < kMostNames; ++i) {
      const auto replacement = FileReplacement::begin(path, {.waits = true}, error);
      if (!replacement) return error;
      Data contents;
      if (reads && replacement->existing()) contents = contentsOf(*replacement->existing(), error);
      if (error) return error;
      const Data edited = edit(contents);
      if (!edited) return {};
      error = writeAndCommit(*replacement, edited);
      if (error.reason() != FileReason::Exists || replacement->existing()) return error;
    }
    return error;
  });
}

}  // namespace

FileError replaceFile(const String& path, const Data& contents) {
  return replaced(path, false, [&](const Data&) { return contents; });
}

FileError updateFile(const String& path, FunctionRef<Data(const Data& contents)> edit) {
  return replaced(path, true, edit);
}

}  // namespace velan
