// The English part of lemmas: WordNet's lists of irregular forms and of base forms, and the regular endings of English.
#ifndef VELAN_PLATFORM_LEMMAS_WORD_NET_INTERNAL_H
#define VELAN_PLATFORM_LEMMAS_WORD_NET_INTERNAL_H

#include <memory>
#include <string>
#include <unordered_map>

#include "velan/base/CTypes.h"

namespace velan {

/// Read only after loading: may be used from several threads.
class WordNet {
 public:
  /// Reads the files `verb.exc`, `index.verb` and so on for `noun`, `adj` and `adv` in `folder` (the format of WordNet
  /// 3.0, `wndb(5WN)`); missing ones count as empty. Null when there is nothing in any of them.
  static std::unique_ptr<WordNet> load(const std::string& folder);

  /// The base form of `word`, which is in lower case and in ASCII; empty when it is not known. A word that is a base
  /// form itself ("meeting") stays, irregular forms ("went") come first.
  std::string lemma(const std::string& word) const;

 private:
  void readExceptions(const std::string& path);
  void readLemmas(const std::string& path, uint8_t kind);
  bool isLemma(const std::string& word, uint8_t kinds) const;

  std::unordered_map<std::string, std::string> _exceptions;  // the first file that has a form wins
  std::unordered_map<std::string, uint8_t> _kindsOfLemma;    // a bit per kind
};

}  // namespace velan

#endif  // VELAN_PLATFORM_LEMMAS_WORD_NET_INTERNAL_H
