// Lines of a text. A line ends at U+0003, LF, FF, CR, U+2028, U+2029, U+FEFF or U+FFFC; CR LF together is one end, and
// the last line needs none. (The line separators of the word functions are another set: they have U+0085 and lack
// U+FEFF.) An absent string counts as empty. Any thread may call these.
#ifndef VELAN_TEXT_INSPECTION_LINES_H
#define VELAN_TEXT_INSPECTION_LINES_H

#include <vector>

#include "velan/base/String.h"

namespace velan {

/// `numberOfLines`: how many lines `string` has; 0 for an empty string.
VELAN_EXPORT int64_t numberOfLines(const String& string);

/// `lines`: each line without its end, in order, empty ones too: `numberOfLines` of them. May throw `std::bad_alloc`.
VELAN_EXPORT std::vector<String> lines(const String& string);

/// `firstLine`: what stands before the first line end; `string` itself when there is none.
VELAN_EXPORT String firstLine(const String& string);

/// `lengthOfFeedOfLine`: how many units the line end at the very end of `string` has: 2 for CR LF, 1 for any other, 0
/// when `string` does not end with one.
VELAN_EXPORT int64_t lengthOfFeedOfLine(const String& string);
/// `hasFeedOfLine`: whether `string` ends with a line end.
inline bool hasFeedOfLine(const String& string) { return lengthOfFeedOfLine(string) != 0; }
/// `feedOfLine`: the line end at the very end of `string`; an empty string when there is none.
VELAN_EXPORT String feedOfLine(const String& string);

}  // namespace velan

#endif  // VELAN_TEXT_INSPECTION_LINES_H
