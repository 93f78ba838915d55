// What the processor can do, asked once.
#ifndef VELAN_BASE_KERNELS_CPU_INTERNAL_H
#define VELAN_BASE_KERNELS_CPU_INTERNAL_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velan {

/// The instruction sets that kernels are written for, to combine with `|`.
enum class CPUFeatures : uint32_t {
  None = 0,
  SSE41 = 1,     // SSE4.1 with SSSE3 and POPCNT
  PCLMUL = 2,    // carry-less multiplication on 128 bits
  SHA = 4,       // SHA-1 rounds
  AVX2 = 8,      // 256-bit integers, with gathers
  VPCLMUL = 16,  // carry-less multiplication on as many bits as AVX2 or AVX512 give
  AVX512 = 32,   // 512-bit integers with masks: F, BW and VL
  NEON = 64,     // 128-bit integers on Arm
  VBMI2 = 128,   // with AVX512: bytes permuted, compressed and spread (VBMI and VBMI2)
};

constexpr CPUFeatures operator|(CPUFeatures a, CPUFeatures b) {
  return static_cast<CPUFeatures>(static_cast<uint32_t>(a) | static_cast<uint32_t>(b));
}
constexpr CPUFeatures operator&(CPUFeatures a, CPUFeatures b) {
  return static_cast<CPUFeatures>(static_cast<uint32_t>(a) & static_cast<uint32_t>(b));
}
/// Whether `features` has all of `needed`.
constexpr bool contains(CPUFeatures features, CPUFeatures needed) { return (features & needed) == needed; }

/// What a level allows: "scalar" nothing; "sse4" SSE41, PCLMUL and SHA; "avx2" also AVX2 and VPCLMUL; "avx512" also
/// AVX512 and VBMI2; "neon" NEON. Nothing for another name.
std::optional<CPUFeatures> featuresOfLevel(std::string_view name);

/// What this processor has, as far as the environment variable `VELAN_CPU` allows it, which names a level. Both are
/// looked at once, in the first call; an unknown level is logged and ignored.
CPUFeatures cpuFeatures();

/// The names of `features`, separated by commas.
std::string featureNames(CPUFeatures features);

}  // namespace velan

#endif  // VELAN_BASE_KERNELS_CPU_INTERNAL_H
