// The immutable byte buffer, shared by reference counting.
#ifndef VELAN_BASE_DATA_H
#define VELAN_BASE_DATA_H

#include <compare>
#include <cstddef>
#include <memory>
#include <span>
#include <string_view>
#include <utility>

#include "velan/base/CTypes.h"
#include "velan/base/Range.h"

namespace velan {

/// An immutable sequence of bytes. A copy or a part shares the bytes and keeps them alive. Like a string it may be
/// absent (`Data()`), which differs from empty. Shared between threads like `std::shared_ptr`.
class VELAN_EXPORT Data {
 public:
  Data() noexcept = default;
  Data(std::nullptr_t) noexcept {}

  /// Copies `length` bytes. Absent when `bytes` is null and `length` is not 0, or when memory runs out.
  static Data withBytes(const void* bytes, size_t length);
  static Data withBytes(std::string_view bytes) { return withBytes(bytes.data(), bytes.size()); }
  /// Refers to bytes that must outlive every copy and part. With `freeWhenDone` `free()` is called when the last goes,
  /// also when creation fails.
  static Data withBytesNoCopy(void* bytes, size_t length, bool freeWhenDone);
  /// Refers to bytes that live at least as long as `owner`, which is kept.
  static Data withOwner(std::shared_ptr<const void> owner, const void* bytes, size_t length);

  const uint8_t* bytes() const { return _bytes; }
  size_t length() const { return _length; }
  std::span<const uint8_t> span() const { return {_bytes, _length}; }
  /// The bytes as characters, for comparing and for text in 8-bit encodings.
  std::string_view view() const { return {reinterpret_cast<const char*>(_bytes), _length}; }
  uint8_t operator[](size_t index) const { return _bytes[index]; }

  bool isAbsent() const { return !_bytes; }
  bool isEmpty() const { return _length == 0; }
  explicit operator bool() const { return _bytes != nullptr; }
  bool isSameObject(const Data& other) const { return _bytes == other._bytes && _length == other._length; }

  /// The bytes of `range`, clipped to the buffer, without copying. Absent for an absent buffer.
  Data subdata(Range range) const;

  /// By bytes; an absent buffer equals only an absent one and orders before all others.
  friend bool operator==(const Data& a, const Data& b) { return a.isAbsent() == b.isAbsent() && a.view() == b.view(); }
  friend std::strong_ordering operator<=>(const Data& a, const Data& b) {
    if (a.isAbsent() || b.isAbsent()) return b.isAbsent() <=> a.isAbsent();
    return a.view() <=> b.view();
  }

 private:
  Data(std::shared_ptr<const void> owner, const uint8_t* bytes, size_t length)
      : _owner(std::move(owner)), _bytes(bytes), _length(length) {}

  std::shared_ptr<const void> _owner;
  const uint8_t* _bytes = nullptr;  // not null when present, also for an empty buffer
  size_t _length = 0;
};

}  // namespace velan

template <>
struct std::hash<velan::Data> {
  size_t operator()(const velan::Data& data) const noexcept { return std::hash<std::string_view>()(data.view()); }
};

#endif  // VELAN_BASE_DATA_H
