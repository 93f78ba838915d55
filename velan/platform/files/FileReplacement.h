// Changing whole files so that whoever reads sees the old contents or the new ones, also after a crash.
#ifndef VELAN_PLATFORM_FILES_FILE_REPLACEMENT_H
#define VELAN_PLATFORM_FILES_FILE_REPLACEMENT_H

#include "velan/base/Data.h"
#include "velan/base/FunctionRef.h"
#include "velan/platform/files/FileError.h"

namespace velan {

/// Puts `contents` in the place of the file at `path`, or creates it with mode 0666 less the umask. They are written to
/// a temporary file in its folder, which is synchronised and renamed. Owner, permissions and extended attributes stay,
/// and so does a symbolic link, whose target is replaced. A file that has further names, or whose owner or attributes
/// cannot be given to another, is written in its place instead, and the temporary file stays until that is done.
///
/// Refuses what is no regular file, may not be written, or is a link to nothing. When it fails the file is as before,
/// and nothing temporary is left. Waits up to half a minute for another process that has locked the file.
VELAN_EXPORT FileError replaceFile(const String& path, const Data& contents);

/// The same with what `edit` makes of the present contents, which are absent when there is no file. The file is locked
/// from reading to renaming, so that no other process that does the same loses its changes. Where `edit` answers an
/// absent buffer the file stays as it is. It is called again when another process has created the file meanwhile.
VELAN_EXPORT FileError updateFile(const String& path, FunctionRef<Data(const Data& contents)> edit);

}  // namespace velan

#endif  // VELAN_PLATFORM_FILES_FILE_REPLACEMENT_H
