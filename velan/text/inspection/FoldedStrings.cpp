#include "velan/text/inspection/FoldedStrings.h"

#include <algorithm>

#include "velan/text/ConversionTables.h"
#include "velan/text/UnitMappingInternal.h"

namespace velan {

String stringUsingConversionTable(const String& string, const unichar* table) {
  if (!table || std::ranges::all_of(string, [table](unichar c) { return table[c] == c; })) return string;
  return mappedString(string.view(), table);
}

String normalizedString(const String& string) {
  return stringUsingConversionTable(string, initLowerUmlautsCharsTable());
}

String nonUmlautedString(const String& string) { return stringUsingConversionTable(string, initUmlautsCharsTable()); }

}  // namespace velan
