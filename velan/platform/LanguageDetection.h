// Guesses the language of a text with CLD2.
#ifndef VELAN_PLATFORM_LANGUAGE_DETECTION_H
#define VELAN_PLATFORM_LANGUAGE_DETECTION_H

#include <string>
#include <string_view>

#include "velan/base/CTypes.h"

namespace velan {

/// How many units at the beginning of a text are looked at.
inline constexpr size_t kLanguageSampleLength = 4096;

/// The language of `text` by its ISO 639 code ("de", "zh"), empty when it cannot be told: text that is too short in the
/// Latin script, no text, or a build without CLD2. A guess: right for five texts in six of a line or two, for most
/// longer ones. Safe from any thread.
VELAN_EXPORT std::string detectedLanguage(std::u16string_view text);

}  // namespace velan

#endif  // VELAN_PLATFORM_LANGUAGE_DETECTION_H
