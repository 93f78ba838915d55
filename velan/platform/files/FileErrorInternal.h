// From what the system answers to errors of the library.
#ifndef VELAN_PLATFORM_FILES_FILE_ERROR_INTERNAL_H
#define VELAN_PLATFORM_FILES_FILE_ERROR_INTERNAL_H

#include <sys/stat.h>

#include <new>

#include "velan/platform/files/FileError.h"

namespace velan {

/// The error of a system call that failed with this number.
FileError systemError(int number);
/// The error of the system call that failed last on this thread (`errno`).
FileError lastSystemError();
/// None for a regular file, else the error of one that should be regular.
FileError errorOfKind(mode_t mode);

/// `body()`, or `neutral` with the reason in `error` when memory runs out in it.
template <typename Result, typename Body>
Result unlessMemoryRunsOut(FileError& error, Result neutral, Body body) {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    error = FileReason::NoMemory;
    return neutral;
  }
}

}  // namespace velan

#endif  // VELAN_PLATFORM_FILES_FILE_ERROR_INTERNAL_H
