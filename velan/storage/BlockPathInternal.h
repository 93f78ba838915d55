// Paths as the system takes them.
#ifndef VELAN_STORAGE_BLOCK_PATH_INTERNAL_H
#define VELAN_STORAGE_BLOCK_PATH_INTERNAL_H

#include <optional>
#include <string>

#include "velan/base/String.h"

namespace velan {

/// `path` in UTF-8; nothing, with a message, when it has no such form.
std::optional<std::string> fileSystemRepresentation(const String& path);

}  // namespace velan

#endif  // VELAN_STORAGE_BLOCK_PATH_INTERNAL_H
