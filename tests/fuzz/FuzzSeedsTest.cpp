#include "fuzz/FuzzTarget.h"
#include "tests/Testing.h"
#include "tests/platform/files/TemporaryFolder.h"

namespace velan {
namespace {

// Each seed as it is, cut at every length, and with each byte changed in one bit, to any byte, and removed.
std::vector<std::string> aroundSeed(const std::string& seed, Chance& chance) {
  std::vector<std::string> around = {seed};
  for (size_t i = 0; i < seed.size(); ++i) {
    around.push_back(seed.substr(0, i));
    around.push_back(seed.substr(0, i) + seed.substr(i + 1));
    for (const char byte :
         {static_cast<char>(seed[i] ^ (1 << chance.below(8))), static_cast<char>(chance.below(256))}) {
      around.push_back(seed);
      around.back()[i] = byte;
    }
  }
  for (int first = 0; first < 256; ++first) around.push_back(static_cast<char>(first) + seed);  // choices of the target
  return around;
}

class FuzzSeeds : public testing::TestWithParam<FuzzTarget> {};

TEST_P(FuzzSeeds, HoldAround) {
  const CapturedLog log;
  Chance chance(1);
  size_t seeds = 0;
  for (const auto& entry : std::filesystem::directory_iterator(VELAN_SEEDS + std::string("/") + GetParam().name)) {
    for (const std::string& bytes : aroundSeed(contentsOf(entry.path()), chance)) {
      const auto exact = exactCopy<char>(bytes);
      ASSERT_NO_THROW(GetParam().run({{exact.get(), bytes.size()}}))
          << entry.path() << ": " << testing::PrintToString(bytes);
    }
    ++seeds;
  }
  EXPECT_GT(seeds, 0u);
}

INSTANTIATE_TEST_SUITE_P(Targets, FuzzSeeds, testing::ValuesIn(fuzzTargets()),
                         [](const auto& target) { return std::string(target.param.name); });

}  // namespace
}  // namespace velan
