// Opening, creating and copying files by path.
#include <fcntl.h>

#include <cerrno>
#include <new>
#include <utility>

#include "velan/platform/files/File.h"
#include "velan/platform/files/FileCallsInternal.h"
#include "velan/platform/files/FileCreationInternal.h"
#include "velan/platform/files/FileErrorInternal.h"
#include "velan/platform/files/FilePathInternal.h"
#include "velan/platform/files/FileReplacementInternal.h"
#include "velan/platform/files/RetryInternal.h"

namespace velan {
namespace {

constexpr mode_t kFileMode = 0666;
constexpr mode_t kFolderMode = 0777;

// How often a file may be replaced under its name while it is being opened.
constexpr int kMostReplacements = 1000;

int openRetried(const std::string& path, int flags, mode_t mode) {
  return retried([&] { return fileCalls().open(path.c_str(), flags | O_CLOEXEC, mode); });
}

int flagsFor(FileAccess access) {
  switch (access) {
    case FileAccess::Reading:
      return O_RDONLY;
    case FileAccess::Updating:
      return O_RDWR;
    case FileAccess::Appending:
      return O_WRONLY | O_APPEND | O_CREAT;
  }
  return O_RDONLY;
}

// From the outermost missing folder inwards, without recursion: a path may have thousands of components.
FileError createFolders(const std::string& folder) {
  for (size_t end = 0; end != std::string::npos;) {
    end = folder.find('/', end + 1);
    const std::string outer = folder.substr(0, end);
    if (fileCalls().createFolder(outer.c_str(), kFolderMode) == 0) {
      if (const FileError error = synchronizeFolder(folderOf(outer))) return error;
    } else if (errno != EEXIST && errno != EISDIR && errno != EROFS && errno != EACCES) {
      return lastSystemError();
    }
  }
  return {};
}

FileError copyContents(File& from, File& to) {
  uint8_t chunk[65536];
  for (int64_t got = 0; (got = from.read(chunk, sizeof chunk)) != 0;) {
    if (got < 0) return from.error();
    if (!to.write({{chunk, static_cast<size_t>(got)}}, 0)) return to.error();
  }
  return to.synchronize() ? FileError() : to.error();
}

template <typename Open>
std::unique_ptr<File> openedAt(const String& path, FileError* place, Open open) {
  FileError error;
  std::unique_ptr<File> file;
  try {
    if (const auto name = fileSystemPath(path, error)) file = open(*name, error);
  } catch (const std::bad_alloc&) {
    error = FileReason::NoMemory;
  }
  if (place) *place = error;
  return file;
}

}  // namespace

// File systems that cannot synchronise folders say EINVAL.
FileError synchronizeFolder(const std::string& folder) {
  const int descriptor = openRetried(folder, O_RDONLY | O_DIRECTORY, 0);
  if (descriptor < 0) return errno == EACCES ? FileError() : lastSystemError();
  const bool done =
      retried([&] { return fileCalls().synchronize(descriptor); }) == 0 || errno == EINVAL || errno == ENOTSUP;
  const FileError error = done ? FileError() : lastSystemError();
  fileCalls().close(descriptor);
  return error;
}

FileError createFoldersOf(const std::string& path) { return createFolders(folderOf(path)); }

// What is no regular file is not even opened: opening alone makes some devices act.
std::unique_ptr<File> File::opened(const std::string& path, FileAccess access, int flags, unsigned mode,
                                   FileError& error) {
  FileCalls& calls = fileCalls();
  struct stat status {};
  const bool exists = calls.statusOfPath(path.c_str(), true, status) == 0;
  if (exists && (error = errorOfKind(status.st_mode))) return nullptr;
  const int descriptor = openRetried(path, flags | O_NONBLOCK, mode);
  if (descriptor < 0) {
    error = lastSystemError();
    const bool missing = error.reason() == FileReason::NoSuchFile;
    if (missing && calls.statusOfPath(path.c_str(), false, status) == 0 && S_ISLNK(status.st_mode)) {
      error = {FileReason::DanglingLink, error.number()};
    }
    return nullptr;
  }
  const auto close = [&] { calls.close(descriptor); };
  if (calls.status(descriptor, status) != 0) return error = lastSystemError(), close(), nullptr;
  if ((error = errorOfKind(status.st_mode))) return close(), nullptr;
  try {
    return std::unique_ptr<File>(new File(descriptor, access, status.st_size, calls));
  } catch (...) {
    close();
    throw;
  }
}

std::unique_ptr<File> File::openedAndLocked(const std::string& path, FileAccess access, FileError& error) {
  for (int i = 0; i < kMostReplacements; ++i) {
    auto file = opened(path, access, flagsFor(access), kFileMode, error);
    if (!file) return nullptr;
    if (!file->lock(access != FileAccess::Reading)) return error = file->error(), nullptr;
    struct stat locked {};
    struct stat named {};
    const bool known = fileCalls().status(file->_descriptor, locked) == 0;
    if (!known) return error = lastSystemError(), nullptr;
    const bool there = fileCalls().statusOfPath(path.c_str(), true, named) == 0;
    if (there && named.st_dev == locked.st_dev && named.st_ino == locked.st_ino) return file;
  }
  error = FileReason::Locked;
  return nullptr;
}

std::unique_ptr<File> File::open(const String& path, FileAccess access) { return open(path, access, nullptr); }

std::unique_ptr<File> File::open(const String& path, FileAccess access, FileError* error) {
  return openedAt(path, error, [access](const std::string& name, FileError& why) {
    return opened(name, access, flagsFor(access), kFileMode, why);
  });
}

std::unique_ptr<File> File::openLocked(const String& path, FileAccess access, FileError* error) {
  return openedAt(path, error,
                  [access](const std::string& name, FileError& why) { return openedAndLocked(name, access, why); });
}

FileError createFileIfMissing(const String& path) {
  FileError error;
  return unlessMemoryRunsOut(error, FileError(FileReason::NoMemory), [&]() -> FileError {
    const auto name = fileSystemPath(path, error);
    if (!name) return error;
    constexpr int kNew = O_WRONLY | O_CREAT | O_EXCL;
    int descriptor = openRetried(*name, kNew, kFileMode);
    if (descriptor < 0 && errno == ENOENT) {
      if (const FileError folders = createFoldersOf(*name)) return folders;
      descriptor = openRetried(*name, kNew, kFileMode);
    }
    if (descriptor < 0) return errno == EEXIST ? FileError() : lastSystemError();
    fileCalls().close(descriptor);
    return synchronizeFolder(folderOf(*name));
  });
}

FileError copyFile(const String& from, const String& to) {
  FileError error;
  const auto source = File::open(from, FileAccess::Reading, &error);
  if (!source) return error;
  const auto copy = FileReplacement::begin(to, {.mustBeNew = true, .like = source.get()}, error);
  if (!copy) return error;
  const auto target = copy->createSuccessor(error);
  if (!target) return error;
  if ((error = copyContents(*source, *target))) return error;
  return target->close() ? copy->commit() : target->error();
}

}  // namespace velan
