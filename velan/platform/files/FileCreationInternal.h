// What a new name in a folder needs.
#ifndef VELAN_PLATFORM_FILES_FILE_CREATION_INTERNAL_H
#define VELAN_PLATFORM_FILES_FILE_CREATION_INTERNAL_H

#include <string>

#include "velan/platform/files/FileError.h"

namespace velan {

/// A new name is only safe when its folder is written.
FileError synchronizeFolder(const std::string& folder);
/// Creates the missing folders above `path`.
FileError createFoldersOf(const std::string& path);

}  // namespace velan

#endif  // VELAN_PLATFORM_FILES_FILE_CREATION_INTERNAL_H
