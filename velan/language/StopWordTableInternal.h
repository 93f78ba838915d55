// The stop words of all languages in one table, so that a word of a text is looked up once for all of them.
#ifndef VELAN_LANGUAGE_STOP_WORD_TABLE_INTERNAL_H
#define VELAN_LANGUAGE_STOP_WORD_TABLE_INTERNAL_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velan {

/// Immutable once made. Words are in the form in which they are compared; nothing here folds.
class StopWordTable {
 public:
  /// A word and the index of a language that has it.
  struct Entry {
    std::u16string word;
    uint32_t language;
  };
  /// Of `entries` in any order; the same word of the same language counts once.
  explicit StopWordTable(std::vector<Entry> entries);

  /// A word of the table: its number and the indexes of its languages, ascending.
  struct Match {
    uint32_t number;
    std::span<const uint32_t> languages;
  };
  /// Without languages when no language has `word`.
  Match find(std::u16string_view word) const;

  /// `_maxWordLen`: the length of the longest word, in code units; 0 without words.
  size_t longest() const { return _maxWordLen; }
  size_t size() const { return _words.size(); }
  std::u16string_view word(size_t number) const { return _words[number].text; }
  std::span<const uint32_t> languagesOf(size_t number) const;

 private:
  struct Word {
    std::u16string text;
    uint32_t firstLanguage;  // in `_languages`, up to that of the next word
  };

  std::vector<Word> _words;  // sorted
  std::vector<uint32_t> _languages;
  std::vector<uint32_t> _slots;  // open addressing: number of a word plus 1, or 0; a power of two, at most half full
  size_t _maxWordLen = 0;
};

}  // namespace velan

#endif  // VELAN_LANGUAGE_STOP_WORD_TABLE_INTERNAL_H
