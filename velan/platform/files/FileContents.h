// Whole files as bytes.
#ifndef VELAN_PLATFORM_FILES_FILE_CONTENTS_H
#define VELAN_PLATFORM_FILES_FILE_CONTENTS_H

#include "velan/base/Data.h"
#include "velan/base/String.h"
#include "velan/platform/files/FileError.h"

namespace velan {

enum class FileReading {
  Plain,
  Uncached,  // asks the system to drop the file's pages from its cache afterwards; only a hint
  Mapped,    // maps large regular files of local volumes, reads all others
};

/// The bytes of the file at `path`, an absolute or relative path. Absent when it cannot be read, or is a folder.
///
/// Mapped bytes come from the file when they are touched. While they are in use the file must not get shorter: touching
/// what was cut off ends the process with SIGBUS. Changes that others make in place may show up or not. Files that
/// replace this one under its name do no harm.
VELAN_EXPORT Data readFileContents(const String& path, FileReading reading);
/// The same; `error`, which may be null, tells why nothing could be read.
VELAN_EXPORT Data readFileContents(const String& path, FileReading reading, FileError* error);

}  // namespace velan

#endif  // VELAN_PLATFORM_FILES_FILE_CONTENTS_H
