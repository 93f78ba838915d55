#include "velan/text/CharacterSetOperations.h"

#include <algorithm>

#include "velan/text/CharacterSets.h"

namespace velan {

bool characterPartOfSet(const String& string, const uint8_t* rep) {
  return rep && std::ranges::any_of(string.view(), [rep](unichar c) { return isMemberOfCharacterSetRep(rep, c); });
}

bool charactersPartOfSet(const String& string, const uint8_t* rep, bool emptyResult) {
  if (string.isEmpty()) return emptyResult;
  return rep && std::ranges::all_of(string.view(), [rep](unichar c) { return isMemberOfCharacterSetRep(rep, c); });
}

int64_t countCharactersPartOfSet(const String& string, const uint8_t* rep) {
  if (!rep) return 0;
  return std::ranges::count_if(string.view(), [rep](unichar c) { return isMemberOfCharacterSetRep(rep, c); });
}

}  // namespace velan
