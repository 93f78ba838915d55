#include "velan/wildcard/PreparedSimilarity.h"

#include <algorithm>
#include <new>

#include "velan/wildcard/WildcardMatching.h"
#include "velan/wildcard/WildcardPattern.h"
#include "velan/wildcard/WordKernelsInternal.h"

namespace velan {
namespace {

// Whether `count` units of `length` may be as much as `least`: a little less is let through, so that it does not matter
// how the numbers are rounded.
bool mayBeEnough(size_t count, size_t length, double least) {
  constexpr double kRounding = 1 - 1e-9;
  return static_cast<double>(count) >= least * static_cast<double>(length) * kRounding;
}

}  // namespace

PreparedSimilarity::PreparedSimilarity(std::u16string_view word, const unichar* table)
    : _word(word), _table(table), _mapped(word) {
  prepareWildcardUsingUnicharTable(_mapped.data(), _mapped.data() + _mapped.size(), table);
  _different = _mapped;
  std::ranges::sort(_different);
  _different.erase(std::unique(_different.begin(), _different.end()), _different.end());
}

std::unique_ptr<const PreparedSimilarity> PreparedSimilarity::preparedSimilarity(std::u16string_view word,
                                                                                 const unichar* table) {
  try {
    return std::unique_ptr<const PreparedSimilarity>(new PreparedSimilarity(word, table));
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

double PreparedSimilarity::similarity(std::u16string_view word) const {
  return stringMatchesUnixWildcardFuzzyUsingUnicharTable(_word.data(), _word.size(), word.data(), word.size(), _table);
}

// A similarity is at most the share of units that can be paired, and no more can be than both words have.
bool PreparedSimilarity::isSimilar(std::u16string_view word, double least) const {
  const auto [shorter, longer] = std::minmax({_word.size(), word.size()});
  if (!mayBeEnough(shorter, longer, least)) return false;
  if (longer > kMostShortUnits) return similarity(word) >= least;
  unichar mapped[kMostShortUnits];
  if (_table) {
    std::ranges::transform(word, mapped, [this](unichar c) { return _table[c]; });
    word = {mapped, word.size()};
  }
  const WordKernels& kernels = wordKernels();
  return mayBeEnough(kernels.countUnits(word, _different), longer, least) &&
         similarityFromPairs(kernels.pair(_mapped, word), longer) >= least;
}

void PreparedSimilarity::compareWords(std::span<const std::u16string_view> words, double* similarities) const {
  for (const std::u16string_view word : words) *similarities++ = similarity(word);
}

void PreparedSimilarity::findSimilarWords(std::span<const std::u16string_view> words, double least,
                                          bool* similar) const {
  for (const std::u16string_view word : words) *similar++ = isSimilar(word, least);
}

}  // namespace velan
