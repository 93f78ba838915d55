#include "velan/text/editing/Appending.h"

#include "velan/text/inspection/TrimmedUnitsInternal.h"

namespace velan {

void appendSubstring(MutableString& text, const String& string, Range range) {
  const Range clipped = clippedRange(range, string.length());
  text.appendCharacters(string.characters() + clipped.location, clipped.length);
}

void appendTrimmedString(MutableString& text, const String& string) {
  text.appendString(withoutWhiteEnds(string.view()));
}

}  // namespace velan
