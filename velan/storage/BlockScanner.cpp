#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <span>
#include <utility>

#include "velan/storage/BlockScannerInternal.h"
#include "velan/text/digest/ChecksumsInternal.h"

namespace velan {
namespace {

constexpr int64_t kStride = 4096;
constexpr size_t kChunk = 65536;
constexpr int64_t kFirstWindow = 1 << 12;
constexpr int64_t kLastWindow = 1 << 24;
constexpr int64_t kMostSearches = 16;  // of one byte, for hidden blocks

bool isMarker(const uint8_t* at) { return BlockHeader{loadBigEndian<uint32_t>(at), 0, 0, 0}.hasKnownMarker(); }

// What a crash leaves of a header: bytes of it, and zeros where they did not reach the disk. Anything else was never
// appended here, and the file may be no block file at all.
bool canBeTorn(const HeaderBytes& bytes, int64_t count) {
  const auto matches = [&](uint32_t marker) {
    const HeaderBytes written = BlockHeader{marker, 0, 0, 0}.bytes();
    for (int64_t i = 0; i < std::min<int64_t>(count, 4); ++i) {
      const auto at = static_cast<size_t>(i);
      if (bytes[at] != 0 && bytes[at] != written[at]) return false;
    }
    return true;
  };
  return matches(kPlainMarker) || matches(kCompressedMarker) || matches(kOldMarker);
}

}  // namespace

// Asked before every byte that is looked at.
bool BlockScanner::mayRead(int64_t offset) {
  if (_failure) return false;
  _failedOffset = offset;
  if (offset < _farthest) return true;
  _farthest = offset + 1;
  if (_progress && _progress(offset, _size)) _failure = FileReason::Cancelled;
  return !_failure;
}

bool BlockScanner::read(int64_t offset, void* bytes, size_t count) {
  if (!mayRead(offset)) return false;
  const int64_t got = _file.readOn(offset, bytes, count);
  if (got == static_cast<int64_t>(count)) return true;
  _failure = got < 0 ? _file.error() : FileError(FileReason::InputOutput);  // shorter than it was
  return false;
}

const uint8_t* BlockScanner::bytesAt(int64_t offset, uint8_t* place, size_t count) {
  const uint8_t* const ahead = _file.peekAt(offset, count);
  if (ahead) return mayRead(offset) ? ahead : nullptr;
  return read(offset, place, count) ? place : nullptr;
}

Data BlockScanner::payloadOf(const StoredBlock& block) {
  const int64_t offset = block.offset + kHeaderSize;
  Data payload;
  if (const uint8_t* const ahead = _file.peekAt(offset, block.length)) {
    if (!mayRead(offset)) return Data();
    payload = Data::withBytes(ahead, block.length);
  } else {
    void* const bytes = _failure ? nullptr : std::malloc(std::max<size_t>(block.length, 1));
    if (bytes) payload = Data::withBytesNoCopy(bytes, block.length, true);
    if (payload && !read(offset, bytes, block.length)) return Data();
  }
  if (!payload && !_failure) _failedOffset = block.offset, _failure = FileReason::NoMemory;
  return payload;
}

std::optional<BlockHeader> BlockScanner::headerAt(int64_t offset) {
  HeaderBytes place;
  const uint8_t* const bytes = _size - offset < kHeaderSize ? nullptr : bytesAt(offset, place.data(), place.size());
  if (!bytes) return std::nullopt;
  const BlockHeader header = BlockHeader::fromBytes(std::span<const uint8_t, kHeaderSize>(bytes, kHeaderSize));
  return header.hasKnownMarker() ? std::optional(header) : std::nullopt;
}

uint32_t BlockScanner::checksumDirectly(uint32_t crc, int64_t offset, int64_t length) {
  uint8_t chunk[kChunk];
  while (length > 0) {
    const auto count = static_cast<size_t>(std::min<int64_t>(length, kChunk));
    const uint8_t* const bytes = bytesAt(offset, chunk, count);
    if (!bytes) return ~crc;
    crc = crc32Continued(crc, bytes, count);
    offset += static_cast<int64_t>(count);
    length -= static_cast<int64_t>(count);
  }
  return crc;
}

uint32_t BlockScanner::checksumUpTo(int64_t offset) {
  if (_checksums.empty()) _checksums.push_back(0);
  const int64_t index = offset / kStride;
  for (auto done = static_cast<int64_t>(_checksums.size()); done <= index; ++done) {
    _checksums.push_back(checksumDirectly(_checksums.back(), (done - 1) * kStride, kStride));
  }
  return checksumDirectly(_checksums[static_cast<size_t>(index)], index * kStride, offset - index * kStride);
}

// Parts that overlap may be as many as there are bytes. When as much has been checked as the file has, a long part
// comes from the checksums of the two beginnings of the file that differ by it.
uint32_t BlockScanner::checksum(int64_t offset, int64_t length) {
  if (length <= 2 * kStride || _directly) return checksumDirectly(0, offset, length);
  if (length <= _size - _checked) return _checked += length, checksumDirectly(0, offset, length);
  const uint32_t before = checksumUpTo(offset);
  return checksumUpTo(offset + length) ^ crc32WithZeros(before, static_cast<uint64_t>(length));
}

bool BlockScanner::isSound(int64_t offset, const BlockHeader& header) {
  if (header.length == 0) return header.crc == 0;
  if (_directly && (*_directly -= header.length) < 0) return false;
  return payloadFits(offset, header) && checksum(offset + kHeaderSize, header.length) == header.crc;
}

bool BlockScanner::isPlausible(int64_t offset) {
  const auto header = headerAt(offset);
  return header && payloadFits(offset, *header);
}

// A deleted block has no checksum to prove it: something has to follow it.
bool BlockScanner::isCandidate(int64_t offset) {
  const auto header = headerAt(offset);
  if (!header || !isSound(offset, *header)) return false;
  const int64_t next = offset + header->extent();
  return header->length > 0 || next == _size || (next < _size && isPlausible(next));
}

int64_t BlockScanner::findBlock(int64_t from) {
  uint8_t chunk[kChunk];
  for (int64_t start = from; _size - start >= kHeaderSize;) {
    const auto count = static_cast<size_t>(std::min<int64_t>(_size - start, kChunk));
    if (!read(start, chunk, count)) break;
    for (size_t i = 0; i + 4 <= count; ++i) {
      const int64_t offset = start + static_cast<int64_t>(i);
      if (isMarker(chunk + i) && isCandidate(offset)) return offset;
    }
    start += static_cast<int64_t>(count) - 3;  // a marker may lie across two chunks
  }
  return _size;
}

// The first offset of a chain of sound blocks that ends exactly at `end`. Backwards, so that each header is looked at
// once: it belongs to a chain if one begins where it ends. Blocks found so are searched for others in turn; where they
// lie in each other's filler so deep, no fault of a disk made them, and the search is given up.
std::optional<int64_t> BlockScanner::hiddenChain(int64_t from, int64_t end) {
  if (_searched / kMostSearches > _size) return std::nullopt;
  _searched += end - from;
  uint8_t chunk[kChunk];
  std::vector<int64_t> chain{end};  // descending
  for (int64_t stop = end; stop - from >= 4 && end - from >= kHeaderSize;) {
    const int64_t start = std::max(from, stop - static_cast<int64_t>(kChunk));
    if (!read(start, chunk, static_cast<size_t>(stop - start))) break;
    for (int64_t offset = stop - 4; offset >= start; --offset) {
      if (!isMarker(chunk + (offset - start))) continue;
      const auto header = headerAt(offset);
      if (header && std::binary_search(chain.rbegin(), chain.rend(), offset + header->extent()) &&
          isSound(offset, *header)) {
        chain.push_back(offset);
      }
    }
    if (start == from) break;
    stop = start + 3;
  }
  return chain.size() > 1 ? std::optional(chain.back()) : std::nullopt;
}

// Whether there is nothing but the zeros that a block is padded with. Not looked at for long, nor again and again where
// blocks lie in each other.
bool BlockScanner::isBlank(int64_t from, int64_t end) {
  const int64_t count = end - from;
  if (count > std::min<int64_t>(kChunk, _size - _lookedAt)) return false;
  _lookedAt += count;
  uint8_t chunk[kChunk];
  const uint8_t* const bytes = count > 0 ? bytesAt(from, chunk, static_cast<size_t>(count)) : nullptr;
  return count == 0 || (bytes && bytes[0] == 0 && std::memcmp(bytes, bytes + 1, static_cast<size_t>(count - 1)) == 0);
}

// No block fits there, and the next one begins at `next`.
BlockDamage BlockScanner::damageOfHeader(int64_t offset, int64_t next) {
  const bool torn = headerAt(offset) || (next == _size && isTorn(offset));
  return torn ? BlockDamage::Truncated : BlockDamage::InvalidHeader;
}

// Where to go on behind a block whose payload fits. Its lengths are believed only if the file ends or a block begins
// where they lead, and no block hides in what should be filler (or, without the right checksum, in the payload).
BlockScanner::Step BlockScanner::behind(int64_t offset, const BlockHeader& header, bool sound) {
  const int64_t next = offset + header.extent();
  const int64_t filler = offset + kHeaderSize + (sound ? header.length : 0);
  if (next > _size) {
    const int64_t found = findBlock(filler);
    return {found, DamagedPlace{BlockDamage::Truncated, offset, found - offset}};
  }
  const bool blank = isBlank(filler, next);  // first: so reading goes straight on
  if (next == _size || isPlausible(next)) {
    const auto hidden = blank ? std::nullopt : hiddenChain(filler, next);
    if (!hidden) return {next, std::nullopt};
    return {*hidden, DamagedPlace{BlockDamage::HiddenBlocks, *hidden, next - *hidden}};
  }
  const int64_t found = findBlock(filler);
  return found < next ? Step{found, DamagedPlace{BlockDamage::HiddenBlocks, found, next - found}}
                      : Step{found, DamagedPlace{damageOfHeader(next, found), next, found - next}};
}

bool BlockScanner::walk(FunctionRef<bool(const StoredBlock&)> found, FunctionRef<bool(const DamagedPlace&)> damaged) {
  const auto report = [&](BlockDamage damage, int64_t offset, int64_t length) {
    return damaged && !_failure && damaged({damage, offset, length});
  };
  for (int64_t offset = 0; offset < _size && !_failure;) {
    const auto header = headerAt(offset);
    if (!header || !payloadFits(offset, *header)) {
      const int64_t next = findBlock(offset + 1);
      if (report(damageOfHeader(offset, next), offset, next - offset)) return true;
      offset = next;
      continue;
    }
    const bool sound = isSound(offset, *header);
    if (_failure) break;
    if (sound && found && found({offset, header->length, header->padding, header->isCompressed()})) return true;
    if (!sound && report(BlockDamage::InvalidChecksum, offset, header->extent())) return true;
    const Step step = behind(offset, *header, sound);
    if (step.damage && report(step.damage->damage, step.damage->offset, step.damage->length)) return true;
    offset = step.next;
  }
  return false;
}

// A block that is whole but for its marker, or its length, is damaged, not torn: its checksum still tells.
bool BlockScanner::hasWholePayload(int64_t offset, const BlockHeader& header) {
  const int64_t room = _size - offset - kHeaderSize;
  const auto matches = [&](int64_t length) {
    return length > 0 && length <= room && header.crc != 0 && checksum(offset + kHeaderSize, length) == header.crc;
  };
  return matches(header.length) || matches(room - header.padding);
}

// Nothing but the beginning of a header proves a file that begins with a torn block to be a block file at all.
bool BlockScanner::isTorn(int64_t offset) {
  HeaderBytes bytes{};
  const int64_t count = std::min(_size - offset, kHeaderSize);
  if ((offset == 0 && count == kHeaderSize) || !read(offset, bytes.data(), static_cast<size_t>(count))) return false;
  return canBeTorn(bytes, count) && (count < kHeaderSize || !hasWholePayload(offset, BlockHeader::fromBytes(bytes)));
}

int64_t BlockScanner::endOfHeaders(int64_t limit) {
  int64_t offset = 0;
  while (offset < limit) {
    const auto header = headerAt(offset);
    if (!header || header->extent() > _size - offset) break;
    offset += header->extent();
  }
  return offset;
}

// Without the checksums from the beginning of the file, which cost reading all of it; where overlapping claims make
// that dear it is given up.
//
// A chain of blocks that reaches back over half of the sectors looked at, or to the beginning of the file. It could lie
// in the payload of a torn block: then its header stands right before the first of them.
bool BlockScanner::endsWithWholeBlock() {
  for (int64_t window = kFirstWindow; window <= kLastWindow && !_failure; window *= 4) {
    const int64_t from = std::max<int64_t>(0, _size - window);
    _directly = 4 * window;
    const auto first = hiddenChain(from, _size);
    const bool gaveUp = *std::exchange(_directly, std::nullopt) < 0;
    if (first && !gaveUp && *first <= (from == 0 ? 0 : _size - window / 2)) {
      const auto around = *first >= kHeaderSize ? headerAt(*first - kHeaderSize) : std::nullopt;
      return !_failure && !(around && around->extent() > _size - *first + kHeaderSize);
    }
    if (from == 0) break;
  }
  return false;
}

}  // namespace velan
