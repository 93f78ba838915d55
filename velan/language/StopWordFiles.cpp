// The stop words of languages in files: one folder, one file a language.
#include <algorithm>
#include <cstdlib>
#include <new>

#include "velan/base/ASCII.h"
#include "velan/base/MutableString.h"
#include "velan/language/LanguageFilter.h"
#include "velan/platform/LibraryFolder.h"
#include "velan/platform/files/FileContents.h"
#include "velan/platform/files/FileReplacement.h"
#include "velan/platform/files/FolderListing.h"
#include "velan/query/words/WordSeparation.h"

namespace velan {

namespace {

constexpr std::u16string_view kPrefix = u"StopWords";
// Words of no language in particular.
constexpr std::u16string_view kGeneralKey = u"Gen";

String pathOf(const String& folder, std::u16string_view name) {
  MutableString path(folder);
  path.appendCharacter('/');
  path.appendString(name);
  return path;
}

// Too little memory must not pass for a file without words.
std::vector<String> wordsOfFile(const String& path) {
  FileError error;
  const Data contents = readFileContents(path, FileReading::Plain, &error);
  if (error.reason() == FileReason::NoMemory) throw std::bad_alloc();
  std::string_view bytes = contents.view();
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
  return wordsUsingDefaultSeparation(String::fromUTF8(bytes)).value_or(std::vector<String>());
}

bool isUsableInFileName(const String& key) {
  return !key.isEmpty() && key.view().find_first_of(std::u16string_view(u"/\0", 2)) == std::u16string_view::npos;
}

Data linesOf(const std::vector<String>& words) {
  std::string lines;
  for (const String& word : words) lines += word.toUTF8() + '\n';
  return Data::withBytes(lines);
}

}  // namespace

std::unique_ptr<LanguageFilter> LanguageFilter::withDirectory(const String& directory, bool ignoreUmlauts) try {
  std::vector<String> keys;
  std::vector<std::vector<String>> stopWords;
  FileError error;
  const auto names = namesInFolder(directory, &error);
  if (error.reason() == FileReason::NoMemory) return nullptr;
  for (const String& name : names.value_or(std::vector<String>())) {
    if (!name.view().starts_with(kPrefix)) continue;
    const String key = name.substringFromIndex(kPrefix.size());
    if (key.isEmpty() || equalsIgnoringASCIICase(key.view(), kGeneralKey)) continue;
    keys.push_back(key);
    stopWords.push_back(wordsOfFile(pathOf(directory, name.view())));
  }
  return withKeys(keys, stopWords, ignoreUmlauts);
} catch (const std::bad_alloc&) {
  return nullptr;
}

std::unique_ptr<LanguageFilter> LanguageFilter::init() { return withDirectory(stopWordsFolder(), true); }

bool LanguageFilter::writeToDirectory(const String& directory) const try {
  if (!std::all_of(_languageKeys.begin(), _languageKeys.end(), isUsableInFileName)) return false;
  for (size_t language = 0; language < _languageKeys.size(); ++language) {
    MutableString name(kPrefix);
    name.appendString(_languageKeys[language]);
    if (replaceFile(pathOf(directory, name.view()), linesOf(stopWords(language)))) return false;
  }
  return true;
} catch (const std::bad_alloc&) {
  return false;
}

String stopWordsFolder() {
  if (const char* const folder = std::getenv("VELAN_STOPWORDS"); folder && *folder) return String::fromUTF8(folder);
  const String library = libraryFolder();
  if (library.isAbsent()) return String();
  for (const std::u16string_view beside : {u"StopWords", VELAN_INSTALLED_STOPWORDS, u"../share/velan/StopWords"}) {
    String folder = pathWithoutLinks(pathOf(library, beside));
    if (folder) return folder;
  }
  return String();
}

}  // namespace velan
