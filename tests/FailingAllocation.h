// Memory that runs out: the n-th allocation of this thread fails. `FailingAllocation` needs its source in the test
// binary.
#ifndef VELAN_TESTS_FAILING_ALLOCATION_H
#define VELAN_TESTS_FAILING_ALLOCATION_H

#include <cstdint>

namespace velan {

/// Whether allocations of this thread count at the moment.
inline thread_local bool countsAllocations = false;

/// While it lives the `at`-th allocation (from 0), and with `onwards` every later one, gets no memory: `operator new`
/// throws, `malloc` and its kin (not under the sanitizers, which need them) return null. At most one at a time.
class FailingAllocation {
 public:
  FailingAllocation(int64_t at, bool onwards);
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;
  /// Whether an allocation has failed since the last one began.
  static bool happened();
  /// How many allocations there have been since then.
  static int64_t count();
};

/// Allocations of the test's own code, which do not count and do not fail.
class SparedAllocations {
 public:
  SparedAllocations() : _before(countsAllocations) { countsAllocations = false; }
  ~SparedAllocations() { countsAllocations = _before; }
  SparedAllocations(const SparedAllocations&) = delete;
  SparedAllocations& operator=(const SparedAllocations&) = delete;

 private:
  bool _before;
};

}  // namespace velan

#endif  // VELAN_TESTS_FAILING_ALLOCATION_H
