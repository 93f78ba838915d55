#include "velan/query/words/Components.h"

#include <algorithm>

#include "velan/query/words/SeparationInternal.h"

namespace velan {

namespace {

bool holdsNoText(const unichar* units, int64_t length) {
  const uint8_t* const text = alphaNumCharacterSetRep();
  return std::none_of(units, units + length, [text](unichar c) { return isMemberOfCharacterSetRep(text, c); });
}

int64_t _enumerateComponentsUsingBlock(const String& string, ComponentBlock block, ComponentHandler handler,
                                       void* context, const uint8_t* separators) {
  if (!separators || (!block && !handler)) return 0;
  const unichar* const units = string.characters();
  return enumerateRuns(string.view(), separators, [&](Range component) {
    const auto [start, length] = component;
    const bool isDecoration = holdsNoText(units + start, length);
    return block ? block(string, units, start, length, isDecoration)
                 : handler(string, units, start, length, isDecoration, context);
  });
}

int64_t _numberOfComponentsUsingSeparators(const String& string, const uint8_t* separators) {
  return componentsOfCharacters(string.characters(), string.length(), separators, nullptr);
}

}  // namespace

int64_t enumerateComponentsUsingHandler(const String& string, ComponentHandler handler, void* context,
                                        const uint8_t* separators) {
  return _enumerateComponentsUsingBlock(string, nullptr, handler, context, separators);
}

int64_t enumerateComponentsUsingBlock(const String& string, ComponentBlock block, const uint8_t* separators) {
  return _enumerateComponentsUsingBlock(string, block, nullptr, nullptr, separators);
}

int64_t componentsOfCharacters(const unichar* characters, int64_t length, const uint8_t* separators,
                               std::vector<Range>* ranges) {
  if (!characters || length <= 0 || !separators) return 0;
  return enumerateRuns({characters, static_cast<size_t>(length)}, separators, [ranges](Range component) {
    if (ranges) ranges->push_back(component);
    return false;
  });
}

int64_t numberOfComponentsUsingWhiteSeparation(const String& string) {
  return _numberOfComponentsUsingSeparators(string, whiteCharacterSetRep());
}

int64_t numberOfComponentsUsingLineSeparation(const String& string) {
  return _numberOfComponentsUsingSeparators(string, defaultLineSeparators());
}

}  // namespace velan
