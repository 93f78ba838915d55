// Removing tags or whole elements from markup, and cutting out the body of one. Names are ASCII and match the whole
// name of a tag in any case. A script or style element that the scanner reports as one tag opens and closes at once.
#ifndef VELAN_MARKUP_STRIPPING_H
#define VELAN_MARKUP_STRIPPING_H

#include <concepts>
#include <vector>

#include "velan/base/String.h"

namespace velan {

/// `stripTag:`: `string` without the tags of that name, opening, closing or self-closed; a script or style element goes
/// with its body. The receiver itself when there is none, or when `name` is null or empty.
VELAN_EXPORT String stripTag(const String& string, const char* name);

/// `stripTagBodies:`: `string` without the elements whose opening tag begins with an entry of `prefixes`, in any case:
/// "<script" matches `<script type=x>`, and `<scripts>` too. Elements of the same name inside are part of them; a
/// self-closed tag of that name inside counts as a closing one. The receiver itself when nothing is removed.
VELAN_EXPORT String stripTagBodies(const String& string, const std::vector<String>& prefixes);
/// `stripTagBodiesExcept:`: only those elements, each with a line feed behind it, and self-closed tags that match.
/// Absent when there are none.
VELAN_EXPORT String stripTagBodiesExcept(const String& string, const std::vector<String>& prefixes);
/// `stripTagBodies:except:`: `stripTagBodiesExcept` if `except`, else `stripTagBodies`.
String stripTagBodies(const String& string, const std::vector<String>& prefixes, std::same_as<bool> auto except) {
  return except ? stripTagBodiesExcept(string, prefixes) : stripTagBodies(string, prefixes);
}

/// `tagBody:inner:`: the first element named `name`. With `inner` without all tags of that name, also those of nested
/// elements; otherwise with them. Absent when no such tag occurs.
///
/// A closing tag before any opening one also starts a body, and without `inner` a self-closed tag outside is kept.
VELAN_EXPORT String tagBody(const String& string, const char* name, bool inner);
/// `innerTagBody:`
inline String innerTagBody(const String& string, const char* name) { return tagBody(string, name, true); }
/// `outerTagBody:`
inline String outerTagBody(const String& string, const char* name) { return tagBody(string, name, false); }

}  // namespace velan

#endif  // VELAN_MARKUP_STRIPPING_H
