#include "velan/platform/files/FileContents.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/statfs.h>
#endif

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>

#include "velan/base/UTF.h"

namespace velan {
namespace {

constexpr size_t kShortestMapping = size_t{64} << 10;

class Descriptor {
 public:
  explicit Descriptor(const char* path) {
    do {
      _number = open(path, O_RDONLY | O_CLOEXEC);
    } while (_number < 0 && errno == EINTR);
  }
  ~Descriptor() {
    if (_number >= 0) close(_number);
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
  const auto unmap = [length](const void* start) { munmap(const_cast<void*>(start), length); };
  return Data::withOwner(std::shared_ptr<const void>(bytes, unmap), bytes, length);
}

// Reads on until the end, whatever the size was said to be: special files have none, others may grow.
Data readToEnd(int file, size_t expected) {
  size_t capacity = expected + 1;
  size_t length = 0;
  auto* bytes = static_cast<char*>(std::malloc(capacity));
  while (bytes) {
    const ssize_t count = read(file, bytes + length, capacity - length);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) {
      if (count == 0) return Data::withBytesNoCopy(bytes, length, true);
      break;
    }
    length += static_cast<size_t>(count);
    if (length < capacity) continue;
    capacity = std::max<size_t>(capacity * 2, 4096);
    void* larger = std::realloc(bytes, capacity);
    if (!larger) break;
    bytes = static_cast<char*>(larger);
  }
  std::free(bytes);
  return Data();
}

}  // namespace

Data readFileContents(const String& path, FileReading reading) {
  const auto name = path ? utf8FromUTF16(path.view()) : std::nullopt;
  if (!name || name->find('\0') != std::string::npos) return Data();
  const Descriptor file(name->c_str());
  struct stat information {};
  if (file.number() < 0 || fstat(file.number(), &information) != 0) return Data();
  const size_t size = S_ISREG(information.st_mode) ? static_cast<size_t>(information.st_size) : 0;
  if (reading == FileReading::Mapped && size >= kShortestMapping && isLocal(file.number())) {
    if (Data contents = mapped(file.number(), size)) return contents;
  }
  Data contents = readToEnd(file.number(), size);
#ifdef POSIX_FADV_DONTNEED
  if (reading == FileReading::Uncached) posix_fadvise(file.number(), 0, 0, POSIX_FADV_DONTNEED);
#endif
  return contents;
}

}  // namespace velan
