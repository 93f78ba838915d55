// Replacing and deleting units and texts, in place. Without the flag exactly; with `caseSensitive` false both sides are
// looked up in the upper table. Occurrences are looked for behind the one before, never in what was put in. An empty or
// absent text is never found. Linear time. What may make the text longer returns false, and leaves the text as it was,
// when memory runs out.
#ifndef VELAN_TEXT_EDITING_REPLACEMENT_H
#define VELAN_TEXT_EDITING_REPLACEMENT_H

#include "velan/base/MutableString.h"
#include "velan/base/Value.h"

namespace velan {

/// `replaceCharacter:withCharacter:caseSensitive:`: puts `replacement` for each `c`.
VELAN_EXPORT void replaceCharacter(MutableString& text, unichar c, unichar replacement, bool caseSensitive);
/// `replaceCharacter:withCharacter:`
inline void replaceCharacter(MutableString& text, unichar c, unichar replacement) {
  replaceCharacter(text, c, replacement, true);
}

/// `replaceString:withString:caseSensitive:`: puts `replacement` for each occurrence of `substring`; an absent
/// replacement counts as empty.
VELAN_EXPORT bool replaceString(MutableString& text, const String& substring, const String& replacement,
                                bool caseSensitive);
/// `replaceString:withString:`
inline bool replaceString(MutableString& text, const String& substring, const String& replacement) {
  return replaceString(text, substring, replacement, true);
}

/// `replaceString:withFormat:`: puts for each occurrence of `substring`, exactly, the text that `format` gives with
/// `arguments`: "%@" is the next argument and "%%" a percent sign, anything else stands as it is. A string argument
/// stands for itself and a URL for its absolute string; others are written as `describe` does; a missing or absent one
/// is empty. The arguments' own percent signs mean nothing.
VELAN_EXPORT bool replaceStringWithFormat(MutableString& text, const String& substring, const String& format,
                                          const ValueArray& arguments);

/// `deleteString:caseSensitive:`: removes each occurrence of `substring`: deleting "ab" from "aabb" leaves "ab".
VELAN_EXPORT void deleteString(MutableString& text, const String& substring, bool caseSensitive);
/// `deleteString:`
inline void deleteString(MutableString& text, const String& substring) { deleteString(text, substring, true); }

/// `stringByRemovingString:caseSensitive:`: `deleteString` as a new string; `string` itself when `substring` does not
/// occur, absent when memory runs out.
VELAN_EXPORT String stringByRemovingString(const String& string, const String& substring, bool caseSensitive);
/// `stringByRemovingString:`
inline String stringByRemovingString(const String& string, const String& substring) {
  return stringByRemovingString(string, substring, true);
}

}  // namespace velan

#endif  // VELAN_TEXT_EDITING_REPLACEMENT_H
