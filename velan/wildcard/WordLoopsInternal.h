// The operations on short words, over a class of vectors. See UnitVectorsInternal.h.
#ifndef VELAN_WILDCARD_WORD_LOOPS_INTERNAL_H
#define VELAN_WILDCARD_WORD_LOOPS_INTERNAL_H

#include "velan/base/kernels/UnitVectorsInternal.h"
#include "velan/wildcard/WordKernelsInternal.h"
#include "velan/wildcard/WordLanesInternal.h"

namespace velan {
namespace {

constexpr uint64_t firstBits(size_t count) { return (uint64_t{1} << count) - 1; }

/// The units of a word in so many registers. May be empty.
template <typename V, size_t kBlocks>
class ShortWord {
 public:
  static constexpr size_t kMost = kBlocks * V::kUnits;

  ShortWord(const unichar* units, size_t length) : _inWord(firstBits(length)) {
    if constexpr (kBlocks == 1) {
      _blocks[0] = length > 0 ? V::loadFirst(units, length) : V::of(0);
    } else {
      for (; length > 0; ++_count) {
        const size_t step = length < V::kUnits ? length : V::kUnits;
        _blocks[_count] = V::loadFirst(units, step);
        units += step;
        length -= step;
      }
    }
  }

  uint64_t inWord() const { return _inWord; }
  uint64_t where(unichar unit) const {
    return where([unit = V::of(unit)](V block) { return block == unit; });
  }
  uint64_t where(const UnitClass& units) const {
    if (units.kind == UnitClass::Kind::OneUnit) return where(units.low[0]);
    if (units.count == 0) return units.isNegated ? _inWord : 0;
    const uint64_t found = where([&units](V block) {
      auto matches = block - V::of(units.low[0]) <= V::of(units.span[0]);
      for (size_t i = 1; i < units.count; ++i) {
        matches = V::either(matches, block - V::of(units.low[i]) <= V::of(units.span[i]));
      }
      return matches;
    });
    return units.isNegated ? _inWord & ~found : found;
  }
  uint64_t whereOneOf(const unichar* units, size_t count) const {
    return where([=](V block) {
      auto matches = block == V::of(units[0]);
      for (size_t i = 1; i < count; ++i) matches = V::either(matches, block == V::of(units[i]));
      return matches;
    });
  }

 private:
  template <typename Test>
  uint64_t where(Test test) const {
    if constexpr (kBlocks == 1) return V::positions(test(_blocks[0])) & _inWord;
    uint64_t found = 0;
    for (size_t i = 0; i < _count; ++i) found |= V::positions(test(_blocks[i])) << (i * V::kUnits);
    return found & _inWord;
  }

  V _blocks[kBlocks];
  size_t _count = 0;  // of several
  uint64_t _inWord;
};

/// The reference: unit by unit.
template <size_t kBlocks>
class ShortWord<Scalar, kBlocks> {
 public:
  static constexpr size_t kMost = kMostShortUnits;

  ShortWord(const unichar* units, size_t length) : _units(units), _length(length) {}

  uint64_t inWord() const { return firstBits(_length); }
  uint64_t where(unichar unit) const {
    return where([unit](unichar c) { return c == unit; });
  }
  uint64_t where(const UnitClass& units) const {
    return where([&units](unichar c) {
      bool found = false;
      for (size_t i = 0; i < units.count; ++i) found |= static_cast<unichar>(c - units.low[i]) <= units.span[i];
      return found != units.isNegated;
    });
  }
  uint64_t whereOneOf(const unichar* units, size_t count) const {
    return where([=](unichar c) {
      bool found = false;
      for (size_t i = 0; i < count; ++i) found |= units[i] == c;
      return found;
    });
  }

 private:
  template <typename Test>
  uint64_t where(Test test) const {
    uint64_t found = 0;
    for (size_t i = 0; i < _length; ++i) found |= uint64_t{test(_units[i])} << i;
    return found;
  }

  const unichar* const _units;
  const size_t _length;
};

/// Whether the units at `units` are in their ranges, up to the width of a vector; where there are more, the rest is
/// another's business.
template <typename V>
class RangedUnits {
 public:
  explicit RangedUnits(const UnitRanges& ranges)
      : _low(V::load(ranges.low)),
        _span(V::load(ranges.span)),
        _length(ranges.length < V::kUnits ? ranges.length : V::kUnits) {}
  bool areAt(const unichar* units) const {
    return _length == 0 || V::positions(V::loadFirst(units, _length) - _low <= _span) == firstBits(V::kUnits);
  }

 private:
  V _low, _span;
  size_t _length;
};

template <>
class RangedUnits<Scalar> {
 public:
  explicit RangedUnits(const UnitRanges& ranges) : _ranges(ranges) {}
  bool areAt(const unichar* units) const {
    for (size_t i = 0; i < _ranges.length; ++i) {
      if (static_cast<unichar>(units[i] - _ranges.low[i]) > _ranges.span[i]) return false;
    }
    return true;
  }

 private:
  const UnitRanges& _ranges;
};

template <typename V>
struct WordLoops {
  static constexpr size_t kAllBlocks = (kMostShortUnits + V::kUnits - 1) / V::kUnits;

  /// What is left when the ranges at both ends are there.
  template <size_t kBlocks>
  static bool matchesInside(const WordProgram& program, const unichar* word, size_t length) {
    const ShortWord<V, kBlocks> units(word, length);
    uint64_t where[WordProgram::kMostClasses];
    for (size_t i = 0; i < program.classCount; ++i) where[i] = units.where(program.classes[i]);
    // Where the piece may begin, as far as its units tell.
    const auto starts = [&](WordProgram::Piece piece) {
      uint64_t found = ~uint64_t{0};
      for (size_t i = 0; i < piece.length; ++i) {
        const uint8_t element = program.elements[piece.first + i];
        if (element != WordProgram::kAnyUnit) found &= where[element] >> i;
      }
      return found;
    };
    size_t from = program.head.length;
    const size_t end = length - program.tail.length;
    if (!program.endsAreRanges && (starts(program.head) & starts(program.tail) >> end & 1) == 0) return false;
    for (size_t i = 0; i < program.middleCount; ++i) {
      const uint64_t found = starts(program.middles[i]) & ~firstBits(from);
      if (found == 0) return false;
      from = static_cast<size_t>(__builtin_ctzll(found)) + program.middles[i].length;
      if (from > end) return false;
    }
    return true;
  }

  static bool match(const WordProgram& program, const std::u16string_view* words, size_t count, bool* matches) {
    const RangedUnits<V> head(program.headRanges), tail(program.tailRanges);
    const size_t minLength = program.minLength, maxLength = program.maxLength;
    const size_t tailLength = program.tail.length;
    if (program.endsAreRanges && program.middleCount == 0) {
      for (size_t i = 0; i < count; ++i) {
        const unichar* const word = words[i].data();
        const size_t length = words[i].size();
        matches[i] =
            length >= minLength && length <= maxLength && head.areAt(word) && tail.areAt(word + length - tailLength);
      }
      return true;
    }
    bool areShort = true;
    for (size_t i = 0; i < count; ++i) {
      const unichar* const word = words[i].data();
      const size_t length = words[i].size();
      matches[i] = false;
      if (length < minLength || length > maxLength) continue;
      if (length > kMostShortUnits) {
        areShort = false;
        continue;
      }
      if (!head.areAt(word) || !tail.areAt(word + length - tailLength)) continue;
      matches[i] = length <= ShortWord<V, 1>::kMost ? matchesInside<1>(program, word, length)
                                                    : matchesInside<kAllBlocks>(program, word, length);
    }
    return areShort;
  }

  static size_t countUnits(std::u16string_view word, std::u16string_view units) {
    if (units.empty()) return 0;
    const auto count = [&](const auto& found) {
      return static_cast<size_t>(__builtin_popcountll(found.whereOneOf(units.data(), units.size())));
    };
    if (word.size() <= ShortWord<V, 1>::kMost) return count(ShortWord<V, 1>(word.data(), word.size()));
    return count(ShortWord<V, kAllBlocks>(word.data(), word.size()));
  }

  // Nothing tells whether the next word does: nothing depends on a branch but for words that are not in one vector.
  static size_t findSharing(const std::u16string_view* words, size_t count, std::u16string_view units,
                            const LeastShared& least, uint32_t* found) {
    size_t number = 0;
    for (size_t i = 0; i < count; ++i) {
      const size_t length = words[i].size();
      found[number] = static_cast<uint32_t>(i);
      if (length <= ShortWord<V, 1>::kMost) {
        const ShortWord<V, 1> word(words[i].data(), length);
        const uint64_t shared = word.whereOneOf(units.data(), units.size());
        number += static_cast<size_t>(__builtin_popcountll(shared)) >= least[length];
      } else {
        number += length > kMostShortUnits || countUnits(words[i], units) >= least[length];
      }
    }
    return number;
  }

  // Pairs each unit of the shorter word with a free equal one of the longer: with the one that follows the last pair's,
  // else with the first. No step depends on a branch, since nothing tells which way it would go.
  template <typename Longer>
  static WordPairs pairWith(const Longer& longer, const unichar* shorter, size_t length) {
    const auto onlyIf = [](bool condition, uint64_t bits) { return bits & -uint64_t{condition}; };
    WordPairs result;
    uint64_t free = longer.inWord(), expected = 1;
    for (size_t i = 0; i < length; ++i) {
      const uint64_t equal = longer.where(shorter[i]);
      result.inPlace += equal >> i & 1;
      const uint64_t candidates = equal & free, inTurn = candidates & expected;
      const uint64_t first = onlyIf(inTurn == 0, candidates & -candidates);
      free ^= inTurn | first;
      result.jumps += first != 0;
      expected = (inTurn | first | onlyIf(candidates == 0, expected)) << 1;
      if (i == 0) result.jumps = 0;
    }
    result.pairs = static_cast<size_t>(__builtin_popcountll(longer.inWord() ^ free));
    return result;
  }

  static WordPairs pair(std::u16string_view a, std::u16string_view b) {
    const bool isFirstLonger = a.size() > b.size();
    const unichar* const shorter = isFirstLonger ? b.data() : a.data();
    const unichar* const longer = isFirstLonger ? a.data() : b.data();
    const size_t length = isFirstLonger ? b.size() : a.size(), longerLength = isFirstLonger ? a.size() : b.size();
    if (longerLength <= ShortWord<V, 1>::kMost) {
      return pairWith(ShortWord<V, 1>(longer, longerLength), shorter, length);
    }
    return pairWith(ShortWord<V, kAllBlocks>(longer, longerLength), shorter, length);
  }

  static size_t compare(std::u16string_view word, std::u16string_view different, const std::u16string_view* words,
                        size_t count, double* similarities, uint32_t* others) {
    constexpr size_t kStep = 256;
    size_t otherCount = 0;
    if (word.empty() || word.size() > kMostLaneUnits || different[0] == 0) {
      for (; otherCount < count; ++otherCount) others[otherCount] = static_cast<uint32_t>(otherCount);
      return otherCount;
    }
    WordLanes<V> lanes(word, different);
    for (size_t from = 0; from < count; from += kStep) {
      uint32_t shorter[kStep], longer[kStep];
      size_t shorterCount = 0, longerCount = 0;
      const size_t end = count - from < kStep ? count : from + kStep;
      for (size_t i = from; i < end; ++i) {
        const size_t length = words[i].size();
        shorter[shorterCount] = longer[longerCount] = others[otherCount] = static_cast<uint32_t>(i);
        shorterCount += length < word.size();
        longerCount += length >= word.size() && length <= kMostLaneUnits;
        otherCount += length > kMostLaneUnits;
      }
      lanes.template compare<true>(words, shorter, shorterCount, similarities);
      lanes.template compare<false>(words, longer, longerCount, similarities);
    }
    return otherCount;
  }

  static void findPositions(const unichar* pattern, size_t length, unichar unit, KnownPositions* positions) {
    constexpr size_t kWord = 64;
    const V wanted = V::of(unit);
    uint64_t isBefore = 0;  // whether the unit before is a low end
    size_t w = 0;
    for (; length - w * kWord > kWord; ++w) {
      const unichar* const units = pattern + w * kWord;
      uint64_t low = 0, high = 0;  // where ranges with the unit may begin and end
      for (size_t i = 0; i < kWord; i += V::kUnits) {
        const V block = V::load(units + i);
        low |= V::positions(block <= wanted) << i;
        high |= V::positions(wanted <= block) << i;
      }
      const uint64_t isBehind = unit <= units[kWord];
      positions[w] = {low & high, (low << 1 | isBefore) & (high >> 1 | isBehind << (kWord - 1))};
      isBefore = low >> (kWord - 1);
    }
    for (; w <= length / kWord; ++w) {
      positions[w] = {0, 0};
      findPositionsPlainly(pattern, length, unit, w, positions[w]);
    }
  }

  static void findPositionsPlainly(const unichar* pattern, size_t length, unichar unit, size_t w,
                                   KnownPositions& positions) {
    const size_t first = w * 64, end = length - first < 64 ? length : first + 64;
    for (size_t i = first; i < end; ++i) {
      const bool isBetween = i > 0 && i + 1 < length && pattern[i - 1] <= unit && unit <= pattern[i + 1];
      positions.equals |= uint64_t{pattern[i] == unit} << (i - first);
      positions.ranges |= uint64_t{isBetween} << (i - first);
    }
  }

  static constexpr WordKernels kKernels = {match, countUnits, findSharing, compare, pair, findPositions};
};

template <>
inline size_t WordLoops<Scalar>::compare(std::u16string_view, std::u16string_view, const std::u16string_view*,
                                         size_t count, double*, uint32_t* others) {
  for (size_t i = 0; i < count; ++i) others[i] = static_cast<uint32_t>(i);
  return count;
}

template <>
inline void WordLoops<Scalar>::findPositions(const unichar* pattern, size_t length, unichar unit,
                                             KnownPositions* positions) {
  for (size_t w = 0; w <= length / 64; ++w) {
    positions[w] = {0, 0};
    findPositionsPlainly(pattern, length, unit, w, positions[w]);
  }
}

}  // namespace
}  // namespace velan

#endif  // VELAN_WILDCARD_WORD_LOOPS_INTERNAL_H
