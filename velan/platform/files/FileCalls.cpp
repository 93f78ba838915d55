#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

#include "velan/platform/files/FileCallsInternal.h"

namespace velan {
namespace {

std::atomic<FileCalls*> replacement = nullptr;

}  // namespace

int FileCalls::open(const char* path, int flags, mode_t mode) { return ::open(path, flags, mode); }

int FileCalls::close(int descriptor) { return ::close(descriptor); }

int64_t FileCalls::length(int descriptor) {
  struct stat information {};
  if (fstat(descriptor, &information) != 0) return -1;
  if (S_ISREG(information.st_mode)) return information.st_size;
  errno = S_ISDIR(information.st_mode) ? EISDIR : EINVAL;
  return -1;
}

ssize_t FileCalls::read(int descriptor, const iovec* pieces, int count, int64_t offset) {
  return preadv(descriptor, pieces, count, offset);
}

ssize_t FileCalls::write(int descriptor, const iovec* pieces, int count, int64_t offset) {
  return pwritev(descriptor, pieces, count, offset);
}

int FileCalls::truncate(int descriptor, int64_t length) { return ftruncate(descriptor, length); }

int FileCalls::synchronize(int descriptor) {
#ifdef F_FULLFSYNC
  if (fcntl(descriptor, F_FULLFSYNC) == 0) return 0;
#endif
  return fsync(descriptor);
}

int FileCalls::lock(int descriptor, int operation) { return flock(descriptor, operation); }

FileCalls& fileCalls() {
  static FileCalls system;
  FileCalls* const calls = replacement.load(std::memory_order_acquire);
  return calls ? *calls : system;
}

void setFileCalls(FileCalls* calls) { replacement.store(calls, std::memory_order_release); }

}  // namespace velan
