// Reading blocks one after another.
#include <cstdlib>
#include <utility>

#include "velan/base/Log.h"
#include "velan/storage/BlockFormatInternal.h"
#include "velan/storage/BlockStorageInternal.h"
#include "velan/storage/CompressionInternal.h"
#include "velan/text/digest/Checksums.h"

namespace velan {

// A message that there is no memory for is left out.
void BlockStorage::complain(const char* what, int64_t offset) const {
  FileError none;
  unlessMemoryRunsOut(none, false, [&] {
    logFormat("ERROR: %s %lld in file %s", what, static_cast<long long>(offset), _path.toUTF8().c_str());
    return true;
  });
}

bool BlockStorage::failReading(const FileError& error, int64_t offset) {
  _error = error;
  FileError none;
  unlessMemoryRunsOut(none, false, [&] {
    logFormat("ERROR: Reading failed at %lld in file %s: %s", static_cast<long long>(offset), _path.toUTF8().c_str(),
              error.words());
    return true;
  });
  return false;
}

// The payload at the position. Nothing is allocated before the file is known to be long enough.
BlockStorage::Outcome BlockStorage::readPayload(const BlockHeader& header, Data& payload) {
  if (const uint8_t* const ahead = _file->peek(header.length)) {
    payload = Data::withBytes(ahead, header.length);
    return payload ? Outcome::Block : (failWith(FileReason::NoMemory), Outcome::Failed);
  }
  const int64_t end = _file->position() + header.length;
  const int64_t length = _file->reaches(end) ? end : _file->length();
  if (length < 0) return failWith(_file->error()), Outcome::Failed;
  if (length < end) return Outcome::Error;
  void* const bytes = std::malloc(header.length);
  payload = Data::withBytesNoCopy(bytes, header.length, true);
  if (!payload) return failWith(FileReason::NoMemory), Outcome::Failed;
  const int64_t got = _file->read(bytes, header.length);
  if (got < 0) return failWith(_file->error()), Outcome::Failed;
  return got == int64_t{header.length} ? Outcome::Block : Outcome::Error;
}

BlockStorage::Outcome BlockStorage::inflate(Reading& reading) {
  reading.compressed = std::exchange(reading.data, Data());
  switch (inflateInto(reading.data, reading.compressed, _inflationLimit)) {
    case Inflation::Whole:
      return Outcome::Block;
    case Inflation::NoMemory:
      return failWith(FileReason::NoMemory), Outcome::Failed;
    case Inflation::Stopped:
      return failWith(FileReason::TooLarge), Outcome::Failed;
    case Inflation::Damaged:
      break;
  }
  return Outcome::DoesNotInflate;
}

// `_mutableCopyOfNextAvailableBlock:error`: damaged blocks are skipped deliberately, with a message. What fails is no
// damage: nothing is skipped then, and the position stays.
BlockStorage::Reading BlockStorage::readNext() {
  Reading reading{Outcome::End, Data(), Data(), false};
  const auto stopAt = [&](int64_t offset, Outcome outcome) {
    _file->seek(offset);
    if (outcome == Outcome::Failed) failReading(_error, offset);
    reading.outcome = outcome;
    reading.data = reading.compressed = Data();
  };
  while (isReadable()) {
    const int64_t offset = _file->position();
    HeaderBytes bytes{};
    const int64_t got = _file->read(bytes.data(), bytes.size());
    if (got == 0) break;
    if (got < 0) return failWith(_file->error()), stopAt(offset, Outcome::Failed), reading;
    const BlockHeader header = BlockHeader::fromBytes(bytes);
    if (got != kHeaderSize || !header.hasKnownMarker()) {
      complain("Invalid header at", offset);
      stopAt(offset, Outcome::Error);
      break;
    }
    const int64_t next = offset + header.extent();
    _lastPosition = offset;
    _lastLength = static_cast<uint64_t>(header.extent());
    if (header.length == 0) {
      _file->seek(next);
      continue;
    }
    Data payload;
    if (const Outcome outcome = readPayload(header, payload); outcome != Outcome::Block) {
      if (outcome == Outcome::Error) complain("Truncated data at", offset);
      stopAt(offset, outcome);
      break;
    }
    const bool sound = crc32(payload) == header.crc;
    const bool moved = _file->seek(next);
    VELAN_DEBUG_ASSERT(moved, "seekToFileOffset(_file,o=n)");
    if (!sound) {
      complain("Invalid checksum at", offset);
      reading.skippedError = true;
      continue;
    }
    reading.data = std::move(payload);
    reading.outcome = header.isCompressed() ? inflate(reading) : Outcome::Block;
    if (reading.outcome == Outcome::Failed) stopAt(offset, Outcome::Failed);
    break;
  }
  return reading;
}

template <typename Result, typename Body>
Result BlockStorage::readSafely(Result neutral, Body body) {
  const int64_t position = offsetInFile();
  Result result = guarded(std::move(neutral), body);
  if (_error && _file) _file->seek(position);
  return result;
}

Data BlockStorage::nextAvailableBlock() {
  return readSafely(Data(), [&] { return readNext().data; });
}

Data BlockStorage::copyOfNextAvailableBlock() { return nextAvailableBlock(); }

std::optional<MutableData> BlockStorage::mutableCopyOfNextAvailableBlock() {
  return mutableCopyOfNextAvailableBlock(nullptr);
}

std::optional<MutableData> BlockStorage::mutableCopyOfNextAvailableBlock(Data* compressed) {
  if (compressed) *compressed = Data();
  return readSafely(std::optional<MutableData>(), [&]() -> std::optional<MutableData> {
    const Reading reading = readNext();
    if (!reading.data) return std::nullopt;
    std::optional<MutableData> data(std::in_place, reading.data);
    if (compressed) *compressed = reading.compressed;
    return data;
  });
}

}  // namespace velan
