// Why something about a file failed, as a value.
#ifndef VELAN_PLATFORM_FILES_FILE_ERROR_H
#define VELAN_PLATFORM_FILES_FILE_ERROR_H

#include <cstdint>

#include "velan/base/CTypes.h"
#include "velan/base/String.h"

namespace velan {

enum class FileReason : uint8_t {
  None,  // nothing failed
  NoMemory,
  NoName,         // the path is empty
  NameNotText,    // the path holds half a surrogate pair, or is absent, as bytes become that are no UTF-8
  NameHoldsNull,  // the path holds U+0000
  NameTooLong,
  NoSuchFile,
  DanglingLink,  // a symbolic link to nothing
  LoopOfLinks,
  NotFolder,  // something in the path that is used as a folder is none
  IsFolder,
  IsPipe,
  IsSocket,
  IsDevice,
  Exists,  // what should be new is there already
  NotPermitted,
  FolderNotPermitted,  // the file may be changed, but none may be created beside it, which changing it safely takes
  MarkedReadOnly,      // nobody has the permission to write, its owner included
  ReadOnlyVolume,
  Locked,
  NoSpace,
  TooLarge,  // for the volume, or for the format
  TooManyOpen,
  InputOutput,
  Cancelled,
  Other,
};

/// A reason with what the system had to say about it. Cheap to copy, never allocates but for `description`.
class VELAN_EXPORT FileError {
 public:
  FileError() = default;
  FileError(FileReason reason) : _reason(reason) {}
  FileError(FileReason reason, int number) : _reason(reason), _number(number) {}
  /// Locked by the process `holder`; 0 when that is not known.
  static FileError lockedBy(int64_t holder);

  FileReason reason() const { return _reason; }
  /// The system's number of the error, for logs; 0 when the system was not asked.
  int number() const { return _number; }
  /// The process that holds the lock; 0 when it is not known, or when the reason is another one.
  int64_t holder() const { return _holder; }
  explicit operator bool() const { return _reason != FileReason::None; }
  /// Whether the path names something that is no regular file.
  bool isAboutKind() const { return _reason >= FileReason::IsFolder && _reason <= FileReason::IsDevice; }
  /// The reason for people, as the end of a sentence: "it is a folder". A literal.
  const char* words() const;
  /// The same with what else is known: which process holds the lock, what the system calls an error of another kind.
  String description() const;

 private:
  FileReason _reason = FileReason::None;
  int _number = 0;
  int64_t _holder = 0;
};

}  // namespace velan

#endif  // VELAN_PLATFORM_FILES_FILE_ERROR_H
