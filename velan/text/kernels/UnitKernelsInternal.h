// What is done to runs of code units in vectors: finding, counting. One list of kernels for all of it; each operation
// is a template in a header of loops beside this one, and each instruction set a source of some lines.
#ifndef VELAN_TEXT_KERNELS_UNIT_KERNELS_INTERNAL_H
#define VELAN_TEXT_KERNELS_UNIT_KERNELS_INTERNAL_H

#include <array>

#include "velan/base/CTypes.h"
#include "velan/base/kernels/KernelsInternal.h"

namespace velan {

/// Some units, as up to four ranges: cheap to compare with a vector of units, and to set up.
struct UnitFilter {
  static constexpr size_t kMost = 4;

  /// How many are looked at: one or two units, which are the first, or all ranges.
  enum class Kind : uint8_t { One, Two, Ranges };

  UnitFilter() = default;
  explicit UnitFilter(unichar c) : UnitFilter(c, c) { kind = Kind::One; }
  UnitFilter(unichar a, unichar b) : low{a, b, b, b}, span{}, kind(Kind::Two) {}

  unichar low[kMost];
  unichar span[kMost];  // the last unit of the range less the first
  Kind kind;
};

/// The beginning of a needle, ready for the kernels: three of its units are looked for in vectors, the rest is compared
/// where all of them are found.
struct NeedleHead {
  static constexpr size_t kMost = 64;
  static constexpr size_t kProbes = 3;
  static constexpr size_t kReach = 32;  // of the probes: the second lies at most so much behind the first

  /// What tells where the probes are: masks, filters where too many units pass those, or a table that is not known.
  /// `ProbesOnly` is for gathering: masks tell, and `units` are not set, as all there is to know are the probes.
  enum class Telling : uint8_t { Mask, Filter, Table, ProbesOnly };

  /// Units that a table may turn into the one at `position`.
  struct Probe {
    size_t position;
    unichar mask, bits;  // `(unit & mask) == bits` for those units; where filters tell, for those of ASCII
    UnitFilter filter;   // where filters tell
  };

  unichar units[kMost];
  size_t length;         // at least 1
  const unichar* table;  // what units of text go through before they are compared, or null
  Telling telling;
  bool tellsAll;          // where the probes are, there is the head, and no two of them overlap
  Probe probes[kProbes];  // the first two are rare, the second is not before the first; some may be the same
};

/// Some needles, of each of which three units in a row are looked for: all needles at once, by the low bits of units.
struct NeedleClasses {
  static constexpr size_t kMost = 8;
  static constexpr size_t kProbes = 3;
  static constexpr unichar kLowBits = 0x7F;

  /// Has the needle with this number look for `c` at a probe. All that it looks for are to be added.
  void add(size_t probe, unichar c, unsigned needle) {
    const auto bit = static_cast<uint8_t>(1u << needle);
    byLowBits[probe][c & kLowBits] |= bit;
    byNibble[probe][c & 0x0F] |= bit;
  }
  /// Those needles, as bits, whose probes may be the units at `at`.
  unsigned at(const unichar* at) const {
    return byLowBits[0][at[0] & kLowBits] & byLowBits[1][at[1] & kLowBits] & byLowBits[2][at[2] & kLowBits];
  }

  uint8_t byLowBits[kProbes][kLowBits + 1] = {};
  uint8_t byNibble[kProbes][16] = {};
};

struct NeedlePosition {
  size_t position;
  bool gaveUp;  // after too many near matches, all of them before `position`
};

struct NeedleCount {
  size_t count;
  NeedlePosition end;  // where to go on after giving up
};

struct NeedlePositions {
  size_t count;
  size_t end;  // all before were looked at
};

/// A conversion table, and what it does to ASCII if that is known: 26 letters from `firstLetter` on become
/// `c - difference`, all others stay. Without a table that is all it does.
struct UnitMapping {
  static constexpr size_t kWindow = 0x80;
  /// A bit for each `kWindow` units.
  using Windows = std::array<uint8_t, 2 * VelanTableLength / kWindow / 8>;  // as long as what a vector looks up at once

  const unichar* table;
  bool knowsASCII;
  unichar firstLetter;
  unichar difference;
  const uint8_t* settled;  // `Windows` whose units stay, and the first one if `knowsASCII`
};

/// What a text has shown of itself, so that its next units are looked up at once.
struct SetHints {
  unichar windows[3] = {0x400, 0x2000, 0x3000};  // where look-ups were, the latest first
  unichar runLow = 0, runSpan = 0;               // units that are all in the set, or all not
  bool runIsInSet = false;
  uint8_t runSearches = 8;  // that are still worth it
};

/// The same of two texts that are compared by what they have of a set.
struct MemberHints {
  SetHints set;
  unichar windows[2] = {};     // whose units are in the set together with what they become; 0 for none
  uint8_t windowSearches = 8;  // that are still worth it
};

/// The bitmap of a set of ASCII, and of no other of the first units: as long as a vector looks up at once.
using ASCIISet = std::array<uint8_t, 0x80>;

/// Lengths and positions are in units, and what is not found is at `length`.
struct UnitKernels {
  static constexpr size_t kCopySlack = 32;
  static constexpr uint8_t kMarked = 1, kRunBegins = 2, kRunEnds = 4;
  static constexpr size_t kGatherSlack = 5 * kCopySlack;

  size_t (*find)(const unichar* units, size_t length, const UnitFilter& filter);
  size_t (*findLast)(const unichar* units, size_t length, const UnitFilter& filter);
  size_t (*count)(const unichar* units, size_t length, const UnitFilter& filter);
  /// The first unit that is, or is not, in the set `rep`.
  size_t (*findMember)(const unichar* units, size_t length, const uint8_t* rep, bool isMember);
  size_t (*findASCII)(const unichar* units, size_t length, const ASCIISet& ascii);
  size_t (*countMembers)(const unichar* units, size_t length, const uint8_t* rep);
  /// Writes the members to `members`, which has room for `kCopySlack` units more, and returns how many there are.
  /// `hints` are those of the part of the text before.
  size_t (*copyMembers)(const unichar* units, size_t length, const uint8_t* rep, SetHints& hints, unichar* members);
  /// Writes to `marks` a byte a unit: 0xFF for members and 0 for others. `hints` as above.
  void (*markMembers)(const unichar* units, size_t length, const uint8_t* rep, SetHints& hints, uint8_t* marks);
  /// Turns such marks into types: `kMarked`, or for the others `kRunBegins` and `kRunEnds` where the unit before, or
  /// behind, is marked. `marks` has `length` + 2 entries, those of the unit before and of the unit behind as well.
  /// Returns how many runs begin.
  size_t (*runsFromMarks)(const uint8_t* marks, size_t length, uint8_t* types);
  /// Writes to `positions`, which has room for `kCopySlack` more, where in at most 65,536 types the bit `type` is set,
  /// and returns how many there are.
  size_t (*positions)(const uint8_t* types, size_t length, uint8_t type, unichar* positions);
  /// Writes `count` units through `mapping`, which has a table, to `mapped`, which may be `units`.
  void (*map)(const unichar* units, size_t count, const UnitMapping& mapping, unichar* mapped);
  /// The first position where the units of `a` and `b` differ through `mapping`.
  size_t (*mismatch)(const unichar* a, const unichar* b, size_t length, const UnitMapping& mapping);
  /// The same of the members of the set `rep`: where one unit is a member and the other is not, or both are and differ.
  /// `hints` are those of the parts of both texts before.
  size_t (*mismatchOfMembers)(const unichar* a, const unichar* b, size_t length, const uint8_t* rep,
                              const UnitMapping& mapping, MemberHints& hints);
  /// The least of `positions` where `head` lies in `text`, which has `positions + head.length - 1` units, or
  /// `positions`.
  NeedlePosition (*findHead)(const unichar* text, size_t positions, const NeedleHead& head);
  /// How often `head` lies in `text`, each time behind the time before.
  NeedleCount (*countHead)(const unichar* text, size_t positions, const NeedleHead& head);
  /// Writes the first of the positions, which are at most 65,536, where `head` lies in `text` to `found`, which has
  /// room for `kGatherSlack` more than `most`: all of them or at least `most`. Never gives up.
  NeedlePositions (*gatherHead)(const unichar* text, size_t positions, const NeedleHead& head, unichar* found,
                                size_t most);
  /// The same of positions where units may be the probes of any needle; `text` has `positions + 2` units.
  NeedlePositions (*gatherAny)(const unichar* text, size_t positions, const NeedleClasses& classes, unichar* found,
                               size_t most);
};

const Kernels<UnitKernels>& unitKernelList();

/// The best of them here.
inline const UnitKernels& unitKernels() {
  static const UnitKernels best = unitKernelList().best();
  return best;
}

#ifdef __x86_64__
extern const UnitKernels kUnitKernelsSse4;
extern const UnitKernels kUnitKernelsAvx2;
extern const UnitKernels kUnitKernelsAvx512;
#elif defined(__AARCH64EL__)
extern const UnitKernels kUnitKernelsNeon;
#endif

}  // namespace velan

#endif  // VELAN_TEXT_KERNELS_UNIT_KERNELS_INTERNAL_H
