#include "velan/text/inspection/SubstringSearch.h"

#include <algorithm>

#include "velan/text/inspection/OccurrencesInternal.h"

namespace velan {

bool containsSubstring(const String& string, const String& substring, bool caseSensitive) {
  return hasOccurrence(string.view(), substring.view(), caseSensitive);
}

int64_t countSubstring(const String& string, const String& substring, bool caseSensitive) {
  const std::u16string_view text = string.view();
  return static_cast<int64_t>(occurrenceSearch(substring.view(), caseSensitive).count(text.data(), text.size()));
}

bool containsSubstrings(const String& string, const std::vector<String>& substrings, bool caseSensitive) {
  return std::ranges::any_of(
      substrings, [&](const String& substring) { return containsSubstring(string, substring, caseSensitive); });
}

}  // namespace velan
