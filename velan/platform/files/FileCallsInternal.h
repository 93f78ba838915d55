// The system calls that files stand on, in one replaceable place, so that tests can record them and let them fail.
#ifndef VELAN_PLATFORM_FILES_FILE_CALLS_INTERNAL_H
#define VELAN_PLATFORM_FILES_FILE_CALLS_INTERNAL_H

#include <sys/stat.h>
#include <sys/types.h>
#include <sys/uio.h>

#include <cstdint>

#include "velan/base/FunctionRef.h"

namespace velan {

/// The system calls as they are: a negative result tells of a failure that `errno` explains. Whoever calls starts
/// interrupted calls again and completes short ones. The class itself asks the system.
class FileCalls {
 public:
  virtual ~FileCalls() = default;
  virtual int open(const char* path, int flags, mode_t mode);
  virtual int close(int descriptor);
  virtual int status(int descriptor, struct stat& status);
  /// Of what `path` leads to, or with `links` false of the symbolic link itself.
  virtual int statusOfPath(const char* path, bool links, struct stat& status);
  /// At `offset`; with -1 on from where the last such reading ended, for what has no offsets.
  virtual ssize_t read(int descriptor, const iovec* pieces, int count, int64_t offset);
  virtual ssize_t write(int descriptor, const iovec* pieces, int count, int64_t offset);
  virtual int truncate(int descriptor, int64_t length);
  /// Makes sure that writing up to `length` does not fail for want of space. The file gets so long.
  virtual int reserve(int descriptor, int64_t length);
  /// Down to the permanent storage.
  virtual int synchronize(int descriptor);
  /// `flock`.
  virtual int lock(int descriptor, int operation);
  /// Gives the file `to` the owner, group, permissions, access list and extended attributes of `from`.
  virtual int copyAttributes(int from, int to);
  /// Unless `replacing` it fails with `EEXIST` where there is something at `to`.
  virtual int rename(const char* from, const char* to, bool replacing);
  virtual int remove(const char* path);
  virtual int createFolder(const char* path, mode_t mode);
  /// The path without symbolic links, to be freed; null when it leads nowhere.
  virtual char* resolve(const char* path);
  /// Hands over every name in the folder but "." and "..".
  virtual int list(const char* path, FunctionRef<void(const char* name)> handle);
};

/// What files opened from now on use. Not to be changed while another thread opens a file.
FileCalls& fileCalls();
/// Replaces the calls; null brings the system's own back. `calls` must outlive the files opened meanwhile.
void setFileCalls(FileCalls* calls);

}  // namespace velan

#endif  // VELAN_PLATFORM_FILES_FILE_CALLS_INTERNAL_H
