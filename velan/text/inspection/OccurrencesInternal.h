// The occurrences of one text in another, for counting and for replacing.
#ifndef VELAN_TEXT_INSPECTION_OCCURRENCES_INTERNAL_H
#define VELAN_TEXT_INSPECTION_OCCURRENCES_INTERNAL_H

#include <string_view>

#include "velan/text/Containment.h"
#include "velan/text/UnitSearchInternal.h"

namespace velan {

/// The first position of `needle` in `text`, or the length of `text`; an empty one is never found. Ignoring case is the
/// upper table on both sides.
inline size_t findOccurrence(std::u16string_view text, std::u16string_view needle, bool caseSensitive) {
  if (caseSensitive) return findUnits(text.data(), text.size(), needle.data(), needle.size());
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
