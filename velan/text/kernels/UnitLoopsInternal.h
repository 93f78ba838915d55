// The operations of `UnitKernels` over any class of vectors. `Scalar` gives the reference: one position after another.
//
// A test tells for positions whether they are wanted: `one(i)` for the position `i`, `block<V>(i)` for as many
// positions from `i` as a vector has units.
#ifndef VELAN_TEXT_KERNELS_UNIT_LOOPS_INTERNAL_H
#define VELAN_TEXT_KERNELS_UNIT_LOOPS_INTERNAL_H

#include <array>
#include <cstring>
#include <type_traits>

#include "velan/base/kernels/UnitVectorsInternal.h"
#include "velan/text/kernels/MappingLoopsInternal.h"
#include "velan/text/kernels/RunLoopsInternal.h"
#include "velan/text/kernels/SetLoopsInternal.h"
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

/// How many positions have to be left to ask for their `distance`.
template <typename V, typename Test>
size_t reachOf(const Test& test) {
  if constexpr (requires { test.template reach<V>(); }) return test.template reach<V>();
  return V::kUnits;
}

/// How many units behind the start of an aligned vector `at` lies: loads across lines of the cache take twice as long.
template <typename V>
size_t unitsBehindLine(const unichar* at) {
  return reinterpret_cast<uintptr_t>(at) / sizeof(unichar) % V::kUnits;
}

/// Whether `test` may want one of the next four blocks' positions.
template <typename V, typename Test>
[[gnu::always_inline]] inline bool isInFourBlocks(const Test& test, size_t i) {
  constexpr size_t kStep = V::kUnits;
  if constexpr (requires { test.template distance<V>(i); }) {
    const V low = V::least(test.template distance<V>(i), test.template distance<V>(i + kStep));
    const V high = V::least(test.template distance<V>(i + 2 * kStep), test.template distance<V>(i + 3 * kStep));
    return V::bits(V::least(low, high) == V::of(0)) != 0;
  } else {
    const auto low = V::either(test.template block<V>(i), test.template block<V>(i + kStep));
    const auto high = V::either(test.template block<V>(i + 2 * kStep), test.template block<V>(i + 3 * kStep));
    return V::bits(V::either(low, high)) != 0;
  }
}

/// The first of the positions `[i, count)` that `test` wants and `accept` takes, or `count`. It is asked in rising
/// order, but for a few that it is asked about once more.
template <typename V, typename Test, typename Accept>
size_t firstWhere(size_t i, size_t count, Test test, Accept accept) {
  if constexpr (kIsVector<V>) {
    constexpr size_t kStep = V::kUnits;
    if (count < kStep) return firstWhere<typename V::Narrower>(i, count, test, accept);
    const size_t group = 3 * kStep + reachOf<V>(test);
    for (size_t near = 1;;) {
      for (; near > 0 && count - i >= kStep; --near, i += kStep) {
        const size_t found = firstAccepted<V>(V::bits(test.template block<V>(i)), i, count, accept);
        if (found < count) return found;
      }
      if (count - i < kStep) break;
      if (count - i >= group) i -= unitsBehindLine<V>(test.address(i));  // some are looked at again
      while (count - i >= group && !isInFourBlocks<V>(test, i)) i += 4 * kStep;
      near = 4;
    }
    if (i == count) return count;
    const size_t last = count - kStep;  // its first positions have been looked at
    const uint64_t bits = V::bits(test.template block<V>(last)) >> ((i - last) * V::kBits);
    return firstAccepted<V>(bits, i, count, accept);
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

/// The units of text at a probe of a needle that would lie at `i`.
template <typename V>
V unitsAt(const NeedleHead::Probe& probe, const unichar* text, size_t i) {
  return V::load(text + probe.position + i);
}

/// The units at the first two probes.
template <typename V>
struct UnitPair {
  UnitPair(const unichar* text, const NeedleHead& head, size_t i)
      : first(unitsAt<V>(head.probes[0], text, i)),
        second(first.ahead(text + head.probes[0].position + i, head.probes[1].position - head.probes[0].position)) {}

  V first, second;
};

/// How many positions have to be left for that.
template <typename V>
size_t reachOfPair(const NeedleHead& head) {
  const size_t read = V::kUnits + V::kAhead + head.probes[0].position + 1;
  return V::kAhead == 0 || read < V::kUnits + head.length ? V::kUnits : read - head.length;
}

/// All probes of a needle are where it would have them, told by masks, which leave out nothing if it is `isExact`.
template <bool isExact>
struct MaskTest {
  const unichar* text;
  const NeedleHead& head;

  const unichar* address(size_t i) const { return text + head.probes[0].position + i; }
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
  template <typename V>
  size_t reach() const {
    return reachOfPair<V>(head);
  }
  /// 0 where two of the probes are.
  template <typename V>
  [[gnu::always_inline]] V distance(size_t i) const {
    const UnitPair<V> pair(text, head, i);
    const NeedleHead::Probe &first = head.probes[0], &second = head.probes[1];
    const V different = pair.first.differing(V::of(isExact ? 0xFFFF : first.mask), V::of(first.bits));
    if constexpr (isExact) return V::unionWithDifference(different, pair.second, V::of(second.bits));
    const V other = pair.second.differing(V::of(second.mask), V::of(second.bits));
    return V::unionOf(different, other, other);
  }
};

/// The same, told by filters.
struct FilterTest {
  const unichar* text;
  const NeedleHead& head;

  const unichar* address(size_t i) const { return text + head.probes[0].position + i; }
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
  template <typename V>
  size_t reach() const {
    return reachOfPair<V>(head);
  }
  /// 0 where two of the probes are, or units beyond ASCII.
  template <typename V>
  V distance(size_t i) const {
    const UnitPair<V> pair(text, head, i);
    const auto different = [](V units, const NeedleHead::Probe& probe) {
      return units.differing(V::of(probe.mask), V::of(probe.bits)).onlyWhere(units <= V::of(0x7F));
    };
    const V other = different(pair.second, head.probes[1]);
    return V::unionOf(different(pair.first, head.probes[0]), other, other);
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

/// How many units at the start are the same, in steps of four; `length` if all are.
inline size_t sameUnits(const unichar* a, const unichar* b, size_t length) {
  size_t i = 0;
  for (; length - i >= 4; i += 4) {
    if (std::memcmp(a + i, b + i, 4 * sizeof(unichar)) != 0) return i;  // compiled to a comparison of two numbers
  }
  if (length >= 4 && std::memcmp(a + length - 4, b + length - 4, 4 * sizeof(unichar)) == 0) return length;
  while (i < length && a[i] == b[i]) ++i;
  return i;
}

inline size_t sameMappedUnits(const unichar* text, const unichar* needle, size_t length, const unichar* table) {
  size_t i = 0;
  while (i < length && table[text[i]] == needle[i]) ++i;
  return i;
}

/// Looks closer where the probes of a head are.
template <bool hasTable>
class HeadMatcher {
 public:
  HeadMatcher(const unichar* text, const NeedleHead& head) : _text(text), _head(head) {}

  /// Whether the head lies at `position`. Positions come in rising order.
  bool matches(size_t position) {
    const size_t same = hasTable ? sameMappedUnits(_text + position, _head.units, _head.length, _head.table)
                                 : sameUnits(_text + position, _head.units, _head.length);
    if (same == _head.length) return true;
    _compared += same + 1;
    // A scan stays ahead of searches that need no luck while it compares no more than a few units per position.
    gaveUp = _compared / 4 > position + 1024;
    return false;
  }

  bool gaveUp = false;

 private:
  const unichar* _text;
  const NeedleHead& _head;
  size_t _compared = 0;
};

template <typename V, typename Test, bool hasTable>
NeedlePosition findHeadBy(const unichar* text, size_t positions, const NeedleHead& head) {
  if (head.tellsAll) return {firstWhere<V>(0, positions, Test{text, head}, kAny), false};
  HeadMatcher<hasTable> matcher(text, head);
  const size_t found = firstWhere<V>(0, positions, Test{text, head},
                                     [&](size_t position) { return matcher.matches(position) || matcher.gaveUp; });
  return {found, matcher.gaveUp};
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

template <typename V, typename Test, bool hasTable>
NeedleCount countHeadBy(const unichar* text, size_t positions, const NeedleHead& head) {
  if (head.tellsAll) return {countWhere<V>(0, positions, Test{text, head}), {positions, false}};
  HeadMatcher<hasTable> matcher(text, head);
  size_t count = 0, next = 0;
  forEachWhere<V>(positions, Test{text, head}, [&](size_t position) {
    if (position >= next && matcher.matches(position)) {
      ++count;
      next = position + head.length;
    }
    return matcher.gaveUp;
  });
  return {count, {next, matcher.gaveUp}};
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
    const size_t group = (kBlocks - 1) * kStep + reachOf<V>(test);
    bool isNear = false;  // some were in the four blocks before
    for (; count - i >= group && wanted < most; i += kBlocks * kStep) {
      if (!isNear && !isInFourBlocks<V>(test, i)) continue;
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

template <typename V, typename Test, bool hasTable>
NeedlePositions gatherHeadBy(const unichar* text, size_t positions, const NeedleHead& head, unichar* found,
                             size_t most) {
  NeedlePositions gathered = gatherWhere<V>(0, positions, Test{text, head}, found, 0, most);
  if (head.tellsAll || head.telling == NeedleHead::Telling::ProbesOnly) return gathered;
  size_t count = 0;
  for (size_t k = 0; k < gathered.count; ++k) {
    const unichar position = found[k];
    found[count] = position;
    count += (hasTable ? sameMappedUnits(text + position, head.units, head.length, head.table)
                       : sameUnits(text + position, head.units, head.length)) == head.length;
  }
  return {count, gathered.end};
}

/// Calls `search` with the narrowest kind that the filter is of, as a constant.
template <typename Search>
auto withKind(UnitFilter::Kind kind, Search search) {
  using enum UnitFilter::Kind;
  if (kind == One) return search(std::integral_constant<UnitFilter::Kind, One>());
  if (kind == Two) return search(std::integral_constant<UnitFilter::Kind, Two>());
  return search(std::integral_constant<UnitFilter::Kind, Ranges>());
}

/// All operations on vectors `V`.
template <typename V>
struct UnitLoops {
  static size_t find(const unichar* units, size_t length, const UnitFilter& filter) {
    return withKind(filter.kind, [&](auto kind) {
      return firstWhere<V>(0, length, UnitTest<kind()>{units, filter}, kAny);
    });
  }

  static size_t findLast(const unichar* units, size_t length, const UnitFilter& filter) {
    return withKind(filter.kind, [&](auto kind) {
      return lastWhere<V>(length, length, UnitTest<kind()>{units, filter});
    });
  }

  static size_t count(const unichar* units, size_t length, const UnitFilter& filter) {
    return withKind(filter.kind, [&](auto kind) { return countWhere<V>(0, length, UnitTest<kind()>{units, filter}); });
  }

  static size_t findMember(const unichar* units, size_t length, const uint8_t* rep, bool isMember) {
    SetHints hints;
    return isMember ? firstWhere<V>(0, length, MemberTest<true>{units, rep, hints}, kAny)
                    : firstWhere<V>(0, length, MemberTest<false>{units, rep, hints}, kAny);
  }

  static size_t countMembers(const unichar* units, size_t length, const uint8_t* rep) {
    SetHints hints;
    return countWhere<V>(0, length, MemberTest<true>{units, rep, hints});
  }

  static size_t copyMembers(const unichar* units, size_t length, const uint8_t* rep, SetHints& hints,
                            unichar* members) {
    static_assert(V::kUnits <= UnitKernels::kCopySlack);
    return copyMembersOf<V>(units, length, rep, hints, members);
  }

  static void markMembers(const unichar* units, size_t length, const uint8_t* rep, SetHints& hints, uint8_t* marks) {
    markMembersOf<V>(units, length, rep, hints, marks);
  }

  static size_t runsFromMarks(const uint8_t* marks, size_t length, uint8_t* types) {
    return runsFromMarksOf<V>(marks, length, types);
  }

  static size_t positions(const uint8_t* types, size_t length, uint8_t type, unichar* positions) {
    return positionsOf<V>(types, length, type, 0, positions);
  }

  static void map(const unichar* units, size_t count, const UnitMapping& mapping, unichar* mapped) {
    unichar windows[] = {0x400, 0x380, 0x80};
    mapEach<V>(units, count, mapping, windows, mapped);
  }

  static size_t mismatch(const unichar* a, const unichar* b, size_t length, const UnitMapping& mapping) {
    unichar windows[] = {0x400, 0x380, 0x80};
    if (!mapping.table) return firstWhere<V>(0, length, MismatchTest<false>{a, b, mapping, windows}, kAny);
    return firstWhere<V>(0, length, MismatchTest<true>{a, b, mapping, windows},
                         [&](size_t i) { return mapping.table[a[i]] != mapping.table[b[i]]; });
  }

  static NeedlePosition findHead(const unichar* text, size_t positions, const NeedleHead& head) {
    using enum NeedleHead::Telling;
    if (head.telling == Table) return findHeadBy<Scalar, TableTest, true>(text, positions, head);
    if (head.telling == Filter) return findHeadBy<V, FilterTest, true>(text, positions, head);
    if (head.table) return findHeadBy<V, MaskTest<false>, true>(text, positions, head);
    return findHeadBy<V, MaskTest<true>, false>(text, positions, head);
  }

  static NeedleCount countHead(const unichar* text, size_t positions, const NeedleHead& head) {
    using enum NeedleHead::Telling;
    if (head.telling == Table) return countHeadBy<Scalar, TableTest, true>(text, positions, head);
    if (head.telling == Filter) return countHeadBy<V, FilterTest, true>(text, positions, head);
    if (head.table) return countHeadBy<V, MaskTest<false>, true>(text, positions, head);
    return countHeadBy<V, MaskTest<true>, false>(text, positions, head);
  }

  static NeedlePositions gatherHead(const unichar* text, size_t positions, const NeedleHead& head, unichar* found,
                                    size_t most) {
    using enum NeedleHead::Telling;
    if (head.telling == Table) return gatherHeadBy<Scalar, TableTest, true>(text, positions, head, found, most);
    if (head.telling == Filter) return gatherHeadBy<V, FilterTest, true>(text, positions, head, found, most);
    if (head.table) return gatherHeadBy<V, MaskTest<false>, true>(text, positions, head, found, most);
    if (head.telling == ProbesOnly) return gatherHeadBy<V, MaskTest<false>, false>(text, positions, head, found, most);
    return gatherHeadBy<V, MaskTest<true>, false>(text, positions, head, found, most);
  }

  static constexpr UnitKernels kKernels = {
      .find = find,
      .findLast = findLast,
      .count = count,
      .findMember = findMember,
      .countMembers = countMembers,
      .copyMembers = copyMembers,
      .markMembers = markMembers,
      .runsFromMarks = runsFromMarks,
      .positions = positions,
      .map = map,
      .mismatch = mismatch,
      .findHead = findHead,
      .countHead = countHead,
      .gatherHead = gatherHead,
  };
};

}  // namespace
}  // namespace velan

#endif  // VELAN_TEXT_KERNELS_UNIT_LOOPS_INTERNAL_H
