// Bytes that are edited in place.
#ifndef VELAN_BASE_MUTABLE_DATA_H
#define VELAN_BASE_MUTABLE_DATA_H

#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "velan/base/Data.h"

namespace velan {

/// A growable sequence of bytes that it owns; never absent. Positions are clipped to the buffer.
class MutableData {
 public:
  MutableData() = default;
  explicit MutableData(const Data& data) : _bytes(data.bytes(), data.bytes() + data.length()) {}
  MutableData(const void* bytes, size_t length) { appendBytes(bytes, length); }

  size_t length() const { return _bytes.size(); }
  /// Valid until the buffer is changed or destroyed; may be null when it is empty.
  const uint8_t* bytes() const { return _bytes.data(); }
  uint8_t* mutableBytes() { return _bytes.data(); }
  std::span<const uint8_t> span() const { return _bytes; }
  std::string_view view() const { return {reinterpret_cast<const char*>(_bytes.data()), _bytes.size()}; }
  bool isEmpty() const { return _bytes.empty(); }

  void reserve(size_t bytes) { _bytes.reserve(bytes); }
  void appendBytes(const void* bytes, size_t length) {
    const auto* first = static_cast<const uint8_t*>(bytes);
    if (first && length) _bytes.insert(_bytes.end(), first, first + length);
  }
  void appendData(const Data& data) { appendBytes(data.bytes(), data.length()); }
  /// Cuts off the end, or appends zero bytes.
  void setLength(size_t length) { _bytes.resize(length); }
  void clear() { _bytes.clear(); }

  /// A copy of the present bytes.
  Data data() const { return Data::withBytes(bytes(), length()); }
  operator Data() const { return data(); }
  /// The bytes as an immutable buffer without copying them; this buffer is empty afterwards. Absent, with this buffer
  /// as it was, when memory runs out.
  Data takeData() {
    const uint8_t* const first = bytes();
    return Data::withOwner(std::move(_bytes), first, length());
  }

  friend bool operator==(const MutableData& a, const MutableData& b) { return a._bytes == b._bytes; }

 private:
  std::vector<uint8_t> _bytes;
};

}  // namespace velan

#endif  // VELAN_BASE_MUTABLE_DATA_H
