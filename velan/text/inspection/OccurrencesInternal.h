// The occurrences of one text in another, for counting and for replacing.
#ifndef VELAN_TEXT_INSPECTION_OCCURRENCES_INTERNAL_H
#define VELAN_TEXT_INSPECTION_OCCURRENCES_INTERNAL_H

#include <string_view>

#include "velan/text/ConversionTables.h"
#include "velan/text/search/UnitSearchInternal.h"

namespace velan {

/// Looks for `needle`, an empty one never being found. Ignoring case is the upper table on both sides.
inline UnitSearch<NeedleUnits> occurrenceSearch(std::u16string_view needle, bool caseSensitive) {
  const unichar* table = caseSensitive ? nullptr : initUpperCharsTable();
  return {{needle.data(), table}, needle.size(), table};
}

inline bool hasOccurrence(std::u16string_view text, std::u16string_view needle, bool caseSensitive) {
  return occurrenceSearch(needle, caseSensitive).find(text.data(), text.size()) != text.size();
}

/// Calls `handler(before)` for each occurrence, looked for behind the one before, with the text between the two;
/// returns what is left behind the last.
template <typename Handler>
std::u16string_view forEachOccurrence(std::u16string_view text, std::u16string_view needle, bool caseSensitive,
                                      Handler handler) {
  const auto search = occurrenceSearch(needle, caseSensitive);
  for (;;) {
    const size_t position = search.find(text.data(), text.size());
    if (position == text.size()) return text;
    handler(text.substr(0, position));
    text.remove_prefix(position + needle.size());
  }
}

}  // namespace velan

#endif  // VELAN_TEXT_INSPECTION_OCCURRENCES_INTERNAL_H
