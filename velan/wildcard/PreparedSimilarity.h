// A word that is prepared once and then compared with many others: which of them are similar, and how much?
#ifndef VELAN_WILDCARD_PREPARED_SIMILARITY_H
#define VELAN_WILDCARD_PREPARED_SIMILARITY_H

#include <array>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "velan/base/CTypes.h"

namespace velan {

/// Gives what `stringMatchesUnixWildcardFuzzy` gives with the prepared word first. Where only words that are similar
/// enough are wanted, most others are told by their lengths, or by how many of their units the word has at all. Never
/// changes, so it may be used in several threads.
class PreparedSimilarity {
 public:
  struct Lengths {
    bool contain(size_t length) const { return length >= shortest && length <= longest; }
    size_t shortest, longest;
  };

  /// As `stringMatchesUnixWildcardFuzzyUsingUnicharTable`: all words go through the table, which has 65,536 entries and
  /// is borrowed; null compares exactly. Null when memory runs out.
  VELAN_EXPORT static std::unique_ptr<const PreparedSimilarity> preparedSimilarity(std::u16string_view word,
                                                                                   const unichar* table);

  /// From 0 to 1; not a number when both words are empty.
  VELAN_EXPORT double similarity(std::u16string_view word) const;
  /// Whether the similarity is at least `least`; never when either is not a number.
  VELAN_EXPORT bool isSimilar(std::u16string_view word, double least) const;
  /// Which lengths words that are similar may have.
  VELAN_EXPORT Lengths similarLengths(double least) const;
  /// False when no part of `run` can be similar, as it has too few units of the word.
  VELAN_EXPORT bool mayHoldSimilar(std::u16string_view run, double least) const;
  /// The similarity of each of `words`; `similarities` has room for as many.
  VELAN_EXPORT void compareWords(std::span<const std::u16string_view> words, double* similarities) const;
  /// Whether each of `words` is similar; `similar` has room for as many answers.
  VELAN_EXPORT void findSimilarWords(std::span<const std::u16string_view> words, double least, bool* similar) const;

 private:
  PreparedSimilarity(std::u16string_view word, const unichar* table);

  std::array<size_t, 64> leastShared(double least) const;
  std::u16string_view mapped(std::u16string_view word, unichar* room) const;

  std::u16string _word;
  const unichar* _table;
  std::u16string _mapped;     // the word through the table
  std::u16string _different;  // each of these units once
};

}  // namespace velan

#endif  // VELAN_WILDCARD_PREPARED_SIMILARITY_H
