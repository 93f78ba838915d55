#include <unicode/unorm2.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <climits>
#include <new>

#include "velan/base/ScratchBuffer.h"
#include "velan/platform/TextMappingInternal.h"

namespace velan {
namespace {

// `map(target, capacity, error)` maps the text and returns the length of the result, also when it does not fit.
template <typename Map>
bool mapText(MutableString& text, Map map) {
  auto capacity = static_cast<int32_t>(std::min<int64_t>(text.length() + text.length() / 8, INT32_MAX - 64) + 64);
  for (;;) {
    ScratchBuffer<unichar, 256> mapped(static_cast<size_t>(capacity));
    if (!mapped) return false;
    UErrorCode error = U_ZERO_ERROR;
    const int32_t length = map(mapped.data(), capacity, &error);
    if (error == U_BUFFER_OVERFLOW_ERROR && length > capacity) {
      capacity = length;
      continue;
    }
    if (U_FAILURE(error)) return false;
    try {
      text.replaceCharactersInRange({0, text.length()}, {mapped.data(), static_cast<size_t>(length)});
      return true;
    } catch (const std::bad_alloc&) {
      return false;
    }
  }
}

const UNormalizer2* normalizer(NormalizationForm form, UErrorCode* error) {
  switch (form) {
    case NormalizationForm::D:
      return unorm2_getNFDInstance(error);
    case NormalizationForm::KD:
      return unorm2_getNFKDInstance(error);
    case NormalizationForm::KC:
      return unorm2_getNFKCInstance(error);
    default:
      return unorm2_getNFCInstance(error);
  }
}

}  // namespace

bool normalize(MutableString& text, NormalizationForm form) {
  if (text.isEmpty()) return true;
  if (text.length() > INT32_MAX) return false;
  const auto length = static_cast<int32_t>(text.length());
  UErrorCode error = U_ZERO_ERROR;
  const UNormalizer2* rules = normalizer(form, &error);
  const int32_t normal = unorm2_spanQuickCheckYes(rules, text.characters(), length, &error);
  if (U_FAILURE(error)) return false;
  if (normal == length) return true;
  return mapText(text, [&](UChar* target, int32_t capacity, UErrorCode* status) {
    return unorm2_normalize(rules, text.characters(), length, target, capacity, status);
  });
}

bool mapCase(MutableString& text, CaseMapping mapping) {
  if (text.isEmpty()) return true;
  if (text.length() > INT32_MAX) return false;
  const auto length = static_cast<int32_t>(text.length());
  return mapText(text, [&](UChar* target, int32_t capacity, UErrorCode* status) {
    switch (mapping) {
      case CaseMapping::Lower:
        return u_strToLower(target, capacity, text.characters(), length, "", status);
      case CaseMapping::Upper:
        return u_strToUpper(target, capacity, text.characters(), length, "", status);
      default:
        return u_strToTitle(target, capacity, text.characters(), length, nullptr, "", status);
    }
  });
}

}  // namespace velan
