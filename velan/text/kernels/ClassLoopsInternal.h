// Where units may be those of any of some needles.
#ifndef VELAN_TEXT_KERNELS_CLASS_LOOPS_INTERNAL_H
#define VELAN_TEXT_KERNELS_CLASS_LOOPS_INTERNAL_H

#include "velan/base/kernels/UnitVectorsInternal.h"
#include "velan/text/kernels/PositionLoopsInternal.h"
#include "velan/text/kernels/UnitKernelsInternal.h"

namespace velan {
namespace {

struct ClassTest {
  const unichar* text;
  const NeedleClasses& classes;

  bool one(size_t i) const { return classes.at(text + i) != 0; }
  /// Where vectors know units by fewer bits, at more places.
  template <typename V>
  [[gnu::always_inline]] typename V::Matches block(size_t i) const {
    const auto at = [&](size_t probe) {
      const V units = V::load(text + i + probe);
      if constexpr (V::kKnowsLowBits) {
        return units.byLowBits(classes.byLowBits[probe]);
      } else {
        return units.byNibble(classes.byNibble[probe]);
      }
    };
    return V::haveCommonBits(at(0), at(1), at(2));
  }
};

template <typename V>
NeedlePositions gatherAnyBy(const unichar* text, size_t positions, const NeedleClasses& classes, unichar* found,
                            size_t most) {
  const NeedlePositions gathered = gatherWhere<V>(0, positions, ClassTest{text, classes}, found, 0, most);
  size_t count = 0;
  for (size_t k = 0; k < gathered.count; ++k) {
    const unichar position = found[k];
    found[count] = position;
    count += classes.at(text + position) != 0;
  }
  return {count, gathered.end};
}

}  // namespace
}  // namespace velan

#endif  // VELAN_TEXT_KERNELS_CLASS_LOOPS_INTERNAL_H
