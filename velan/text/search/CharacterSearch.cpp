#include "velan/text/search/CharacterSearch.h"

#include <algorithm>

#include "velan/text/CharacterSetBitsInternal.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/PreimagesInternal.h"

namespace velan {
namespace {

std::u16string_view tailOf(const String& string, int64_t startAt) {
  const int64_t start = std::clamp<int64_t>(startAt, 0, string.length());
  return string.view().substr(static_cast<size_t>(start));
}

// The units that count as `ch`.
UnitFilter filterOf(unichar ch, bool caseInsensitive) {
  const unichar* upper = initUpperCharsTable();
  const unichar upperForm = upper[ch];
  const bool hasCase = upperForm != initLowerCharsTable()[ch];
  if (hasCase && caseInsensitive) return filterOfPreimages(upperForm, upper);
  return UnitFilter(hasCase ? upperForm : ch);
}

// Calls `add(unit)` for the units that are equal to one of `characters` through `table`, or without one.
template <typename Add>
void forEachEqual(std::u16string_view characters, const unichar* table, Add add) {
  for (const unichar c : characters) {
    if (table) {
      forEachPreimage(table[c], table, add);
    } else {
      add(c);
    }
  }
}

// A whole bitmap takes longer to clear than a short text to search, and sets that are looked for are mostly ASCII.
size_t firstOneOf(std::u16string_view text, std::u16string_view characters, const unichar* table) {
  ASCIISet ascii{};
  bool isASCII = true;
  forEachEqual(characters, table, [&](unichar unit) {
    isASCII = isASCII && unit < 0x80;
    if (isASCII) addUnit(ascii, unit);
  });
  if (isASCII) return unitKernels().findASCII(text.data(), text.size(), ascii);
  CharacterSetBits wanted{};
  forEachEqual(characters, table, [&wanted](unichar unit) { addUnit(wanted, unit); });
  return unitKernels().findMember(text.data(), text.size(), wanted.data(), true);
}

int64_t positionIn(const String& string, const unichar* unit) { return unit - string.characters(); }

}  // namespace

int64_t findCharacter(const String& string, unichar ch, int64_t startAt, bool caseInsensitive) {
  const std::u16string_view tail = tailOf(string, startAt);
  const size_t found = unitKernels().find(tail.data(), tail.size(), filterOf(ch, caseInsensitive));
  return found == tail.size() ? NSNotFound : positionIn(string, &tail[found]);
}

int64_t findLastCharacter(const String& string, unichar ch, int64_t startAt, bool caseInsensitive) {
  const std::u16string_view tail = tailOf(string, startAt);
  const size_t found = unitKernels().findLast(tail.data(), tail.size(), filterOf(ch, caseInsensitive));
  return found == tail.size() ? NSNotFound : positionIn(string, &tail[found]);
}

int64_t countCharacter(const String& string, unichar ch, int64_t startAt, bool caseInsensitive) {
  const std::u16string_view tail = tailOf(string, startAt);
  return static_cast<int64_t>(unitKernels().count(tail.data(), tail.size(), filterOf(ch, caseInsensitive)));
}

int64_t findOneOf(const String& string, const String& characters, int64_t startAt, bool caseInsensitive) {
  const std::u16string_view tail = tailOf(string, startAt);
  if (tail.empty() || characters.isEmpty()) return NSNotFound;
  const size_t found = firstOneOf(tail, characters.view(), caseInsensitive ? initUpperCharsTable() : nullptr);
  return found == tail.size() ? NSNotFound : positionIn(string, &tail[found]);
}

}  // namespace velan
