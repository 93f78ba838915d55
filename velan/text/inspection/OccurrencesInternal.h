// The occurrences of one text in another, for counting and for replacing.
#ifndef VELAN_TEXT_INSPECTION_OCCURRENCES_INTERNAL_H
#define VELAN_TEXT_INSPECTION_OCCURRENCES_INTERNAL_H

#include <algorithm>
#include <string_view>

#include "velan/text/search/Containment.h"
#include "velan/text/search/UnitSearchInternal.h"

namespace velan {

/// The first position of `needle` in `text`, or the length of `text`; an empty one is never found. Ignoring case is the
/// upper table on both sides.
inline size_t findOccurrence(std::u16string_view text, std::u16string_view needle, bool caseSensitive) {
  if (needle.empty()) return text.size();
  if (caseSensitive) {
    // Where occurrences stand close together the next one is found here, sooner than a search by blocks is set up.
    const size_t near = std::min<size_t>(text.size(), 8);
    for (size_t i = 0; i < near; ++i) {
      if (text[i] == needle.front() && text.substr(i).starts_with(needle)) return i;
    }
    return near + findUnits(text.data() + near, text.size() - near, needle.data(), needle.size());
  }
  const unichar* found = fastCaseInsensitiveContainsUnichars(text.data(), text.size(), needle.data(), needle.size());
  return found ? static_cast<size_t>(found - text.data()) : text.size();
}

/// Calls `handler(before)` for each occurrence, looked for behind the one before, with the text between the two;
/// returns what is left behind the last.
template <typename Handler>
std::u16string_view forEachOccurrence(std::u16string_view text, std::u16string_view needle, bool caseSensitive,
                                      Handler handler) {
  for (;;) {
    const size_t position = findOccurrence(text, needle, caseSensitive);
    if (position == text.size()) return text;
    handler(text.substr(0, position));
    text.remove_prefix(position + needle.size());
  }
}

}  // namespace velan

#endif  // VELAN_TEXT_INSPECTION_OCCURRENCES_INTERNAL_H
