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
class BlockScanner {
 public:
  /// `size`: how much of the file to look at.
  BlockScanner(File& file, int64_t size) : _file(file), _size(size) {}

  /// True from one of the two stops. Blocks and damaged places come in the order of their offsets, except that a block
  /// found in another's filler follows the report about it.
  bool walk(FunctionRef<bool(const StoredBlock&)> found, FunctionRef<bool(const DamagedPlace&)> damaged);

  /// The header at `offset` if it has a known marker.
  std::optional<BlockHeader> headerAt(int64_t offset);
  bool payloadFits(int64_t offset, const BlockHeader& header) const {
    return header.length <= _size - offset - kHeaderSize;
  }
  /// Whether the payload has the header's checksum; for a deleted block, whether its header is as deletion writes it.
  bool isSound(int64_t offset, const BlockHeader& header);
  /// The first offset from `from` on where a sound block begins; the size if there is none.
  int64_t findBlock(int64_t from);
  /// Of bytes that lie in the file.
  uint32_t checksum(int64_t offset, int64_t length);

 private:
  struct Step {
    int64_t next;
    std::optional<DamagedPlace> damage;
  };
  Step behind(int64_t offset, const BlockHeader& header, bool sound);
  bool isPlausible(int64_t offset);
  bool isCandidate(int64_t offset);
  std::optional<int64_t> hiddenChain(int64_t from, int64_t end);
  bool read(int64_t offset, void* bytes, size_t count);
  uint32_t checksumDirectly(uint32_t crc, int64_t offset, int64_t length);
  uint32_t checksumUpTo(int64_t offset);

  File& _file;
  int64_t _size;
  int64_t _searched = 0;               // bytes that were searched for hidden blocks
  std::optional<int64_t> _unreadable;  // where reading failed first
  std::vector<uint32_t> _checksums;    // of the first n * kStride bytes, made when first needed
};

}  // namespace velan

#endif  // VELAN_STORAGE_BLOCK_SCANNER_INTERNAL_H
