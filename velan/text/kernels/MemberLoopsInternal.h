// Comparing the members of a set in two texts while these lie at the same places. Units that become the same are both
// members or both not where the set holds all of a window's units together with what they become: such a window needs
// no look-ups in the set.
#ifndef VELAN_TEXT_KERNELS_MEMBER_LOOPS_INTERNAL_H
#define VELAN_TEXT_KERNELS_MEMBER_LOOPS_INTERNAL_H

#include "velan/text/kernels/MappingLoopsInternal.h"
#include "velan/text/kernels/SetLoopsInternal.h"

namespace velan {
namespace {

/// What members are compared through, and what is known of the texts.
struct MemberComparison {
  const uint8_t* rep;
  const UnitMapping& mapping;
  MemberHints& hints;
  TableWindows& windows;
};

/// Whether `rep` holds all letters of ASCII in both cases or in none.
inline bool holdsASCIICasesAlike(const uint8_t* rep) {
  const auto differing = [rep](size_t i) { return rep['A' / 8 + i] ^ rep['a' / 8 + i]; };
  return ((differing(0) & 0xFE) | differing(1) | differing(2) | (differing(3) & 0x07)) == 0;  // "@" and "[" are none
}

/// Units and what they become as far as that does not change whether they are members.
template <typename V>
struct MappedAlike {
  MappedAlike(V all, const UnitMapping& mapping)
      : units(all), mapped(asciiMapped(all, mapping)), known(all <= V::of(0x7F)) {}

  void addWindow(unichar base, const unichar* table) {
    constexpr auto kMask = static_cast<unichar>(-V::kTableWindow);
    const auto within = units.differing(V::of(kMask), V::of(base)) == V::of(0);
    known = V::either(known, within);
    mapped = V::choose(within, units.inTable(typename V::Table(table + base)), mapped);
  }

  V units, mapped;
  typename V::Matches known;
};

/// Remembers the window around `c` if what the units there become changes nothing.
template <typename V>
void learnWindow(unichar c, const MemberComparison& comparison) {
  MemberHints& hints = comparison.hints;
  if (hints.windowSearches == 0) return;
  --hints.windowSearches;
  const auto base = static_cast<unichar>(c & -V::kTableWindow);
  for (unichar k = 0; k < V::kTableWindow; k = static_cast<unichar>(k + V::kUnits)) {
    unichar units[V::kUnits];
    for (size_t i = 0; i < V::kUnits; ++i) units[i] = static_cast<unichar>(base + k + i);
    const auto before = membersAt<V>(units, comparison.rep, hints.set);
    const auto after = membersAt<V>(comparison.mapping.table + base + k, comparison.rep, hints.set);
    if (V::bits(before) != V::bits(after)) return;
  }
  hints.windows[1] = hints.windows[0];
  hints.windows[0] = base;
}

/// Whether some different units all become the same without a look-up in the set.
template <typename V>
[[gnu::always_inline]] inline bool becomeSameAlike(const unichar* a, const unichar* b, typename V::Matches different,
                                                   const MemberComparison& comparison) {
  const UnitMapping& mapping = comparison.mapping;
  MappedAlike<V> left(V::load(a), mapping), right(V::load(b), mapping);
  const auto unknown = [&] { return V::bits(V::both(different, V::inverse(V::both(left.known, right.known)))); };
  if constexpr (V::kTableWindow != 0) {
    for (size_t k = 0; k < 2 && unknown() != 0 && comparison.hints.windows[k] != 0; ++k) {
      left.addWindow(comparison.hints.windows[k], mapping.table);
      right.addWindow(comparison.hints.windows[k], mapping.table);
    }
    if (const uint64_t others = unknown()) {
      const auto i = static_cast<unsigned>(__builtin_ctzll(others)) / V::kBits;
      const bool knowsLeft = (V::bits(left.known) >> (i * V::kBits) & 1) != 0;
      learnWindow<V>(knowsLeft ? b[i] : a[i], comparison);
      return false;
    }
  } else if (unknown() != 0) {
    return false;
  }
  return V::bits(V::both(different, V::inverse(left.mapped == right.mapped))) == 0;
}

/// Which of some different units are members in one text only, or members that differ.
template <typename V>
typename V::Matches membersDiffer(const unichar* a, const unichar* b, typename V::Matches different,
                                  const MemberComparison& comparison) {
  const auto inA = membersAt<V>(a, comparison.rep, comparison.hints.set);
  const auto inB = membersAt<V>(b, comparison.rep, comparison.hints.set);
  const auto inOne = V::both(V::either(inA, inB), V::inverse(V::both(inA, inB)));
  const V left = asciiMapped(V::load(a), comparison.mapping), right = asciiMapped(V::load(b), comparison.mapping);
  auto mayDiffer = V::both(V::both(inA, different), V::inverse(left == right));
  if (comparison.mapping.table && V::bits(mayDiffer) != 0) {
    mayDiffer = V::both(mayDiffer, differAnywhere<V>(a, b, comparison.mapping, comparison.windows, mayDiffer));
  }
  return V::either(inOne, mayDiffer);
}

/// The first position where the units are not members that are the same, nor both of them others.
template <typename V>
size_t mismatchOfMembersIn(const unichar* a, const unichar* b, size_t length, const MemberComparison& comparison) {
  size_t i = 0;
  if constexpr (V::kUnits > 1) {
    const bool mapsAlike =
        comparison.mapping.table && comparison.mapping.knowsASCII && holdsASCIICasesAlike(comparison.rep);
    for (; length - i >= V::kUnits; i += V::kUnits) {
      const auto different = V::inverse(V::load(a + i) == V::load(b + i));
      if (V::bits(different) == 0 || (mapsAlike && becomeSameAlike<V>(a + i, b + i, different, comparison))) continue;
      const uint64_t bits = V::bits(membersDiffer<V>(a + i, b + i, different, comparison));
      if (bits != 0) return i + static_cast<unsigned>(__builtin_ctzll(bits)) / V::kBits;
    }
    return i + mismatchOfMembersIn<typename V::Narrower>(a + i, b + i, length - i, comparison);
  } else {
    const UnitMapping& mapping = comparison.mapping;
    const auto mapped = [&](unichar c) { return mapping.table ? mapping.table[c] : asciiMappedUnit(c, mapping); };
    for (; i < length; ++i) {
      const bool isMember = isInSet(comparison.rep, a[i]);
      if (isMember != isInSet(comparison.rep, b[i]) || (isMember && mapped(a[i]) != mapped(b[i]))) break;
    }
    return i;
  }
}

}  // namespace
}  // namespace velan

#endif  // VELAN_TEXT_KERNELS_MEMBER_LOOPS_INTERNAL_H
