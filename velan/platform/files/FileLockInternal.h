// Who holds the lock of a file.
#ifndef VELAN_PLATFORM_FILES_FILE_LOCK_INTERNAL_H
#define VELAN_PLATFORM_FILES_FILE_LOCK_INTERNAL_H

#include <cstdint>
#include <string>

namespace velan {

/// A process that holds the lock of the file behind `descriptor`; 0 when the system does not tell.
int64_t lockHolder(int descriptor);
/// What a process is called; empty when the system does not tell.
std::string processName(int64_t process);

}  // namespace velan

#endif  // VELAN_PLATFORM_FILES_FILE_LOCK_INTERNAL_H
