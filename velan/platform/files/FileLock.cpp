#include <sys/sysmacros.h>

#include <charconv>
#include <cstdio>
#include <string_view>

#include "velan/platform/files/FileCallsInternal.h"
#include "velan/platform/files/FileContents.h"
#include "velan/platform/files/FileLockInternal.h"

namespace velan {
namespace {

// The fields of a line of /proc/locks (`proc(5)`): "1: FLOCK ADVISORY WRITE 1234 08:01:56789 0 EOF".
constexpr int kKindField = 1;
constexpr int kProcessField = 4;
constexpr int kFileField = 5;

std::string_view fieldOf(std::string_view line, int number) {
  for (;; --number) {
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    const size_t end = std::min(line.find(' '), line.size());
    if (number == 0) return line.substr(0, end);
    line.remove_prefix(end);
  }
}

}  // namespace

int64_t lockHolder(int descriptor) {
  struct stat status {};
  if (fileCalls().status(descriptor, status) != 0) return 0;
  char file[64];
  std::snprintf(file, sizeof file, "%02x:%02x:%llu", major(status.st_dev), minor(status.st_dev),
                static_cast<unsigned long long>(status.st_ino));
  const Data locks = readFileContents(u"/proc/locks", FileReading::Plain);
  for (std::string_view rest = locks.view(); !rest.empty();) {
    const size_t end = std::min(rest.find('\n'), rest.size());
    const std::string_view line = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (fieldOf(line, kKindField) != "FLOCK" || fieldOf(line, kFileField) != file) continue;
    const std::string_view process = fieldOf(line, kProcessField);
    int64_t holder = 0;
    std::from_chars(process.data(), process.data() + process.size(), holder);
    if (holder > 0) return holder;
  }
  return 0;
}

std::string processName(int64_t process) {
  const Data name =
      readFileContents(String::fromUTF8("/proc/" + std::to_string(process) + "/comm"), FileReading::Plain);
  return std::string(name.view().substr(0, name.view().find('\n')));
}

}  // namespace velan
