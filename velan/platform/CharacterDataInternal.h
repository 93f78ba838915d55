// What the Unicode character database says about single code units, and its case-insensitive comparison.
#ifndef VELAN_PLATFORM_CHARACTER_DATA_INTERNAL_H
#define VELAN_PLATFORM_CHARACTER_DATA_INTERNAL_H

#include <string_view>

#include "velan/base/CTypes.h"
#include "velan/base/FunctionRef.h"

namespace velan {

/// Sets of Unicode general categories; `|` unites them.
enum class Categories : uint32_t {
  Unassigned = 1u << 0,        // Cn, which includes the noncharacters
  UppercaseLetter = 1u << 1,   // Lu
  LowercaseLetter = 1u << 2,   // Ll
  TitlecaseLetter = 1u << 3,   // Lt
  OtherLetter = 1u << 4,       // Lm, Lo
  Mark = 1u << 5,              // M
  DecimalDigit = 1u << 6,      // Nd
  OtherNumber = 1u << 7,       // Nl, No
  SpaceSeparator = 1u << 8,    // Zs
  LineSeparator = 1u << 9,     // Zl, Zp
  ControlOrFormat = 1u << 10,  // Cc, Cf
  Punctuation = 1u << 11,      // P
  Symbol = 1u << 12,           // S
  Other = 1u << 13,            // Co, Cs
};
constexpr Categories operator|(Categories a, Categories b) {
  return static_cast<Categories>(static_cast<uint32_t>(a) | static_cast<uint32_t>(b));
}
constexpr bool intersect(Categories a, Categories b) {
  return (static_cast<uint32_t>(a) & static_cast<uint32_t>(b)) != 0;
}

/// Hands over the runs of code units `[first, last]` of one category each, in ascending order, together the whole
/// Basic Multilingual Plane.
void enumerateCategories(FunctionRef<void(Categories category, unichar first, unichar last)> handler);

/// The full case mapping of `c` without a locale, or `c` itself when that is not exactly one unit (U+0130, U+00DF).
unichar lowerCaseOfUnit(unichar c);
unichar upperCaseOfUnit(unichar c);

/// `c` without its marks: what remains of its full canonical decomposition when all marks (category M) are dropped, or
/// `c` itself when that is not exactly one unit.
unichar withoutDiacritics(unichar c);

/// Whether both texts have the same full Unicode case folding (so "ß" equals "SS", and "ſ" equals "S"); canonically
/// equivalent spellings differ. False beyond 2^31 - 1 units.
bool equalWhenCaseFolded(std::u16string_view a, std::u16string_view b);

}  // namespace velan

#endif  // VELAN_PLATFORM_CHARACTER_DATA_INTERNAL_H
