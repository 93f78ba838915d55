// The units that end a line where text is inspected and edited. Word separation has another set for its own ends.
#ifndef VELAN_TEXT_INSPECTION_LINE_ENDS_INTERNAL_H
#define VELAN_TEXT_INSPECTION_LINE_ENDS_INTERNAL_H

#include <string_view>

#include "velan/text/CharacterSetBitsInternal.h"
#include "velan/text/CharacterSets.h"

namespace velan {

inline constexpr CharacterSetBits kLineEnds = [] {
  CharacterSetBits bits{};
  addUnits(bits, {0x000A, 0x000D, 0x000C, 0x0003, 0x2028, 0x2029, 0xFFFC, 0xFEFF});
  return bits;
}();

inline bool isLineEnd(unichar c) { return isMemberOfCharacterSetRep(kLineEnds.data(), c); }

/// Calls `handler(line)` for each line of `text` without its end, CR LF being one end; the last one needs none.
template <typename Handler>
void forEachLine(std::u16string_view text, Handler handler) {
  size_t start = 0;
  for (size_t i = 0; i < text.size();) {
    const unichar c = text[i++];
    if (!isLineEnd(c)) continue;
    handler(text.substr(start, i - 1 - start));
    if (c == '\r' && i < text.size() && text[i] == '\n') ++i;
    start = i;
  }
  if (start < text.size()) handler(text.substr(start));
}

}  // namespace velan

#endif  // VELAN_TEXT_INSPECTION_LINE_ENDS_INTERNAL_H
