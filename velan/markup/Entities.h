// Character entities of markup: "&eacute;", "&#233;" and "&#xE9;" for "é", and the four escapes that protect markup.
// What is not recognised is copied as it stands. The names are the 252 of HTML 4 without "cedil" and "fnof", which stay
// undecoded, and with "apos"; their case matters. Any thread may call all of it; positions and lengths are in units.
#ifndef VELAN_MARKUP_ENTITIES_H
#define VELAN_MARKUP_ENTITIES_H

#include "velan/base/CTypes.h"

#ifdef __cplusplus
namespace velan {
extern "C" {
#endif

/// `convertEntities2Characters`: decodes `source[start, start + length)` into `destination`, from `destination[0]` on,
/// and returns the number of units written, never more than `length`. `destination` has room for `length` units; it may
/// be `source`, or overlap it from before `source + start`.
///
/// A `;` after a recognised entity is optional. Without `standard` what stands for `"`, `&`, `<` or `>` stays escaped,
/// so that the text can still be read as markup. With `onlyNumeric` names other than "nbsp", "apos" and (if `standard`)
/// "quot", "amp", "lt" and "gt" stay. With `nonUmlauted` all text loses its diacritics, except what those six and
/// references beyond U+FFFF give. References that hold no digit, that are longer than 31 units or that lie beyond
/// U+10FFFF stay; surrogates come out as they stand. 0 if a pointer is null.
VELAN_EXPORT size_t convertEntities2Characters(const unichar* source, unichar* destination, size_t start, size_t length,
                                               bool standard, bool onlyNumeric, bool nonUmlauted);

/// `convertStdEntities2Characters`: decodes `&quot;`, `&amp;`, `&lt;`, `&gt;`, `&#34;`, `&#38;`, `&#60;` and `&#62;` in
/// place and returns the new length. The `;` is needed, and another one closely behind it (as in `&amp;;`) leaves the
/// entity undecoded: a `;` five units after the `&` allows only `&quot;`, one four units after it only the others with
/// five units. 0 if `characters` is null.
VELAN_EXPORT size_t convertStdEntities2Characters(unichar* characters, size_t length);

#ifdef __cplusplus
}  // extern "C"
}  // namespace velan

#include <concepts>

#include "velan/base/String.h"

namespace velan {

/// `stringByConvertingEntitiesToCharacters:onlyNumericEntities:nonUmlauted:`: what `convertEntities2Characters` makes
/// of `string`. The receiver itself when nothing changes, when it has fewer than 4 units, or when memory runs out.
VELAN_EXPORT String stringByConvertingEntitiesToCharacters(const String& string, bool standard, bool onlyNumeric,
                                                           bool nonUmlauted);
/// `stringByConvertingEntitiesToCharacters`: all entities.
inline String stringByConvertingEntitiesToCharacters(const String& string) {
  return stringByConvertingEntitiesToCharacters(string, true, false, false);
}
/// `stringByConvertingEntitiesToCharactersNonUmlauted:`: all entities, with or without diacritics.
inline String stringByConvertingEntitiesToCharactersNonUmlauted(const String& string, bool nonUmlauted) {
  return stringByConvertingEntitiesToCharacters(string, true, false, nonUmlauted);
}

/// `stringByConvertingStandardEntitiesToCharacters`: what `convertStdEntities2Characters` makes of `string`. The
/// receiver itself when nothing changes, when it has fewer than 4 units, or when memory runs out.
VELAN_EXPORT String stringByConvertingStandardEntitiesToCharacters(const String& string);

/// `stringByConvertingCharactersToEntities` (the method): each unit that has a name as `&name;`, each other one above
/// U+007F as a decimal reference, a surrogate by itself. The markup characters `"`, `&`, `<` and `>` stay. The receiver
/// itself when it is ASCII or when memory runs out. With a flag: the function of this name, which writes no names.
VELAN_EXPORT String stringByConvertingCharactersToEntities(const String& string);

/// `stringByConvertingCharactersToStandardEntities`: `"`, `&`, `<` and `>` by their names and
/// nothing else. The receiver itself when nothing changes or when memory runs out.
VELAN_EXPORT String stringByConvertingCharactersToStandardEntities(const String& string);
/// `stringByConvertingHighCharactersToEntities`: each unit above U+007F as a decimal reference and nothing else. The
/// receiver itself when nothing changes or when memory runs out.
VELAN_EXPORT String stringByConvertingHighCharactersToEntities(const String& string);
/// `stringByConvertingCharactersToEntities` (the function): with `high`
/// `stringByConvertingHighCharactersToEntities`, else `stringByConvertingCharactersToStandardEntities`.
String stringByConvertingCharactersToEntities(const String& string, std::same_as<bool> auto high) {
  return high ? stringByConvertingHighCharactersToEntities(string)
              : stringByConvertingCharactersToStandardEntities(string);
}

}  // namespace velan
#endif  // __cplusplus
#endif  // VELAN_MARKUP_ENTITIES_H
