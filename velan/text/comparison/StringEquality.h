// Equality of whole strings and of their beginnings, ends and ranges: exactly, through a conversion table, ignoring
// case by Unicode's full case folding, or ignoring case and diacritics through the upper table without diacritics.
// Texts of different length are never equal, so "straße" differs from "STRASSE" though their foldings are the same. An
// absent receiver equals nothing. Any thread may call these.
#ifndef VELAN_TEXT_COMPARISON_STRING_EQUALITY_H
#define VELAN_TEXT_COMPARISON_STRING_EQUALITY_H

#include "velan/base/String.h"

namespace velan {

/// `equalStringsUsingConversionTable`: whether `table` maps both to the same units; exactly equal when `table` is null.
/// `table` has 65,536 entries. Absent strings count as empty.
VELAN_EXPORT bool equalStringsUsingConversionTable(const String& a, const String& b, const unichar* table);

/// `isEqualToStringNoCase:`: the same length and the same full case folding; false if either is absent.
VELAN_EXPORT bool isEqualToStringNoCase(const String& string, const String& other);

/// `isNonUmlautedEqualToStringNoCase:`: the same through the upper table without diacritics; false if either is absent.
VELAN_EXPORT bool isNonUmlautedEqualToStringNoCase(const String& string, const String& other);

/// `hasPrefixNoCase:`: whether the first units of `string`, as many as `prefix` has, have the case folding of `prefix`.
/// An empty or absent prefix is none.
VELAN_EXPORT bool hasPrefixNoCase(const String& string, const String& prefix);

/// `hasSuffixNoCase:`: like `hasPrefixNoCase`, at the end of `string`.
VELAN_EXPORT bool hasSuffixNoCase(const String& string, const String& suffix);

/// `range:isEqualTo:`: whether `range` of `string` holds exactly `other`. An empty range equals an empty or absent
/// `other` wherever it lies; any other range that is not inside `string` equals nothing.
VELAN_EXPORT bool rangeIsEqualTo(const String& string, Range range, const String& other);

/// `range:isEqualToNoCase:`: like `rangeIsEqualTo`, by full case folding.
VELAN_EXPORT bool rangeIsEqualToNoCase(const String& string, Range range, const String& other);

/// `range:isNonUmlautedEqualToNoCase:`: like `rangeIsEqualTo`, through the upper table without diacritics. An absent
/// `other` never equals.
VELAN_EXPORT bool rangeIsNonUmlautedEqualToNoCase(const String& string, Range range, const String& other);

}  // namespace velan

#endif  // VELAN_TEXT_COMPARISON_STRING_EQUALITY_H
