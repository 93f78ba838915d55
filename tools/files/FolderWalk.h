// Walking over the files of a folder.
#ifndef VELAN_TOOLS_FILES_FOLDER_WALK_H
#define VELAN_TOOLS_FILES_FOLDER_WALK_H

#include <dirent.h>
#include <sys/stat.h>

#include <memory>
#include <string>
#include <vector>

#include "tools/files/FileFilter.h"
#include "tools/files/FileWalk.h"
#include "tools/files/IgnoreFiles.h"

namespace velan::tool {

/// Adds the files of folders, as `collectFiles` says. Borrows what it is given.
class FolderWalk {
 public:
  FolderWalk(const FileSelection& selection, const FileFilter& filter, std::vector<InputFile>& files)
      : _selection(selection), _filter(filter), _files(files) {}

  /// An empty path is the current folder, whose files go by their names alone.
  void walk(const std::string& path);

 private:
  // A folder that is being walked over, and those above it.
  struct Folder {
    std::shared_ptr<const Folder> above;
    dev_t device = 0;
    ino_t inode = 0;
    std::shared_ptr<const IgnoreFiles> ignored;
  };
  struct Entry {
    std::string path;
    bool isFolder;
    ino_t inode;
    std::shared_ptr<const Folder> above;
  };

  void visitFolder(const Entry& entry);
  void visitFile(const Entry& entry);
  std::vector<Entry> list(const std::string& folder);
  bool describe(const std::string& folder, const dirent& listed, Entry& entry);
  bool isToBeEntered(const Entry& entry, Folder& folder);
  void addTrouble(const std::string& path, const std::string& why);

  const FileSelection& _selection;
  const FileFilter& _filter;
  std::vector<InputFile>& _files;
  size_t _cut = 0;  // how much of a path is the folder that is searched
  std::vector<Entry> _pending;
};

}  // namespace velan::tool

#endif  // VELAN_TOOLS_FILES_FOLDER_WALK_H
