#include "velan/text/editing/Ligatures.h"

#include <algorithm>

#include "velan/text/editing/RebuildingInternal.h"

namespace velan {
namespace {

// Empty for a unit that is no ligature.
std::u16string_view lettersOfLigature(unichar c) {
  switch (c) {
    case 0x00C6:
      return u"AE";
    case 0x00E6:
      return u"ae";
    case 0x0132:
      return u"IJ";
    case 0x0133:
      return u"ij";
    case 0x0152:
      return u"OE";
    case 0x0153:
      return u"oe";
    case 0xFB00:
      return u"ff";
    case 0xFB01:
      return u"fi";
    case 0xFB02:
      return u"fl";
    case 0xFB03:
      return u"ffi";
    case 0xFB04:
      return u"ffl";
    case 0xFB05:
    case 0xFB06:
      return u"st";
    default:
      return {};
  }
}

bool isLigature(unichar c) { return !lettersOfLigature(c).empty(); }

}  // namespace

bool convertLigaturesToCharacters(MutableString& text) {
  std::u16string_view left = text.view();
  auto next = std::ranges::find_if(left, isLigature);
  if (next == left.end()) return true;
  return rebuild(text, text.length(), [&](MutableString& result) {
    for (; next != left.end(); next = std::ranges::find_if(left, isLigature)) {
      result.appendString(std::u16string_view(left.begin(), next));
      result.appendString(lettersOfLigature(*next));
      left.remove_prefix(static_cast<size_t>(next - left.begin()) + 1);
    }
    result.appendString(left);
  });
}

}  // namespace velan
