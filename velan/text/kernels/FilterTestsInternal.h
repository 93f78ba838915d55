// Which units a filter lets pass.
#ifndef VELAN_TEXT_KERNELS_FILTER_TESTS_INTERNAL_H
#define VELAN_TEXT_KERNELS_FILTER_TESTS_INTERNAL_H

#include <type_traits>

#include "velan/base/kernels/UnitVectorsInternal.h"
#include "velan/text/kernels/UnitKernelsInternal.h"

namespace velan {
namespace {

inline bool passes(const UnitFilter& filter, unichar c) {
  for (size_t i = 0; i < UnitFilter::kMost; ++i) {
    if (static_cast<unichar>(c - filter.low[i]) <= filter.span[i]) return true;
  }
  return false;
}

/// The same of a vector of units.
template <UnitFilter::Kind kind, typename V>
typename V::Matches matches(V units, const UnitFilter& filter) {
  if constexpr (kind == UnitFilter::Kind::One) {
    return units == V::of(filter.low[0]);
  } else if constexpr (kind == UnitFilter::Kind::Two) {
    return V::either(units == V::of(filter.low[0]), units == V::of(filter.low[1]));
  } else {
    const auto inRange = [&](size_t k) { return units - V::of(filter.low[k]) <= V::of(filter.span[k]); };
    return V::either(V::either(inRange(0), inRange(1)), V::either(inRange(2), inRange(3)));
  }
}

template <UnitFilter::Kind kind>
struct UnitTest {
  const unichar* units;
  const UnitFilter& filter;

  const unichar* address(size_t i) const { return units + i; }
  bool one(size_t i) const { return passes(filter, units[i]); }
  template <typename V>
  typename V::Matches block(size_t i) const {
    return matches<kind>(V::load(units + i), filter);
  }
};

/// Calls `search` with the narrowest kind that the filter is of, as a constant.
template <typename Search>
auto withKind(UnitFilter::Kind kind, Search search) {
  using enum UnitFilter::Kind;
  if (kind == One) return search(std::integral_constant<UnitFilter::Kind, One>());
  if (kind == Two) return search(std::integral_constant<UnitFilter::Kind, Two>());
  return search(std::integral_constant<UnitFilter::Kind, Ranges>());
}

}  // namespace
}  // namespace velan

#endif  // VELAN_TEXT_KERNELS_FILTER_TESTS_INTERNAL_H
