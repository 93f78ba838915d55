// A file that is written beside another, whose place it takes when it is complete.
#ifndef VELAN_PLATFORM_FILES_FILE_REPLACEMENT_INTERNAL_H
#define VELAN_PLATFORM_FILES_FILE_REPLACEMENT_INTERNAL_H

#include <memory>
#include <string>

#include "velan/platform/files/File.h"

namespace velan {

/// The file at a path, locked if it is there, and its successor. What is not committed leaves no trace.
///
/// The successor takes over owner, permissions and extended attributes. Where that is not possible, or where the old
/// file has further names, the old one is written in its place from the complete and synchronised successor.
class FileReplacement {
 public:
  struct Options {
    bool mustBeNew = false;
    bool createsFolders = false;
    bool waits = false;          // for the lock of another, half a minute at most
    const File* like = nullptr;  // a new file gets no more permissions than this one has, otherwise 0666 less the umask
  };
  /// Null, with the reason in `error`, when there is something at `path` that cannot be replaced.
  static std::unique_ptr<FileReplacement> begin(const String& path, const Options& options, FileError& error);
  /// Removes what was not committed.
  ~FileReplacement();
  FileReplacement(const FileReplacement&) = delete;
  FileReplacement& operator=(const FileReplacement&) = delete;

  /// The file that is there, open for updating; null when there is none.
  File* existing() const { return _existing.get(); }
  /// Creates the successor, empty, for appending. Null, with the reason in `error`, when that fails.
  std::unique_ptr<File> createSuccessor(FileError& error);
  /// Puts the successor, which must be synchronised and closed, in its place. `Exists` when another file has come there
  /// that was not there in the beginning.
  FileError commit();

 private:
  FileReplacement() = default;
  FileError writeInPlace();
  std::string newName() const;

  std::string _path;  // without symbolic links
  std::unique_ptr<File> _existing;
  std::string _successor;  // its path; empty before it exists and after it is committed
  unsigned _mode = 0;
  bool _inPlace = false;
};

}  // namespace velan

#endif  // VELAN_PLATFORM_FILES_FILE_REPLACEMENT_INTERNAL_H
