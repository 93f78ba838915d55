#ifdef __AARCH64EL__

#include "velan/text/kernels/UnitLoopsInternal.h"

namespace velan {

constinit const UnitKernels kUnitKernelsNeon = UnitLoops<UnitsNeon>::kKernels;

}  // namespace velan

#endif  // __AARCH64EL__
