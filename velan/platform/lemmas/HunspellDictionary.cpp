#include <unicode/ucnv.h>
#include <unicode/ucnv_err.h>

#include <hunspell/hunspell.hxx>
#include <mutex>
#include <optional>
#include <utility>

#include "velan/platform/ServicesInternal.h"
#include "velan/platform/files/File.h"
#include "velan/platform/lemmas/HunspellDictionaryInternal.h"

namespace velan {

namespace {

// Longer ones are no words of any dictionary; Hunspell itself stops at 100 characters.
constexpr size_t kLongestWord = 100;

bool isReadable(const std::string& path) { return File::open(String::fromUTF8(path), FileAccess::Reading) != nullptr; }

// A converter that stops at what it cannot express, instead of writing something else.
UConverter* openConverter(const std::string& encoding) {
  UErrorCode error = U_ZERO_ERROR;
  UConverter* converter = ucnv_open(encoding.c_str(), &error);
  if (U_FAILURE(error)) return nullptr;
  ucnv_setFromUCallBack(converter, UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
  ucnv_setToUCallBack(converter, UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
  return converter;
}

}  // namespace

struct HunspellDictionary::Handle {
  Handle(const std::string& affixes, const std::string& words)
      : hunspell(affixes.c_str(), words.c_str()), converter(openConverter(hunspell.get_dict_encoding())) {}
  ~Handle() { ucnv_close(converter); }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  std::optional<std::string> encoded(std::u16string_view word) {
    std::string bytes(word.size() * 8, '\0');
    UErrorCode error = U_ZERO_ERROR;
    const int32_t length = ucnv_fromUChars(converter, bytes.data(), static_cast<int32_t>(bytes.size()), word.data(),
                                           static_cast<int32_t>(word.size()), &error);
    if (U_FAILURE(error)) return std::nullopt;
    bytes.resize(static_cast<size_t>(length));
    return bytes;
  }

  std::u16string decoded(const std::string& bytes) {
    std::u16string word(bytes.size() * 2, u'\0');
    UErrorCode error = U_ZERO_ERROR;
    const int32_t length = ucnv_toUChars(converter, word.data(), static_cast<int32_t>(word.size()), bytes.data(),
                                         static_cast<int32_t>(bytes.size()), &error);
    word.resize(U_FAILURE(error) ? 0 : static_cast<size_t>(length));
    return word;
  }

  std::mutex mutex;
  Hunspell hunspell;
  UConverter* converter;
};

HunspellDictionary::HunspellDictionary(std::unique_ptr<Handle> handle) : _handle(std::move(handle)) {}
HunspellDictionary::~HunspellDictionary() = default;

std::unique_ptr<HunspellDictionary> HunspellDictionary::open(const std::string& basePath) {
  const std::string affixes = basePath + ".aff";
  const std::string words = basePath + ".dic";
  if (!isReadable(affixes) || !isReadable(words)) return nullptr;
  auto handle = std::make_unique<Handle>(affixes, words);
  if (!handle->converter) return nullptr;
  return std::unique_ptr<HunspellDictionary>(new HunspellDictionary(std::move(handle)));
}

std::vector<std::u16string> HunspellDictionary::stems(std::u16string_view word) {
  std::vector<std::u16string> stems;
  if (word.empty() || word.size() > kLongestWord) return stems;
  const std::lock_guard lock(_handle->mutex);
  const std::optional<std::string> bytes = _handle->encoded(word);
  if (!bytes) return stems;
  for (const std::string& stem : _handle->hunspell.stem(*bytes)) {
    std::u16string units = _handle->decoded(stem);
    if (!units.empty()) stems.push_back(std::move(units));
  }
  return stems;
}

Service hunspellService() { return {"Hunspell", VELAN_HUNSPELL_VERSION, "lemmas of languages other than English"}; }

}  // namespace velan
