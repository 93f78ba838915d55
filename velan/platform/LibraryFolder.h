// Where the library itself lies.
#ifndef VELAN_PLATFORM_LIBRARY_FOLDER_H
#define VELAN_PLATFORM_LIBRARY_FOLDER_H

#include "velan/base/String.h"

namespace velan {

/// The folder of the file that this library was loaded from; for the static library that of the program. Absent when
/// the system does not tell.
VELAN_EXPORT String libraryFolder();

}  // namespace velan

#endif  // VELAN_PLATFORM_LIBRARY_FOLDER_H
