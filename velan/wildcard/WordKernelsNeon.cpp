#ifdef __AARCH64EL__

#include "velan/wildcard/WordLoopsInternal.h"

namespace velan {

constinit const WordKernels kWordKernelsNeon = WordLoops<UnitsNeon>::kKernels;

}  // namespace velan

#endif  // __AARCH64EL__
