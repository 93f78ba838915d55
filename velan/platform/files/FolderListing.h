// What a folder holds, and what a path leads to.
#ifndef VELAN_PLATFORM_FILES_FOLDER_LISTING_H
#define VELAN_PLATFORM_FILES_FOLDER_LISTING_H

#include <optional>
#include <vector>

#include "velan/platform/files/FileError.h"

namespace velan {

/// The names of what is in the folder at `path`, sorted by code units; those that are no UTF-8, which no string stands
/// for, are left out. Nothing when it cannot be read; `error`, which may be null, tells why.
VELAN_EXPORT std::optional<std::vector<String>> namesInFolder(const String& path, FileError* error);

/// Whether `path` leads to a regular file, also through symbolic links.
VELAN_EXPORT bool isRegularFile(const String& path);

/// The absolute path of the same file without symbolic links. Absent when there is none.
VELAN_EXPORT String pathWithoutLinks(const String& path);

}  // namespace velan

#endif  // VELAN_PLATFORM_FILES_FOLDER_LISTING_H
