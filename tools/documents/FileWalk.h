// Which files the paths of a command line stand for.
#ifndef VELAN_TOOLS_DOCUMENTS_FILE_WALK_H
#define VELAN_TOOLS_DOCUMENTS_FILE_WALK_H

#include <string>
#include <vector>

namespace velan::tool {

struct InputFile {
  std::string path;     // "-" is standard input
  bool named;           // on the command line, not found in a folder
  std::string trouble;  // why it cannot be read; usually empty
};

/// The files in the order of `paths`, those of a folder sorted by name (by bytes), at any depth. In folders, symbolic
/// links and what is neither file nor folder are left out, and so is what is hidden (a name that begins with ".")
/// unless `hidden`. Without paths: standard input when it is a file or a pipe, otherwise the current folder.
std::vector<InputFile> collectFiles(const std::vector<std::string>& paths, bool hidden);

/// In the order of the bytes of their paths.
void sortByPath(std::vector<InputFile>& files);
/// The files that were changed last come first; those whose time cannot be told come last.
void sortByModification(std::vector<InputFile>& files);

/// How the file is called in output.
std::string displayName(const std::string& path);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_DOCUMENTS_FILE_WALK_H
