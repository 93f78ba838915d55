// The build without Hunspell: there is no dictionary to open.
#include "velan/platform/ServicesInternal.h"
#include "velan/platform/lemmas/HunspellDictionaryInternal.h"

namespace velan {

struct HunspellDictionary::Handle {};

HunspellDictionary::~HunspellDictionary() = default;

std::unique_ptr<HunspellDictionary> HunspellDictionary::open(const std::string&) { return nullptr; }

std::vector<std::u16string> HunspellDictionary::stems(std::u16string_view) { return {}; }

Service hunspellService() { return {"Hunspell", "", "lemmas of languages other than English"}; }

}  // namespace velan
