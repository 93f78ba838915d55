// Small questions about queries that several sources ask.
#ifndef VELAN_TOOLS_QUERY_QUERY_UNITS_H
#define VELAN_TOOLS_QUERY_QUERY_UNITS_H

#include <algorithm>
#include <string>
#include <string_view>

#include "velan/query/QueryTokens.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/Separators.h"

namespace velan::tool {

inline bool isWhite(unichar c) { return isMemberOfCharacterSetRep(whiteCharacterSetRep(), c); }
inline bool isWordUnit(unichar c) { return !isMemberOfCharacterSetRep(defaultWordSeparators(), c); }

inline bool isTerm(const QueryToken& token) {
  return token.kind == QueryTokenKind::Word || token.kind == QueryTokenKind::Phrase;
}

constexpr const char* keywordOf(QueryOperator op) {
  constexpr const char* kKeywords[] = {"AND", "OR", "XOR", "NEAR", "BEFORE", "AFTER", "NEXT", "OPT", ""};
  return kKeywords[static_cast<size_t>(op)];
}

inline std::u16string_view trimmedBlanks(std::u16string_view units) {
  const size_t first = std::min(units.find_first_not_of(u' '), units.size());
  return units.substr(first, units.find_last_not_of(u' ') + 1 - first);
}

/// With blanks in place of "[" and "]", and none at the ends.
inline String withoutBrackets(const String& word) {
  std::u16string units(word.view());
  for (unichar& c : units) {
    if (c == u'[' || c == u']') c = u' ';
  }
  return String(trimmedBlanks(units));
}

}  // namespace velan::tool

#endif  // VELAN_TOOLS_QUERY_QUERY_UNITS_H
