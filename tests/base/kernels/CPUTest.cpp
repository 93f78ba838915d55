// The levels of instructions, and the lists of kernels that are made by them. Runs at every level.
#include <cstdlib>

#include "tests/Testing.h"
#include "velan/base/kernels/KernelsInternal.h"

namespace velan {
namespace {

using enum CPUFeatures;

TEST(CPU, LevelsIncludeTheLowerOnesAndLimitWhatIsUsed) {
  CPUFeatures lower = None;
  for (const char* level : {"scalar", "sse4", "avx2", "avx512"}) {
    const auto features = featuresOfLevel(level);
    ASSERT_TRUE(features) << level;
    EXPECT_TRUE(contains(*features, lower) && (level[0] == 's' || *features != lower)) << level;
    lower = *features;
  }
  EXPECT_EQ(featuresOfLevel("scalar"), None);
  EXPECT_EQ(featuresOfLevel("neon"), NEON);
  for (const char* unknown : {"", "AVX2", "sse", "avx"}) EXPECT_FALSE(featuresOfLevel(unknown)) << unknown;

  const char* const forced = std::getenv("VELAN_CPU");
  EXPECT_TRUE(!forced || contains(featuresOfLevel(forced).value(), cpuFeatures())) << forced;
}

TEST(Kernels, KeepTheOrderAndLeaveOutWhatThisProcessorLacks) {
  const auto lacking = static_cast<CPUFeatures>(1u << 31);
  const Kernels<int> kernels(
      {{"reference", None, 1}, {"lacking", lacking, 2}, {"plain", None, 3}, {"both", lacking | SSE41, 4}});
  EXPECT_EQ(kernels.reference(), 1);
  EXPECT_EQ(kernels.best(), 3);
  EXPECT_EQ(kernels.end() - kernels.begin(), 2);
}

}  // namespace
}  // namespace velan
