#ifdef __x86_64__

#include "velan/text/kernels/UnitLoopsInternal.h"

namespace velan {

constinit const UnitKernels kUnitKernelsAvx2 = UnitLoops<Units256>::kKernels;

}  // namespace velan

#endif  // __x86_64__
