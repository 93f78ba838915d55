// Leaving out units, in place and in a copy.
#ifndef VELAN_TEXT_EDITING_UNIT_REMOVAL_INTERNAL_H
#define VELAN_TEXT_EDITING_UNIT_REMOVAL_INTERNAL_H

#include <algorithm>

#include "velan/base/MutableString.h"

namespace velan {

/// Copies the units of `text` for which `drop` is false to `target`, which has room for all and may be where `text`
/// stands; returns how many. The order of the calls is that of the units. No branch depends on the text.
template <typename Drop>
int64_t copyUnitsExcept(std::u16string_view text, unichar* target, Drop drop) {
  size_t kept = 0;
  for (const unichar c : text) {
    target[kept] = c;
    kept += drop(c) ? 0 : 1;
  }
  return static_cast<int64_t>(kept);
}

template <typename Drop>
void removeUnits(MutableString& text, Drop drop) {
  text.truncate(copyUnitsExcept(text.view(), text.mutableCharacters(), drop));
}

/// `string` itself when nothing is dropped.
template <typename Drop>
String stringByRemovingUnits(const String& string, Drop drop) {
  if (std::ranges::none_of(string, drop)) return string;
  return String::filled(string.length(), [&](unichar* units) { return copyUnitsExcept(string.view(), units, drop); });
}

}  // namespace velan

#endif  // VELAN_TEXT_EDITING_UNIT_REMOVAL_INTERNAL_H
