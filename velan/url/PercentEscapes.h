// Percent escapes in URLs that are kept as plain strings: `%` and two hexadecimal digits of either case for a byte. Two
// pairs of converters work on UTF-16 units and know no encoding: the standard set touches only what has a meaning in a
// URL, the ASCII set everything below U+0080. The general forms escape and decode all bytes of an encoding. Decoding is
// one pass: "%2541" becomes "%41". All of it may be called from any thread.
#ifndef VELAN_URL_PERCENT_ESCAPES_H
#define VELAN_URL_PERCENT_ESCAPES_H

#include "velan/base/CTypes.h"

#ifdef __cplusplus
namespace velan {
extern "C" {
#endif

/// `convertPercentEscapesOfURL`: decodes `characters[0, length)` in place and returns the new length in units, never
/// more than `length`; 0 for a null pointer. Any other `%` stays.
///
/// With `standard` the escapes of U+0009, U+000A, U+000D, space and `$ % & ' + / : ; = @ ~` are decoded, and that of
/// `?` unless the text holds a `?` already, which a second one would shift. Without it every escape below U+0080 is
/// decoded, line ends and U+0000 too.
VELAN_EXPORT size_t convertPercentEscapesOfURL(unichar* characters, size_t length, bool standard);

#ifdef __cplusplus
}  // extern "C"
}  // namespace velan

#include <concepts>

#include "velan/base/String.h"
#include "velan/base/StringEncoding.h"

namespace velan {

/// `_stringByReplacingPercentEscapesOfURL`: what `convertPercentEscapesOfURL` makes of `string`. The receiver itself
/// when nothing changes; absent for an absent string, and when memory runs out.
VELAN_EXPORT String _stringByReplacingPercentEscapesOfURL(const String& string, bool standard);
/// `stringByReplacingStandardPercentEscapesOfURL`: the standard set.
inline String stringByReplacingStandardPercentEscapesOfURL(const String& string) {
  return _stringByReplacingPercentEscapesOfURL(string, true);
}
/// `stringByReplacingASCIIPercentEscapesOfURL`: the ASCII set.
inline String stringByReplacingASCIIPercentEscapesOfURL(const String& string) {
  return _stringByReplacingPercentEscapesOfURL(string, false);
}

/// `stringByAddingStandardPercentEscapesToURL`: escapes space and `# $ % & + / : ; = ? @`, with lower-case digits. Not
/// the counterpart of decoding: "%23" is never decoded, while line ends, `'` and `~` are decoded and not escaped.
/// Always a new string, but the receiver itself for an empty or absent one; absent when memory runs out.
VELAN_EXPORT String stringByAddingStandardPercentEscapesToURL(const String& string);
/// `stringByAddingASCIIPercentEscapesToURL`: the same for all units below U+0080 that are neither letters nor digits;
/// those above stay.
VELAN_EXPORT String stringByAddingASCIIPercentEscapesToURL(const String& string);
/// `stringByAddingPercentEscapesToURL` with a flag: the standard or the ASCII set. Without the flag: all of UTF-8.
String stringByAddingPercentEscapesToURL(const String& string, std::same_as<bool> auto standard) {
  return standard ? stringByAddingStandardPercentEscapesToURL(string) : stringByAddingASCIIPercentEscapesToURL(string);
}

/// `stringByReplacingPercentEscapesOfURL:`: decodes all escapes; each run of them has to be text in `encoding`. Absent
/// when one is not, for a `%` without two digits, and for an unknown encoding. What is not escaped stays. The receiver
/// itself when it holds no `%`.
VELAN_EXPORT String stringByReplacingPercentEscapesOfURL(const String& string, StringEncoding encoding);
/// `stringByReplacingPercentEscapesOfURL`: in UTF-8.
inline String stringByReplacingPercentEscapesOfURL(const String& string) {
  return stringByReplacingPercentEscapesOfURL(string, StringEncoding::UTF8);
}

/// `stringByAddingPercentEscapesToURL:leaveUnescaped:toBeEscaped:`: escapes the bytes in `encoding` of all but ASCII
/// letters and digits and `! $ & ' ( ) * + , - . / : ; = ? @ _ ~`, with upper-case digits. Of what would be escaped the
/// units in `leaveUnescaped` stay, of what would stay those in `toBeEscaped` are escaped; both may be absent. Absent
/// when the encoding lacks a unit: UTF-8 a lone surrogate, any other but UTF-16 also those in pairs. No byte-order mark
/// is written; UTF-16 and UTF-32 without an order are little-endian. The receiver itself when nothing is escaped.
VELAN_EXPORT String stringByAddingPercentEscapesToURL(const String& string, StringEncoding encoding,
                                                      const String& leaveUnescaped, const String& toBeEscaped);
/// `stringByAddingPercentEscapesToURL:leaveUnescaped:`
inline String stringByAddingPercentEscapesToURL(const String& string, StringEncoding encoding,
                                                const String& leaveUnescaped) {
  return stringByAddingPercentEscapesToURL(string, encoding, leaveUnescaped, String());
}
/// `stringByAddingPercentEscapesToURL:`
inline String stringByAddingPercentEscapesToURL(const String& string, StringEncoding encoding) {
  return stringByAddingPercentEscapesToURL(string, encoding, String(), String());
}
/// `stringByAddingPercentEscapesToURL`: in UTF-8. With a flag: one of the two sets.
inline String stringByAddingPercentEscapesToURL(const String& string) {
  return stringByAddingPercentEscapesToURL(string, StringEncoding::UTF8);
}

}  // namespace velan
#endif  // __cplusplus

#endif  // VELAN_URL_PERCENT_ESCAPES_H
