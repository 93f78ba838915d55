#include "tools/files/FileReading.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <mutex>
#include <utility>

#include "velan/platform/files/ExtendedAttributes.h"

namespace velan::tool {
namespace {

// Memory for a larger file is not kept for the next one.
constexpr size_t kMostKept = 1 << 20;

bool failed(std::string& why) {
  why = std::strerror(errno);
  return false;
}

// Of an interrupted call, as that of a worker during a signal, nothing is seen.
template <typename Call>
auto uninterrupted(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR) result = call();
  return result;
}

// What standard input gave, for those who read it again; read by one at a time.
struct StandardInput {
  std::atomic<bool> isRemembered = false;
  std::mutex mutex;
  bool isRead = false;
  bool failed = false;
  std::string bytes;
  std::string why;
};
StandardInput standardInput;

}  // namespace

void rememberStandardInput() { standardInput.isRemembered = true; }

bool FileReader::read(const std::string& path, FunctionRef<bool(std::string_view head)> wants, std::string& why) {
  _length = 0;
  _hasAttributes = false;
  if (_memory.size() > kMostKept) _memory = std::string();
  if (path == "-") return standardInput.isRemembered ? readRemembered(wants, why) : readFrom(STDIN_FILENO, wants, why);
  const int descriptor = uninterrupted([&] { return open(path.c_str(), O_RDONLY | O_CLOEXEC); });
  if (descriptor < 0) return failed(why);
  const struct Closing {
    ~Closing() { close(descriptor); }
    int descriptor;
  } closing{descriptor};
  if (!readFrom(descriptor, wants, why)) return false;
  _hasAttributes = hasExtendedAttributesOfDescriptor(descriptor);
  return true;
}

bool FileReader::readRemembered(FunctionRef<bool(std::string_view head)> wants, std::string& why) {
  const std::lock_guard lock(standardInput.mutex);
  if (!standardInput.isRead) {
    standardInput.failed = !readFrom(
        STDIN_FILENO, [](std::string_view) { return true; }, standardInput.why);
    if (!standardInput.failed) standardInput.bytes = takeBytes();
    standardInput.isRead = true;
  }
  why = standardInput.why;
  if (standardInput.failed || !wants(std::string_view(standardInput.bytes).substr(0, kHead))) return false;
  _memory = standardInput.bytes;
  _length = _memory.size();
  return true;
}

bool FileReader::readFrom(int descriptor, FunctionRef<bool(std::string_view head)> wants, std::string& why) {
  struct stat information {};
  if (fstat(descriptor, &information) != 0) return failed(why);
  if (S_ISDIR(information.st_mode)) {
    why = "it is a folder";
    return false;
  }
  // One byte more than there should be shows the end without another call. Files that tell no size have one, too.
  const bool hasSize = S_ISREG(information.st_mode) && information.st_size > 0;
  const size_t expected = hasSize ? static_cast<size_t>(information.st_size) + 1 : kHead;
  bool isAsked = false;
  for (bool isAtEnd = false; !isAtEnd;) {
    size_t room = isAsked ? expected : std::min(expected, kHead);
    if (room <= _length) room = _length + std::max(_length / 2, kHead);
    makeRoom(room);
    const ssize_t count = uninterrupted([&] { return ::read(descriptor, _memory.data() + _length, room - _length); });
    if (count < 0) return failed(why);
    _length += static_cast<size_t>(count);
    isAtEnd = count == 0 || (hasSize && _length < room);
    if (isAsked || (!isAtEnd && _length < kHead)) continue;
    if (!wants(bytes())) return false;
    isAsked = true;
  }
  return true;
}

// What is there stays; a new piece of memory has just the size.
void FileReader::makeRoom(size_t size) {
  if (size > _memory.capacity()) {
    std::string larger;
    larger.reserve(size);
    larger.assign(_memory, 0, _length);
    _memory = std::move(larger);
  }
  if (size > _memory.size()) _memory.resize(size);
}

std::string FileReader::takeBytes() {
  _memory.resize(std::exchange(_length, 0));
  return std::exchange(_memory, std::string());
}

std::optional<std::string> readFile(const std::string& path, std::string& why) {
  FileReader reader;
  if (!reader.read(
          path, [](std::string_view) { return true; }, why))
    return std::nullopt;
  return reader.takeBytes();
}

}  // namespace velan::tool
