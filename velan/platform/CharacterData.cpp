#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <climits>

#include "velan/platform/CharacterDataInternal.h"

namespace velan {
namespace {

Categories categoriesOf(UCharCategory type) {
  switch (type) {
    case U_UNASSIGNED:
      return Categories::Unassigned;
    case U_UPPERCASE_LETTER:
      return Categories::UppercaseLetter;
    case U_LOWERCASE_LETTER:
      return Categories::LowercaseLetter;
    case U_TITLECASE_LETTER:
      return Categories::TitlecaseLetter;
    case U_MODIFIER_LETTER:
    case U_OTHER_LETTER:
      return Categories::OtherLetter;
    case U_NON_SPACING_MARK:
    case U_ENCLOSING_MARK:
    case U_COMBINING_SPACING_MARK:
      return Categories::Mark;
    case U_DECIMAL_DIGIT_NUMBER:
      return Categories::DecimalDigit;
    case U_LETTER_NUMBER:
    case U_OTHER_NUMBER:
      return Categories::OtherNumber;
    case U_SPACE_SEPARATOR:
      return Categories::SpaceSeparator;
    case U_LINE_SEPARATOR:
    case U_PARAGRAPH_SEPARATOR:
      return Categories::LineSeparator;
    case U_CONTROL_CHAR:
    case U_FORMAT_CHAR:
      return Categories::ControlOrFormat;
    default:
      break;
  }
  const uint32_t mask = U_MASK(type);
  return mask & U_GC_P_MASK ? Categories::Punctuation : mask & U_GC_S_MASK ? Categories::Symbol : Categories::Other;
}

using CategoryHandler = FunctionRef<void(Categories, unichar, unichar)>;

UBool handOver(const void* context, UChar32 start, UChar32 limit, UCharCategory type) {
  if (start > 0xFFFF) return false;
  const auto& handler = *static_cast<const CategoryHandler*>(context);
  handler(categoriesOf(type), static_cast<unichar>(start), static_cast<unichar>(std::min(limit - 1, 0xFFFF)));
  return true;
}

constexpr int32_t kMaxMappedLength =
    8;  // of any one unit: three letters after a case mapping, four after decomposition

}  // namespace

void enumerateCategories(CategoryHandler handler) { u_enumCharTypes(handOver, &handler); }

unichar lowerCaseOfUnit(unichar c) {
  UChar mapped[kMaxMappedLength];
  UErrorCode error = U_ZERO_ERROR;
  return u_strToLower(mapped, kMaxMappedLength, &c, 1, "", &error) == 1 && U_SUCCESS(error) ? mapped[0] : c;
}

unichar upperCaseOfUnit(unichar c) {
  UChar mapped[kMaxMappedLength];
  UErrorCode error = U_ZERO_ERROR;
  return u_strToUpper(mapped, kMaxMappedLength, &c, 1, "", &error) == 1 && U_SUCCESS(error) ? mapped[0] : c;
}

unichar withoutDiacritics(unichar c) {
  UErrorCode error = U_ZERO_ERROR;
  const UNormalizer2* decomposer = unorm2_getNFDInstance(&error);  // built once by ICU
  if (U_FAILURE(error)) return c;
  UChar decomposed[kMaxMappedLength];
  const int32_t length = unorm2_getDecomposition(decomposer, c, decomposed, kMaxMappedLength, &error);
  if (length < 0 || U_FAILURE(error)) return c;
  const UChar* end = std::remove_if(decomposed, decomposed + length,
                                    [](UChar unit) { return (U_GET_GC_MASK(unit) & U_GC_M_MASK) != 0; });
  return end - decomposed == 1 ? decomposed[0] : c;
}

bool equalWhenCaseFolded(std::u16string_view a, std::u16string_view b) {
  if (a.size() > INT32_MAX || b.size() > INT32_MAX) return false;
  UErrorCode error = U_ZERO_ERROR;
  const int32_t order = u_strCaseCompare(a.data(), static_cast<int32_t>(a.size()), b.data(),
                                         static_cast<int32_t>(b.size()), U_FOLD_CASE_DEFAULT, &error);
  return order == 0 && U_SUCCESS(error);
}

}  // namespace velan
