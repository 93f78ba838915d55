// An operation that is written several times, once for each instruction set that pays, and the choice among them.
#ifndef VELAN_BASE_KERNELS_KERNELS_INTERNAL_H
#define VELAN_BASE_KERNELS_KERNELS_INTERNAL_H

#include <cstddef>

#include "velan/base/kernels/CPUInternal.h"

namespace velan {

/// One way to do the operation. `Run` is a pointer to a function, or a struct of several that belong together.
template <typename Run>
struct Kernel {
  const char* name;
  CPUFeatures needs;
  Run run;
};

/// The kernels of one operation that may run here: the reference first, the one in use last. Tests and benchmarks walk
/// this list, so that a kernel added to it is held to the reference and measured. Nothing is allocated.
template <typename Run>
class Kernels {
 public:
  /// From all kernels: the reference first, each of the others behind those that it is faster than.
  template <size_t count>
  explicit Kernels(const Kernel<Run> (&all)[count]) {
    static_assert(count <= kMost);
    for (const Kernel<Run>& kernel : all) {
      if (contains(cpuFeatures(), kernel.needs)) _supported[_count++] = kernel;
    }
  }

  const Kernel<Run>* begin() const { return _supported; }
  const Kernel<Run>* end() const { return _supported + _count; }
  const Run& reference() const { return _supported[0].run; }
  const Run& best() const { return _supported[_count - 1].run; }

 private:
  static constexpr size_t kMost = 8;

  Kernel<Run> _supported[kMost] = {};
  size_t _count = 0;
};

}  // namespace velan

#endif  // VELAN_BASE_KERNELS_KERNELS_INTERNAL_H
