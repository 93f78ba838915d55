#ifdef __x86_64__

#include "velan/wildcard/WordLoopsInternal.h"

namespace velan {

constinit const WordKernels kWordKernelsAvx2 = WordLoops<Units256>::kKernels;

}  // namespace velan

#endif  // __x86_64__
