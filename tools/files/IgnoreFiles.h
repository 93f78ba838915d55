// What ignore files in folders say.
#ifndef VELAN_TOOLS_FILES_IGNORE_FILES_H
#define VELAN_TOOLS_FILES_IGNORE_FILES_H

#include <memory>
#include <string>
#include <string_view>

#include "tools/files/PathPattern.h"

namespace velan::tool {

inline constexpr std::string_view kVersionControlIgnoreFile = ".gitignore";
inline constexpr std::string_view kIgnoreFile = ".ignore";
inline constexpr std::string_view kRepository = ".git";  // what makes a folder the top of a repository

/// The ignore files of a folder with those of the folders above it. What is further down counts more, and of one folder
/// the last line; `.ignore` counts more than `.gitignore`, which reaches down to the next repository.
class IgnoreFiles {
 public:
  /// `path` is how the folder is written where entries are; nothing is to be read but the files that are said to be
  /// there.
  IgnoreFiles(std::shared_ptr<const IgnoreFiles> above, const std::string& path, bool hasVersionControlFile,
              bool hasIgnoreFile, bool isRepository);

  /// The files of the folders above `path` up to the top of its repository; null outside of any.
  static std::shared_ptr<const IgnoreFiles> above(const std::string& path);

  bool ignores(std::string_view entry, bool isFolder) const;

 private:
  std::optional<bool> decide(PathPatterns IgnoreFiles::*patterns, std::string_view entry, bool isFolder) const;
  std::string relative(std::string_view entry) const { return _lead + std::string(entry.substr(_cut)); }

  std::shared_ptr<const IgnoreFiles> _above;
  std::string _lead;  // from this folder to where entries begin
  size_t _cut;        // how much of an entry is this folder
  PathPatterns _versionControl;
  PathPatterns _own;
  bool _isRepository;
};

}  // namespace velan::tool

#endif  // VELAN_TOOLS_FILES_IGNORE_FILES_H
