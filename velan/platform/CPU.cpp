#include "velan/platform/CPUInternal.h"

#ifdef __x86_64__
#include <cpuid.h>
#endif

namespace velan {
namespace {

CPUFeatures detect() {
  CPUFeatures features;
#ifdef __x86_64__
  __builtin_cpu_init();
  features.avx2 = __builtin_cpu_supports("avx2");
  features.pclmul = __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("ssse3");
  features.vpclmul = features.pclmul && __builtin_cpu_supports("vpclmulqdq") && __builtin_cpu_supports("avx512f") &&
                     __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl");
  unsigned a = 0, b = 0, c = 0, d = 0;  // compilers of 2022 do not know the name "sha"
  constexpr unsigned kSha = 1u << 29;
  features.sha = __builtin_cpu_supports("sse4.1") && __get_cpuid_count(7, 0, &a, &b, &c, &d) && (b & kSha);
#endif
  return features;
}

}  // namespace

const CPUFeatures& cpuFeatures() {
  static const CPUFeatures features = detect();
  return features;
}

}  // namespace velan
