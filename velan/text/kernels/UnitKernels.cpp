#include "velan/text/kernels/UnitLoopsInternal.h"

namespace velan {

const Kernels<UnitKernels>& unitKernelList() {
  using enum CPUFeatures;
  static const Kernels<UnitKernels> kernels({
      {"scalar", None, UnitLoops<Scalar>::kKernels},
#ifdef __x86_64__
      {"sse4", SSE41, kUnitKernelsSse4},
      {"avx2", SSE41 | AVX2, kUnitKernelsAvx2},
      {"avx512", SSE41 | AVX2 | AVX512 | VBMI2, kUnitKernelsAvx512},
#elif defined(__AARCH64EL__)
      {"neon", NEON, kUnitKernelsNeon},
#endif
  });
  return kernels;
}

}  // namespace velan
