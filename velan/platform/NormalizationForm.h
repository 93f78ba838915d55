// The normal forms of Unicode.
#ifndef VELAN_PLATFORM_NORMALIZATION_FORM_H
#define VELAN_PLATFORM_NORMALIZATION_FORM_H

#include "velan/base/CTypes.h"

namespace velan {

/// Which of several spellings of one text is meant, by Unicode Standard Annex #15.
enum class NormalizationForm : uint8_t {
  D = 0,   // decomposed: letters, then their marks
  KD = 1,  // decomposed, and compatibility characters such as "ﬁ" and "²" replaced
  C = 2,   // composed: what most texts are written in
  KC = 3,  // composed, and compatibility characters replaced
};

}  // namespace velan

#endif  // VELAN_PLATFORM_NORMALIZATION_FORM_H
