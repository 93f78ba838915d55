// Files that are written from their beginning to their end.
#ifndef VELAN_PLATFORM_FILE_WRITER_H
#define VELAN_PLATFORM_FILE_WRITER_H

#include <memory>
#include <span>

#include "velan/base/String.h"

namespace velan {

/// A file open for being written anew in its place: other links to it and its permissions stay.
class VELAN_EXPORT FileWriter {
 public:
  /// Opens the file at `path` and empties it; creates it, and the folders it lies in, when they are missing. Null when
  /// that fails.
  static std::unique_ptr<FileWriter> withPath(const String& path);
  /// Closes the file.
  ~FileWriter();
  FileWriter(const FileWriter&) = delete;
  FileWriter& operator=(const FileWriter&) = delete;

  /// Appends `bytes`. False when not all of them could be written.
  bool write(std::span<const uint8_t> bytes);
  /// Waits until everything lies on the disk.
  bool synchronize();

 private:
  explicit FileWriter(int descriptor) : _descriptor(descriptor) {}

  int _descriptor;
};

}  // namespace velan

#endif  // VELAN_PLATFORM_FILE_WRITER_H
