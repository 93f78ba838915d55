// Files in memory in place of the system's: their calls are recorded, and any of them can be made to fail.
#ifndef VELAN_TESTS_STORAGE_SIMULATED_FILES_H
#define VELAN_TESTS_STORAGE_SIMULATED_FILES_H

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "tests/FailingAllocation.h"
#include "velan/platform/files/FileCallsInternal.h"

namespace velan {

/// A change of a file: bytes written at an offset, a new length, or a synchronisation.
struct FileEvent {
  enum Kind { Write, Truncate, Synchronize } kind;
  int64_t offset;
  std::string bytes;
};

inline void applyEvent(std::string& image, const FileEvent& event, size_t count) {
  const auto offset = static_cast<size_t>(event.offset);
  if (event.kind == FileEvent::Truncate) image.resize(offset);
  if (event.kind != FileEvent::Write || count == 0) return;
  if (image.size() < offset + count) image.resize(offset + count);
  std::memcpy(image.data() + offset, event.bytes.data(), count);
}

class SimulatedFiles : public FileCalls {
 public:
  enum class Call { Read, Write, Truncate, Synchronize };
  /// The `at`-th call (from 0) of a kind fails with `error`, or is cut to half when that is 0; `onwards`: all later
  /// too. When `error` is negative one byte is left, and the later ones fail.
  struct Fault {
    Call call = Call::Read;
    int64_t at = INT64_MAX;
    int error = EIO;
    bool onwards = false;
  };

  SimulatedFiles() { setFileCalls(this); }
  ~SimulatedFiles() override { setFileCalls(nullptr); }

  std::map<std::string, std::string> images;
  std::vector<FileEvent> events;
  bool recording = false;
  Fault fault;
  int64_t calls[4] = {};
  int64_t faults = 0;

  int open(const char* path, int flags, mode_t) override {
    const SparedAllocations spared;
    if (std::string_view(path) == ".") return kFolder;
    const bool exists = images.contains(path);
    if (!exists && !(flags & O_CREAT)) return failed(ENOENT);
    if (exists && (flags & O_EXCL)) return failed(EEXIST);
    _open.push_back(&images[path]);
    return static_cast<int>(_open.size());
  }
  int close(int) override { return 0; }
  int lock(int, int) override { return 0; }
  int status(int file, struct stat& status) override { return describe(image(file), status); }
  int statusOfPath(const char* path, bool, struct stat& status) override {
    const SparedAllocations spared;
    const auto found = images.find(path);
    return found == images.end() ? failed(ENOENT) : describe(found->second, status);
  }
  char* resolve(const char* path) override {
    const SparedAllocations spared;
    return strdup(path);
  }
  int reserve(int, int64_t) override { return 0; }
  int copyAttributes(int, int) override { return 0; }
  int rename(const char* from, const char* to, bool replacing) override {
    const SparedAllocations spared;
    if (!replacing && images.contains(to)) return failed(EEXIST);
    images[to] = std::move(images[from]);
    return remove(from);
  }
  int remove(const char* path) override {
    const SparedAllocations spared;
    return images.erase(path) ? 0 : failed(ENOENT);
  }

  ssize_t read(int file, const iovec* pieces, int count, int64_t offset) override {
    size_t left = 0;
    for (int i = 0; i < count; ++i) left += pieces[i].iov_len;
    if (!permitted(Call::Read, left)) return -1;
    const std::string& from = image(file);
    size_t at = std::min(static_cast<size_t>(offset), from.size());
    const size_t start = at;
    for (int i = 0; i < count; ++i) {
      const size_t copied = from.copy(static_cast<char*>(pieces[i].iov_base), std::min(pieces[i].iov_len, left), at);
      at += copied;
      left -= copied;
    }
    return static_cast<ssize_t>(at - start);
  }

  ssize_t write(int file, const iovec* pieces, int count, int64_t offset) override {
    const SparedAllocations spared;
    FileEvent event{FileEvent::Write, offset, {}};
    for (int i = 0; i < count; ++i) event.bytes.append(static_cast<const char*>(pieces[i].iov_base), pieces[i].iov_len);
    size_t written = event.bytes.size();
    if (!permitted(Call::Write, written)) return -1;
    event.bytes.resize(written);
    applyEvent(image(file), event, written);
    if (recording) events.push_back(std::move(event));
    return static_cast<ssize_t>(written);
  }

  int truncate(int file, int64_t length) override {
    const SparedAllocations spared;
    size_t none = 0;
    if (!permitted(Call::Truncate, none)) return -1;
    const FileEvent event{FileEvent::Truncate, length, {}};
    applyEvent(image(file), event, 0);
    if (recording) events.push_back(event);
    return 0;
  }

  int synchronize(int file) override {
    const SparedAllocations spared;
    size_t none = 0;
    if (!permitted(Call::Synchronize, none)) return -1;
    if (recording && file != kFolder) events.push_back({FileEvent::Synchronize, 0, {}});
    return 0;
  }

 private:
  static constexpr int kFolder = 1 << 20;

  static int failed(int error) {
    errno = error;
    return -1;
  }
  static int describe(const std::string& image, struct stat& status) {
    status = {};
    status.st_mode = S_IFREG | 0644;
    status.st_nlink = 1;
    status.st_ino = reinterpret_cast<uintptr_t>(&image);
    status.st_size = static_cast<off_t>(image.size());
    return 0;
  }
  std::string& image(int file) { return *_open[static_cast<size_t>(file) - 1]; }

  /// May the call be made? `bytes` are fewer when it is cut.
  bool permitted(Call call, size_t& bytes) {
    const int64_t n = calls[static_cast<int>(call)]++;
    if (call != fault.call || n < fault.at || (n > fault.at && !fault.onwards)) return true;
    ++faults;
    const bool cut = fault.error == 0 || (fault.error < 0 && n == fault.at);
    if (cut) bytes = std::min(bytes, fault.error < 0 ? 1 : std::max<size_t>(bytes / 2, 1));
    errno = std::abs(fault.error);
    return cut;
  }

  std::vector<std::string*> _open;
};

}  // namespace velan

#endif  // VELAN_TESTS_STORAGE_SIMULATED_FILES_H
