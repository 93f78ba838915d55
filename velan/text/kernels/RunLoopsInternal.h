// Where the runs between marked units begin and end: bytes, two in the place of each unit of a vector.
#ifndef VELAN_TEXT_KERNELS_RUN_LOOPS_INTERNAL_H
#define VELAN_TEXT_KERNELS_RUN_LOOPS_INTERNAL_H

#include "velan/base/kernels/UnitVectorsInternal.h"
#include "velan/text/kernels/UnitKernelsInternal.h"

namespace velan {
namespace {

/// The sum of the bytes of a vector.
template <typename V>
size_t sumOfBytes(V vector) {
  unichar pairs[V::kUnits];
  vector.store(pairs);
  size_t sum = 0;
  for (const unichar pair : pairs) sum += (pair & 0xFFu) + (pair >> 8);
  return sum;
}

template <typename V>
size_t runsFromMarksOf(const uint8_t* marks, size_t length, uint8_t* types) {
  size_t i = 0, runs = 0;
  if constexpr (V::kUnits > 1) {
    constexpr size_t kStep = 2 * V::kUnits;
    constexpr size_t kMostSteps = 0xFF / UnitKernels::kRunBegins;  // that a byte of the sum has room for
    const auto each = [](unsigned type) { return V::of(static_cast<unichar>(type << 8 | type)); };
    const V none = V::of(0), marked = each(UnitKernels::kMarked), begins = each(UnitKernels::kRunBegins),
            ends = each(UnitKernels::kRunEnds);
    while (length - i >= kStep) {
      V sum = none;
      for (size_t left = kMostSteps; left > 0 && length - i >= kStep; --left, i += kStep) {
        const V mark = V::loadBytes(marks + i + 1);
        const V unmarkedBegins = begins.differing(mark, begins), unmarkedEnds = ends.differing(mark, ends);
        const V first = V::loadBytes(marks + i).differing(unmarkedBegins, none);
        const V last = V::loadBytes(marks + i + 2).differing(unmarkedEnds, none);
        V::unionOf(mark.differing(marked, none), first, last).storeBytes(types + i);
        sum = sum + first;
      }
      runs += sumOfBytes(sum) / UnitKernels::kRunBegins;
    }
    return runs + runsFromMarksOf<typename V::Narrower>(marks + i, length - i, types + i);
  } else {
    for (; i < length; ++i) {
      const unsigned mark = marks[i + 1];
      const unsigned first = marks[i] & ~mark & UnitKernels::kRunBegins;
      const unsigned last = marks[i + 2] & ~mark & UnitKernels::kRunEnds;
      types[i] = static_cast<uint8_t>((mark & UnitKernels::kMarked) | first | last);
      runs += first / UnitKernels::kRunBegins;
    }
    return runs;
  }
}

/// Adds what positions from `first` on have a bit of `type` to `positions`, and returns how many they are.
template <typename V>
size_t positionsOf(const uint8_t* types, size_t length, uint8_t type, size_t first, unichar* positions) {
  size_t i = 0, count = 0;
  if constexpr (V::kUnits > 1) {
    unichar order[V::kUnits];
    for (size_t k = 0; k < V::kUnits; ++k) order[k] = static_cast<unichar>(first + k);
    V next = V::load(order);
    const V none = V::of(0), wanted = V::of(type), step = V::of(V::kUnits);
    for (; length - i >= V::kUnits; i += V::kUnits, next = next + step) {
      const auto others = V::widened(types + i).differing(wanted, none) == none;
      count += next.storeCompressed(V::inverse(others), positions + count);
    }
    return count + positionsOf<typename V::Narrower>(types + i, length - i, type, first + i, positions + count);
  } else {
    for (; i < length; ++i) {
      positions[count] = static_cast<unichar>(first + i);
      count += (types[i] & type) != 0;
    }
    return count;
  }
}

}  // namespace
}  // namespace velan

#endif  // VELAN_TEXT_KERNELS_RUN_LOOPS_INTERNAL_H
