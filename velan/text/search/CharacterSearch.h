// Finding and counting one code unit, or one of several, in a string. Positions are in code units; a negative start
// counts as 0; without a start the whole string is searched, without a flag case matters. Nothing allocates.
//
// A unit that has case in the tables (its lower and upper table entries differ) is a special case without the flag:
// then its upper-case form is searched, not the unit itself, so that "a" finds the "A" in "aA". The flag is a template
// parameter that only `bool` fits, so that it is never taken for a start index, nor an index for it.
#ifndef VELAN_TEXT_SEARCH_CHARACTER_SEARCH_H
#define VELAN_TEXT_SEARCH_CHARACTER_SEARCH_H

#include <concepts>

#include "velan/base/String.h"

namespace velan {

/// `findCharacter`, `findCharacter:startAt:caseInsensitive:`: the first position at or after `startAt` that holds `ch`,
/// in any case if `caseInsensitive`; `NSNotFound` when there is none.
VELAN_EXPORT int64_t findCharacter(const String& string, unichar ch, int64_t startAt, bool caseInsensitive);
/// `findCharacter:startAt:`
inline int64_t findCharacter(const String& string, unichar ch, int64_t startAt) {
  return findCharacter(string, ch, startAt, false);
}
/// `findCharacter:caseInsensitive:`
int64_t findCharacter(const String& string, unichar ch, std::same_as<bool> auto caseInsensitive) {
  return findCharacter(string, ch, int64_t{0}, caseInsensitive);
}
/// `findCharacter:`
inline int64_t findCharacter(const String& string, unichar ch) { return findCharacter(string, ch, int64_t{0}, false); }

/// `containsCharacter:startAt:caseInsensitive:`: whether `findCharacter` finds it.
inline bool containsCharacter(const String& string, unichar ch, int64_t startAt, bool caseInsensitive) {
  return findCharacter(string, ch, startAt, caseInsensitive) != NSNotFound;
}
/// `containsCharacter:caseInsensitive:`
bool containsCharacter(const String& string, unichar ch, std::same_as<bool> auto caseInsensitive) {
  return containsCharacter(string, ch, int64_t{0}, caseInsensitive);
}
/// `containsCharacter:`
inline bool containsCharacter(const String& string, unichar ch) {
  return containsCharacter(string, ch, int64_t{0}, false);
}

/// `findLastCharacter`, `findLastCharacter:startAt:caseInsensitive:`: the last position of all from `startAt` to the
/// end of the string that holds `ch`; `NSNotFound` when there is none.
VELAN_EXPORT int64_t findLastCharacter(const String& string, unichar ch, int64_t startAt, bool caseInsensitive);
/// `findLastCharacter:caseInsensitive:`
int64_t findLastCharacter(const String& string, unichar ch, std::same_as<bool> auto caseInsensitive) {
  return findLastCharacter(string, ch, int64_t{0}, caseInsensitive);
}
/// `findLastCharacter:`
inline int64_t findLastCharacter(const String& string, unichar ch) {
  return findLastCharacter(string, ch, int64_t{0}, false);
}

/// `countCharacter`, `countCharacter:startAt:caseInsensitive:`: how many positions at or after `startAt` hold `ch`.
VELAN_EXPORT int64_t countCharacter(const String& string, unichar ch, int64_t startAt, bool caseInsensitive);
/// `countCharacter:caseInsensitive:`
int64_t countCharacter(const String& string, unichar ch, std::same_as<bool> auto caseInsensitive) {
  return countCharacter(string, ch, int64_t{0}, caseInsensitive);
}
/// `countCharacter:`
inline int64_t countCharacter(const String& string, unichar ch) {
  return countCharacter(string, ch, int64_t{0}, false);
}

/// `findOneOf`, `findOneOf:startAt:caseInsensitive:`: the first position at or after `startAt` that holds one of the
/// units of `characters`; `NSNotFound` when there is none. Exact without the flag (no upper-case form is searched
/// here); with it both sides go through the upper table.
VELAN_EXPORT int64_t findOneOf(const String& string, const String& characters, int64_t startAt, bool caseInsensitive);
/// `findOneOf:caseInsensitive:`
int64_t findOneOf(const String& string, const String& characters, std::same_as<bool> auto caseInsensitive) {
  return findOneOf(string, characters, int64_t{0}, caseInsensitive);
}
/// `findOneOf:`
inline int64_t findOneOf(const String& string, const String& characters) {
  return findOneOf(string, characters, int64_t{0}, false);
}

}  // namespace velan

#endif  // VELAN_TEXT_SEARCH_CHARACTER_SEARCH_H
