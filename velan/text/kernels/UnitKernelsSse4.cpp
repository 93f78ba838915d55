#ifdef __x86_64__

#include "velan/text/kernels/UnitLoopsInternal.h"

namespace velan {

constinit const UnitKernels kUnitKernelsSse4 = UnitLoops<Units128>::kKernels;

}  // namespace velan

#endif  // __x86_64__
