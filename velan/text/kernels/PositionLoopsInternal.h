// Loops over positions that a test tells about, in vectors: finding, counting, gathering.
//
// A test tells for positions whether they are wanted: `one(i)` for the position `i`, `block<V>(i)` for as many
// positions from `i` as a vector has units. A test may also have an `outline<V>()`, whose `distance(i)` is 0 at least
// where positions are wanted, as long as `reach<V>()` positions are left.
#ifndef VELAN_TEXT_KERNELS_POSITION_LOOPS_INTERNAL_H
#define VELAN_TEXT_KERNELS_POSITION_LOOPS_INTERNAL_H

#include <algorithm>
#include <array>
#include <cstring>

#include "velan/base/kernels/UnitVectorsInternal.h"
#include "velan/text/kernels/UnitKernelsInternal.h"

namespace velan {
namespace {

template <typename V>
constexpr bool kIsVector = V::kUnits > 1;

constexpr auto kAny = [](size_t) { return true; };

/// The position in `block`, wanted by `bits`, that `accept` takes first, or `end`.
template <typename V, typename Accept>
size_t firstAccepted(uint64_t bits, size_t block, size_t end, Accept accept) {
  constexpr uint64_t kUnit = (uint64_t{1} << V::kBits) - 1;
  while (bits != 0) {
    const auto bit = static_cast<unsigned>(__builtin_ctzll(bits));
    if (const size_t position = block + bit / V::kBits; accept(position)) return position;
    bits &= ~(kUnit << bit);
  }
  return end;
}

/// How many units behind the start of an aligned vector `at` lies: loads across lines of the cache take twice as long.
template <typename V>
size_t unitsBehindLine(const unichar* at) {
  return reinterpret_cast<uintptr_t>(at) / sizeof(unichar) % V::kUnits;
}

/// How many positions have to be left to look at four blocks.
template <typename V, typename Test>
size_t reachOfFour(const Test& test) {
  if constexpr (requires { test.template reach<V>(); }) return 3 * V::kUnits + test.template reach<V>();
  return 4 * V::kUnits;
}

/// From `i` on in steps of four blocks, the first position where `test` may want one in these, or one with fewer than
/// `reach` left below `count`.
template <typename V, typename Test>
[[gnu::always_inline]] inline size_t firstNear(size_t i, size_t count, size_t reach, const Test& test) {
  constexpr size_t kStep = V::kUnits;
  if constexpr (requires { test.template outline<V>(); }) {
    const auto outline = test.template outline<V>();
    for (; count - i >= reach; i += 4 * kStep) {
      const V low = V::least(outline.distance(i), outline.distance(i + kStep));
      const V high = V::least(outline.distance(i + 2 * kStep), outline.distance(i + 3 * kStep));
      if (V::bits(V::least(low, high) == V::of(0)) != 0) break;
    }
  } else {
    for (; count - i >= reach; i += 4 * kStep) {
      const auto low = V::either(test.template block<V>(i), test.template block<V>(i + kStep));
      const auto high = V::either(test.template block<V>(i + 2 * kStep), test.template block<V>(i + 3 * kStep));
      if (V::bits(V::either(low, high)) != 0) break;
    }
  }
  return i;
}

/// `firstAccepted` of the four blocks from `i`.
template <typename V, typename Test, typename Accept>
size_t firstInFourBlocks(size_t i, size_t end, const Test& test, Accept accept) {
  uint64_t bits[4];
  for (size_t k = 0; k < 4; ++k) bits[k] = V::bits(test.template block<V>(i + k * V::kUnits));
  if ((bits[0] | bits[1] | bits[2] | bits[3]) == 0) return end;
  for (size_t k = 0; k < 4; ++k) {
    const size_t found = firstAccepted<V>(bits[k], i + k * V::kUnits, end, accept);
    if (found < end) return found;
  }
  return end;
}

/// The first of the positions `[i, count)` that `test` wants and `accept` takes, or `count`. It is asked in rising
/// order, but for a few that it is asked about once more.
template <typename V, typename Test, typename Accept>
size_t firstWhere(size_t i, size_t count, Test test, Accept accept) {
  if constexpr (kIsVector<V>) {
    constexpr size_t kStep = V::kUnits;
    if (count < kStep) return firstWhere<typename V::Narrower>(i, count, test, accept);
    const size_t reach = reachOfFour<V>(test);
    while (i < count) {
      const size_t block = std::min(i, count - kStep);  // the first positions of the last one have been looked at
      const uint64_t bits = V::bits(test.template block<V>(block)) >> ((i - block) * V::kBits);
      const size_t found = firstAccepted<V>(bits, i, count, accept);
      if (found < count) return found;
      i = block + kStep;
      if (count - i < reach) continue;
      i -= unitsBehindLine<V>(test.address(i));  // some are looked at again
      while (count - (i = firstNear<V>(i, count, reach, test)) >= reach) {
        const size_t nearby = firstInFourBlocks<V>(i, count, test, accept);
        if (nearby < count) return nearby;
        i += 4 * kStep;
      }
    }
    return count;
  } else {
    while (i < count && !(test.one(i) && accept(i))) ++i;
    return i;
  }
}

/// The last position below `count` that `test` wants, or `none`.
template <typename V, typename Test>
size_t lastWhere(size_t count, size_t none, Test test) {
  if constexpr (kIsVector<V>) {
    for (; count >= V::kUnits; count -= V::kUnits) {
      const uint64_t bits = V::bits(test.template block<V>(count - V::kUnits));
      if (bits == 0) continue;
      return count - V::kUnits + (63 - static_cast<size_t>(__builtin_clzll(bits))) / V::kBits;
    }
    return lastWhere<typename V::Narrower>(count, none, test);
  } else {
    while (count > 0 && !test.one(count - 1)) --count;
    return count > 0 ? count - 1 : none;
  }
}

/// How many of the positions `[i, count)` `test` wants.
template <typename V, typename Test>
size_t countWhere(size_t i, size_t count, Test test) {
  size_t wanted = 0;
  if constexpr (kIsVector<V>) {
    for (; count - i >= V::kUnits; i += V::kUnits) {
      wanted += static_cast<size_t>(__builtin_popcountll(V::bits(test.template block<V>(i))));
    }
    return wanted / V::kBits + countWhere<typename V::Narrower>(i, count, test);
  } else {
    for (; i < count; ++i) wanted += test.one(i);
    return wanted;
  }
}

/// What is left of `[i, count)` when positions that `test` wants are no longer dense there; those before are gathered,
/// so that none is mispredicted, and given to `accept` in rising order until it returns true: then nothing is left.
template <typename V, typename Test, typename Accept>
[[gnu::noinline]] size_t firstBehindDense(size_t i, size_t count, Test test, Accept accept) {
  constexpr size_t kBlocks = 32, kFew = 4;
  static constexpr auto kOrder = [] {
    std::array<unichar, V::kUnits> order{};
    for (size_t k = 0; k < V::kUnits; ++k) order[k] = static_cast<unichar>(k);
    return order;
  }();
  unichar gathered[(kBlocks + 1) * V::kUnits];
  for (size_t wanted = kFew; wanted >= kFew && count - i >= V::kUnits;) {
    const size_t start = i;
    wanted = 0;
    for (size_t left = kBlocks; left > 0 && count - i >= V::kUnits; --left, i += V::kUnits) {
      const auto matches = test.template block<V>(i);
      const V positions = V::load(kOrder.data()) - V::of(static_cast<unichar>(start - i));
      wanted += positions.storeCompressed(matches, gathered + wanted);
    }
    for (size_t k = 0; k < wanted; ++k) {
      if (accept(start + gathered[k])) return count;
    }
  }
  return i;
}

/// Calls `accept(position)` in rising order for the positions below `count` that `test` wants until it returns true;
/// a second time for a few.
template <typename V, typename Test, typename Accept>
void forEachWhere(size_t count, Test test, Accept accept) {
  if constexpr (kIsVector<V>) {
    constexpr size_t kMany = 4;
    for (size_t i = 0; i < count;) {
      size_t close = 0, last = 0;
      bool isDone = false;
      i = firstWhere<V>(i, count, test, [&](size_t position) {
        isDone = accept(position);
        close = position - last < 8 * V::kUnits ? close + 1 : 0;
        last = position;
        return isDone || close == kMany;
      });
      if (isDone) return;
      if (i < count) i = firstBehindDense<V>(i + 1, count, test, accept);
    }
  } else {
    firstWhere<V>(0, count, test, accept);
  }
}

/// Writes the positions of `[i, count)` that `test` wants behind the first `wanted` ones, up to the end of the block in
/// which there are `most`.
template <typename V, typename Test>
NeedlePositions gatherWhere(size_t i, size_t count, Test test, unichar* found, size_t wanted, size_t most) {
  if constexpr (kIsVector<V>) {
    constexpr size_t kStep = V::kUnits, kBlocks = 4;
    static_assert((kBlocks + 1) * kStep <= UnitKernels::kGatherSlack);
    unichar order[kStep];
    for (size_t k = 0; k < kStep; ++k) order[k] = static_cast<unichar>(k);
    const auto keep = [&](size_t block, typename V::Matches matches) {
      const V positions = V::load(order) - V::of(static_cast<unichar>(-block));
      wanted += positions.storeCompressed(matches, found + wanted);
    };
    const size_t reach = reachOfFour<V>(test);
    bool isNear = false;  // some were in the four blocks before
    for (; wanted < most; i += kBlocks * kStep) {
      if (!isNear) i = firstNear<V>(i, count, reach, test);
      if (count - i < reach) break;
      const auto a = test.template block<V>(i), b = test.template block<V>(i + kStep);
      const auto c = test.template block<V>(i + 2 * kStep), d = test.template block<V>(i + 3 * kStep);
      isNear = V::bits(V::either(V::either(a, b), V::either(c, d))) != 0;
      if (!isNear) continue;
      keep(i, a);
      keep(i + kStep, b);
      keep(i + 2 * kStep, c);
      keep(i + 3 * kStep, d);
    }
    for (; count - i >= kStep && wanted < most; i += kStep) {
      if (const auto a = test.template block<V>(i); V::bits(a) != 0) keep(i, a);
    }
    if (wanted >= most || i == count) return {wanted, i};
    if (count < kStep) return gatherWhere<typename V::Narrower>(i, count, test, found, wanted, most);
    // The last block's first positions have been looked at: what is wanted of them lies there a second time, and goes.
    const size_t last = count - kStep, before = wanted;
    const auto matches = test.template block<V>(last);
    const uint64_t again = V::bits(matches) & ((uint64_t{1} << ((i - last) * V::kBits)) - 1);
    const auto twice = static_cast<size_t>(__builtin_popcountll(again)) / V::kBits;
    keep(last, matches);
    wanted -= twice;
    if (twice > 0) std::memmove(found + before, found + before + twice, (wanted - before) * sizeof *found);
    return {wanted, count};
  } else {
    for (; i < count && wanted < most; ++i) {
      found[wanted] = static_cast<unichar>(i);
      wanted += test.one(i);
    }
    return {wanted, i};
  }
}

}  // namespace
}  // namespace velan

#endif  // VELAN_TEXT_KERNELS_POSITION_LOOPS_INTERNAL_H
