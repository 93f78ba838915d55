#include "velan/text/inspection/WordForms.h"

#include <algorithm>

#include "velan/text/CharacterSetOperations.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/Separators.h"

namespace velan {
namespace {

bool isOfOneCase(const String& string, const uint8_t* otherCase) {
  return characterPartOfSet(string, alphaCharacterSetRep()) && !characterPartOfSet(string, otherCase);
}

bool holds(std::u16string_view units, const uint8_t* rep) {
  return std::ranges::any_of(units, [rep](unichar c) { return isMemberOfCharacterSetRep(rep, c); });
}

bool isEastAsian(unichar c) {
  return (c >= 0x3000 && c <= 0x30FF) || (c >= 0x3400 && c <= 0x4DBF) || (c >= 0x4E00 && c <= 0x9FFF) ||
         (c >= 0xA700 && c <= 0xEBEF);
}

}  // namespace

bool isAsciiString(const String& string) {
  return std::ranges::all_of(string.view(), [](unichar c) { return c < 0x80; });
}

bool isUmlautedString(const String& string) {
  const unichar* table = initUmlautsCharsTable();
  return std::ranges::any_of(string.view(), [table](unichar c) { return table[c] != c; });
}

bool isLowerCaseString(const String& string) { return isOfOneCase(string, upperCharacterSetRep()); }
bool isUpperCaseString(const String& string) { return isOfOneCase(string, lowerCharacterSetRep()); }

bool isMashedWord(const String& string) {
  if (string.isEmpty() || characterPartOfSet(string, defaultWordSeparators())) return false;
  const std::u16string_view rest = string.view().substr(1);
  return (holds(rest, lowerCharacterSetRep()) && holds(rest, upperCharacterSetRep())) ||
         (holds(string.view(), alphaCharacterSetRep()) && holds(string.view(), digitCharacterSetRep()));
}

bool containsCJKCharacter(const String& string) { return std::ranges::any_of(string.view(), isEastAsian); }

}  // namespace velan
