// Runs of spaces, of white space or of line ends become one unit each, also at the ends of the text and also runs of
// one unit: a lone TAB becomes a space, CR LF one LF. In place nothing allocates; the new string is `string` itself
// when nothing changes or memory runs out. Linear time.
#ifndef VELAN_TEXT_EDITING_COLLAPSING_H
#define VELAN_TEXT_EDITING_COLLAPSING_H

#include "velan/base/MutableString.h"

namespace velan {

/// `removeMultipleWhiteSpaces`, the routine behind the three below: puts `replacement` for each run of members of
/// `whiteCharacterSetRep` if `whiteSpaces`, else of `spaceCharacterSetRep` if `spacesOnly`, else of line ends, those of
/// `velan/text/inspection/Lines.h`.
VELAN_EXPORT void removeMultipleWhiteSpaces(MutableString& text, bool spacesOnly, bool whiteSpaces,
                                            unichar replacement);
/// `stringByRemovingMultipleWhiteSpaces`, the routine: the same as a new string.
VELAN_EXPORT String stringByRemovingMultipleWhiteSpaces(const String& string, bool spacesOnly, bool whiteSpaces,
                                                        unichar replacement);

/// `removeMultipleSpaces`: one space for each run of spaces (TAB and U+0000 among them, line ends not).
inline void removeMultipleSpaces(MutableString& text) { removeMultipleWhiteSpaces(text, true, false, u' '); }
/// `stringByRemovingMultipleSpaces`
inline String stringByRemovingMultipleSpaces(const String& string) {
  return stringByRemovingMultipleWhiteSpaces(string, true, false, u' ');
}

/// `removeMultipleWhiteSpaces`: one space for each run of white space, so that all lines become one.
inline void removeMultipleWhiteSpaces(MutableString& text) { removeMultipleWhiteSpaces(text, false, true, u' '); }
/// `stringByRemovingMultipleWhiteSpaces`
inline String stringByRemovingMultipleWhiteSpaces(const String& string) {
  return stringByRemovingMultipleWhiteSpaces(string, false, true, u' ');
}

/// `removeMultipleFeeds`: one LF for each run of line ends.
inline void removeMultipleFeeds(MutableString& text) { removeMultipleWhiteSpaces(text, false, false, u'\n'); }
/// `stringByRemovingMultipleFeeds`
inline String stringByRemovingMultipleFeeds(const String& string) {
  return stringByRemovingMultipleWhiteSpaces(string, false, false, u'\n');
}

}  // namespace velan

#endif  // VELAN_TEXT_EDITING_COLLAPSING_H
