#include <cstdlib>

#include "velan/base/Log.h"
#include "velan/base/kernels/CPUInternal.h"

#ifdef __x86_64__
#include <cpuid.h>
#endif

namespace velan {
namespace {

using enum CPUFeatures;

constexpr CPUFeatures kSSE4 = SSE41 | PCLMUL | SHA;
constexpr CPUFeatures kAVX2 = kSSE4 | AVX2 | VPCLMUL;

constexpr struct {
  const char* name;
  CPUFeatures features;
} kLevels[] = {
    {"scalar", None}, {"sse4", kSSE4}, {"avx2", kAVX2}, {"avx512", kAVX2 | AVX512 | VBMI2}, {"neon", NEON},
};

constexpr struct {
  const char* name;
  CPUFeatures feature;
} kNames[] = {
    {"SSE4.1", SSE41},    {"PCLMUL", PCLMUL},  {"SHA", SHA},     {"AVX2", AVX2},
    {"VPCLMUL", VPCLMUL}, {"AVX-512", AVX512}, {"VBMI2", VBMI2}, {"NEON", NEON},
};

#ifdef __x86_64__
// Compilers of 2022 do not know the name "sha".
bool hasSHA() {
  unsigned a = 0, b = 0, c = 0, d = 0;
  return __get_cpuid_count(7, 0, &a, &b, &c, &d) && (b & 1u << 29);
}

CPUFeatures detected() {
  __builtin_cpu_init();
  CPUFeatures features = None;
  const auto add = [&](CPUFeatures feature, bool present) { features = present ? features | feature : features; };
  add(SSE41, __builtin_cpu_supports("sse4.1") && __builtin_cpu_supports("ssse3") && __builtin_cpu_supports("popcnt"));
  add(PCLMUL, __builtin_cpu_supports("pclmul"));
  add(SHA, hasSHA());
  add(AVX2, __builtin_cpu_supports("avx2"));
  add(VPCLMUL, __builtin_cpu_supports("vpclmulqdq"));
  add(AVX512,
      __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl"));
  add(VBMI2, __builtin_cpu_supports("avx512vbmi") && __builtin_cpu_supports("avx512vbmi2"));
  return features;
}
#elif defined(__aarch64__)
CPUFeatures detected() { return NEON; }  // every such processor has it
#else
CPUFeatures detected() { return None; }
#endif

CPUFeatures allowed(const char* level) {
  if (!level || !*level) return detected();
  if (const auto features = featuresOfLevel(level)) return detected() & *features;
  logFormat("WARNING: Unknown level in VELAN_CPU: %s", level);
  return detected();
}

}  // namespace

std::optional<CPUFeatures> featuresOfLevel(std::string_view name) {
  for (const auto& level : kLevels) {
    if (name == level.name) return level.features;
  }
  return std::nullopt;
}

CPUFeatures cpuFeatures() {
  static const CPUFeatures features = allowed(std::getenv("VELAN_CPU"));
  return features;
}

std::string featureNames(CPUFeatures features) {
  std::string names;
  for (const auto& [name, feature] : kNames) {
    if (contains(features, feature)) names.append(names.empty() ? "" : ", ").append(name);
  }
  return names;
}

}  // namespace velan
