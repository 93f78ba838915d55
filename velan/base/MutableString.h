// Text that is edited in place.
#ifndef VELAN_BASE_MUTABLE_STRING_H
#define VELAN_BASE_MUTABLE_STRING_H

#include <algorithm>
#include <string_view>
#include <utility>

#include "velan/base/String.h"

namespace velan {

/// A growable sequence of UTF-16 code units that it owns; never absent. Positions are clipped to the text. Text that is
/// put in may be a part of this one. What makes the text longer throws `std::bad_alloc` when memory runs out, and has
/// then changed nothing.
class VELAN_EXPORT MutableString {
 public:
  MutableString() = default;
  explicit MutableString(std::u16string_view text) { appendString(text); }
  explicit MutableString(const String& string) { appendString(string); }
  /// Empty for a null pointer.
  explicit MutableString(const unichar* text) { appendString(text); }
  MutableString(const MutableString& other) : MutableString(other.view()) {}
  /// The other text is empty afterwards.
  MutableString(MutableString&& other) noexcept { swap(other); }
  MutableString& operator=(MutableString other) noexcept {
    swap(other);
    return *this;
  }
  ~MutableString() { clearStorage(); }

  int64_t length() const { return _length; }
  /// Valid until the text is changed or destroyed; may be null when it is empty.
  const unichar* characters() const { return _units; }
  unichar* mutableCharacters() { return _units; }
  std::u16string_view view() const { return {_units, static_cast<size_t>(_length)}; }
  bool isEmpty() const { return _length == 0; }

  /// Makes room for so many units in all.
  void reserve(int64_t units) {
    if (units > _capacity) setCapacity(units);
  }
  void appendCharacter(unichar c) {
    if (_length == _capacity) grow(1);
    _units[_length++] = c;
  }
  /// Appends `c` `count` times.
  void appendCharacter(unichar c, int64_t count);
  /// `appendUnichar:`: the same as `appendCharacter`.
  void appendUnichar(unichar c) { appendCharacter(c); }
  void appendString(std::u16string_view text) {
    const auto count = static_cast<int64_t>(text.size());
    if (count > _capacity - _length) return insertString(text, _length);
    std::copy(text.begin(), text.end(), _units + _length);
    _length += count;
  }
  void appendString(const String& string) { appendString(string.view()); }
  /// Nothing for a null pointer.
  void appendString(const unichar* text) {
    if (text) appendString(std::u16string_view(text));
  }
  void appendCharacters(const unichar* characters, int64_t length) {
    if (characters && length > 0) appendString(std::u16string_view(characters, static_cast<size_t>(length)));
  }
  /// `appendUnichars:length:`: the same as `appendCharacters`; `length` in units.
  void appendUnichars(const unichar* units, int64_t length) { appendCharacters(units, length); }
  /// `insertCharacter:atIndex:`: puts `c` before the unit at `index`, or at the end if that is the length; an `index`
  /// outside the text is not clipped: nothing happens.
  void insertCharacter(unichar c, int64_t index) {
    if (index >= 0 && index <= _length) insertString({&c, 1}, index);
  }
  /// `removeCharacterAtIndex:`: removes the unit at `index`; nothing when there is none.
  void removeCharacterAtIndex(int64_t index) {
    if (index >= 0 && index < _length) deleteCharactersInRange({index, 1});
  }
  void insertString(std::u16string_view text, int64_t index) { replaceCharactersInRange({index, 0}, text); }
  void deleteCharactersInRange(Range range) { replaceCharactersInRange(range, {}); }
  void replaceCharactersInRange(Range range, std::u16string_view text);
  /// Cuts off what lies beyond `length` units; a longer or negative length changes nothing.
  void truncate(int64_t newLength) {
    if (newLength >= 0 && newLength < _length) _length = newLength;
  }
  /// Keeps the room.
  void clear() { _length = 0; }

  /// A copy of the present text; absent when memory runs out.
  String string() const { return String(view()); }
  operator String() const { return string(); }
  /// The text as an immutable string without copying it, without the room that it does not use; this text is empty
  /// afterwards. Absent only if it was empty and memory runs out.
  String takeString();

 private:
  void swap(MutableString& other) noexcept {
    std::swap(_units, other._units);
    std::swap(_length, other._length);
    std::swap(_capacity, other._capacity);
  }
  void setCapacity(int64_t units);
  void grow(int64_t units);
  void clearStorage() noexcept;

  unichar* _units = nullptr;  // behind room for the header that a string needs
  int64_t _length = 0;
  int64_t _capacity = 0;
};

}  // namespace velan

#endif  // VELAN_BASE_MUTABLE_STRING_H
