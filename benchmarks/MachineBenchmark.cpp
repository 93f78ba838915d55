// What this machine can do at most: reading memory and copying it.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <string>

namespace {

#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
#define WIDEST __attribute__((target_clones("avx512f", "avx2", "default")))
#else
#define WIDEST
#endif

// In several registers, so that only loading limits.
WIDEST uint64_t sumOf(const char* at, size_t length) {
  uint64_t sums[32] = {};
  for (; length >= sizeof sums; length -= sizeof sums, at += sizeof sums) {
    uint64_t words[32];
    std::memcpy(words, at, sizeof words);
    for (size_t i = 0; i < 32; ++i) sums[i] += words[i];
  }
  uint64_t sum = 0;
  for (const uint64_t one : sums) sum += one;
  return sum;
}

void BM_Read(benchmark::State& state) {
  const std::string bytes(static_cast<size_t>(state.range(0)), 'x');
  for (auto _ : state) benchmark::DoNotOptimize(sumOf(bytes.data(), bytes.size()));
  state.SetBytesProcessed(state.iterations() * state.range(0));
}

void BM_Copy(benchmark::State& state) {
  const std::string bytes(static_cast<size_t>(state.range(0)), 'x');
  std::string copy(bytes.size(), 'y');
  for (auto _ : state) {
    std::memcpy(copy.data(), bytes.data(), bytes.size());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * state.range(0));
}

#define SIZES Arg(1 << 10)->Arg(64 << 10)->Arg(8 << 20)
BENCHMARK(BM_Read)->SIZES;
BENCHMARK(BM_Copy)->SIZES;

}  // namespace
