// Splits a string at the members of any set. A component is a longest run of units that are not in the set, so that
// several separators in a row give no empty component. Positions are in units. `separators` has 8,192 bytes; with null
// there is no component.
#ifndef VELAN_QUERY_WORDS_COMPONENTS_H
#define VELAN_QUERY_WORDS_COMPONENTS_H

#include <vector>

#include "velan/base/FunctionRef.h"
#include "velan/base/OutOfMemory.h"
#include "velan/base/String.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/Separators.h"

namespace velan {

/// Receives one component, with the string and its units, and returns true to stop. `isDecoration` is true for a
/// component without a single letter, mark or number (`alphaNumCharacterSetRep`), such as a bullet, a rule "-----" or
/// an emoji: most callers skip these.
using ComponentHandler = bool (*)(const String& string, const unichar* characters, int64_t start, int64_t length,
                                  bool isDecoration, void* context);
using ComponentBlock = FunctionRef<bool(const String& string, const unichar* characters, int64_t start, int64_t length,
                                        bool isDecoration)>;

/// `enumerateComponentsUsingHandler:context:separators:`: hands over the components of `string` in order and returns
/// how many it handed over before `handler` asked to stop. 0 for a null handler. Allocates nothing.
VELAN_EXPORT int64_t enumerateComponentsUsingHandler(const String& string, ComponentHandler handler, void* context,
                                                     const uint8_t* separators);
/// `enumerateComponentsUsingBlock:separators:`: the same with a closure.
VELAN_EXPORT int64_t enumerateComponentsUsingBlock(const String& string, ComponentBlock block,
                                                   const uint8_t* separators);

/// `componentsOfCharacters:length:separators:ranges:`: how many components `length` units have; appends their ranges to
/// `ranges` unless it is null.
VELAN_EXPORT int64_t componentsOfCharacters(const unichar* characters, int64_t length, const uint8_t* separators,
                                            std::vector<Range>* ranges);

/// `componentsUsingSeparators:minLen:class:`: the components of at least `minLen` units as new strings, in a list of
/// the class `List` (anything that inserts a `String` at its end). Empty for an empty or absent string.
/// `componentsUsingSeparators:minLen:` is the same with a `std::vector<String>`.
template <class List = std::vector<String>>
List componentsUsingSeparators(const String& string, const uint8_t* separators, int64_t minLen) {
  List components;
  enumerateComponentsUsingBlock(
      string,
      [&](const String& text, const unichar*, int64_t start, int64_t length, bool) {
        if (length >= minLen) components.insert(components.end(), present(text.substring({start, length})));
        return false;
      },
      separators);
  return components;
}
/// `componentsUsingSeparators:`: all components.
template <class List = std::vector<String>>
List componentsUsingSeparators(const String& string, const uint8_t* separators) {
  return componentsUsingSeparators<List>(string, separators, 1);
}
/// `componentsUsingWhiteSeparation:`: the components of at least `minLen` units between white space
/// (`whiteCharacterSetRep`).
template <class List = std::vector<String>>
List componentsUsingWhiteSeparation(const String& string, int64_t minLen) {
  return componentsUsingSeparators<List>(string, whiteCharacterSetRep(), minLen);
}
/// `componentsUsingWhiteSeparation`: all components between white space.
template <class List = std::vector<String>>
List componentsUsingWhiteSeparation(const String& string) {
  return componentsUsingWhiteSeparation<List>(string, 1);
}
/// `componentsUsingLineSeparation:class:`: the lines of at least `minLen` units (`defaultLineSeparators`); empty lines
/// are none.
template <class List = std::vector<String>>
List componentsUsingLineSeparation(const String& string, int64_t minLen) {
  return componentsUsingSeparators<List>(string, defaultLineSeparators(), minLen);
}

/// `numberOfComponentsUsingWhiteSeparation`
VELAN_EXPORT int64_t numberOfComponentsUsingWhiteSeparation(const String& string);
/// `numberOfComponentsUsingLineSeparation`: empty lines do not count.
VELAN_EXPORT int64_t numberOfComponentsUsingLineSeparation(const String& string);

}  // namespace velan

#endif  // VELAN_QUERY_WORDS_COMPONENTS_H
