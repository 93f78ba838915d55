// Where lemma data lie on this machine.
#ifndef VELAN_PLATFORM_LEMMAS_LEMMA_FILES_INTERNAL_H
#define VELAN_PLATFORM_LEMMAS_LEMMA_FILES_INTERNAL_H

#include <string>
#include <vector>

namespace velan {

/// The folders that may hold WordNet's files, the best one first.
std::vector<std::string> wordNetFolders();

/// A dictionary is a pair of files, `path`.aff and `path`.dic; `path` has symbolic links resolved.
struct DictionaryFiles {
  std::string name;  // "de_DE"
  std::string path;
};

/// All dictionaries, by folder (those of `$DICPATH` first) and then by name.
std::vector<DictionaryFiles> dictionaryFiles();

/// The path of the dictionary for a language ("de"): one named by the language alone, else that of the country of the
/// same name, else the first by folder and name. Empty when there is none.
std::string dictionaryPath(const std::string& language);

}  // namespace velan

#endif  // VELAN_PLATFORM_LEMMAS_LEMMA_FILES_INTERNAL_H
