// Text that is edited in place.
#ifndef VELAN_BASE_MUTABLE_STRING_H
#define VELAN_BASE_MUTABLE_STRING_H

#include <string>
#include <string_view>

#include "velan/base/String.h"

namespace velan {

/// A growable sequence of UTF-16 code units that it owns; never absent. Positions are clipped to the text.
class MutableString {
 public:
  MutableString() = default;
  explicit MutableString(std::u16string_view text) : _units(text) {}
  explicit MutableString(const String& string) : _units(string.view()) {}
  /// Empty for a null pointer.
  explicit MutableString(const unichar* text) { appendString(text); }

  int64_t length() const { return static_cast<int64_t>(_units.size()); }
  /// Valid until the text is changed or destroyed.
  const unichar* characters() const { return _units.data(); }
  unichar* mutableCharacters() { return _units.data(); }
  std::u16string_view view() const { return _units; }
  bool isEmpty() const { return _units.empty(); }

  void reserve(int64_t units) {
    if (units > 0) _units.reserve(static_cast<size_t>(units));
  }
  void appendCharacter(unichar c) { _units.push_back(c); }
  void appendString(std::u16string_view text) { _units.append(text); }
  void appendString(const String& string) { _units.append(string.view()); }
  /// Nothing for a null pointer.
  void appendString(const unichar* text) {
    if (text) _units.append(text);
  }
  void appendCharacters(const unichar* characters, int64_t length) {
    if (characters && length > 0) _units.append(characters, static_cast<size_t>(length));
  }
  void insertString(std::u16string_view text, int64_t index) {
    _units.insert(static_cast<size_t>(clippedRange({index, 0}, length()).location), text);
  }
  void deleteCharactersInRange(Range range) { replaceCharactersInRange(range, {}); }
  void replaceCharactersInRange(Range range, std::u16string_view text) {
    const Range clipped = clippedRange(range, length());
    _units.replace(static_cast<size_t>(clipped.location), static_cast<size_t>(clipped.length), text);
  }
  /// Cuts off what lies beyond `length` units; a longer or negative length changes nothing.
  void truncate(int64_t newLength) {
    if (newLength >= 0 && newLength < length()) _units.resize(static_cast<size_t>(newLength));
  }
  void clear() { _units.clear(); }

  /// A copy of the present text.
  String string() const { return String(std::u16string_view(_units)); }
  operator String() const { return string(); }

 private:
  std::u16string _units;
};

}  // namespace velan

#endif  // VELAN_BASE_MUTABLE_STRING_H
