// What remains of a run of units when those at its ends are left out.
#ifndef VELAN_TEXT_INSPECTION_TRIMMED_UNITS_INTERNAL_H
#define VELAN_TEXT_INSPECTION_TRIMMED_UNITS_INTERNAL_H

#include <algorithm>
#include <string_view>

#include "velan/text/CharacterSets.h"

namespace velan {

template <typename Test>
std::u16string_view withoutPrefixUnits(std::u16string_view text, Test test) {
  return {std::find_if_not(text.data(), text.data() + text.size(), test), text.data() + text.size()};
}

template <typename Test>
std::u16string_view withoutSuffixUnits(std::u16string_view text, Test test) {
  return {text.begin(), std::find_if_not(text.rbegin(), text.rend(), test).base()};
}

template <typename Test>
std::u16string_view trimmedUnits(std::u16string_view text, Test test) {
  return withoutSuffixUnits(withoutPrefixUnits(text, test), test);
}

inline std::u16string_view withoutWhiteEnds(std::u16string_view text) {
  return trimmedUnits(text, [rep = whiteCharacterSetRep()](unichar c) { return isMemberOfCharacterSetRep(rep, c); });
}

}  // namespace velan

#endif  // VELAN_TEXT_INSPECTION_TRIMMED_UNITS_INTERNAL_H
