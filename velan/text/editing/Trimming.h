// Removing units at the ends of a string, however many there are: in place, and as a new string, which is `string`
// itself when there is nothing to trim, and absent when memory runs out.
#ifndef VELAN_TEXT_EDITING_TRIMMING_H
#define VELAN_TEXT_EDITING_TRIMMING_H

#include "velan/base/MutableString.h"

namespace velan {

/// `trimWhiteSpaces`: members of `whiteCharacterSetRep`, at both ends.
VELAN_EXPORT void trimWhiteSpaces(MutableString& text);
/// `stringByTrimmingWhiteSpaces`
VELAN_EXPORT String stringByTrimmingWhiteSpaces(const String& string);

/// `trimFeeds`: line ends, those of `velan/text/inspection/Lines.h`, at both ends.
VELAN_EXPORT void trimFeeds(MutableString& text);
/// `stringByTrimmingFeeds`
VELAN_EXPORT String stringByTrimmingFeeds(const String& string);

/// `trimCharacter:`: `c`, at both ends.
VELAN_EXPORT void trimCharacter(MutableString& text, unichar c);
/// `stringByTrimmingCharacter:`
VELAN_EXPORT String stringByTrimmingCharacter(const String& string, unichar c);

/// `trimPrefixCharacter:`: `c`, at the beginning.
VELAN_EXPORT void trimPrefixCharacter(MutableString& text, unichar c);
/// `stringByTrimmingPrefixCharacter:`
VELAN_EXPORT String stringByTrimmingPrefixCharacter(const String& string, unichar c);

/// `trimSuffixCharacter:`: `c`, at the end.
VELAN_EXPORT void trimSuffixCharacter(MutableString& text, unichar c);
/// `stringByTrimmingSuffixCharacter:`
VELAN_EXPORT String stringByTrimmingSuffixCharacter(const String& string, unichar c);

}  // namespace velan

#endif  // VELAN_TEXT_EDITING_TRIMMING_H
