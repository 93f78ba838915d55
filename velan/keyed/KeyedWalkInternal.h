// The walk over records that every operation on keyed data goes through.
#ifndef VELAN_KEYED_KEYED_WALK_INTERNAL_H
#define VELAN_KEYED_KEYED_WALK_INTERNAL_H

#include <algorithm>
#include <array>
#include <bit>
#include <optional>
#include <span>
#include <string_view>

#include "velan/base/ByteOrder.h"
#include "velan/base/Value.h"
#include "velan/base/kernels/KernelsInternal.h"
#include "velan/keyed/KeyedRecords.h"

namespace velan::keyed {

constexpr bool isVariableSize(uint32_t marker) { return marker == VLst || marker == VLdt || marker == VLpl; }

/// The marker and the key of a record as one number, the bytes as they lie in memory, the marker's lowest.
constexpr uint64_t identity(uint32_t marker, uint32_t key) { return byteSwapped(uint64_t{marker} << 32 | key); }

// Each marker of a fixed size has a slot of its own, so that one comparison tells whether a marker is one of them. Of
// the markers too the bytes are as in memory.
constexpr uint32_t kSlotFactor = 389;
constexpr int kSlotShift = 24;
constexpr size_t slotOf(uint32_t marker) { return marker * kSlotFactor >> kSlotShift & 7; }

constexpr std::array<uint32_t, 8> makeFixedMarkers() {
  std::array<uint32_t, 8> slots{};
  for (const uint32_t marker : {VLbl, VLun, VLsi, VLul, VLsl, VLfl, VLdb, VLda}) {
    slots[slotOf(byteSwapped(marker))] = byteSwapped(marker);
  }
  return slots;
}
inline constexpr std::array<uint32_t, 8> kFixedMarkers = makeFixedMarkers();
static_assert(std::find(kFixedMarkers.begin(), kFixedMarkers.end(), 0) == kFixedMarkers.end());

constexpr bool hasFixedSize(uint64_t identity) {
  const auto marker = static_cast<uint32_t>(identity);
  return kFixedMarkers[slotOf(marker)] == marker;
}

constexpr bool isKnownMarker(uint32_t marker) { return hasFixedSize(identity(marker, 0)) || isVariableSize(marker); }

/// Finds where the first record of the walk over `bytes` begins whose identity is `sought`, or `kNotFound`. The marker
/// sought is a known one.
using FindIdentity = size_t (*)(const uint8_t* bytes, size_t length, uint64_t sought);
const Kernels<FindIdentity>& findIdentityKernels();
inline constexpr size_t kNotFound = SIZE_MAX;
#ifdef __x86_64__
size_t findIdentityAvx2(const uint8_t* bytes, size_t length, uint64_t sought);
size_t findIdentityAvx512(const uint8_t* bytes, size_t length, uint64_t sought);
#endif

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
  uint64_t identity() const { return loadLittleEndian<uint64_t>(_start); }
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
  void advance() { step(record().size()); }
  /// Goes to the next record with this marker and key, which may be the one here.
  bool find(uint32_t marker, uint32_t key) {
    if (!isKnownMarker(marker)) return false;
    const uint64_t sought = keyed::identity(marker, key);
    return (_remaining >= kKeyedHeaderSize && record().identity() == sought) || findFurther(sought);
  }

 private:
  bool findFurther(uint64_t sought);
  void step(uint64_t size) {
    const size_t step = size <= _remaining ? static_cast<size_t>(size) : _remaining;
    _at += step;
    _remaining -= step;
  }

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
