#include "velan/platform/LanguageDetection.h"

// CLD2's header uses FILE, vector and string without including what declares them.
#include <cstdio>
#include <string>
#include <vector>
// Must follow the above.
#include <cld2/public/compact_lang_det.h>
#include <cld2/public/encodings.h>
#include <unicode/uchar.h>
#include <unicode/uscript.h>
#include <unicode/utf16.h>

#include "velan/base/utf/UTF.h"
#include "velan/platform/ServicesInternal.h"

namespace velan {

namespace {

std::u16string_view sample(std::u16string_view text) {
  if (text.size() <= kLanguageSampleLength) return text;
  const bool splitsPair = isHighSurrogate(text[kLanguageSampleLength - 1]);
  return text.substr(0, splitsPair ? kLanguageSampleLength - 1 : kLanguageSampleLength);
}

bool hasLetterOutsideLatin(std::u16string_view text) {
  for (size_t i = 0; i < text.size();) {
    UChar32 c;
    U16_NEXT(text, i, text.size(), c);
    UErrorCode error = U_ZERO_ERROR;
    if (c > 0x7F && u_isalpha(c) && uscript_getScript(c, &error) != USCRIPT_LATIN) return true;
  }
  return false;
}

CLD2::Language detect(const std::string& utf8, int flags) {
  const CLD2::CLDHints noHints{nullptr, nullptr, CLD2::UNKNOWN_ENCODING, CLD2::UNKNOWN_LANGUAGE};
  CLD2::Language languages[3];
  int percents[3];
  double scores[3];
  int textBytes = 0;
  bool reliable = false;
  int validPrefix = 0;
  return CLD2::ExtDetectLanguageSummaryCheckUTF8(utf8.data(), static_cast<int>(utf8.size()), true, &noHints, flags,
                                                 languages, percents, scores, nullptr, &textBytes, &reliable,
                                                 &validPrefix);
}

// CLD2 keeps some withdrawn codes, and separates the scripts of Chinese.
std::string presentCode(const std::string& code) {
  if (code == "zh-Hant") return "zh";
  if (code == "iw") return "he";
  if (code == "jw") return "jv";
  if (code == "no") return "nb";
  return code;
}

}  // namespace

std::string detectedLanguage(std::u16string_view text) {
  const std::u16string_view units = sample(text);
  std::string utf8;
  appendUTF8Lossy(units, utf8);
  CLD2::Language language = detect(utf8, 0);
  // Short texts are unknown without "best effort", which on the other hand finds English in any Latin noise.
  if (language == CLD2::UNKNOWN_LANGUAGE && hasLetterOutsideLatin(units)) {
    language = detect(utf8, CLD2::kCLDFlagBestEffort);
  }
  return language == CLD2::UNKNOWN_LANGUAGE ? std::string() : presentCode(CLD2::LanguageCode(language));
}

Service languageDetectionService() { return {"CLD2", CLD2::DetectLanguageVersion(), "recognition of languages"}; }

}  // namespace velan
