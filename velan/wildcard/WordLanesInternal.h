// One word compared with many others at a time, each in a lane of 16 bits: what a lane holds are the places of a unit
// in its word. See UnitVectorsInternal.h for the class of vectors `V`, of which only comparisons are used; the lanes
// are calculated with in vectors of the compiler's.
#ifndef VELAN_WILDCARD_WORD_LANES_INTERNAL_H
#define VELAN_WILDCARD_WORD_LANES_INTERNAL_H

#include "velan/base/kernels/UnitVectorsInternal.h"
#include "velan/wildcard/WordKernelsInternal.h"

namespace velan {
namespace {

template <size_t kLanes>
struct LanesOf;
template <>
struct LanesOf<8> {
  using Vector = uint16_t __attribute__((vector_size(16)));
};
template <>
struct LanesOf<16> {
  using Vector = uint16_t __attribute__((vector_size(32)));
};
template <>
struct LanesOf<32> {
  using Vector = uint16_t __attribute__((vector_size(64)));
};

template <typename V>
class WordLanes {
 public:
  /// `word` is not empty, fits into a lane and has no U+0000, which is what is behind the end of other words.
  WordLanes(std::u16string_view word, std::u16string_view different) : _length(word.size()), _count(different.size()) {
    for (size_t u = 0; u < _count; ++u) {
      _units[u] = V::of(different[u]);
      for (size_t i = 0; i < _length; ++i) {
        if (word[i] != different[u]) continue;
        _unitAt[i] = static_cast<uint8_t>(u);
        _places[u] = static_cast<uint16_t>(_places[u] | 1u << i);
      }
    }
  }

  /// The similarities of the words with the numbers in `list`, which fit into lanes. All of them are shorter than the
  /// word, or none is.
  template <bool areShorter>
  void compare(const std::u16string_view* words, const uint32_t* list, size_t count, double* similarities) {
    for (size_t i = 0; i < count; i += kLanes) {
      const size_t some = count - i < kLanes ? count - i : kLanes;
      compareSome<areShorter>(words, list + i, some, similarities);
    }
  }

 private:
  static constexpr size_t kLanes = V::kUnits;
  static constexpr size_t kMost = kMostLaneUnits;
  using Lanes = typename LanesOf<kLanes>::Vector;

  template <bool areShorter>
  void compareSome(const std::u16string_view* words, const uint32_t* list, size_t count, double* similarities) {
    size_t longest = 0;
    for (size_t k = 0; k < count; ++k) {
      const std::u16string_view word = words[list[k]];
      longest = word.size() > longest ? word.size() : longest;
      _lengths[k] = static_cast<uint16_t>(word.size());
      putPlaces(word, k);
    }
    pairUnits<areShorter>(areShorter ? longest : _length);
    const auto length = static_cast<uint16_t>(_length);
    double results[kLanes];
    for (size_t k = 0; k < kLanes; ++k) {
      results[k] = similarityFromCounts(_inPlace[k], _pairs[k], _jumps[k], areShorter ? length : _lengths[k]);
    }
    for (size_t k = 0; k < count; ++k) similarities[list[k]] = results[k];
  }

  void putPlaces(std::u16string_view word, size_t lane) {
    constexpr size_t kBlocks = (kMost + V::kUnits - 1) / V::kUnits;
    V blocks[kBlocks];
    size_t left = word.size();
    for (size_t i = 0; i < kBlocks; ++i) {
      const size_t some = left < V::kUnits ? left : V::kUnits;
      blocks[i] = some > 0 ? V::loadFirst(word.data() + i * V::kUnits, some) : V::of(0);
      left -= some;
    }
    for (size_t u = 0; u < _count; ++u) {
      uint64_t places = 0;
      for (size_t i = 0; i < kBlocks; ++i) places |= V::positions(blocks[i] == _units[u]) << (i * V::kUnits);
      _where[u][lane] = static_cast<uint16_t>(places);
    }
  }

  static Lanes ofAll(unsigned number) {
    const auto lane = static_cast<uint16_t>(number);
    return Lanes{} + lane;
  }
  static Lanes isZero(Lanes lanes) { return reinterpret_cast<Lanes>(lanes == 0); }

  // The places in the longer word that have unit `i` of the shorter one.
  template <bool areShorter>
  Lanes equalTo(size_t i) const {
    if constexpr (!areShorter) return _where[_unitAt[i]];
    const Lanes place = ofAll(1u << i);
    Lanes equal{};
    for (size_t u = 0; u < _count; ++u) equal |= ~isZero(_where[u] & place) & ofAll(_places[u]);
    return equal;
  }

  // Goes the way of `WordLoops::pairWith`.
  template <bool areShorter>
  void pairUnits(size_t steps) {
    const Lanes one = ofAll(1);
    Lanes free = ~Lanes{}, expected = one, inPlace{}, pairs{}, jumps{};
    for (size_t i = 0; i < steps; ++i) {
      const Lanes equal = equalTo<areShorter>(i);
      const Lanes candidates = equal & free, inTurn = candidates & expected;
      const Lanes isNone = isZero(candidates), isOutOfTurn = isZero(inTurn);
      const Lanes taken = inTurn | (isOutOfTurn & candidates & -candidates);
      free ^= taken;
      expected = taken | (isNone & expected);
      expected += expected;
      inPlace += isZero(equal & ofAll(1u << i)) + one;
      pairs += isNone + one;
      if (i > 0) jumps += (isNone | ~isOutOfTurn) + one;
    }
    _inPlace = inPlace;
    _pairs = pairs;
    _jumps = jumps;
  }

  V _units[kMost];
  // Of the words in the lanes: where each of the units is, by number; and how they have been paired.
  Lanes _where[kMost] = {};
  Lanes _lengths = {}, _inPlace = {}, _pairs = {}, _jumps = {};
  uint16_t _places[kMost] = {};  // in the word, by number
  uint8_t _unitAt[kMost] = {};   // the numbers of the word's units
  const size_t _length, _count;
};

}  // namespace
}  // namespace velan

#endif  // VELAN_WILDCARD_WORD_LANES_INTERNAL_H
