// The build without CLD2: the language of a text is never known.
#include "velan/platform/LanguageDetection.h"
#include "velan/platform/ServicesInternal.h"

namespace velan {

std::string detectedLanguage(std::u16string_view) { return {}; }

Service languageDetectionService() { return {"CLD2", "", "recognition of languages"}; }

}  // namespace velan
