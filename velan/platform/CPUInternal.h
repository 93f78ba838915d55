// What the processor can do, asked once.
#ifndef VELAN_PLATFORM_CPU_INTERNAL_H
#define VELAN_PLATFORM_CPU_INTERNAL_H

namespace velan {

/// The instruction sets that kernels are written for; all false on other processors.
struct CPUFeatures {
  bool avx2 = false;     // 256-bit integers, with gathers
  bool pclmul = false;   // carry-less multiplication, with SSSE3
  bool vpclmul = false;  // the same on 512 bits, with AVX-512 F, BW and VL
  bool sha = false;      // SHA-1 rounds, with SSE4.1
};

const CPUFeatures& cpuFeatures();

}  // namespace velan

#endif  // VELAN_PLATFORM_CPU_INTERNAL_H
