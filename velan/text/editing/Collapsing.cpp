#include "velan/text/editing/Collapsing.h"

#include "velan/text/CharacterSets.h"
#include "velan/text/inspection/LineEndsInternal.h"

namespace velan {
namespace {

const uint8_t* runClass(bool spacesOnly, bool whiteSpaces) {
  return whiteSpaces ? whiteCharacterSetRep() : spacesOnly ? spaceCharacterSetRep() : kLineEnds.data();
}

bool changesWhenCollapsed(std::u16string_view text, const uint8_t* rep, unichar replacement) {
  bool inRun = false;
  for (const unichar c : text) {
    const bool isMember = isMemberOfCharacterSetRep(rep, c);
    if (isMember && (inRun || c != replacement)) return true;
    inRun = isMember;
  }
  return false;
}

// To `target`, which has room for all units and may be where `text` stands. No branch depends on the text.
int64_t collapse(std::u16string_view text, const uint8_t* rep, unichar replacement, unichar* target) {
  size_t kept = 0;
  bool inRun = false;
  for (const unichar c : text) {
    const bool isMember = isMemberOfCharacterSetRep(rep, c);
    target[kept] = isMember ? replacement : c;
    kept += isMember && inRun ? 0 : 1;
    inRun = isMember;
  }
  return static_cast<int64_t>(kept);
}

}  // namespace

void removeMultipleWhiteSpaces(MutableString& text, bool spacesOnly, bool whiteSpaces, unichar replacement) {
  const uint8_t* rep = runClass(spacesOnly, whiteSpaces);
  text.truncate(collapse(text.view(), rep, replacement, text.mutableCharacters()));
}

String stringByRemovingMultipleWhiteSpaces(const String& string, bool spacesOnly, bool whiteSpaces,
                                           unichar replacement) {
  const uint8_t* rep = runClass(spacesOnly, whiteSpaces);
  if (!changesWhenCollapsed(string.view(), rep, replacement)) return string;
  const String collapsed =
      String::filled(string.length(), [&](unichar* units) { return collapse(string.view(), rep, replacement, units); });
  return collapsed ? collapsed : string;
}

}  // namespace velan
