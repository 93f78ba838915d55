// The system calls that files stand on, in one replaceable place, so that tests can record them and let them fail.
#ifndef VELAN_PLATFORM_FILES_FILE_CALLS_INTERNAL_H
#define VELAN_PLATFORM_FILES_FILE_CALLS_INTERNAL_H

#include <sys/types.h>
#include <sys/uio.h>

#include <cstdint>

namespace velan {

/// The system calls as they are: a negative result tells of a failure that `errno` explains. Whoever calls starts
/// interrupted calls again and completes short ones. The class itself asks the system.
class FileCalls {
 public:
  virtual ~FileCalls() = default;
  virtual int open(const char* path, int flags, mode_t mode);
  virtual int close(int descriptor);
  /// The length in bytes; fails with `EINVAL` for what is not a regular file.
  virtual int64_t length(int descriptor);
  virtual ssize_t read(int descriptor, const iovec* pieces, int count, int64_t offset);
  virtual ssize_t write(int descriptor, const iovec* pieces, int count, int64_t offset);
  virtual int truncate(int descriptor, int64_t length);
  /// Down to the permanent storage.
  virtual int synchronize(int descriptor);
  /// `flock`.
  virtual int lock(int descriptor, int operation);
};

/// What files opened from now on use. Not to be changed while another thread opens a file.
FileCalls& fileCalls();
/// Replaces the calls; null brings the system's own back. `calls` must outlive the files opened meanwhile.
void setFileCalls(FileCalls* calls);

}  // namespace velan

#endif  // VELAN_PLATFORM_FILES_FILE_CALLS_INTERNAL_H
