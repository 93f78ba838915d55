// Which classes of code units a string holds: the sets of `velan/text/CharacterSets.h` over whole strings. Surrogates
// count one by one; an absent string counts as empty. Nothing allocates; any thread may call these.
#ifndef VELAN_TEXT_INSPECTION_CHARACTER_CLASSES_H
#define VELAN_TEXT_INSPECTION_CHARACTER_CLASSES_H

#include "velan/text/CharacterSetOperations.h"
#include "velan/text/CharacterSets.h"

namespace velan {

/// `containsCharacterPartOfCharacterSetRep:`: whether some unit is a member of `rep` (8,192 bytes); false for a null
/// `rep`.
inline bool containsCharacterPartOfCharacterSetRep(const String& string, const uint8_t* rep) {
  return characterPartOfSet(string, rep);
}
/// `containsAlphaNumCharacter`: whether some unit is in `alphaNumCharacterSetRep`.
inline bool containsAlphaNumCharacter(const String& string) {
  return characterPartOfSet(string, alphaNumCharacterSetRep());
}
/// `containsAlphaCharacter`: whether some unit is in `alphaCharacterSetRep`.
inline bool containsAlphaCharacter(const String& string) { return characterPartOfSet(string, alphaCharacterSetRep()); }
/// `containsWhiteCharacter`: whether some unit is in `whiteCharacterSetRep`.
inline bool containsWhiteCharacter(const String& string) { return characterPartOfSet(string, whiteCharacterSetRep()); }
/// `containsDigitCharacter`: whether some unit is in `digitCharacterSetRep`, the digits of all scripts.
inline bool containsDigitCharacter(const String& string) { return characterPartOfSet(string, digitCharacterSetRep()); }

/// `countCharactersPartOfCharacterSetRep:`: how many units are members of `rep` (8,192 bytes); 0 for a null `rep`.
inline int64_t countCharactersPartOfCharacterSetRep(const String& string, const uint8_t* rep) {
  return countCharactersPartOfSet(string, rep);
}
/// `countAlphaNumCharacters`: how many units are in `alphaNumCharacterSetRep`.
inline int64_t countAlphaNumCharacters(const String& string) {
  return countCharactersPartOfSet(string, alphaNumCharacterSetRep());
}
/// `countAlphaCharacters`: how many units are in `alphaCharacterSetRep`.
inline int64_t countAlphaCharacters(const String& string) {
  return countCharactersPartOfSet(string, alphaCharacterSetRep());
}
/// `countWhiteCharacters`: how many units are in `whiteCharacterSetRep`.
inline int64_t countWhiteCharacters(const String& string) {
  return countCharactersPartOfSet(string, whiteCharacterSetRep());
}
/// `countDigitCharacters`: how many units are in `digitCharacterSetRep`.
inline int64_t countDigitCharacters(const String& string) {
  return countCharactersPartOfSet(string, digitCharacterSetRep());
}

/// `isSpaceString`: whether all units are in `spaceCharacterSetRep`; true for an empty string.
inline bool isSpaceString(const String& string) { return charactersPartOfSet(string, spaceCharacterSetRep(), true); }
/// `isWhiteString`: whether all units are in `whiteCharacterSetRep`; true for an empty string.
inline bool isWhiteString(const String& string) { return charactersPartOfSet(string, whiteCharacterSetRep(), true); }
/// `isDigitString`: whether all units are in `digitCharacterSetRep`; false for an empty string.
inline bool isDigitString(const String& string) { return charactersPartOfSet(string, digitCharacterSetRep(), false); }
/// `isAlphaString`: whether all units are in `alphaCharacterSetRep`; false for an empty string.
inline bool isAlphaString(const String& string) { return charactersPartOfSet(string, alphaCharacterSetRep(), false); }
/// `isAlphaNumString`: whether all units are in `alphaNumCharacterSetRep`; false for an empty string.
inline bool isAlphaNumString(const String& string) {
  return charactersPartOfSet(string, alphaNumCharacterSetRep(), false);
}

}  // namespace velan

#endif  // VELAN_TEXT_INSPECTION_CHARACTER_CLASSES_H
