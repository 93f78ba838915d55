// Which units of a vector are in a set, whatever the set and the units: a few look-ups in the set's own bitmap, without
// anything set up for it.
#ifndef VELAN_TEXT_KERNELS_SET_LOOPS_INTERNAL_H
#define VELAN_TEXT_KERNELS_SET_LOOPS_INTERNAL_H

#include <cstring>
#include <iterator>
#include <utility>

#include "velan/base/kernels/UnitVectorsInternal.h"
#include "velan/text/kernels/RecentWindowsInternal.h"
#include "velan/text/kernels/UnitKernelsInternal.h"

namespace velan {
namespace {

inline bool isInSet(const uint8_t* rep, unichar c) { return (rep[c >> 3] >> (c & 7) & 1) != 0; }

/// Whether `c` lies in a row of units that are all in the set, or all not, such as the ideographs among the letters,
/// and that is longer than the one known.
inline bool findsRunAround(unichar c, const uint8_t* rep, SetHints& hints) {
  constexpr size_t kWord = 64;  // units
  const auto isUniform = [rep, wanted = isInSet(rep, c) ? ~uint64_t{0} : 0](size_t word) {
    uint64_t bits;
    std::memcpy(&bits, rep + word * sizeof bits, sizeof bits);
    return bits == wanted;
  };
  size_t first = c / kWord, last = first;
  if (hints.runSearches == 0 || !isUniform(first)) return false;
  --hints.runSearches;
  while (first > 0 && isUniform(first - 1)) --first;
  while (last + 1 < VelanTableLength / kWord && isUniform(last + 1)) ++last;
  const auto span = static_cast<unichar>((last - first) * kWord + kWord - 1);
  if (span <= hints.runSpan) return false;
  hints.runLow = static_cast<unichar>(first * kWord);
  hints.runSpan = span;
  hints.runIsInSet = isInSet(rep, c);
  return true;
}

template <typename V>
constexpr auto kWindowMask = static_cast<unichar>(-V::kWindow);

/// What has been looked up of some units.
template <typename V>
struct Members {
  /// Of the window around `near`, which hints for other vectors may have from a smaller one.
  void addWindow(unichar near, const uint8_t* rep) {
    const auto base = static_cast<unichar>(near & kWindowMask<V>);
    const auto within = units.differing(V::of(kWindowMask<V>), V::of(base)) == V::of(0);
    known = V::either(known, within);
    members = V::either(members, V::both(within, units.inBitmap(rep + (base >> 3))));
  }
  void addRun(const SetHints& hints) {
    const auto within = units - V::of(hints.runLow) <= V::of(hints.runSpan);
    known = V::either(known, within);
    if (hints.runIsInSet) members = V::either(members, within);
  }
  uint64_t others() const { return V::bits(V::inverse(known)); }

  V units;
  typename V::Matches members, known;
};

/// The units in the first window, in the latest and in the run, which are mostly all.
template <typename V>
Members<V> membersNearby(const unichar* units, const uint8_t* rep, const SetHints& hints) {
  const V vector = V::load(units);
  const auto within = vector <= V::of(V::kWindow - 1);
  Members<V> found = {vector, V::both(vector.inBitmap(rep), within), within};
  found.addWindow(hints.windows[0], rep);
  if (hints.runSpan != 0) found.addRun(hints);
  return found;
}

/// Looks up units wherever they are.
template <typename V>
__attribute__((noinline)) typename V::Matches membersAnywhere(const unichar* units, const uint8_t* rep,
                                                              SetHints& hints) {
  Members<V> found = membersNearby<V>(units, rep, hints);
  found.addWindow(hints.windows[1], rep);
  found.addWindow(hints.windows[2], rep);
  if (found.others() == 0) addRecent(hints.windows[2], hints.windows);
  constexpr unsigned kMostSteps = 3;
  uint64_t others = 0;
  for (unsigned k = 0; (others = found.others()) != 0 && k < kMostSteps; ++k) {
    const unichar other = units[static_cast<unsigned>(__builtin_ctzll(others)) / V::kBits];
    if (findsRunAround(other, rep, hints)) {
      found.addRun(hints);
    } else {
      addRecent(static_cast<unichar>(other & kWindowMask<V>), hints.windows);
      found.addWindow(hints.windows[0], rep);
    }
  }
  if (others == 0) return found.members;
  unichar isMember[V::kUnits] = {};
  while (others != 0) {
    const auto i = static_cast<unsigned>(__builtin_ctzll(others)) / V::kBits;
    isMember[i] = isInSet(rep, units[i]);
    others &= ~(((uint64_t{1} << V::kBits) - 1) << (i * V::kBits));
  }
  return V::either(found.members, V::load(isMember) == V::of(1));
}

template <typename V>
typename V::Matches membersAmong(const unichar* units, const uint8_t* rep, SetHints& hints) {
  Members<V> found = membersNearby<V>(units, rep, hints);
  if (found.others() == 0) return found.members;
  found.addWindow(hints.windows[1], rep);
  return found.others() == 0 ? found.members : membersAnywhere<V>(units, rep, hints);
}

template <typename V>
typename V::Matches membersAt(const unichar* units, const uint8_t* rep, SetHints& hints) {
  const V vector = V::load(units);
  const auto beyond = V::inverse(vector <= V::of(V::kWindow - 1));
  return V::bits(beyond) == 0 ? vector.inBitmap(rep) : membersAmong<V>(units, rep, hints);
}

/// Writes the members among `units` to `members`, which has room for a vector more, and returns how many there are.
template <typename V>
size_t copyMembersOf(const unichar* units, size_t length, const uint8_t* rep, SetHints& hints, unichar* members) {
  size_t i = 0, count = 0;
  if constexpr (V::kUnits > 1) {
    for (; length - i >= V::kUnits; i += V::kUnits) {
      const auto found = membersAt<V>(units + i, rep, hints);
      count += V::load(units + i).storeCompressed(found, members + count);
    }
    return count + copyMembersOf<typename V::Narrower>(units + i, length - i, rep, hints, members + count);
  } else {
    for (; i < length; ++i) {
      members[count] = units[i];
      count += isInSet(rep, units[i]);
    }
    return count;
  }
}

/// Writes to `marks` a byte a unit: 0xFF for members and 0 for others.
template <typename V>
void markMembersOf(const unichar* units, size_t length, const uint8_t* rep, SetHints& hints, uint8_t* marks) {
  if constexpr (V::kUnits > 1) {
    constexpr size_t kStep = 2 * V::kUnits;
    if (length < V::kUnits) return markMembersOf<typename V::Narrower>(units, length, rep, hints, marks);
    size_t i = 0;
    for (; length - i >= kStep; i += kStep) {
      const V low = V::load(units + i), high = V::load(units + i + V::kUnits);
      const auto beyond = V::inverse(V::unionOf(low, low, high) <= V::of(V::kWindow - 1));
      if (V::bits(beyond) == 0) {
        V::storeInBitmap(low, high, rep, marks + i);
        continue;
      }
      V::storeAsBytes(membersAmong<V>(units + i, rep, hints), marks + i);
      V::storeAsBytes(membersAmong<V>(units + i + V::kUnits, rep, hints), marks + i + V::kUnits);
    }
    const auto mark = [&](size_t at) { V::storeAsBytes(membersAt<V>(units + at, rep, hints), marks + at); };
    if (length - i > V::kUnits) mark(i);
    if (length > i) mark(length - V::kUnits);
  } else {
    for (size_t i = 0; i < length; ++i) marks[i] = isInSet(rep, units[i]) ? 0xFF : 0;
  }
}

/// Units that are members, or that are not.
template <bool wanted>
struct MemberTest {
  const unichar* units;
  const uint8_t* rep;
  SetHints& hints;

  const unichar* address(size_t i) const { return units + i; }
  bool one(size_t i) const { return isInSet(rep, units[i]) == wanted; }
  template <typename V>
  typename V::Matches block(size_t i) const {
    const auto members = membersAt<V>(units + i, rep, hints);
    return wanted ? members : V::inverse(members);
  }
};

/// Units that are in a set of ASCII.
struct ASCIITest {
  const unichar* units;
  const ASCIISet& ascii;

  const unichar* address(size_t i) const { return units + i; }
  bool one(size_t i) const { return units[i] < 0x80 && isInSet(ascii.data(), units[i]); }
  template <typename V>
  typename V::Matches block(size_t i) const {
    static_assert(V::kWindow / 8 <= std::tuple_size<ASCIISet>());
    const V vector = V::load(units + i);
    return V::both(vector <= V::of(0x7F), vector.inBitmap(ascii.data()));
  }
};

}  // namespace
}  // namespace velan

#endif  // VELAN_TEXT_KERNELS_SET_LOOPS_INTERNAL_H
