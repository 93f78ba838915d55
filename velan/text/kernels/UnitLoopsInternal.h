// The operations of `UnitKernels` over any class of vectors. `Scalar` gives the reference: one position after another.
#ifndef VELAN_TEXT_KERNELS_UNIT_LOOPS_INTERNAL_H
#define VELAN_TEXT_KERNELS_UNIT_LOOPS_INTERNAL_H

#include "velan/text/kernels/ClassLoopsInternal.h"
#include "velan/text/kernels/FilterTestsInternal.h"
#include "velan/text/kernels/MappingLoopsInternal.h"
#include "velan/text/kernels/MemberLoopsInternal.h"
#include "velan/text/kernels/NeedleLoopsInternal.h"
#include "velan/text/kernels/PositionLoopsInternal.h"
#include "velan/text/kernels/RunLoopsInternal.h"
#include "velan/text/kernels/SetLoopsInternal.h"
#include "velan/text/kernels/UnitKernelsInternal.h"

namespace velan {
namespace {

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

  static size_t findASCII(const unichar* units, size_t length, const ASCIISet& ascii) {
    return firstWhere<V>(0, length, ASCIITest{units, ascii}, kAny);
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
    mapEach<V>(units, count, mapping, mapped);
  }

  static size_t mismatch(const unichar* a, const unichar* b, size_t length, const UnitMapping& mapping) {
    if (mapping.table) return mismatchOf<V>(a, b, length, mapping);
    return firstWhere<V>(0, length, MismatchTest<false>{a, b, mapping}, kAny);
  }

  static size_t mismatchOfMembers(const unichar* a, const unichar* b, size_t length, const uint8_t* rep,
                                  const UnitMapping& mapping, MemberHints& hints) {
    TableWindows windows;
    return mismatchOfMembersIn<V>(a, b, length, {rep, mapping, hints, windows});
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

  static NeedlePositions gatherAny(const unichar* text, size_t positions, const NeedleClasses& classes, unichar* found,
                                   size_t most) {
    return gatherAnyBy<V>(text, positions, classes, found, most);
  }

  static constexpr UnitKernels kKernels = {
      .find = find,
      .findLast = findLast,
      .count = count,
      .findMember = findMember,
      .findASCII = findASCII,
      .countMembers = countMembers,
      .copyMembers = copyMembers,
      .markMembers = markMembers,
      .runsFromMarks = runsFromMarks,
      .positions = positions,
      .map = map,
      .mismatch = mismatch,
      .mismatchOfMembers = mismatchOfMembers,
      .findHead = findHead,
      .countHead = countHead,
      .gatherHead = gatherHead,
      .gatherAny = gatherAny,
  };
};

}  // namespace
}  // namespace velan

#endif  // VELAN_TEXT_KERNELS_UNIT_LOOPS_INTERNAL_H
