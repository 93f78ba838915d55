#include "velan/query/words/Hashtags.h"

#include "velan/base/OutOfMemory.h"
#include "velan/query/words/Components.h"

namespace velan {

namespace {

// The tag in a component that begins with "#"; absent when it is none.
Range tagOfComponent(const unichar* units, Range component, bool allowSlash) {
  const uint8_t* const digits = digitCharacterSetRep();
  const uint8_t* const letters = alphaCharacterSetRep();
  const Range tag{component.location + 1, component.length - 1};
  int64_t digitCount = 0;
  bool hasLetter = false;
  for (int64_t i = tag.location; i < endOf(tag); ++i) {
    const unichar c = units[i];
    if (isMemberOfCharacterSetRep(digits, c)) {
      ++digitCount;
    } else if (isMemberOfCharacterSetRep(letters, c)) {
      hasLetter = true;
    } else if (c == u',' || c == u';') {
      return hasLetter || digitCount >= 3 ? Range{tag.location, tag.length - 1} : kAbsentRange;
    } else if (c != u'-' && c != u'_' && !(c == u'/' && allowSlash)) {
      return kAbsentRange;
    }
  }
  return hasLetter || digitCount >= 3 ? tag : kAbsentRange;
}

}  // namespace

std::optional<std::vector<String>> hashtags(const String& string, bool allowSlash) {
  std::optional<std::vector<String>> tags;
  enumerateComponentsUsingBlock(
      string,
      [&](const String& text, const unichar* units, int64_t start, int64_t length, bool isDecoration) {
        if (isDecoration || length < 2 || units[start] != u'#') return false;
        const Range tag = tagOfComponent(units, {start, length}, allowSlash);
        if (!isPresent(tag)) return false;
        if (!tags) tags.emplace().reserve(8);
        tags->push_back(present(text.substring(tag)));
        return false;
      },
      whiteCharacterSetRep());
  return tags;
}

}  // namespace velan
