// The immutable text type: UTF-16 code units, shared by reference counting.
#ifndef VELAN_BASE_STRING_H
#define VELAN_BASE_STRING_H

#include <compare>
#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "velan/base/CTypes.h"
#include "velan/base/Range.h"

namespace velan {

/// An immutable sequence of UTF-16 code units, one pointer wide; a copy is one atomic increment.
///
/// A string may be absent (`String()`), which differs from empty (`String(u"")`); an absent string has length 0 and an
/// empty view. The units never move while any copy lives. Strings may be shared between threads like `std::shared_ptr`:
/// different objects freely, one object only with a lock when it is assigned to. When memory runs out the factories
/// give an absent string.
class VELAN_EXPORT String {
 public:
  String() noexcept = default;
  String(std::nullptr_t) noexcept {}
  /// Copies the units of `text`.
  String(std::u16string_view text);
  String(const std::u16string& text) : String(std::u16string_view(text)) {}
  /// Copies the units up to the terminating U+0000; absent for a null pointer.
  String(const unichar* text);
  String(const char* text) = delete;
  template <std::integral Integer>
  String(Integer) = delete;

  String(const String& other) noexcept : _storage(other._storage) { retain(); }
  String(String&& other) noexcept : _storage(std::exchange(other._storage, nullptr)) {}
  String& operator=(String other) noexcept {
    std::swap(_storage, other._storage);
    return *this;
  }
  ~String() { release(); }

  /// The text that `utf8` encodes, or absent when it is malformed. A byte-order mark is kept as U+FEFF.
  static String fromUTF8(std::string_view utf8);
  /// As above, with U+FFFD in place of each malformed part.
  static String fromUTF8Lossy(std::string_view utf8);
  /// Copies `length` units. Absent when `characters` is null (unless `length` is 0) or `length` is negative.
  static String withCharacters(const unichar* characters, int64_t length);
  /// Refers to `length` units without copying them; they must outlive the string and every string that shares them.
  /// With `freeWhenDone` the string owns them and calls `free()` when the last copy goes, also when creation fails.
  static String withCharactersNoCopy(unichar* characters, int64_t length, bool freeWhenDone);
  /// A string of `length` units (not negative) that `fill(units)` writes; it returns how many of them remain, at most
  /// `length`, or a negative number to give up (the result is then absent).
  template <std::invocable<unichar*> Fill>
  static String filled(int64_t length, Fill&& fill) {
    String result;
    unichar* units = result.allocate(length);
    return units && result.truncate(fill(units)) ? result : String();
  }

  /// In code units.
  int64_t length() const { return _storage ? _storage->length : 0; }
  /// The units, valid while any copy of the string lives; never null unless the string is absent. Not terminated.
  const unichar* characters() const { return _storage ? _storage->characters : nullptr; }
  std::u16string_view view() const {
    return _storage ? std::u16string_view(_storage->characters, static_cast<size_t>(_storage->length))
                    : std::u16string_view();
  }
  unichar operator[](int64_t index) const { return _storage->characters[index]; }
  const unichar* begin() const { return characters(); }
  const unichar* end() const { return view().data() + view().size(); }

  bool isAbsent() const { return !_storage; }
  /// True for an absent string too.
  bool isEmpty() const { return length() == 0; }
  /// False for an absent string; an empty one is present.
  explicit operator bool() const { return _storage != nullptr; }
  /// Whether both are copies of one string: how "returns the receiver itself" is told from an equal string.
  bool isSameObject(const String& other) const { return _storage == other._storage; }

  /// The units of `range`, clipped to the string. A piece of at least 1,024 units and half the length of the storage it
  /// lies in shares that storage, a shorter one is copied, so that a small piece never keeps a large text alive. Absent
  /// for an absent string.
  String substring(Range range) const;
  String substringFromIndex(int64_t index) const { return substring({index, length()}); }
  String substringToIndex(int64_t index) const { return substring({0, index}); }

  /// In UTF-8; U+FFFD in place of each lone surrogate.
  std::string toUTF8() const;

  /// By code units; an absent string equals only an absent one and orders before all others.
  friend bool operator==(const String& a, const String& b) {
    return a._storage == b._storage || (a._storage && b._storage && a.view() == b.view());
  }
  friend std::strong_ordering operator<=>(const String& a, const String& b) {
    if (!a._storage || !b._storage) return (a._storage != nullptr) <=> (b._storage != nullptr);
    return a.view() <=> b.view();
  }

 private:
  friend class MutableString;
  friend class StringCopies;
  struct Storage;
  /// What reading needs, kept where inline functions see it; the rest of the storage is private to the source file.
  struct Header {
    int64_t length;
    const unichar* characters;
  };

  explicit String(Header* storage) noexcept : _storage(storage) {}
  unichar* allocate(int64_t length);
  void adopt(unichar* units, int64_t length);
  bool truncate(int64_t length);
  void retain() const noexcept;
  void release() noexcept;

  Header* _storage = nullptr;
};

inline namespace literals {
/// `u"text"_s`: a string of all units of the literal, U+0000 included.
inline String operator""_s(const unichar* text, size_t length) { return String(std::u16string_view(text, length)); }
}  // namespace literals

}  // namespace velan

template <>
struct std::hash<velan::String> {
  size_t operator()(const velan::String& string) const noexcept {
    return std::hash<std::u16string_view>()(string.view());
  }
};

#endif  // VELAN_BASE_STRING_H
