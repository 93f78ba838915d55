#include "velan/base/ASCII.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/UnitMappingInternal.h"

namespace velan {
namespace {

// Loops of a fixed length without an exit, of which compilers make vector instructions.
constexpr size_t kStretch = 16;

bool isASCIIStretch(const unichar* units) {
  unichar seen = 0;
  for (size_t i = 0; i < kStretch; ++i) seen |= units[i];
  return seen < 0x80;
}

}  // namespace

void mapUnits(const unichar* units, size_t count, const unichar* table, unichar* mapped) {
  const bool toUpper = table == initUpperCharsTable();
  size_t i = 0;
  for (; count - i >= kStretch; i += kStretch) {
    if (toUpper && isASCIIStretch(units + i)) {
      for (size_t j = i; j < i + kStretch; ++j) mapped[j] = toASCIIUpper(units[j]);
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
