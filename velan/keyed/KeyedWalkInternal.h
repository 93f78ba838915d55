// The walk over records that every operation on keyed data goes through.
#ifndef VELAN_KEYED_KEYED_WALK_INTERNAL_H
#define VELAN_KEYED_KEYED_WALK_INTERNAL_H

#include <bit>
#include <optional>
#include <span>
#include <string_view>

#include "velan/base/ByteOrder.h"
#include "velan/base/Value.h"
#include "velan/keyed/KeyedRecords.h"

namespace velan::keyed {

constexpr bool isVariableSize(uint32_t marker) { return marker == VLst || marker == VLdt || marker == VLpl; }

constexpr bool isKnownMarker(uint32_t marker) {
  switch (marker) {
    case VLbl:
    case VLun:
    case VLsi:
    case VLul:
    case VLsl:
    case VLfl:
    case VLdb:
    case VLda:
    case VLst:
    case VLdt:
    case VLpl:
      return true;
    default:
      return false;
  }
}

/// A record whose header lies in the buffer. Its payload need not: only `payload` and `fits` look.
class Record {
 public:
  /// `available` is at least the size of a header.
  Record(const uint8_t* start, size_t available) : _start(start), _available(available) {}

  const uint8_t* start() const { return _start; }
  /// Bytes from the start of the record to the end of the buffer.
  size_t available() const { return _available; }
  uint32_t marker() const { return loadBigEndian<uint32_t>(_start); }
  uint32_t key() const { return loadBigEndian<uint32_t>(_start + 4); }
  bool is(uint32_t marker, uint32_t key) const {
    return loadBigEndian<uint64_t>(_start) == (uint64_t{marker} << 32 | key);
  }
  /// The value area as a number of 8, 32 or 64 bits.
  template <typename Number>
  Number value() const {
    if constexpr (sizeof(Number) == 1) return static_cast<Number>(_start[8]);
    if constexpr (sizeof(Number) == 4) return std::bit_cast<Number>(loadBigEndian<uint32_t>(_start + 8));
    if constexpr (sizeof(Number) == 8) return std::bit_cast<Number>(loadBigEndian<uint64_t>(_start + 8));
  }
  /// As declared.
  uint64_t size() const {
    return kKeyedHeaderSize + (isVariableSize(marker()) ? uint64_t{loadBigEndian<uint32_t>(_start + 8)} : 0);
  }
  /// Whether the whole record lies in the buffer.
  bool fits() const { return size() <= _available; }
  /// The payload, or nothing when it reaches beyond the buffer: the one place where a declared length becomes a span.
  std::optional<std::span<const uint8_t>> payload() const {
    if (!fits()) return std::nullopt;
    return std::span(_start + kKeyedHeaderSize, static_cast<size_t>(size() - kKeyedHeaderSize));
  }

 private:
  const uint8_t* _start;
  size_t _available;
};

/// The value of a record whose marker is known; absent when its payload reaches beyond the buffer or cannot be decoded.
/// Throws `std::bad_alloc`.
Value decodedValue(const Record& record);
/// The same, absent also when memory runs out.
Value valueWithHeaderAndLength(const Record& record);

inline std::string_view asText(std::span<const uint8_t> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// Goes from record to record. It ends before a marker that is unknown and before fewer than 16 bytes, and behind a
/// record that does not fit.
class RecordWalk {
 public:
  explicit RecordWalk(std::span<const uint8_t> bytes) : _at(bytes.data()), _remaining(bytes.size()) {}

  /// Whether a record begins here.
  bool atRecord() const { return _remaining >= kKeyedHeaderSize && isKnownMarker(loadBigEndian<uint32_t>(_at)); }
  Record record() const { return {_at, _remaining}; }
  /// Goes behind the record, or to the end of the walk when it does not fit.
  void advance() {
    const uint64_t size = record().size();
    const size_t step = size <= _remaining ? static_cast<size_t>(size) : _remaining;
    _at += step;
    _remaining -= step;
  }
  /// Goes to the next record with this marker and key, which may be the one here.
  bool find(uint32_t marker, uint32_t key) {
    for (; atRecord(); advance()) {
      if (record().is(marker, key)) return true;
    }
    return false;
  }

 private:
  const uint8_t* _at;
  size_t _remaining;
};

inline std::optional<Record> findRecord(std::span<const uint8_t> bytes, uint32_t marker, uint32_t key) {
  RecordWalk walk(bytes);
  if (!walk.find(marker, key)) return std::nullopt;
  return walk.record();
}

/// Calls `visit(record)` for every record with this marker and key.
template <typename Visitor>
void forEachRecord(std::span<const uint8_t> bytes, uint32_t marker, uint32_t key, const Visitor& visit) {
  for (RecordWalk walk(bytes); walk.find(marker, key); walk.advance()) visit(walk.record());
}

}  // namespace velan::keyed

#endif  // VELAN_KEYED_KEYED_WALK_INTERNAL_H
