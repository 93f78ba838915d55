// Paths as the system takes them: the one conversion.
#ifndef VELAN_PLATFORM_FILES_FILE_PATH_INTERNAL_H
#define VELAN_PLATFORM_FILES_FILE_PATH_INTERNAL_H

#include <optional>
#include <string>

#include "velan/platform/files/FileError.h"

namespace velan {

/// `path` in UTF-8. Nothing, with the reason in `error`, when it is absent or empty or the system cannot take it.
std::optional<std::string> fileSystemPath(const String& path, FileError& error);

/// The folder that holds `path`: "." for a lone name.
std::string folderOf(const std::string& path);

}  // namespace velan

#endif  // VELAN_PLATFORM_FILES_FILE_PATH_INTERNAL_H
