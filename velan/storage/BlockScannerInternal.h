// Finding blocks in a file that may be damaged.
#ifndef VELAN_STORAGE_BLOCK_SCANNER_INTERNAL_H
#define VELAN_STORAGE_BLOCK_SCANNER_INTERNAL_H

#include <optional>
#include <vector>

#include "velan/storage/BlockFormatInternal.h"
#include "velan/storage/BlockStorage.h"

namespace velan {

/// Walks the blocks of a file and, behind a damaged place, finds where they go on. A block may be looked for at every
/// byte; the time stays proportional to the file's length all the same.
///
/// A place that cannot be read and a lack of memory are no damage: from then on nothing is read any more, every answer
/// is void, and `failure` tells what it was.
class BlockScanner {
 public:
  /// `size`: how much of the file to look at. `progress` may be null; where it answers true reading fails.
  BlockScanner(File& file, int64_t size, FunctionRef<bool(int64_t done, int64_t total)> progress)
      : _file(file), _size(size), _progress(progress) {}

  /// True from one of the two stops. Blocks and damaged places come in the order of their offsets, except that a block
  /// found in another's filler follows the report about it.
  bool walk(FunctionRef<bool(const StoredBlock&)> found, FunctionRef<bool(const DamagedPlace&)> damaged);

  /// Why and where reading failed first.
  const FileError& failure() const { return _failure; }
  int64_t failedOffset() const { return _failedOffset; }

  bool read(int64_t offset, void* bytes, size_t count);
  /// The bytes, in `place` unless they are in memory anyhow, until something else is read; null when reading fails.
  const uint8_t* bytesAt(int64_t offset, uint8_t* place, size_t count);
  /// The stored bytes of a block; absent when they cannot be read.
  Data payloadOf(const StoredBlock& block);

  /// The header at `offset` if it has a known marker.
  std::optional<BlockHeader> headerAt(int64_t offset);
  bool payloadFits(int64_t offset, const BlockHeader& header) const {
    return header.length <= _size - offset - kHeaderSize;
  }
  /// Whether the payload has the header's checksum; for a deleted block, whether its header is as deletion writes it.
  bool isSound(int64_t offset, const BlockHeader& header);
  /// The first offset from `from` on where a sound block begins; the size if there is none.
  int64_t findBlock(int64_t from);
  /// Whether what begins at `offset`, behind the last block, can be the beginning of one that was never written whole.
  bool isTorn(int64_t offset);
  /// The end of the blocks that follow each other from the beginning, by their lengths alone, up to `limit`.
  int64_t endOfHeaders(int64_t limit);
  /// Whether the last sectors end with a whole block, so that nothing torn follows. Blocks far in front are not looked
  /// at; false also when only they could tell.
  bool endsWithWholeBlock();
  /// Of bytes that lie in the file.
  uint32_t checksum(int64_t offset, int64_t length);

 private:
  struct Step {
    int64_t next;
    std::optional<DamagedPlace> damage;
  };
  bool mayRead(int64_t offset);
  Step behind(int64_t offset, const BlockHeader& header, bool sound);
  bool hasWholePayload(int64_t offset, const BlockHeader& header);
  BlockDamage damageOfHeader(int64_t offset, int64_t next);
  bool isPlausible(int64_t offset);
  bool isCandidate(int64_t offset);
  bool isBlank(int64_t from, int64_t end);
  std::optional<int64_t> hiddenChain(int64_t from, int64_t end);
  uint32_t checksumDirectly(uint32_t crc, int64_t offset, int64_t length);
  uint32_t checksumUpTo(int64_t offset);

  File& _file;
  int64_t _size;
  FunctionRef<bool(int64_t, int64_t)> _progress;
  FileError _failure;
  int64_t _failedOffset = 0;
  int64_t _farthest = 0;             // how far reading has come
  std::optional<int64_t> _directly;  // how many bytes may still be checked without those before them; usually no matter
  int64_t _checked = 0;              // bytes that were checked without those before them
  int64_t _lookedAt = 0;             // bytes that were looked at for zeros
  int64_t _searched = 0;             // bytes that were searched for hidden blocks
  std::vector<uint32_t> _checksums;  // of the first n * kStride bytes, made when first needed
};

}  // namespace velan

#endif  // VELAN_STORAGE_BLOCK_SCANNER_INTERNAL_H
