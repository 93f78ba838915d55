#include "velan/language/DominantLanguage.h"

#include "velan/platform/LanguageDetection.h"

namespace velan {

String dominantLanguage(const String& string) {
  const std::string code = detectedLanguage(string.view());
  return code.empty() ? String() : String::fromUTF8(code);
}

}  // namespace velan
