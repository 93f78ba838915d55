// Writing to the bitmaps of character sets while they are built.
#ifndef VELAN_TEXT_CHARACTER_SET_BITS_INTERNAL_H
#define VELAN_TEXT_CHARACTER_SET_BITS_INTERNAL_H

#include <array>
#include <initializer_list>

#include "velan/base/CTypes.h"

namespace velan {

using CharacterSetBits = std::array<uint8_t, CharacterSetRepLength>;

/// Also to the bitmap of the first units alone.
template <size_t size>
constexpr void addUnit(std::array<uint8_t, size>& bits, unichar c) {
  bits[c >> 3] = static_cast<uint8_t>(bits[c >> 3] | 1u << (c & 7));
}

constexpr void addUnits(CharacterSetBits& bits, std::initializer_list<unichar> units) {
  for (const unichar c : units) addUnit(bits, c);
}

/// Adds `[first, last]`, whole bytes at a time where it can.
constexpr void addRange(CharacterSetBits& bits, unichar first, unichar last) {
  for (uint32_t c = first; c <= last;) {
    if ((c & 7) == 0 && last - c >= 7) {
      bits[c >> 3] = 0xFF;
      c += 8;
    } else {
      addUnit(bits, static_cast<unichar>(c++));
    }
  }
}

inline void addSet(CharacterSetBits& bits, const uint8_t* other) {
  for (size_t i = 0; i < bits.size(); ++i) bits[i] = static_cast<uint8_t>(bits[i] | other[i]);
}

}  // namespace velan

#endif  // VELAN_TEXT_CHARACTER_SET_BITS_INTERNAL_H
