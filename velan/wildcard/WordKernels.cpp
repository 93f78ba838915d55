#include "velan/wildcard/WordLoopsInternal.h"

namespace velan {

const Kernels<WordKernels>& wordKernelList() {
  using enum CPUFeatures;
  static const Kernels<WordKernels> kernels({
      {"scalar", None, WordLoops<Scalar>::kKernels},
#ifdef __x86_64__
      {"sse4", SSE41, kWordKernelsSse4},
      {"avx2", SSE41 | AVX2, kWordKernelsAvx2},
      {"avx512", SSE41 | AVX2 | AVX512 | VBMI2, kWordKernelsAvx512},
#elif defined(__AARCH64EL__)
      {"neon", NEON, kWordKernelsNeon},
#endif
  });
  return kernels;
}

}  // namespace velan
