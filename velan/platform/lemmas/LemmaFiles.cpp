#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <sstream>

#include "velan/base/ASCII.h"
#include "velan/platform/ServicesInternal.h"
#include "velan/platform/files/FolderListing.h"
#include "velan/platform/lemmas/LemmaFilesInternal.h"

namespace velan {

namespace {

namespace fs = std::filesystem;

std::string environment(const char* name) {
  const char* const value = std::getenv(name);
  return value ? value : "";
}

bool isFile(const fs::path& path) { return isRegularFile(String::fromUTF8(path.string())); }

std::vector<std::string> dictionaryFolders() {
  std::vector<std::string> folders;
  std::istringstream path(environment("DICPATH"));
  for (std::string folder; std::getline(path, folder, ':');) {
    if (!folder.empty()) folders.push_back(folder);
  }
  for (const char* folder : {"/usr/share/hunspell", "/usr/local/share/hunspell", "/opt/homebrew/share/hunspell",
                             "/usr/share/myspell", "/usr/share/myspell/dicts", "/Library/Spelling"}) {
    folders.emplace_back(folder);
  }
  return folders;
}

void appendDictionaries(const fs::path& folder, std::vector<DictionaryFiles>& dictionaries) {
  const size_t first = dictionaries.size();
  const auto names = namesInFolder(String::fromUTF8(folder.string()), nullptr);
  for (const String& name : names.value_or(std::vector<String>())) {
    const fs::path affixes = folder / name.toUTF8();
    if (affixes.extension() != ".aff" || !isFile(affixes)) continue;
    const String resolved = pathWithoutLinks(String::fromUTF8(affixes.string()));
    const fs::path target = resolved.toUTF8();
    if (!resolved || !isFile(fs::path(target).replace_extension(".dic"))) continue;
    dictionaries.push_back({affixes.stem().string(), fs::path(target).replace_extension().string()});
  }
  std::sort(dictionaries.begin() + static_cast<ptrdiff_t>(first), dictionaries.end(),
            [](const auto& a, const auto& b) { return a.name < b.name; });
}

bool holdsWordNet(const std::string& folder) {
  const char* const names[] = {"verb.exc", "noun.exc", "index.verb", "index.noun"};
  return std::any_of(std::begin(names), std::end(names),
                     [&](const char* name) { return isFile(fs::path(folder) / name); });
}

}  // namespace

std::vector<std::string> wordNetFolders() {
  std::vector<std::string> folders;
  for (const std::string& folder :
       {environment("VELAN_WORDNET"), std::string("/usr/share/wordnet"), std::string("/usr/local/share/wordnet"),
        std::string("/usr/local/WordNet-3.0/dict"), std::string("/opt/homebrew/opt/wordnet/dict")}) {
    if (!folder.empty() && holdsWordNet(folder)) folders.push_back(folder);
  }
  return folders;
}

std::vector<DictionaryFiles> dictionaryFiles() {
  std::vector<DictionaryFiles> dictionaries;
  for (const std::string& folder : dictionaryFolders()) appendDictionaries(folder, dictionaries);
  return dictionaries;
}

std::string dictionaryPath(const std::string& language) {
  std::string home = language + "_" + language;
  std::transform(home.begin() + static_cast<ptrdiff_t>(language.size()), home.end(),
                 home.begin() + static_cast<ptrdiff_t>(language.size()), toASCIIUpper<char>);
  const std::vector<DictionaryFiles> dictionaries = dictionaryFiles();
  const auto rank = [&](const DictionaryFiles& files) {
    return files.name == language ? 0 : files.name == home ? 1 : files.name.starts_with(language + "_") ? 2 : 3;
  };
  const auto best = std::min_element(dictionaries.begin(), dictionaries.end(),
                                     [&](const auto& a, const auto& b) { return rank(a) < rank(b); });
  return best == dictionaries.end() || rank(*best) == 3 ? std::string() : best->path;
}

std::vector<LemmaSource> lemmaSources() {
  std::vector<LemmaSource> sources;
  if (const auto folders = wordNetFolders(); !folders.empty()) sources.push_back({"en", "WordNet", folders.front()});
  if (hunspellService().version.empty()) return sources;
  std::set<std::string> listed;
  for (const DictionaryFiles& files : dictionaryFiles()) {
    if (listed.insert(files.path).second) {
      sources.push_back({fs::path(files.path).filename().string(), "Hunspell", files.path + ".dic"});
    }
  }
  return sources;
}

}  // namespace velan
