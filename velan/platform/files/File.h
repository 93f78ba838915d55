// An open file: buffered in small, locked as a whole, honest about what reached the disk.
#ifndef VELAN_PLATFORM_FILES_FILE_H
#define VELAN_PLATFORM_FILES_FILE_H

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>

#include "velan/base/CTypes.h"
#include "velan/platform/files/FileError.h"

namespace velan {

class FileCalls;

/// What a file is opened for. Appending writes at the end whatever the position, and cannot read.
enum class FileAccess { Reading, Updating, Appending };

/// Creates an empty file with mode 0666 less the umask, and its missing parent folders, unless it is there. What was
/// created is in its folder also after a power failure. Answers why the file is missing and cannot be created.
VELAN_EXPORT FileError createFileIfMissing(const String& path);

/// Copies the bytes that `from` leads to into a new file with its permissions, less the umask, and synchronises it.
/// Leaves nothing behind when `to` exists or anything else fails.
VELAN_EXPORT FileError copyFile(const String& from, const String& to);

/// An open file with a position. Not to be used by two threads at once.
///
/// What is written is kept back while it fits into 1,024 bytes (or more, see `keepMore`), in whole calls: one call's
/// bytes are never kept back in part, and every operation that reads, moves the position or synchronises writes them
/// out first. A write at the end that fails leaves the file as long as before, and bytes that could not be written are
/// dropped: they are never written later.
class VELAN_EXPORT File {
 public:
  /// The most that is kept back, in bytes, where nobody asks for more.
  static constexpr size_t kBufferSize = 1024;

  /// Opens the regular file at `path`; the position is 0, or the end for appending, which creates a missing file.
  /// Never waits, and touches nothing that is no regular file. Null when it fails; `error`, which may be null, tells
  /// why.
  static std::unique_ptr<File> open(const String& path, FileAccess access);
  static std::unique_ptr<File> open(const String& path, FileAccess access, FileError* error);
  /// The same with the file's lock, shared for reading, else exclusive: what is at `path` then is the file that is
  /// locked, not one that it has replaced.
  static std::unique_ptr<File> openLocked(const String& path, FileAccess access, FileError* error);
  /// Closes; what cannot be written then is reported to the log.
  ~File();
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  FileAccess access() const { return _access; }
  /// Takes the lock of the whole file, shared or exclusive, until it is closed. Never waits: false when it is taken.
  bool lock(bool exclusive);
  /// Why the last operation that failed did.
  const FileError& error() const { return _error; }

  int64_t position() const { return _position; }
  /// Moves the position, which may lie beyond the end. False for a negative offset, or when bytes kept back are lost.
  bool seek(int64_t offset);
  /// In bytes, with those kept back; -1 when the system does not tell.
  int64_t length();
  /// Whether the file reaches at least to `end`; asks the system only when it did not before.
  bool reaches(int64_t end);

  /// Reads up to `count` bytes at the position and moves it. Fewer only at the end of the file; -1 when reading fails.
  int64_t read(void* bytes, size_t count);
  /// The next `count` bytes if they have been read already, until the file is used again; else null. The position
  /// stays.
  const uint8_t* peek(size_t count) const { return peekAt(_position, count); }
  /// The same at an offset.
  const uint8_t* peekAt(int64_t offset, size_t count) const {
    return count > 0 && count <= bufferedAt(offset) ? _buffer.get() + (offset - _start) : nullptr;
  }
  /// As `read` at an offset, without moving the position. Only `readOn` expects that what follows is read next.
  int64_t readAt(int64_t offset, void* bytes, size_t count);
  int64_t readOn(int64_t offset, void* bytes, size_t count);

  using Pieces = std::initializer_list<std::span<const uint8_t>>;
  /// Writes the pieces, then `zeros` zero bytes, at the position (appending: at the end) and moves it.
  bool write(Pieces pieces, uint64_t zeros);
  /// Writes at an offset inside the file, at once, without moving the position. Not for appending.
  bool overwrite(int64_t offset, Pieces pieces, uint64_t zeros);
  /// Makes the file end at `offset`, where the position then is.
  bool truncate(int64_t offset);
  /// Keeps back up to 64 KB from now on if there is memory for that: for files that are nobody's before they are whole.
  void keepMore() { _kept = enlargeBuffer() ? _room : _kept; }
  /// Writes out what is kept back.
  bool flush();
  /// True when everything written so far is on permanent storage. False once after bytes that were kept back got lost,
  /// and for good after the system failed to synchronise: only opening again tells what the file then holds.
  bool synchronize();
  /// Waits until what `overwrite` wrote is on permanent storage, so that what is written next cannot get there first.
  bool barrier();
  /// Flushes, unlocks, closes. False when bytes are lost. Afterwards only destruction is allowed.
  bool close();

 private:
  friend class FileReplacement;

  File(int descriptor, FileAccess access, int64_t length, FileCalls& calls);
  static std::unique_ptr<File> opened(const std::string& path, FileAccess access, int flags, unsigned mode,
                                      FileError& error);
  static std::unique_ptr<File> openedAndLocked(const std::string& path, FileAccess access, FileError& error);
  bool failed();
  bool refused(const FileError& error);
  /// How many bytes from `offset` on have been read already.
  size_t bufferedAt(int64_t offset) const {
    const bool isWithin = !_pending && offset >= _start && offset - _start < static_cast<int64_t>(_filled);
    return isWithin ? _filled - static_cast<size_t>(offset - _start) : 0;
  }
  bool enlargeBuffer();
  size_t toReadAhead(int64_t offset, size_t count);
  bool fillBuffer(int64_t offset, size_t count, size_t ahead);
  int64_t readLong(int64_t offset, uint8_t* bytes, size_t count, size_t ahead);
  bool readInto(int64_t offset, uint8_t* bytes, size_t count, size_t ahead, int64_t& got);
  bool writeOut(int64_t offset, Pieces pieces, uint64_t zeros);
  bool putOut(int64_t offset, Pieces pieces, uint64_t zeros);
  void dropReadAhead() { _filled = _pending ? _filled : 0; }

  FileCalls* _calls;
  int _descriptor;
  FileAccess _access;
  bool _pending = false;     // the buffer holds bytes to write, otherwise bytes read ahead
  bool _lost = false;        // kept-back bytes were dropped since the last synchronisation
  bool _unreliable = false;  // a synchronisation failed
  FileError _error;
  int64_t _position = 0;        // behind the buffer while bytes are pending
  int64_t _size;                // as last seen; bytes kept back not counted
  int64_t _start = 0;           // offset in the file of the buffer's first byte
  size_t _filled = 0;           // bytes in the buffer
  size_t _ahead = kBufferSize;  // how much to read ahead: grows while reading goes straight on
  int64_t _sequel = -1;         // where reading would go straight on
  size_t _room;                 // of the buffer, in bytes
  size_t _kept = kBufferSize;   // the most that is kept back
  std::unique_ptr<uint8_t[]> _buffer;
};

}  // namespace velan

#endif  // VELAN_PLATFORM_FILES_FILE_H
