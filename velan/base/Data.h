// The immutable byte buffer, shared by reference counting.
#ifndef VELAN_BASE_DATA_H
#define VELAN_BASE_DATA_H

#include <compare>
#include <cstddef>
#include <new>
#include <span>
#include <string_view>
#include <type_traits>
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
  Data(const Data& other) noexcept : Data(other._owner, other._bytes, other._length) {
    if (_owner) retain();
  }
  Data(Data&& other) noexcept : Data() { swap(other); }
  Data& operator=(Data other) noexcept {
    swap(other);
    return *this;
  }
  ~Data() {
    if (_owner) release();
  }

  /// Copies `length` bytes. Absent when `bytes` is null and `length` is not 0, or when memory runs out.
  static Data withBytes(const void* bytes, size_t length);
  static Data withBytes(std::string_view bytes) { return withBytes(bytes.data(), bytes.size()); }
  /// Refers to bytes that must outlive every copy and part. With `freeWhenDone` `free()` is called when the last goes,
  /// also when creation fails.
  static Data withBytesNoCopy(void* bytes, size_t length, bool freeWhenDone);
  /// Refers to bytes that live at least as long as `owner`, which is moved from and kept until the last copy and part
  /// goes. Absent, with `owner` as it was, when `bytes` is null and `length` is not 0, or when memory runs out.
  template <typename Object>
  requires(!std::is_lvalue_reference_v<Object>) static Data
      withOwner(Object&& owner, const void* bytes, size_t length) {
    if (length == 0) return withBytes(nullptr, 0);
    auto* holder = bytes ? new (std::nothrow) Holder<Object>(std::forward<Object>(owner)) : nullptr;
    return holder ? Data(holder, static_cast<const uint8_t*>(bytes), length) : Data();
  }

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
  // What the bytes belong to; counted from one. `dispose` frees it when nobody refers to it any more.
  struct Owner {
    explicit Owner(void (*disposal)(Owner*) noexcept) : dispose(disposal) {}
    void (*dispose)(Owner*) noexcept;
    size_t references = 1;
  };
  template <typename Object>
  struct Holder : Owner {
    explicit Holder(Object&& held)
        : Owner([](Owner* owner) noexcept { delete static_cast<Holder*>(owner); }), object(std::move(held)) {}
    Object object;
  };

  Data(Owner* owner, const uint8_t* bytes, size_t length) noexcept : _owner(owner), _bytes(bytes), _length(length) {}
  void swap(Data& other) noexcept {
    std::swap(_owner, other._owner);
    std::swap(_bytes, other._bytes);
    std::swap(_length, other._length);
  }
  void retain() const noexcept;
  void release() noexcept;

  Owner* _owner = nullptr;          // null when the bytes are nobody's
  const uint8_t* _bytes = nullptr;  // not null when present, also for an empty buffer
  size_t _length = 0;
};

}  // namespace velan

template <>
struct std::hash<velan::Data> {
  size_t operator()(const velan::Data& data) const noexcept { return std::hash<std::string_view>()(data.view()); }
};

#endif  // VELAN_BASE_DATA_H
