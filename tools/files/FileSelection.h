// Which files a command line asks for.
#ifndef VELAN_TOOLS_FILES_FILE_SELECTION_H
#define VELAN_TOOLS_FILES_FILE_SELECTION_H

#include <cstdint>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace velan::tool {

struct FileSelection {
  std::vector<std::string> paths;
  std::string list;                // a file with further paths, "-" for standard input; empty for none
  bool separatedByNul = false;     // the paths of the list
  std::vector<std::string> globs;  // that files found must match; with "!" must not
  std::vector<std::string> types;  // names of `fileTypes`
  bool hidden = false;
  bool ignoreFiles = true;
  bool follow = false;  // symbolic links
  bool oneFileSystem = false;
  uint64_t maxSize = UINT64_MAX;  // in bytes
};

/// Declares PATH and the options.
void addFileOptions(CLI::App& command, FileSelection& selection);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_FILES_FILE_SELECTION_H
