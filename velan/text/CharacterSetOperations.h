// How a string relates to a set of code units. Nothing here allocates; surrogates count one by one.
#ifndef VELAN_TEXT_CHARACTER_SET_OPERATIONS_H
#define VELAN_TEXT_CHARACTER_SET_OPERATIONS_H

#include "velan/base/String.h"

namespace velan {

/// `characterPartOfSet`: whether at least one unit of `string` is a member of `rep`. False for a null `rep` and for an
/// empty or absent string.
VELAN_EXPORT bool characterPartOfSet(const String& string, const uint8_t* rep);

/// `charactersPartOfSet`: whether all units of `string` are members of `rep`; `emptyResult` for an empty or absent
/// string, and false for a null `rep` otherwise.
VELAN_EXPORT bool charactersPartOfSet(const String& string, const uint8_t* rep, bool emptyResult);

/// `countCharactersPartOfSet`: how many units of `string` are members of `rep`. 0 for a null `rep`.
VELAN_EXPORT int64_t countCharactersPartOfSet(const String& string, const uint8_t* rep);

}  // namespace velan

#endif  // VELAN_TEXT_CHARACTER_SET_OPERATIONS_H
