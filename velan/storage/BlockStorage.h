// A file of checksummed blocks of bytes, each optionally compressed. Append a block, remember its offset, read it back.
// docs/block-storage-format.md tells the format, and what is promised after a crash.
#ifndef VELAN_STORAGE_BLOCK_STORAGE_H
#define VELAN_STORAGE_BLOCK_STORAGE_H

#include <concepts>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "velan/base/Data.h"
#include "velan/base/FunctionRef.h"
#include "velan/base/MutableData.h"
#include "velan/base/String.h"
#include "velan/platform/files/File.h"

namespace velan {

class BlockScanner;
class BlockStorage;
struct BlockHeader;

/// What compaction asks its caller. Both answers have defaults: take every block, never cancel.
class VELAN_EXPORT BlockStorageHandler {
 public:
  virtual ~BlockStorageHandler() = default;
  /// `storage:handleData:key`: whether to write `data` to `storage`, the new file; `key` is the offset where it would
  /// land. The handler may append blocks of its own and set the new file's compression.
  virtual bool storageHandleDataKey(BlockStorage& storage, const Data& data, int64_t key);
  /// `shouldCancelIterationOfStorage`: asked after each block of `storage`, the file being compacted.
  virtual bool shouldCancelIterationOfStorage(BlockStorage& storage);
};

/// A block as it lies in the file.
struct StoredBlock {
  int64_t offset;   // of its header
  uint32_t length;  // of the payload as stored, in bytes
  uint32_t padding;
  bool compressed;

  bool deleted() const { return length == 0; }
  int64_t end() const { return offset + 16 + length + padding; }
};

enum class BlockDamage {
  InvalidHeader,    // no block begins where one should
  Truncated,        // the file ends inside the block
  InvalidChecksum,  // the payload, or the header's length or checksum, has changed
  DoesNotInflate,   // the checksum holds, but the payload is no deflate stream
  HiddenBlocks,     // blocks lie where another block's filler or dead bytes should be
};

/// A damaged place: `length` bytes at `offset`.
struct DamagedPlace {
  BlockDamage damage;
  int64_t offset;
  int64_t length;
};

/// What `verify` and `repairToPath` found.
struct BlockSurvey {
  int64_t blocks = 0;  // intact, deleted ones not counted
  int64_t deleted = 0;
  std::vector<DamagedPlace> damages;
};

/// `BlockStorage`: one file, locked as a whole while it is open: shared for reading, exclusive for updating and
/// appending. A lock is never waited for: opening fails at once. Not to be used by two threads at a time.
///
/// A fresh block may be kept back in memory (1,024 bytes at most); only `synchronizeFile` proves that it is stored.
/// Messages about damaged blocks go to the log.
///
/// Damage is told apart from what is none: where the system does not hand bytes out, or memory runs out, the operation
/// fails, `error` tells why, and nothing is skipped, changed or left behind. No exception leaves the class.
class VELAN_EXPORT BlockStorage {
 public:
  /// `blockStorageForReadingAtPath`: nothing when the file cannot be opened or is locked; `error`, which may be null,
  /// tells why, here and below.
  static std::unique_ptr<BlockStorage> blockStorageForReadingAtPath(const String& path);
  static std::unique_ptr<BlockStorage> blockStorageForReadingAtPath(const String& path, FileError* error);
  /// `blockStorageForUpdatingAtPath`: for reading and writing, from offset 0. A missing file is created, with its
  /// folders.
  static std::unique_ptr<BlockStorage> blockStorageForUpdatingAtPath(const String& path);
  static std::unique_ptr<BlockStorage> blockStorageForUpdatingAtPath(const String& path, FileError* error);
  /// `blockStorageForAppendingAtPath`: only for appending at the end. A missing file is created, with its folders. Data
  /// that was synchronised is not kept in the system's cache.
  static std::unique_ptr<BlockStorage> blockStorageForAppendingAtPath(const String& path);
  static std::unique_ptr<BlockStorage> blockStorageForAppendingAtPath(const String& path, FileError* error);
  /// `initForReadingAtPath`: the same as `blockStorageForReadingAtPath`.
  static std::unique_ptr<BlockStorage> initForReadingAtPath(const String& path);
  /// `initForUpdatingAtPath`: the same as `blockStorageForUpdatingAtPath`.
  static std::unique_ptr<BlockStorage> initForUpdatingAtPath(const String& path);
  /// `initForAppendingAtPath`: the same as `blockStorageForAppendingAtPath`.
  static std::unique_ptr<BlockStorage> initForAppendingAtPath(const String& path);
  /// `initWithFile:path:append`: over a file that the caller opened (and locked). Without one the object exists, but is
  /// closed and has no path.
  static std::unique_ptr<BlockStorage> initWithFile(std::unique_ptr<File> file, const String& path, bool append);

  ~BlockStorage();
  BlockStorage(const BlockStorage&) = delete;
  BlockStorage& operator=(const BlockStorage&) = delete;

  /// `openFile:append`: takes over `file`, at its end or at offset 0. True when there is one.
  bool openFile(std::unique_ptr<File> file, bool append);
  /// `openFileForReading`: closes, then opens the same path for reading. When that fails the object is closed.
  bool openFileForReading();
  /// `openFileForUpdating`: closes, then opens the same path for updating.
  bool openFileForUpdating();
  /// `openFileForAppending`: closes, then opens the same path for appending.
  bool openFileForAppending();
  /// `closeFile`: writes what is kept back, unlocks, closes. False when bytes were lost.
  bool closeFile();

  /// Why the last operation failed, as far as the file system or the memory is to blame: none where it succeeded, or
  /// where the blocks or the arguments are at fault.
  const FileError& error() const { return _error; }

  /// `isCompressed`: whether new blocks are to be compressed.
  bool isCompressed() const { return _compressed; }
  /// `setCompressed`: a block is stored compressed only where that makes it shorter.
  void setCompressed(std::same_as<bool> auto compressed) { _compressed = compressed; }
  /// `blockSize`: new blocks occupy a multiple of so many bytes; 0 (the default): no padding.
  uint64_t blockSize() const { return _blockSize; }
  /// `setBlockSize`: to be a multiple of 512; another is reported and used all the same.
  void setBlockSize(uint64_t blockSize);
  /// The most that a compressed block may inflate to when it is read, in bytes; no limit by default. A few bytes can
  /// inflate to a thousand times as many: set it for files of unknown origin.
  size_t inflationLimit() const { return _inflationLimit; }
  /// A block that inflates to more is not read: `error` says that it is too large, and the position stays.
  void setInflationLimit(size_t bytes) { _inflationLimit = bytes; }
  /// `path`: as given.
  String path() const { return _path; }
  /// `isValid`: whether a file is open.
  bool isValid() const { return _file != nullptr; }
  /// `offsetOfLastBlock`: of the block last read, deleted ones included; 0 before the first.
  int64_t offsetOfLastBlock() const { return _lastPosition; }
  /// `lengthOfLastBlock`: of the block last read with header and padding, in bytes.
  uint64_t lengthOfLastBlock() const { return _lastLength; }

  /// `offsetInFile`: the position; 0 when closed.
  int64_t offsetInFile() const;
  /// `lengthOfFile`: in bytes; moves the position to the end. 0 when closed, or (`error` tells) when the position is
  /// not there.
  int64_t lengthOfFile();
  /// `seekToEndOfFile`: the same as `lengthOfFile`.
  int64_t seekToEndOfFile();
  /// `seekToFileOffset`: moves the position. False for a negative offset, when closed, or (`error` tells) when bytes
  /// that were kept back are lost.
  bool seekToFileOffset(int64_t offset);
  /// `truncateFileAtOffset`: makes the file end there, cut off or filled with zeros, and moves the position there.
  bool truncateFileAtOffset(int64_t offset);
  /// `synchronizeFile`: true when all blocks written so far are on permanent storage. After bytes that were kept back
  /// got lost it answers false once; after the system failed to synchronise it does so until the file is opened again.
  bool synchronizeFile();
  /// `backupToPath`: synchronises, then copies the file. False when there is a file at `path` already.
  bool backupToPath(const String& path);

  /// `nextAvailableBlock`: the data of the next block, which may be compressed in the file. Deleted and empty blocks
  /// are skipped, damaged ones too, with a message. Absent at the end of the file, at an invalid header, at a truncated
  /// block (the position stays there), and for a block that does not inflate (the position is behind it). Absent as
  /// well, with `error` set and the position where it was, when reading fails: only without an error the end is the
  /// end.
  Data nextAvailableBlock();
  /// `copyOfNextAvailableBlock`: the same as `nextAvailableBlock`.
  Data copyOfNextAvailableBlock();
  /// `mutableCopyOfNextAvailableBlock`: the same, to be edited.
  std::optional<MutableData> mutableCopyOfNextAvailableBlock();
  /// `mutableCopyOfNextAvailableBlock:`: hands over the stored payload of a compressed block as well; `compressed` may
  /// be null and becomes absent for a plain block.
  std::optional<MutableData> mutableCopyOfNextAvailableBlock(Data* compressed);

  /// `appendBlock`: writes `data` as a new block, compressed if that was set and makes it shorter. In updating mode it
  /// goes to the current position, over whatever is there: call `seekToEndOfFile` first. False for empty data, data
  /// above 4,294,967,295 bytes, a file open for reading, or a failure, after which the file is as long as before.
  bool appendBlock(const Data& data);
  /// `appendCompressedBlock`: as it is under the marker of compressed blocks: it must be a zlib deflate stream.
  bool appendCompressedBlock(const Data& data);
  /// `appendUncompressedBlock`: as a plain block.
  bool appendUncompressedBlock(const Data& data);
  /// `updateBlock:atFileOffset`: writes `data` over the block at `offset`. False when it is longer than the old payload
  /// and padding together, when there is no block, or when not open for updating. The position stays. A crash during it
  /// may lose this block: appending, synchronising, then deleting the old block is the safe way.
  bool updateBlock(const Data& data, int64_t offset);
  /// `deleteBlockAtFileOffset`: marks the block at `offset` as deleted; once more is fine. The position stays.
  bool deleteBlockAtFileOffset(int64_t offset);

  /// `optimizeLastBlock:compressed:toFileOffset:nextOffset`: moves the block last read towards the front of the file,
  /// for compaction in place. `data` is its contents, `compressed` its stored payload if that was compressed (may be
  /// absent). False when it stays where it is; `nextOffset` (may be null) is where the next block can go. The position
  /// is the end of the old block afterwards. A crash while blocks are moved can lose blocks; `optimizeToPath` cannot.
  bool optimizeLastBlock(const Data& data, const Data& compressed, int64_t offset, int64_t* nextOffset);
  /// `optimizeToPath:skipErrors:handler`: writes all blocks that are left into a new file, which gets no more
  /// permissions than this one has, or takes the place of the one there. It appears when it is complete; otherwise
  /// nothing is left of it. `handler` may be null. False for this file's own path in any letter case or through a link,
  /// for a damaged block unless `skipErrors`, when cancelled, when reading fails, or when the new file cannot be
  /// written and synchronised. `skipErrors` leaves out blocks with a wrong checksum, but stops, successfully, at a
  /// damaged header or a truncated block, behind which nothing is found: `compactToPath` goes on there.
  bool optimizeToPath(const String& path, bool skipErrors, BlockStorageHandler* handler);

  /// Gets the bytes done and in all; true to stop.
  using Progress = FunctionRef<bool(int64_t done, int64_t total)>;
  /// `verify`: checks every header up to exactly the end of the file, every payload's checksum, and that no block hides
  /// where filler or dead bytes should be. Nothing when stopped, closed, open for appending, or when reading fails. The
  /// position stays.
  std::optional<BlockSurvey> verify();
  std::optional<BlockSurvey> verify(Progress progress);
  /// `recoverTail`: makes the file fit for appending after an unclean end: cuts off a torn block at the end if nothing
  /// valid lies behind it, and completes the padding of a whole one (1 MB at most), each with a warning. True when the
  /// file ends with a whole block then. False, with nothing touched, for any other damage, for bytes that no append
  /// can have left, for a file of 16 bytes and more that begins with a torn block and so may be no block file, when
  /// reading fails, and when not open for updating. What lies far in front of a whole last block is not looked at.
  bool recoverTail();
  /// Whether a block begins at `offset`: one that follows the others, or that is found behind damage.
  bool isBlockAtFileOffset(int64_t offset);
  /// As `repairToPath`, but compresses what is not where that was set, and unless `skipErrors` gives up at the first
  /// damage. What could not be kept is among the damages of the answer.
  std::optional<BlockSurvey> compactToPath(const String& path, bool skipErrors, Progress progress);
  /// `repairToPath`: writes every block that can be found, also behind damaged headers, unchanged into a new file;
  /// where a block can begin after a damaged one is told by a header whose payload has the right checksum. Known limit:
  /// such headers inside payloads that hold blocks themselves. Nothing, and nothing left behind, when there is a file
  /// at `path`, or when reading or writing fails.
  std::optional<BlockSurvey> repairToPath(const String& path);
  std::optional<BlockSurvey> repairToPath(const String& path, Progress progress);
  /// `enumerateStoredBlocks`: the blocks that `repairToPath` would find and the deleted ones, in order, with the
  /// damaged places between them; each of the two may be null, and true stops. False when stopped, and when reading
  /// fails, which `error` tells.
  bool enumerateStoredBlocks(FunctionRef<bool(const StoredBlock&)> found,
                             FunctionRef<bool(const DamagedPlace&)> damaged);

 private:
  enum class Outcome { Block, End, Error, DoesNotInflate, Failed };
  struct Reading {
    Outcome outcome;
    Data data;
    Data compressed;
    bool skippedError;
  };

  BlockStorage() = default;
  static std::unique_ptr<BlockStorage> opened(const String& path, FileAccess access, FileError* error);
  static std::unique_ptr<File> openFile(const String& path, FileAccess access, FileError& error);
  bool reopen(FileAccess access);
  bool isUpdating() const { return _file && _file->access() == FileAccess::Updating; }
  bool isReadable() const { return _file && _file->access() != FileAccess::Appending; }

  /// An operation as a whole: `body()`, or `neutral` when memory runs out.
  template <typename Result, typename Body>
  Result guarded(Result neutral, Body body);
  template <typename Result, typename Body>
  Result readSafely(Result neutral, Body body);
  bool failWith(const FileError& error) { return _error = error, false; }
  bool failReading(const FileError& error, int64_t offset);

  Reading readNext();
  Outcome readPayload(const BlockHeader& header, Data& payload);
  Outcome inflate(Reading& reading);
  void complain(const char* what, int64_t offset) const;

  struct Stored {
    Data bytes;
    uint32_t marker;
  };
  Stored _blockForWriting(const Data& data) const;
  std::optional<uint32_t> paddingFor(size_t length) const;
  bool _appendBlock(const Stored& block);
  bool settle(int64_t offset, const BlockHeader& old, const BlockHeader& header);
  bool overwriteHeader(int64_t offset, const BlockHeader& old, const BlockHeader& header);
  bool overwriteBlock(int64_t offset, const BlockHeader& old, const BlockHeader& header, const Data& payload,
                      uint64_t zeros);
  std::optional<BlockHeader> headerForChanging(int64_t offset);

  bool copyBlocks(BlockStorage& target, bool skipErrors, BlockStorageHandler* handler);
  bool writeNewFile(const String& path, bool mustBeNew, FunctionRef<bool(BlockStorage& target)> write);
  std::optional<BlockSurvey> rewriteToPath(const String& path, bool skipErrors, bool compresses, Progress progress);
  bool walk(Progress progress, FunctionRef<bool(BlockScanner&, const StoredBlock&)> found,
            FunctionRef<bool(const DamagedPlace&)> damaged);
  bool finished(const BlockScanner& scanner);
  bool recoverTailUpTo(int64_t size);

  std::unique_ptr<File> _file;  // null when closed
  int64_t _lastPosition = 0;
  uint64_t _lastLength = 0;
  uint64_t _blockSize = 0;
  size_t _inflationLimit = SIZE_MAX;
  bool _compressed = false;
  FileError _error;
  String _path;
};

}  // namespace velan

#endif  // VELAN_STORAGE_BLOCK_STORAGE_H
