#include "velan/text/inspection/SubstringSearch.h"

#include <algorithm>

#include "velan/text/inspection/OccurrencesInternal.h"

namespace velan {

bool containsSubstring(const String& string, const String& substring, bool caseSensitive) {
  return findOccurrence(string.view(), substring.view(), caseSensitive) != string.view().size();
}

int64_t countSubstring(const String& string, const String& substring, bool caseSensitive) {
  int64_t count = 0;
  forEachOccurrence(string.view(), substring.view(), caseSensitive, [&count](std::u16string_view) { ++count; });
  return count;
}

bool containsSubstrings(const String& string, const std::vector<String>& substrings, bool caseSensitive) {
  return std::ranges::any_of(
      substrings, [&](const String& substring) { return containsSubstring(string, substring, caseSensitive); });
}

}  // namespace velan
