// Kinds of files by their names.
#ifndef VELAN_TOOLS_FILES_FILE_TYPES_H
#define VELAN_TOOLS_FILES_FILE_TYPES_H

#include <span>
#include <string>
#include <string_view>

namespace velan::tool {

struct FileType {
  std::string_view name;
  std::string_view patterns;  // with blanks between them
};

/// By name.
std::span<const FileType> fileTypes();

/// Null for an unknown name.
const FileType* fileTypeCalled(std::string_view name);

/// A line for each type.
std::string fileTypeList();

}  // namespace velan::tool

#endif  // VELAN_TOOLS_FILES_FILE_TYPES_H
