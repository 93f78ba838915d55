#ifdef __aarch64__

#include "velan/text/kernels/UnitLoopsInternal.h"

namespace velan {

constinit const UnitKernels kUnitKernelsNeon = UnitLoops<UnitsNeon>::kKernels;

}  // namespace velan

#endif  // __aarch64__
