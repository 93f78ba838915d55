// Removing units from a string: in place, and as a new string, which is `string` itself when there is nothing
// to remove, and absent when memory runs out. Everything takes linear time; in place nothing allocates.
#ifndef VELAN_TEXT_EDITING_REMOVAL_H
#define VELAN_TEXT_EDITING_REMOVAL_H

#include "velan/base/MutableString.h"

namespace velan {

/// `removeCharacters:`: removes the members of `rep` (8,192 bytes); nothing for a null `rep`.
VELAN_EXPORT void removeCharacters(MutableString& text, const uint8_t* rep);
/// `stringByRemovingCharacters:`
VELAN_EXPORT String stringByRemovingCharacters(const String& string, const uint8_t* rep);

/// `removeCharactersOfString:`: removes each unit that occurs in `characters`.
VELAN_EXPORT void removeCharactersOfString(MutableString& text, const String& characters);
/// `stringByRemovingCharactersOfString:`
VELAN_EXPORT String stringByRemovingCharactersOfString(const String& string, const String& characters);

/// `removeFeeds`: removes the line ends, those of `velan/text/inspection/Lines.h`.
VELAN_EXPORT void removeFeeds(MutableString& text);
/// `stringByRemovingFeeds`
VELAN_EXPORT String stringByRemovingFeeds(const String& string);

/// `removeTabs`: removes each TAB.
VELAN_EXPORT void removeTabs(MutableString& text);
/// `stringByRemovingTabs`
VELAN_EXPORT String stringByRemovingTabs(const String& string);

/// `removeSpaces`: removes the members of `spaceCharacterSetRep`, TAB and U+0000 among them.
VELAN_EXPORT void removeSpaces(MutableString& text);
/// `stringByRemovingSpaces`
VELAN_EXPORT String stringByRemovingSpaces(const String& string);

/// `removeWhiteSpaces`: removes the members of `whiteCharacterSetRep`.
VELAN_EXPORT void removeWhiteSpaces(MutableString& text);
/// `stringByRemovingWhiteSpaces`
VELAN_EXPORT String stringByRemovingWhiteSpaces(const String& string);

/// `removeDigits`: removes the members of `digitCharacterSetRep`, the digits of all scripts.
VELAN_EXPORT void removeDigits(MutableString& text);
/// `stringByRemovingDigits`
VELAN_EXPORT String stringByRemovingDigits(const String& string);

/// `removeAttachments`: for texts with attributes; a plain text has no attachments to remove.
inline void removeAttachments(MutableString&) {}
/// `removeLinks`: for texts with attributes; a plain text has no links to remove.
inline void removeLinks(MutableString&) {}
/// `removeAttribute:`: for texts with attributes; a plain text has none to remove.
inline void removeAttribute(MutableString&, const String& /*attribute*/) {}

}  // namespace velan

#endif  // VELAN_TEXT_EDITING_REMOVAL_H
