#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "velan/platform/files/FileCallsInternal.h"

namespace velan {
namespace {

std::atomic<FileCalls*> replacement = nullptr;

}  // namespace

int FileCalls::open(const char* path, int flags, mode_t mode) { return ::open(path, flags, mode); }

int FileCalls::close(int descriptor) { return ::close(descriptor); }

int FileCalls::status(int descriptor, struct stat& status) { return fstat(descriptor, &status); }

int FileCalls::statusOfPath(const char* path, bool links, struct stat& status) {
  return links ? stat(path, &status) : lstat(path, &status);
}

ssize_t FileCalls::read(int descriptor, const iovec* pieces, int count, int64_t offset) {
  return offset < 0 ? readv(descriptor, pieces, count) : preadv(descriptor, pieces, count, offset);
}

ssize_t FileCalls::write(int descriptor, const iovec* pieces, int count, int64_t offset) {
  return pwritev(descriptor, pieces, count, offset);
}

int FileCalls::truncate(int descriptor, int64_t length) { return ftruncate(descriptor, length); }

int FileCalls::reserve([[maybe_unused]] int descriptor, [[maybe_unused]] int64_t length) {
#ifdef __APPLE__
  return 0;
#else
  errno = length > 0 ? posix_fallocate(descriptor, 0, length) : 0;
  return errno == 0 ? 0 : -1;
#endif
}

int FileCalls::synchronize(int descriptor) {
#ifdef F_FULLFSYNC
  if (fcntl(descriptor, F_FULLFSYNC) == 0) return 0;
#endif
  return fsync(descriptor);
}

int FileCalls::lock(int descriptor, int operation) { return flock(descriptor, operation); }

int FileCalls::rename(const char* from, const char* to, bool replacing) {
  if (replacing) return ::rename(from, to);
#ifdef RENAME_NOREPLACE
  if (renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS) return -1;
#endif
  return link(from, to) == 0 ? unlink(from) : -1;
}

int FileCalls::remove(const char* path) { return unlink(path); }

int FileCalls::createFolder(const char* path, mode_t mode) { return mkdir(path, mode); }

char* FileCalls::resolve(const char* path) { return realpath(path, nullptr); }

int FileCalls::list(const char* path, FunctionRef<void(const char* name)> handle) {
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(path), closedir);
  if (!folder) return -1;
  errno = 0;
  while (const dirent* entry = readdir(folder.get())) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") handle(entry->d_name);
    errno = 0;
  }
  return errno == 0 ? 0 : -1;
}

FileCalls& fileCalls() {
  static FileCalls system;
  FileCalls* const calls = replacement.load(std::memory_order_acquire);
  return calls ? *calls : system;
}

void setFileCalls(FileCalls* calls) { replacement.store(calls, std::memory_order_release); }

}  // namespace velan
