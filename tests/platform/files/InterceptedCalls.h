// The system's calls with something in between: the n-th of them fails, or is the last thing a process does.
#ifndef VELAN_TESTS_PLATFORM_FILES_INTERCEPTED_CALLS_H
#define VELAN_TESTS_PLATFORM_FILES_INTERCEPTED_CALLS_H

#include <signal.h>

#include <cerrno>

#include "velan/platform/files/FileCallsInternal.h"

namespace velan {

class InterceptedCalls : public FileCalls {
 public:
  /// The `at`-th call (from 0) that changes or reads something fails with `error`; without one the process is killed.
  InterceptedCalls(int64_t at, int error) : _at(at), _error(error) { setFileCalls(this); }
  ~InterceptedCalls() override { setFileCalls(nullptr); }

  bool happened() const { return _count > _at; }
  /// Whether it was a file that could not be removed.
  bool keptFile = false;

  int open(const char* path, int flags, mode_t mode) override {
    return passes() ? FileCalls::open(path, flags, mode) : -1;
  }
  int close(int file) override {
    const bool passed = passes();
    const int error = errno;
    const int result = FileCalls::close(file);
    errno = error;
    return passed ? result : -1;
  }
  int status(int file, struct stat& status) override { return passes() ? FileCalls::status(file, status) : -1; }
  int statusOfPath(const char* path, bool links, struct stat& status) override {
    return passes() ? FileCalls::statusOfPath(path, links, status) : -1;
  }
  ssize_t read(int file, const iovec* pieces, int count, int64_t offset) override {
    return passes() ? FileCalls::read(file, pieces, count, offset) : -1;
  }
  ssize_t write(int file, const iovec* pieces, int count, int64_t offset) override {
    return passes() ? FileCalls::write(file, pieces, count, offset) : -1;
  }
  int truncate(int file, int64_t length) override { return passes() ? FileCalls::truncate(file, length) : -1; }
  int reserve(int file, int64_t length) override { return passes() ? FileCalls::reserve(file, length) : -1; }
  int synchronize(int file) override { return passes() ? FileCalls::synchronize(file) : -1; }
  int lock(int file, int operation) override { return passes() ? FileCalls::lock(file, operation) : -1; }
  int copyAttributes(int from, int to) override { return passes() ? FileCalls::copyAttributes(from, to) : -1; }
  int rename(const char* from, const char* to, bool replacing) override {
    return passes() ? FileCalls::rename(from, to, replacing) : -1;
  }
  int remove(const char* path) override {
    keptFile = !passes();
    return keptFile ? -1 : FileCalls::remove(path);
  }
  char* resolve(const char* path) override { return passes() ? FileCalls::resolve(path) : nullptr; }

 private:
  bool passes() {
    if (_count++ != _at) return true;
    if (_error == 0) raise(SIGKILL);
    errno = _error;
    return false;
  }

  int64_t _at;
  int _error;
  int64_t _count = 0;
};

}  // namespace velan

#endif  // VELAN_TESTS_PLATFORM_FILES_INTERCEPTED_CALLS_H
