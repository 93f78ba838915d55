#ifdef __x86_64__

#include "velan/text/kernels/UnitLoopsInternal.h"

namespace velan {

constinit const UnitKernels kUnitKernelsAvx512 = UnitLoops<Units512>::kKernels;

}  // namespace velan

#endif  // __x86_64__
