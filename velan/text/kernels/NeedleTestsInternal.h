// Where the probes of a needle are: tests for the loops over positions.
#ifndef VELAN_TEXT_KERNELS_NEEDLE_TESTS_INTERNAL_H
#define VELAN_TEXT_KERNELS_NEEDLE_TESTS_INTERNAL_H

#include "velan/base/kernels/UnitVectorsInternal.h"
#include "velan/text/kernels/FilterTestsInternal.h"
#include "velan/text/kernels/UnitKernelsInternal.h"

namespace velan {
namespace {

/// The units of text at a probe of a needle that would lie at `i`.
template <typename V>
V unitsAt(const NeedleHead::Probe& probe, const unichar* text, size_t i) {
  return V::load(text + probe.position + i);
}

/// The first two probes of a needle.
template <typename V>
struct ProbePair {
  ProbePair(const unichar* text, const NeedleHead& head)
      : at(text + head.probes[0].position),
        behind(head.probes[1].position - head.probes[0].position),
        firstMask(V::of(head.probes[0].mask)),
        first(V::of(head.probes[0].bits)),
        secondMask(V::of(head.probes[1].mask)),
        second(V::of(head.probes[1].bits)) {}

  const unichar* at;
  size_t behind;
  V firstMask, first, secondMask, second;
};

/// Tests that read a text at the first two probes of a needle, whose outlines are made of the same.
struct HeadTest {
  const unichar* text;
  const NeedleHead& head;

  const unichar* address(size_t i) const { return text + head.probes[0].position + i; }
  /// How many positions have to be left to load the units there.
  template <typename V>
  size_t reach() const {
    const size_t read = V::kUnits + V::kAhead + head.probes[0].position + 1;
    return V::kAhead == 0 || read < V::kUnits + head.length ? V::kUnits : read - head.length;
  }
};

/// All probes of a needle are where it would have them, told by masks, which leave out nothing if it is `isExact`.
template <bool isExact>
struct MaskTest : HeadTest {
  bool one(size_t i) const {
    unsigned different = 0;
    for (const auto& probe : head.probes) different |= (text[i + probe.position] & probe.mask) ^ probe.bits;
    return different == 0;
  }
  template <typename V>
  [[gnu::always_inline]] typename V::Matches block(size_t i) const {
    const auto different = [&](size_t k) {
      const NeedleHead::Probe& probe = head.probes[k];
      return unitsAt<V>(probe, text, i).differing(V::of(probe.mask), V::of(probe.bits));
    };
    return V::unionOf(different(0), different(1), different(2)) == V::of(0);
  }
  /// 0 where two of the probes are.
  template <typename V>
  struct Outline : ProbePair<V> {
    using ProbePair<V>::ProbePair;
    V distance(size_t i) const {
      const V units = V::load(this->at + i), others = units.ahead(this->at + i, this->behind);
      if constexpr (isExact) return V::unionWithDifference(units ^ this->first, others, this->second);
      const V other = others.differing(this->secondMask, this->second);
      return V::unionOf(units.differing(this->firstMask, this->first), other, other);
    }
  };
  template <typename V>
  Outline<V> outline() const {
    return {text, head};
  }
};

/// The same, told by filters.
struct FilterTest : HeadTest {
  bool one(size_t i) const {
    for (const auto& probe : head.probes) {
      if (!passes(probe.filter, text[i + probe.position])) return false;
    }
    return true;
  }
  template <typename V>
  [[gnu::always_inline]] typename V::Matches block(size_t i) const {
    const auto unitsAtProbe = [&](size_t k) { return unitsAt<V>(head.probes[k], text, i); };
    const V first = unitsAtProbe(0), second = unitsAtProbe(1), third = unitsAtProbe(2);
    if (V::bits(V::inverse(V::unionOf(first, second, third) <= V::of(0x7F))) == 0) {
      const auto different = [&](V units, size_t k) {
        return units.differing(V::of(head.probes[k].mask), V::of(head.probes[k].bits));
      };
      return V::unionOf(different(first, 0), different(second, 1), different(third, 2)) == V::of(0);
    }
    const auto at = [&](V units, size_t k) { return matches<UnitFilter::Kind::Ranges>(units, head.probes[k].filter); };
    const auto found = at(first, 0);
    return V::bits(found) == 0 ? found : V::both(V::both(found, at(second, 1)), at(third, 2));
  }
  /// 0 where two of the probes are, or units beyond ASCII.
  template <typename V>
  struct Outline : ProbePair<V> {
    using ProbePair<V>::ProbePair;
    V distance(size_t i) const {
      const V units = V::load(this->at + i), others = units.ahead(this->at + i, this->behind);
      const V other = others.differing(this->secondMask, this->second).onlyWhere(others <= V::of(0x7F));
      const V one = units.differing(this->firstMask, this->first).onlyWhere(units <= V::of(0x7F));
      return V::unionOf(one, other, other);
    }
  };
  template <typename V>
  Outline<V> outline() const {
    return {text, head};
  }
};

/// The same of one probe, looked up.
struct TableTest {
  const unichar* text;
  const NeedleHead& head;

  bool one(size_t i) const {
    const size_t position = head.probes[0].position;
    return head.table[text[i + position]] == head.units[position];
  }
};

}  // namespace
}  // namespace velan

#endif  // VELAN_TEXT_KERNELS_NEEDLE_TESTS_INTERNAL_H
