// Mappings of whole texts that Unicode defines and that may change the length: normal forms and case, without a locale.
#ifndef VELAN_PLATFORM_TEXT_MAPPING_INTERNAL_H
#define VELAN_PLATFORM_TEXT_MAPPING_INTERNAL_H

#include "velan/base/MutableString.h"
#include "velan/platform/NormalizationForm.h"

namespace velan {

/// Full case mapping by the contexts of the Unicode Standard, such as the final sigma. Words begin where word breaking
/// begins them; what is not their first letter becomes lower-case.
enum class CaseMapping : uint8_t { Lower, Upper, Title };

/// Both change all of `text`. Lone surrogates stay. False, and `text` as it was, when memory runs out or one of the
/// texts has more than 2^31 - 1 units.
bool normalize(MutableString& text, NormalizationForm form);
bool mapCase(MutableString& text, CaseMapping mapping);

}  // namespace velan

#endif  // VELAN_PLATFORM_TEXT_MAPPING_INTERNAL_H
