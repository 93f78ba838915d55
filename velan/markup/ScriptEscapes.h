// The backslash escapes of JSON and of script literals, and those of brackets in Markdown links. Each conversion
// returns the receiver itself when nothing changes; an absent string stays absent.
#ifndef VELAN_MARKUP_SCRIPT_ESCAPES_H
#define VELAN_MARKUP_SCRIPT_ESCAPES_H

#include "velan/base/String.h"

namespace velan {

/// `stringByConvertingJSONToCharacters` (the function): the text that the backslash escapes of `string` stand for.
///
/// `\b`, `\f`, `\n`, `\r`, `\t` and `\u` with four hexadecimal digits as in JSON; with `javaScript` also `\v`, `\x`
/// with two digits, and `\O` (the letter) for U+0000. Any other unit after a backslash stands for itself; a backslash
/// at the end stays. A unit that is no digit counts as 0, and so do digits beyond the end. Surrogates are two escapes.
/// Absent when memory runs out.
VELAN_EXPORT String stringByConvertingJSONToCharacters(const String& string, bool javaScript);
/// `stringByConvertingJSONToCharacters` (the method). The way back is `stringByConvertingCharactersToJSON`.
inline String stringByConvertingJSONToCharacters(const String& string) {
  return stringByConvertingJSONToCharacters(string, false);
}
/// `stringByConvertingJavaScriptToCharacters`
inline String stringByConvertingJavaScriptToCharacters(const String& string) {
  return stringByConvertingJSONToCharacters(string, true);
}

/// `stringByConvertingCharactersToMarkdown`: with a backslash before each of `(`, `)`, `[` and `]`, also where there is
/// one already. Absent when memory runs out.
VELAN_EXPORT String stringByConvertingCharactersToMarkdown(const String& string);
/// `stringByConvertingMarkdownToCharacters`: without the backslashes that stand directly before a bracket. Absent when
/// memory runs out.
VELAN_EXPORT String stringByConvertingMarkdownToCharacters(const String& string);

}  // namespace velan

#endif  // VELAN_MARKUP_SCRIPT_ESCAPES_H
