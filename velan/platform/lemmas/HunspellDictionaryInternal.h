// One Hunspell dictionary: the base forms that its affix rules know for a word.
#ifndef VELAN_PLATFORM_LEMMAS_HUNSPELL_DICTIONARY_INTERNAL_H
#define VELAN_PLATFORM_LEMMAS_HUNSPELL_DICTIONARY_INTERNAL_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "velan/base/CTypes.h"

namespace velan {

/// May be used from several threads: Hunspell itself may not, so calls wait for each other.
class HunspellDictionary {
 public:
  /// Reads `basePath`.aff and `basePath`.dic, which takes up to a fifth of a second. Null when they cannot be read or
  /// are in an unknown encoding, and in a build without Hunspell.
  static std::unique_ptr<HunspellDictionary> open(const std::string& basePath);
  ~HunspellDictionary();
  HunspellDictionary(const HunspellDictionary&) = delete;
  HunspellDictionary& operator=(const HunspellDictionary&) = delete;

  /// The base forms of `word` in the order of the dictionary's rules; none when it does not know the word or cannot
  /// express it in its encoding.
  std::vector<std::u16string> stems(std::u16string_view word);

 private:
  struct Handle;
  explicit HunspellDictionary(std::unique_ptr<Handle> handle);

  std::unique_ptr<Handle> _handle;
};

}  // namespace velan

#endif  // VELAN_PLATFORM_LEMMAS_HUNSPELL_DICTIONARY_INTERNAL_H
