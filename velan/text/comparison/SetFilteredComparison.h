// Equality and prefixes of texts of which only the members of a set count: units outside `rep` are skipped on both
// sides as if absent. "No case" looks both sides up in the upper table. Nothing allocates; a null `rep` gives false
// unless both texts are empty.
#ifndef VELAN_TEXT_COMPARISON_SET_FILTERED_COMPARISON_H
#define VELAN_TEXT_COMPARISON_SET_FILTERED_COMPARISON_H

#include "velan/base/CTypes.h"

#ifdef __cplusplus
namespace velan {
extern "C" {
#endif

/// `equalCharsOfCharacterSetRep`: whether the members in `a` are those in `b`, in the same order. Lengths in units.
VELAN_EXPORT bool equalCharsOfCharacterSetRep(const unichar* a, size_t lengthA, const unichar* b, size_t lengthB,
                                              const uint8_t* rep);
/// `equalCharsNoCaseOfCharacterSetRep`: the same, ignoring case.
VELAN_EXPORT bool equalCharsNoCaseOfCharacterSetRep(const unichar* a, size_t lengthA, const unichar* b, size_t lengthB,
                                                    const uint8_t* rep);
/// `hasPrefixCharsOfCharacterSetRep`: whether the members in `b` are the first of the members in `a`.
VELAN_EXPORT bool hasPrefixCharsOfCharacterSetRep(const unichar* a, size_t lengthA, const unichar* b, size_t lengthB,
                                                  const uint8_t* rep);
/// `hasPrefixCharsNoCaseOfCharacterSetRep`: the same, ignoring case.
VELAN_EXPORT bool hasPrefixCharsNoCaseOfCharacterSetRep(const unichar* a, size_t lengthA, const unichar* b,
                                                        size_t lengthB, const uint8_t* rep);

#ifdef __cplusplus
}  // extern "C"

class String;

/// `equalStringsUsingCharacterSetRep`: `equalCharsOfCharacterSetRep` of two strings; an absent one counts as empty.
VELAN_EXPORT bool equalStringsUsingCharacterSetRep(const String& a, const String& b, const uint8_t* rep);
/// `equalStringsNoCaseUsingCharacterSetRep`: the same, ignoring case.
VELAN_EXPORT bool equalStringsNoCaseUsingCharacterSetRep(const String& a, const String& b, const uint8_t* rep);
/// `hasPrefixUsingCharacterSetRep`: whether `a` has the prefix `b`, as `hasPrefixCharsOfCharacterSetRep` has it.
VELAN_EXPORT bool hasPrefixUsingCharacterSetRep(const String& a, const String& b, const uint8_t* rep);
/// `hasPrefixNoCaseUsingCharacterSetRep`: the same, ignoring case.
VELAN_EXPORT bool hasPrefixNoCaseUsingCharacterSetRep(const String& a, const String& b, const uint8_t* rep);

}  // namespace velan
#endif  // __cplusplus
#endif  // VELAN_TEXT_COMPARISON_SET_FILTERED_COMPARISON_H
