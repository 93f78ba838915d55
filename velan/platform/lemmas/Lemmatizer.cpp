#include "velan/platform/lemmas/Lemmatizer.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <utility>

#include "velan/base/ASCII.h"
#include "velan/platform/lemmas/HunspellDictionaryInternal.h"
#include "velan/platform/lemmas/LemmaFilesInternal.h"
#include "velan/platform/lemmas/WordNetInternal.h"

namespace velan {

namespace {

// No lemma of the English data is longer.
constexpr size_t kLongestEnglishWord = 64;

bool startsWithCapital(std::u16string_view word) { return !word.empty() && u_isupper(word.front()); }

// Empty when the word has a unit outside ASCII.
std::string lowerCaseASCII(std::u16string_view word) {
  std::string lower;
  if (word.size() > kLongestEnglishWord) return lower;
  for (const unichar c : word) {
    if (c > 0x7F) return {};
    lower += static_cast<char>(toASCIILower(c));
  }
  return lower;
}

// Dictionaries give all readings of a form. Measured on lists of inflected words, the last one is right most often in
// French, German and Polish, the first one elsewhere; German nouns are told by their capital.
const std::u16string& bestStem(const std::vector<std::u16string>& stems, std::u16string_view word,
                               const std::string& language) {
  if (language == "de") {
    const auto found = std::find_if(stems.rbegin(), stems.rend(), [&](const std::u16string& stem) {
      return startsWithCapital(stem) == startsWithCapital(word);
    });
    if (found != stems.rend()) return *found;
  }
  const bool lastIsBest = language == "de" || language == "fr" || language == "pl";
  return lastIsBest ? stems.back() : stems.front();
}

std::string languageOf(std::string_view code) {
  std::string language(code.substr(0, code.find_first_of("-_")));
  for (char& c : language) c = toASCIILower(c);
  const bool isCode = (language.size() == 2 || language.size() == 3) &&
                      std::all_of(language.begin(), language.end(), isASCIILowerCase<char>);
  return isCode ? language : std::string();
}

}  // namespace

struct Lemmatizer::Data {
  std::string language;
  std::unique_ptr<WordNet> wordNet;
  std::unique_ptr<HunspellDictionary> dictionary;
};

Lemmatizer::Lemmatizer(std::unique_ptr<Data> data) : _data(std::move(data)) {}
Lemmatizer::~Lemmatizer() = default;

const Lemmatizer* Lemmatizer::forLanguage(std::string_view code) {
  struct Entry {
    std::once_flag loading;
    std::unique_ptr<Lemmatizer> lemmatizer;
  };
  // Never destroyed: other threads may still be stemming while the process ends.
  static std::mutex& mutex = *new std::mutex;
  static std::map<std::string, Entry>& entries = *new std::map<std::string, Entry>;

  const std::string language = languageOf(code);
  if (language.empty()) return nullptr;
  Entry* entry;
  {
    const std::lock_guard lock(mutex);
    entry = &entries[language];
  }
  // Outside the lock: reading one language does not hold up the others.
  std::call_once(entry->loading, [&] { entry->lemmatizer = load(language); });
  return entry->lemmatizer.get();
}

std::unique_ptr<Lemmatizer> Lemmatizer::load(const std::string& language) {
  auto data = std::make_unique<Data>();
  data->language = language;
  if (language == "en") {
    for (const std::string& folder : wordNetFolders()) {
      if ((data->wordNet = WordNet::load(folder))) break;
    }
  }
  if (!data->wordNet) {
    const std::string path = dictionaryPath(language);
    if (!path.empty()) data->dictionary = HunspellDictionary::open(path);
    if (!data->dictionary) return nullptr;
  }
  return std::unique_ptr<Lemmatizer>(new Lemmatizer(std::move(data)));
}

String Lemmatizer::lemma(std::u16string_view word) const {
  if (_data->wordNet) {
    const std::string lower = lowerCaseASCII(word);
    const std::string lemma = lower.empty() ? lower : _data->wordNet->lemma(lower);
    if (lemma.empty()) return String();
    return lemma == lower ? String(word) : String::fromUTF8(lemma);
  }
  const std::vector<std::u16string> stems = _data->dictionary->stems(word);
  return stems.empty() ? String() : String(bestStem(stems, word, _data->language));
}

}  // namespace velan
