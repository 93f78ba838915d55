#include "velan/wildcard/PreparedSimilarity.h"

#include <algorithm>
#include <new>

#include "velan/wildcard/WildcardMatching.h"
#include "velan/wildcard/WildcardPattern.h"
#include "velan/wildcard/WordKernelsInternal.h"

namespace velan {
namespace {

// A little less than what is wanted is let through, so that it does not matter how the numbers are rounded.
constexpr double kRounding = 1 - 1e-9;

// Whether `count` units of `length` may be as much as `least`.
bool mayBeEnough(size_t count, size_t length, double least) {
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

// Through the table, of at most `kMostShortUnits` units.
std::u16string_view PreparedSimilarity::mapped(std::u16string_view word, unichar* room) const {
  if (!_table) return word;
  std::ranges::transform(word, room, [this](unichar c) { return _table[c]; });
  return {room, word.size()};
}

// A similarity is at most the share of units that can be paired, and no more can be than both words have.
bool PreparedSimilarity::isSimilar(std::u16string_view word, double least) const {
  const auto [shorter, longer] = std::minmax({_word.size(), word.size()});
  if (!mayBeEnough(shorter, longer, least)) return false;
  if (longer > kMostShortUnits) return similarity(word) >= least;
  unichar room[kMostShortUnits];
  word = mapped(word, room);
  const WordKernels& kernels = wordKernels();
  return mayBeEnough(kernels.countUnits(word, _different), longer, least) &&
         similarityFromPairs(kernels.pair(_mapped, word), longer) >= least;
}

PreparedSimilarity::Lengths PreparedSimilarity::similarLengths(double least) const {
  constexpr double kMost = 1e15;
  if (least <= 0) return {0, SIZE_MAX};
  if (!(least > 0)) return {1, 0};
  const auto length = static_cast<double>(_word.size());
  return {static_cast<size_t>(std::min(length * least * kRounding, kMost)),
          static_cast<size_t>(std::min(length / (least * kRounding), kMost))};
}

bool PreparedSimilarity::mayHoldSimilar(std::u16string_view run, double least) const {
  unichar room[kMostShortUnits];
  size_t count = 0;
  for (size_t i = 0; i < run.size(); i += kMostShortUnits) {
    count += wordKernels().countUnits(mapped(run.substr(i, kMostShortUnits), room), _different);
  }
  return mayBeEnough(count, _word.size(), least);
}

void PreparedSimilarity::compareWords(std::span<const std::u16string_view> words, double* similarities) const {
  constexpr size_t kStep = 256;
  uint32_t others[kStep + 1];
  std::u16string_view views[kStep];
  unichar room[kStep][kMostLaneUnits];
  while (!words.empty()) {
    const auto some = words.first(std::min(kStep, words.size()));
    for (size_t i = 0; _table && i < some.size(); ++i) {
      views[i] = some[i].size() <= kMostLaneUnits ? mapped(some[i], room[i]) : some[i];
    }
    const size_t count =
        wordKernels().compare(_mapped, _different, _table ? views : some.data(), some.size(), similarities, others);
    for (size_t i = 0; i < count; ++i) similarities[others[i]] = similarity(some[others[i]]);
    similarities += some.size();
    words = words.subspan(some.size());
  }
}

// Most words are told by how many units they share, 256 at a time.
void PreparedSimilarity::findSimilarWords(std::span<const std::u16string_view> words, double least,
                                          bool* similar) const {
  constexpr size_t kStep = 256;
  if (_table || _different.empty() || !(least > 0)) {
    for (const std::u16string_view word : words) *similar++ = isSimilar(word, least);
    return;
  }
  const LeastShared shared = leastShared(least);
  while (!words.empty()) {
    uint32_t candidates[kStep + 1];
    const auto some = words.first(std::min(kStep, words.size()));
    const size_t count = wordKernels().findSharing(some.data(), some.size(), _different, shared, candidates);
    std::fill_n(similar, some.size(), false);
    for (size_t i = 0; i < count; ++i) similar[candidates[i]] = isSimilar(some[candidates[i]], least);
    similar += some.size();
    words = words.subspan(some.size());
  }
}

// More than a word has units where its length alone tells.
std::array<size_t, 64> PreparedSimilarity::leastShared(double least) const {
  LeastShared shared;
  for (size_t length = 0; length < shared.size(); ++length) {
    const auto [shorter, longer] = std::minmax({_word.size(), length});
    const double wanted = std::min(least * static_cast<double>(longer) * kRounding, 1e6);
    shared[length] = mayBeEnough(shorter, longer, least) ? static_cast<size_t>(wanted) : SIZE_MAX;
  }
  return shared;
}

}  // namespace velan
