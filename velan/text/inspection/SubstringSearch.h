// Whether and how often texts occur in a string. Without the flag case is ignored: both sides are looked up in the
// upper table, not folded. All positions count, also one that ends where `string` ends (unlike `fastContainsUnichars`).
// An empty or absent text is never found, nor is anything in an absent string. Time is linear in the lengths; nothing
// allocates; any thread may call these.
#ifndef VELAN_TEXT_INSPECTION_SUBSTRING_SEARCH_H
#define VELAN_TEXT_INSPECTION_SUBSTRING_SEARCH_H

#include <vector>

#include "velan/base/String.h"

namespace velan {

/// `containsSubstring:caseSensitive:`: whether `substring` occurs in `string`.
VELAN_EXPORT bool containsSubstring(const String& string, const String& substring, bool caseSensitive);
/// `containsSubstring:`: ignoring case.
inline bool containsSubstring(const String& string, const String& substring) {
  return containsSubstring(string, substring, false);
}

/// `countSubstring:caseSensitive:`: how often `substring` occurs, each occurrence looked for behind the one before:
/// "aa" occurs once in "aaa".
VELAN_EXPORT int64_t countSubstring(const String& string, const String& substring, bool caseSensitive);
/// `countSubstring:`: ignoring case.
inline int64_t countSubstring(const String& string, const String& substring) {
  return countSubstring(string, substring, false);
}

/// `containsSubstrings:caseSensitive:`: whether at least one of `substrings` occurs in `string`; false for an empty
/// list.
VELAN_EXPORT bool containsSubstrings(const String& string, const std::vector<String>& substrings, bool caseSensitive);
/// `containsSubstrings:`: ignoring case.
inline bool containsSubstrings(const String& string, const std::vector<String>& substrings) {
  return containsSubstrings(string, substrings, false);
}

}  // namespace velan

#endif  // VELAN_TEXT_INSPECTION_SUBSTRING_SEARCH_H
