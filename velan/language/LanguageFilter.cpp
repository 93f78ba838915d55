#include "velan/language/LanguageFilter.h"

#include <algorithm>
#include <new>
#include <string>
#include <utility>

#include "velan/base/ASCII.h"
#include "velan/base/ScratchBuffer.h"
#include "velan/language/StopWordTableInternal.h"
#include "velan/query/words/WordSeparation.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/ConversionTables.h"

namespace velan {

namespace {

constexpr size_t kTypicalLongestWord = 64;

struct ScriptName {
  std::u16string_view name;
  ScriptGroup group;
  int64_t code;
};
constexpr ScriptName kScripts[] = {{u"RU", ScriptGroup::Cyrillic, 1000},
                                   {u"AR", ScriptGroup::Arabic, 1001},
                                   {u"HE", ScriptGroup::Hebrew, 1002},
                                   {u"EL", ScriptGroup::Greek, 1003},
                                   {u"**", ScriptGroup::Other, 1004}};

const ScriptName& scriptOf(ScriptGroup group) {
  return *std::find_if(std::begin(kScripts), std::end(kScripts), [&](const auto& s) { return s.group == group; });
}

constexpr bool isBetween(unichar c, unichar first, unichar last) { return c >= first && c <= last; }

ScriptGroup scriptGroupOf(unichar c) {
  if (isBetween(c, 0x1F00, 0x1FFF) || isBetween(c, 0x0370, 0x03FF)) return ScriptGroup::Greek;
  if (isBetween(c, 0x1C80, 0x1C8F) || isBetween(c, 0x0400, 0x04FF)) return ScriptGroup::Cyrillic;
  if (isBetween(c, 0x0750, 0x077F) || isBetween(c, 0x0600, 0x06FF)) return ScriptGroup::Arabic;
  if (isBetween(c, 0x0590, 0x05FF)) return ScriptGroup::Hebrew;
  return ScriptGroup::Other;
}

bool isLatinLetter(unichar c) { return initUmlautsCharsTable()[c] < 0x80; }

bool isElisionMark(unichar c) { return c == '\'' || c == u'\u2019' || c == '.'; }

// Adds `word` in the form in which words are compared.
void addEntry(std::vector<StopWordTable::Entry>& entries, std::u16string_view word, const unichar* table,
              size_t language) {
  if (word.empty()) return;
  StopWordTable::Entry entry{std::u16string(word), static_cast<uint32_t>(language)};
  for (char16_t& unit : entry.word) unit = table[unit];
  entries.push_back(std::move(entry));
}

void addStopWord(std::vector<StopWordTable::Entry>& entries, std::u16string_view word, const unichar* table,
                 size_t language) {
  if (std::none_of(word.begin(), word.end(), isElisionMark)) return addEntry(entries, word, table, language);
  enumerateWordsUsingBlock(String(word), [&](const String&, const unichar* units, int64_t start, int64_t length) {
    addEntry(entries, {units + start, static_cast<size_t>(length)}, table, language);
    return false;
  });
  std::u16string joined;
  std::remove_copy_if(word.begin(), word.end(), std::back_inserter(joined), isElisionMark);
  addEntry(entries, joined, table, language);
}

}  // namespace

struct LanguageFilterContext {
  LanguageCounts& counts;
  const StopWordTable& words;
  const unichar* table;
  unichar* folded;  // room for the longest stop word
  int64_t minWordLen;
};

bool LanguageFilterHandler(const String&, const unichar* characters, int64_t start, int64_t length, void* context) {
  const LanguageFilterContext& filter = *static_cast<LanguageFilterContext*>(context);
  LanguageCounts& counts = filter.counts;
  ++counts.words;
  if (length < filter.minWordLen) return false;
  counts.characters += length;
  const unichar* const word = characters + start;
  const auto count = static_cast<size_t>(length);
  const unichar first = word[0];
  const unichar last = word[count - 1];
  const uint8_t* const letters = alphaCharacterSetRep();
  if (!isMemberOfCharacterSetRep(letters, first) || !isMemberOfCharacterSetRep(letters, last)) {
    ++counts.nonWords;
    counts.nonWordCharacters += length;
  } else if (isLatinLetter(first) && isLatinLetter(last)) {
    if (count > filter.words.longest()) return false;
    for (size_t i = 0; i < count; ++i) filter.folded[i] = filter.table[word[i]];
    const StopWordTable::Match match = filter.words.find({filter.folded, count});
    for (const uint32_t language : match.languages) counts.languages[language].add(match.number);
  } else {
    ScriptCount& script = counts.scripts[static_cast<size_t>(scriptGroupOf(first))];
    ++script.words;
    script.characters += length;
  }
  return false;
}

LanguageFilter::LanguageFilter(bool ignoreUmlauts) : _ignoreUmlauts(ignoreUmlauts) {}

LanguageFilter::~LanguageFilter() = default;

const unichar* LanguageFilter::table() const {
  return _ignoreUmlauts ? initLowerUmlautsCharsTable() : initLowerCharsTable();
}

std::unique_ptr<LanguageFilter> LanguageFilter::withKeys(const std::vector<String>& keys,
                                                         const std::vector<std::vector<String>>& stopWords,
                                                         bool ignoreUmlauts) try {
  std::unique_ptr<LanguageFilter> filter(new LanguageFilter(ignoreUmlauts));
  std::vector<size_t> order(std::min(keys.size(), stopWords.size()));
  for (size_t i = 0; i < order.size(); ++i) order[i] = i;
  const auto english = std::find_if(order.begin(), order.end(), [&](size_t i) { return keys[i] == u"EN"_s; });
  if (english != order.end()) std::rotate(order.begin(), english, english + 1);
  std::vector<StopWordTable::Entry> entries;
  for (size_t language = 0; language < order.size(); ++language) {
    filter->_languageKeys.push_back(keys[order[language]]);
    for (const String& word : stopWords[order[language]]) addStopWord(entries, word.view(), filter->table(), language);
  }
  filter->_languageSets = std::make_unique<StopWordTable>(std::move(entries));
  return filter;
} catch (const std::bad_alloc&) {
  return nullptr;
}

std::vector<String> LanguageFilter::stopWords(size_t language) const {
  std::vector<String> words;
  for (size_t number = 0; number < _languageSets->size(); ++number) {
    const auto languages = _languageSets->languagesOf(number);
    if (std::binary_search(languages.begin(), languages.end(), language)) words.push_back(_languageSets->word(number));
  }
  return words;
}

std::optional<LanguageChoice> LanguageFilter::choiceOf(const String& language) const {
  const auto indexWhere = [&](auto matches) -> std::optional<LanguageChoice> {
    const auto key = std::find_if(_languageKeys.begin(), _languageKeys.end(), matches);
    if (key == _languageKeys.end()) return std::nullopt;
    return static_cast<size_t>(key - _languageKeys.begin());
  };
  if (language.isEmpty()) return std::nullopt;
  const auto isName = [&](const String& other) { return equalsIgnoringASCIICase(other.view(), language.view()); };
  if (const auto exact = indexWhere([&](const String& key) { return key == language; })) return exact;
  if (const auto key = indexWhere(isName)) return key;
  if (const auto code = indexWhere([&](const String& key) { return isName(ISOCodeForLanguage(key)); })) return code;
  for (const ScriptName& script : kScripts) {
    if (equalsIgnoringASCIICase(script.name, language.view())) return script.group;
  }
  return std::nullopt;
}

String LanguageFilter::nameOfScriptGroup(ScriptGroup group) { return scriptOf(group).name; }

String LanguageFilter::nameOf(LanguageChoice choice) const {
  if (const auto* script = std::get_if<ScriptGroup>(&choice)) return nameOfScriptGroup(*script);
  return _languageKeys[std::get<size_t>(choice)];
}

void LanguageFilter::setLanguage(const String& language) {
  _languageIndex = choiceOf(language);
  _language = _languageIndex ? nameOf(*_languageIndex) : String();
}

int64_t LanguageFilter::languageIndex() const {
  if (!_languageIndex) return NSNotFound;
  if (const auto* script = std::get_if<ScriptGroup>(&*_languageIndex)) return scriptOf(*script).code;
  return static_cast<int64_t>(std::get<size_t>(*_languageIndex));
}

String LanguageFilter::ISOCodeForLanguage(const String& language) {
  const std::u16string_view key = language.view();
  if (key.size() < 2 || key.size() > 3 || !std::all_of(key.begin(), key.end(), isASCIILetter<char16_t>))
    return String();
  if (equalsIgnoringASCIICase(key, std::u16string_view(u"NO"))) return u"nb"_s;
  return String::filled(language.length(), [&](unichar* units) {
    std::transform(key.begin(), key.end(), units, toASCIILower<char16_t>);
    return language.length();
  });
}

LanguageCounts LanguageFilter::countsOfText(const String& text) const {
  LanguageCounts counts;
  ScratchBuffer<unichar, kTypicalLongestWord> folded(_languageSets->longest());
  try {
    counts.languages.resize(_languageKeys.size());
  } catch (const std::bad_alloc&) {
    counts.outOfMemory = true;
  }
  counts.outOfMemory |= !folded;
  if (counts.outOfMemory) return counts;
  LanguageFilterContext context{counts, *_languageSets, table(), folded.data(), _minWordLen};
  enumerateWordsUsingHandler(text, LanguageFilterHandler, &context);
  return counts;
}

String LanguageFilter::languageOfCounts(const LanguageCounts& counts) const {
  const auto winner = counts.winner();
  return winner ? nameOf(*winner) : String();
}

bool LanguageFilter::isFiltered(const LanguageCounts& counts) const {
  return _languageIndex && !_languageKeys.empty() && counts.isForeignTo(*_languageIndex);
}

double LanguageFilter::stopWordRatioOfCounts(const LanguageCounts& counts) {
  const auto leader = counts.contest(std::nullopt).leader;
  if (!leader || !std::holds_alternative<size_t>(*leader) || counts.words == 0) return 0;
  return static_cast<double>(counts.countOf(*leader)) / static_cast<double>(counts.words);
}

}  // namespace velan
