// The English part of lemmas: WordNet's lists of irregular forms and of base forms, and the regular endings of English.
#ifndef VELAN_PLATFORM_LEMMAS_WORD_NET_INTERNAL_H
#define VELAN_PLATFORM_LEMMAS_WORD_NET_INTERNAL_H

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "velan/base/CTypes.h"

namespace velan {

/// Read only after loading: may be used from several threads.
class WordNet {
 public:
  /// Reads the files `verb.exc`, `index.verb` and so on for `noun`, `adj` and `adv`, and `cntlist.rev`, in `folder`
  /// (the formats of WordNet 3.0, `wndb(5WN)` and `cntlist(5WN)`); missing ones count as empty. Null when there is
  /// nothing in any of the former.
  static std::unique_ptr<WordNet> load(const std::string& folder);

  /// The base form of `word`, which is in lower case and in ASCII; empty when it is not known. Irregular forms ("went")
  /// come first, then the word itself where it is a base form ("meeting"), then the rules; but what WordNet's texts
  /// have far more often goes before ("years" is a base form, too, in "getting on in years").
  std::string lemma(const std::string& word) const;

 private:
  struct Lemma {
    uint8_t kinds = 0;        // a bit per kind
    uint32_t counts[4] = {};  // how often the texts have it as each kind
  };
  struct Form {
    std::string base;
    uint8_t kind;
  };

  void readExceptions(const std::string& path, uint8_t kind);
  void readLemmas(const std::string& path, uint8_t kind);
  void readCounts(const std::string& path);
  bool isLemma(const std::string& word, uint8_t kinds) const;
  uint64_t count(const std::string& word, uint8_t kinds) const;

  std::unordered_map<std::string, std::vector<Form>> _exceptions;
  std::unordered_map<std::string, Lemma> _lemmas;
};

}  // namespace velan

#endif  // VELAN_PLATFORM_LEMMAS_WORD_NET_INTERNAL_H
