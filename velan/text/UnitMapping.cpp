#include <cstdint>
#include <cstring>

#include "velan/text/ConversionTables.h"
#include "velan/text/UnitMappingInternal.h"

namespace velan {
namespace {

// Sixteen units at a time, as words of four. They are copied in and out, so that the compiler makes vector instructions
// of the loops although the result may be written over the text.
constexpr size_t kStretch = 16;
using Stretch = uint64_t[kStretch / 4];

constexpr uint64_t fourTimes(uint16_t unit) { return unit * uint64_t{0x0001000100010001}; }

bool isASCII(const Stretch& stretch) {
  uint64_t seen = 0;
  for (const uint64_t four : stretch) seen |= four;
  return (seen & fourTimes(0xFF80)) == 0;
}

// Bit 7 of a unit is set by adding 0x1F from "a" (0x61 + 0x1F = 0x80) and by adding 5 from "{" on (0x7B + 5 = 0x80):
// where only the first is, the unit is a small letter, and the bit two places down is what it differs by.
void turnToUpper(Stretch& stretch) {
  for (uint64_t& four : stretch) {
    const uint64_t small = (four + fourTimes(0x1F)) & ~(four + fourTimes(5)) & fourTimes(0x80);
    four -= small >> 2;
  }
}

}  // namespace

void mapUnits(const unichar* units, size_t count, const unichar* table, unichar* mapped) {
  const bool toUpper = table == initUpperCharsTable();
  size_t i = 0;
  for (; count - i >= kStretch; i += kStretch) {
    Stretch stretch;
    std::memcpy(stretch, units + i, sizeof stretch);
    if (toUpper && isASCII(stretch)) {
      turnToUpper(stretch);
      std::memcpy(mapped + i, stretch, sizeof stretch);
    } else {
      for (size_t j = i; j < i + kStretch; ++j) mapped[j] = table[units[j]];
    }
  }
  for (; i < count; ++i) mapped[i] = table[units[i]];
}

String mappedString(std::u16string_view units, const unichar* table) {
  const auto length = static_cast<int64_t>(units.size());
  return String::filled(length, [=](unichar* mapped) {
    mapUnits(units.data(), units.size(), table, mapped);
    return length;
  });
}

}  // namespace velan
