// Attributes of one tag, declarations of an inline style, and fields of header values, read without a parser: the first
// place that looks right counts. Names match in any case. Entities are not decoded. Positions are in units.
#ifndef VELAN_MARKUP_ATTRIBUTES_H
#define VELAN_MARKUP_ATTRIBUTES_H

#include "velan/base/String.h"

namespace velan {

/// `attributeOfTagCharacters:range:withName:`: the value of the attribute `name` (ASCII) of the tag that stands at
/// `range` of `characters`, from its "<" through its ">"; absent when there is none or it is empty.
///
/// The value of "src" in `<img data-src='a' src = 'b'>` is "b": a name does not follow a letter, a digit, "-" or "_".
/// It ends with its quote, or at a ">" before that; without a quote at white space or ">". White space behind it is cut
/// off. Absent for null pointers, an empty name, and a range that is absent or negative; else the range lies in
/// `characters`.
VELAN_EXPORT String attributeOfTagCharacters(const unichar* characters, Range range, const char* name);
/// `attributeOfTagCharacters:length:withName:`: of the tag `characters[0, length)`.
inline String attributeOfTagCharacters(const unichar* characters, int64_t length, const char* name) {
  return attributeOfTagCharacters(characters, Range{0, length}, name);
}
/// `rangeOfAttributeOfTagCharacters:range:withName:`: where in `characters` that value stands; an absent range when
/// there is none.
VELAN_EXPORT Range rangeOfAttributeOfTagCharacters(const unichar* characters, Range range, const char* name);
/// `rangeOfAttributeOfTagCharacters:length:withName:`
inline Range rangeOfAttributeOfTagCharacters(const unichar* characters, int64_t length, const char* name) {
  return rangeOfAttributeOfTagCharacters(characters, Range{0, length}, name);
}
/// `contentAttributeOfTagCharacters:range:`: the value of the attribute "content", tolerantly: a quoted value may hold
/// balanced angle brackets, ends before "<meta", and loses a "<" or "</" that runs into its closing quote.
VELAN_EXPORT String contentAttributeOfTagCharacters(const unichar* characters, Range range);

/// `attributeOfTagInRange:withName:`: the value of the attribute `name` of the tag at `range` of `string` (clipped to
/// it); absent when there is none or it is empty. As `attributeOfTagCharacters`, but here a name may follow "_", and
/// behind "=" only white space is skipped.
VELAN_EXPORT String attributeOfTagInRange(const String& string, Range range, const String& name);
/// `attributeOfTagWithName:`: of the tag `string`.
inline String attributeOfTagWithName(const String& string, const String& name) {
  return attributeOfTagInRange(string, {0, string.length()}, name);
}
/// `attributeOfStyleInRange:withName:`: the value of the property `name` of the style declarations at `range` of
/// `string`, such as "red" for "color" in "color: red; width: 5px".
VELAN_EXPORT String attributeOfStyleInRange(const String& string, Range range, const String& name);
/// `attributeOfStyleWithName:`: of the declarations `string`.
inline String attributeOfStyleWithName(const String& string, const String& name) {
  return attributeOfStyleInRange(string, {0, string.length()}, name);
}

/// `headerFieldNamed:quotation:separator:`: the value of the first `name=value` in `string`, such as "utf-8" for
/// "charset" in "text/html; charset=utf-8"; absent when there is none. The name matches anywhere, also inside a longer
/// word; white space may stand before the "=".
///
/// The value begins right behind the "=". In the unit `quotation` (0 for none) it runs to the next such unit, and an
/// empty one is passed over; otherwise it runs to the unit `separator` or, when that is 0, to the end, and may be
/// empty.
VELAN_EXPORT String headerFieldNamed(const String& string, const String& name, unichar quotation, unichar separator);
/// `headerFieldNamed:quotation:`: without a separator.
inline String headerFieldNamed(const String& string, const String& name, unichar quotation) {
  return headerFieldNamed(string, name, quotation, 0);
}
/// `headerFieldNamed:`: the same tolerantly: white space may stand behind the "=" too, both quotation marks count, and
/// a value without them ends at white space, a quotation mark, ">" or ";".
VELAN_EXPORT String headerFieldNamed(const String& string, const String& name);
/// `HTTPHeaderFieldNamed:`: the same in a block of header lines, where a name at the beginning of a line with a colon
/// behind it counts too; its value is the rest of the line without white space around it. The first line that has a
/// value counts.
VELAN_EXPORT String HTTPHeaderFieldNamed(const String& string, const String& name);

}  // namespace velan

#endif  // VELAN_MARKUP_ATTRIBUTES_H
