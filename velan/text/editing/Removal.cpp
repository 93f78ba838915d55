#include "velan/text/editing/Removal.h"

#include "velan/text/CharacterSetBitsInternal.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/editing/UnitRemovalInternal.h"
#include "velan/text/inspection/LineEndsInternal.h"

namespace velan {
namespace {

auto memberOf(const uint8_t* rep) {
  return [rep](unichar c) { return isMemberOfCharacterSetRep(rep, c); };
}

CharacterSetBits setOfUnits(const String& characters) {
  CharacterSetBits bits{};
  for (const unichar c : characters) addUnit(bits, c);
  return bits;
}

bool isTab(unichar c) { return c == u'\t'; }

}  // namespace

void removeCharacters(MutableString& text, const uint8_t* rep) {
  if (rep) removeUnits(text, memberOf(rep));
}
String stringByRemovingCharacters(const String& string, const uint8_t* rep) {
  return rep ? stringByRemovingUnits(string, memberOf(rep)) : string;
}

void removeCharactersOfString(MutableString& text, const String& characters) {
  removeCharacters(text, setOfUnits(characters).data());
}
String stringByRemovingCharactersOfString(const String& string, const String& characters) {
  return stringByRemovingCharacters(string, setOfUnits(characters).data());
}

void removeFeeds(MutableString& text) { removeCharacters(text, kLineEnds.data()); }
String stringByRemovingFeeds(const String& string) { return stringByRemovingCharacters(string, kLineEnds.data()); }

void removeTabs(MutableString& text) { removeUnits(text, isTab); }
String stringByRemovingTabs(const String& string) { return stringByRemovingUnits(string, isTab); }

void removeSpaces(MutableString& text) { removeCharacters(text, spaceCharacterSetRep()); }
String stringByRemovingSpaces(const String& string) {
  return stringByRemovingCharacters(string, spaceCharacterSetRep());
}

void removeWhiteSpaces(MutableString& text) { removeCharacters(text, whiteCharacterSetRep()); }
String stringByRemovingWhiteSpaces(const String& string) {
  return stringByRemovingCharacters(string, whiteCharacterSetRep());
}

void removeDigits(MutableString& text) { removeCharacters(text, digitCharacterSetRep()); }
String stringByRemovingDigits(const String& string) {
  return stringByRemovingCharacters(string, digitCharacterSetRep());
}

}  // namespace velan
