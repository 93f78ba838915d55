// How frequent code units are in ordinary text, to look for the rare ones of a needle.
#ifndef VELAN_TEXT_UNIT_FREQUENCIES_INTERNAL_H
#define VELAN_TEXT_UNIT_FREQUENCIES_INTERNAL_H

#include <array>
#include <string_view>

#include "velan/base/CTypes.h"

namespace velan {

/// The units of which frequencies are known; all others count as rare.
inline constexpr size_t kRankedUnits = 0x480;

/// What it costs to look for a unit: its rank by frequency, from 255 down, in the high byte. Units that more than a
/// letter in two cases become through a table are slow to look for: only the most frequent of others cost more.
using UnitCosts = std::array<uint16_t, kRankedUnits>;

constexpr uint16_t costOfMany(uint16_t cost) {
  constexpr uint16_t kRank = 244;
  return static_cast<uint16_t>(kRank << 8 | cost >> 8);
}

/// Without a table.
inline constexpr UnitCosts kUnitCosts = [] {
  // The most frequent first; those of two scripts that share no text take turns.
  constexpr std::u16string_view kByFrequency =
      u" оeеtаaиoнiтnсsрrвhлlк\ndмcдuпmуfяpыgьwгyзbб,.vчkй0х1-TSACIMPж2DBшEFRLNOHWG3юx5ц4)(U9\"'687V:=/KJY_щjqэzф";
  UnitCosts costs{};
  for (size_t i = 0; i < kByFrequency.size(); ++i) costs[kByFrequency[i]] = static_cast<uint16_t>((255 - i) << 8);
  return costs;
}();

}  // namespace velan

#endif  // VELAN_TEXT_UNIT_FREQUENCIES_INTERNAL_H
