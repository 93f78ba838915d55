#include <cerrno>
#include <string>
#include <system_error>

#include "velan/platform/files/FileErrorInternal.h"
#include "velan/platform/files/FileLockInternal.h"

namespace velan {
namespace {

FileReason reasonOf(int number) {
  switch (number) {
    case 0:
      return FileReason::None;
    case ENOMEM:
      return FileReason::NoMemory;
    case ENAMETOOLONG:
      return FileReason::NameTooLong;
    case ENOENT:
      return FileReason::NoSuchFile;
    case ELOOP:
      return FileReason::LoopOfLinks;
    case ENOTDIR:
      return FileReason::NotFolder;
    case EISDIR:
      return FileReason::IsFolder;
    case EEXIST:
      return FileReason::Exists;
    case EACCES:
    case EPERM:
      return FileReason::NotPermitted;
    case EROFS:
      return FileReason::ReadOnlyVolume;
    case EWOULDBLOCK:
    case ETXTBSY:
      return FileReason::Locked;
    case ENOSPC:
    case EDQUOT:
      return FileReason::NoSpace;
    case EFBIG:
    case EOVERFLOW:
      return FileReason::TooLarge;
    case EMFILE:
    case ENFILE:
      return FileReason::TooManyOpen;
    case EIO:
      return FileReason::InputOutput;
    default:
      return FileReason::Other;
  }
}

}  // namespace

FileError systemError(int number) { return {reasonOf(number), number}; }

FileError lastSystemError() { return systemError(errno); }

FileError errorOfKind(mode_t mode) {
  if (S_ISREG(mode)) return {};
  if (S_ISDIR(mode)) return {FileReason::IsFolder, EISDIR};
  if (S_ISFIFO(mode)) return {FileReason::IsPipe, EINVAL};
  if (S_ISSOCK(mode)) return {FileReason::IsSocket, EINVAL};
  return {FileReason::IsDevice, EINVAL};
}

FileError FileError::lockedBy(int64_t holder) {
  FileError error(FileReason::Locked, EWOULDBLOCK);
  error._holder = holder;
  return error;
}

const char* FileError::words() const {
  switch (_reason) {
    case FileReason::None:
      return "nothing is wrong";
    case FileReason::NoMemory:
      return "there is not enough memory";
    case FileReason::NoName:
      return "it has no name";
    case FileReason::NameNotText:
      return "its name is no valid text (UTF-8)";
    case FileReason::NameHoldsNull:
      return "its name holds the character U+0000";
    case FileReason::NameTooLong:
      return "its name is too long";
    case FileReason::NoSuchFile:
      return "there is no such file";
    case FileReason::DanglingLink:
      return "it is a symbolic link to a file that does not exist";
    case FileReason::LoopOfLinks:
      return "its symbolic links go round in a circle";
    case FileReason::NotFolder:
      return "what should be a folder in its path is none";
    case FileReason::IsFolder:
      return "it is a folder";
    case FileReason::IsPipe:
      return "it is a pipe (FIFO)";
    case FileReason::IsSocket:
      return "it is a socket";
    case FileReason::IsDevice:
      return "it is a device";
    case FileReason::Exists:
      return "there is a file already";
    case FileReason::NotPermitted:
      return "permission denied";
    case FileReason::FolderNotPermitted:
      return "no file may be created in its folder";
    case FileReason::MarkedReadOnly:
      return "it is marked as read-only";
    case FileReason::ReadOnlyVolume:
      return "its volume is read-only";
    case FileReason::Locked:
      return "another program has locked it";
    case FileReason::NoSpace:
      return "no space is left on its volume";
    case FileReason::TooLarge:
      return "it would become too large";
    case FileReason::TooManyOpen:
      return "too many files are open";
    case FileReason::InputOutput:
      return "input/output error";
    case FileReason::Cancelled:
      return "it was cancelled";
    case FileReason::Other:
      return "the system refuses";
  }
  return "";
}

String FileError::description() const {
  if (_reason == FileReason::Locked && _holder > 0) {
    const std::string name = processName(_holder);
    return String::fromUTF8Lossy((name.empty() ? "process " : name + ", process ") + std::to_string(_holder) +
                                 ", has locked it");
  }
  if (_reason != FileReason::Other) return String::fromUTF8(words());
  return String::fromUTF8Lossy(std::generic_category().message(_number));
}

}  // namespace velan
