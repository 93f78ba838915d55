// Which files that were found are wanted.
#ifndef VELAN_TOOLS_FILES_FILE_FILTER_H
#define VELAN_TOOLS_FILES_FILE_FILTER_H

#include <sys/stat.h>

#include <optional>
#include <string>
#include <string_view>

#include "tools/files/FileSelection.h"
#include "tools/files/PathPattern.h"

namespace velan::tool {

class FileFilter {
 public:
  explicit FileFilter(const FileSelection& selection);

  /// By globs and types; `path` is relative to the folder that is searched.
  bool wants(std::string_view path, bool isFolder) const;
  /// By its size; a file that cannot be asked is wanted, and fails later.
  bool wantsSizeOf(const std::string& path) const;
  /// Whether the file is where standard output goes. `inode` is what is known of the file without asking; 0: nothing.
  bool isOutput(const std::string& path, ino_t inode) const;

 private:
  PathPatterns _globs;
  const bool _hasPositiveGlobs;
  PathPatterns _types;
  const uint64_t _maxSize;
  std::optional<struct stat> _output;  // if it is a file
};

}  // namespace velan::tool

#endif  // VELAN_TOOLS_FILES_FILE_FILTER_H
