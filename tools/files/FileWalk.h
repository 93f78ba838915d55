// Which files the paths of a command line stand for.
#ifndef VELAN_TOOLS_FILES_FILE_WALK_H
#define VELAN_TOOLS_FILES_FILE_WALK_H

#include <string>
#include <string_view>
#include <vector>

#include "tools/files/FileSelection.h"

namespace velan::tool {

struct InputFile {
  std::string path;     // "-" is standard input
  bool named;           // on the command line, not found in a folder or a list
  std::string trouble;  // why it cannot be read; usually empty
};

/// The files in the order of the paths, those of a list last, those of a folder sorted by name (by bytes), at any
/// depth. Without paths: standard input when it is a file or a pipe, otherwise the current folder.
///
/// What is found in folders must pass: what is neither file nor folder is left out, symbolic links unless they are to
/// be followed, what is hidden (a name that begins with "."), and what ignore files say. Globs count from the folder
/// that is searched; with types and sizes they hold for listed files, too. What is named on the command line is always
/// taken. The file that standard output goes to is none of the files.
std::vector<InputFile> collectFiles(const FileSelection& selection);

/// In the order of the bytes of their paths.
void sortByPath(std::vector<InputFile>& files);
/// The files that were changed last come first; those whose time cannot be told come last.
void sortByModification(std::vector<InputFile>& files);

/// The path of `name` in a folder; an empty folder is the current one, whose files go by their names alone.
std::string joinedPath(const std::string& folder, std::string_view name);

/// How the file is called in output.
std::string displayName(const std::string& path);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_FILES_FILE_WALK_H
