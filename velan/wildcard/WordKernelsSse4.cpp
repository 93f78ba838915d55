#ifdef __x86_64__

#include "velan/wildcard/WordLoopsInternal.h"

namespace velan {

constinit const WordKernels kWordKernelsSse4 = WordLoops<Units128>::kKernels;

}  // namespace velan

#endif  // __x86_64__
