#include "velan/platform/lemmas/Lemmatizer.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <new>
#include <utility>

#include "velan/base/ASCII.h"
#include "velan/base/utf/UTF.h"
#include "velan/platform/lemmas/FunctionWordsInternal.h"
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

bool equalsIgnoringCase(std::u16string_view a, std::u16string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](unichar x, unichar y) { return u_tolower(x) == u_tolower(y); });
}

// A German noun that is made of a verb or an adjective: dictionaries lead it back to that ("Zeitungen" to "Zeit"), but
// only its plural is an inflection. Empty for other words.
std::u16string_view derivedNoun(std::u16string_view word, const std::string& language) {
  if (language != "de" || !startsWithCapital(word)) return {};
  const std::u16string_view singular = word.ends_with(u"en") ? word.substr(0, word.size() - 2) : word;
  for (const std::u16string_view ending : {u"ung", u"heit", u"keit", u"schaft"}) {
    if (singular.size() > ending.size() + 1 && singular.ends_with(ending)) return singular;
  }
  return {};
}

// An absent lemma means that there is none, not that memory ran out.
String present(String lemma) {
  if (!lemma) throw std::bad_alloc();
  return lemma;
}

// Dictionaries give all readings of a form. A word that is a base form itself is most often meant so ("ligne" is a
// line, seldom a form of "ligner"). Else, measured on lists of inflected words, the last one is right most often in
// French, German and Polish, the first one elsewhere; German nouns are told by their capital.
String bestStem(const std::vector<std::u16string>& stems, std::u16string_view word, const std::string& language) {
  if (stems.empty()) return String();
  if (const auto noun = derivedNoun(word, language); !noun.empty()) return present(noun);
  for (const std::u16string& stem : stems) {
    if (equalsIgnoringCase(stem, word)) return present(word);
  }
  if (language == "fr" && (word.ends_with(u's') || word.ends_with(u'x'))) {  // "options": of "option", not of "opter"
    const auto singular = word.substr(0, word.size() - 1);
    if (std::find(stems.begin(), stems.end(), singular) != stems.end()) return present(singular);
  }
  if (language == "de") {
    const auto found = std::find_if(stems.rbegin(), stems.rend(), [&](const std::u16string& stem) {
      return startsWithCapital(stem) == startsWithCapital(word);
    });
    if (found != stems.rend()) return present(*found);
  }
  const bool lastIsBest = language == "de" || language == "fr" || language == "pl";
  return present(lastIsBest ? stems.back() : stems.front());
}

// No function word is longer.
constexpr size_t kLongestFunctionWord = 16;

bool isFunctionWord(std::u16string_view word, const std::string& language) {
  if (word.size() > kLongestFunctionWord) return false;
  unichar lower[kLongestFunctionWord];
  std::transform(word.begin(), word.end(), lower,
                 [](unichar c) { return c == u'\u2019' ? u'\'' : static_cast<unichar>(u_tolower(c)); });
  const std::vector<std::u16string_view>& words = functionWords(language);
  return std::binary_search(words.begin(), words.end(), std::u16string_view(lower, word.size()));
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
  if (isFunctionWord(word, _data->language)) return present(word);
  if (const size_t elided = lengthOfElision(word, _data->language)) {
    const String rest = lemma(word.substr(elided));  // which may begin with an elision again: each is shorter
    return present(rest ? String(std::u16string(word.substr(0, elided)).append(rest.view())) : String(word));
  }
  if (_data->wordNet) {
    const std::string lower = lowerCaseASCII(word);
    const std::string lemma = lower.empty() ? lower : _data->wordNet->lemma(lower);
    if (lemma.empty() || !isUTF8(lemma)) return String();
    return present(lemma == lower ? String(word) : String::fromUTF8(lemma));
  }
  return bestStem(_data->dictionary->stems(word), word, _data->language);
}

}  // namespace velan
