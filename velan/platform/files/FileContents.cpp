#include "velan/platform/files/FileContents.h"

#include <fcntl.h>
#include <sys/mman.h>
#ifdef __linux__
#include <sys/statfs.h>
#endif

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "velan/platform/files/FileCallsInternal.h"
#include "velan/platform/files/FileErrorInternal.h"
#include "velan/platform/files/FilePathInternal.h"
#include "velan/platform/files/RetryInternal.h"

namespace velan {
namespace {

constexpr size_t kShortestMapping = size_t{64} << 10;

// Waits where the system does: for the other end of a pipe.
class Descriptor {
 public:
  explicit Descriptor(const char* path)
      : _number(retried([&] { return fileCalls().open(path, O_RDONLY | O_CLOEXEC, 0); })) {}
  ~Descriptor() {
    if (_number >= 0) fileCalls().close(_number);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int number() const { return _number; }

 private:
  int _number;
};

// Another machine, or another process, may cut a file of these volumes at any time.
bool isLocal([[maybe_unused]] int file) {
#ifdef __linux__
  struct statfs volume {};
  if (fstatfs(file, &volume) != 0) return false;
  constexpr uint32_t kRemote[] = {0x6969, 0x517B, 0xFE534D42, 0xFF534D42, 0x01021997, 0x65735546, 0x00C36400};
  return std::ranges::find(kRemote, static_cast<uint32_t>(volume.f_type)) == std::end(kRemote);
#else
  return true;
#endif
}

Data mapped(int file, size_t length) {
  void* bytes = mmap(nullptr, length, PROT_READ, MAP_PRIVATE, file, 0);
  if (bytes == MAP_FAILED) return Data();
  const auto unmap = [length](void* start) { munmap(start, length); };
  return Data::withOwner(std::unique_ptr<void, decltype(unmap)>(bytes, unmap), bytes, length);
}

// Reads on until the end, whatever the size was said to be: special files have none, others may grow.
Data readToEnd(int file, size_t expected, FileError& error) {
  size_t capacity = expected + 1;
  size_t length = 0;
  auto* bytes = static_cast<char*>(std::malloc(capacity));
  while (bytes) {
    const iovec piece{bytes + length, capacity - length};
    const ssize_t count = retried([&] { return fileCalls().read(file, &piece, 1, -1); });
    if (count == 0) {
      Data contents = Data::withBytesNoCopy(bytes, length, true);
      if (!contents) error = FileReason::NoMemory;
      return contents;
    }
    if (count < 0) {
      error = lastSystemError();
      std::free(bytes);
      return Data();
    }
    length += static_cast<size_t>(count);
    if (length < capacity) continue;
    capacity = std::max<size_t>(capacity * 2, 4096);
    void* larger = std::realloc(bytes, capacity);
    if (!larger) std::free(bytes);
    bytes = static_cast<char*>(larger);
  }
  error = FileReason::NoMemory;
  return Data();
}

Data contentsAt(const String& path, FileReading reading, FileError& error) {
  const auto name = fileSystemPath(path, error);
  if (!name) return Data();
  const Descriptor file(name->c_str());
  struct stat status {};
  if (file.number() < 0 || fileCalls().status(file.number(), status) != 0) return error = lastSystemError(), Data();
  const size_t size = S_ISREG(status.st_mode) ? static_cast<size_t>(status.st_size) : 0;
  if (reading == FileReading::Mapped && size >= kShortestMapping && isLocal(file.number())) {
    if (Data contents = mapped(file.number(), size)) return contents;
  }
  Data contents = readToEnd(file.number(), size, error);
#ifdef POSIX_FADV_DONTNEED
  if (reading == FileReading::Uncached) posix_fadvise(file.number(), 0, 0, POSIX_FADV_DONTNEED);
#endif
  return contents;
}

}  // namespace

Data readFileContents(const String& path, FileReading reading) { return readFileContents(path, reading, nullptr); }

Data readFileContents(const String& path, FileReading reading, FileError* error) {
  FileError why;
  Data contents = unlessMemoryRunsOut(why, Data(), [&] { return contentsAt(path, reading, why); });
  if (error) *error = why;
  return contents;
}

}  // namespace velan
