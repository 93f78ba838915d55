#include "velan/text/editing/Normalization.h"

#include <algorithm>
#include <new>

#include "velan/base/utf/UTF.h"
#include "velan/platform/TextMappingInternal.h"

namespace velan {

bool normalizeString(MutableString& text, NormalizationForm form) { return normalize(text, form); }

bool fixAndNormalizeString(MutableString& text) {
  const auto isUnwanted = [](unichar c) { return c == 0 || isSurrogate(c) || (c >= 0xF400 && c <= 0xF8FF); };
  std::replace_if(text.mutableCharacters(), text.mutableCharacters() + text.length(), isUnwanted, u' ');
  return normalizeString(text);
}

bool normalizeLowercaseString(MutableString& text) {
  return normalizeString(text) && mapCase(text, CaseMapping::Lower);
}

String normalizedLowercaseString(const String& string) {
  try {
    MutableString text(string);
    if (!normalizeLowercaseString(text)) return String();
    return text.view() == string.view() ? string : text.takeString();
  } catch (const std::bad_alloc&) {
    return String();
  }
}

}  // namespace velan
