// Every way to find a record equals the reference: records of both kinds in every mixture, what ends a walk, and
// buffers of exactly the size, cut anywhere.
#include "tests/Testing.h"
#include "velan/keyed/KeyedWalkInternal.h"

namespace velan::keyed {
namespace {

void appendRecord(std::string& bytes, uint32_t marker, uint32_t key, uint32_t length) {
  char header[kKeyedHeaderSize] = {};
  storeLittleEndian(header, identity(marker, key));
  if (isVariableSize(marker)) storeBigEndian(header + 8, length);
  bytes.append(header, sizeof header);
  if (isVariableSize(marker)) bytes.append(length, 'V');
}

TEST(KeyedFind, EveryKernelEqualsTheReference) {
  constexpr uint32_t kMarkers[] = {VLbl, VLun, VLsi, VLul, VLsl, VLfl, VLdb, VLda, VLst, VLdt, VLpl};
  Chance chance(1);
  size_t finds = 0;
  for (int round = 0; round < 4000; ++round) {
    std::string text;
    const size_t kinds = chance.below(4) ? 8 : std::size(kMarkers);
    for (size_t left = chance.below(60); left > 0; --left) {
      const uint32_t strange = chance.below(2) ? 0 : VLbl ^ 1u << chance.below(32);
      const uint32_t marker = chance.below(100) ? kMarkers[chance.below(kinds)] : strange;
      appendRecord(text, marker, static_cast<uint32_t>(chance.below(9)), static_cast<uint32_t>(chance.below(20)));
    }
    text.resize(text.size() - std::min(text.size(), chance.below(3) ? 0 : chance.below(30)));
    const auto copy = exactCopy<char>(text);
    const auto* const exact = reinterpret_cast<const uint8_t*>(copy.get());
    const uint64_t sought = identity(kMarkers[chance.below(kinds)], static_cast<uint32_t>(chance.below(9)));
    RecordWalk walk({exact, text.size()});
    while (walk.atRecord() && walk.record().identity() != sought) walk.advance();
    const size_t expected = walk.atRecord() ? static_cast<size_t>(walk.record().start() - exact) : kNotFound;
    finds += expected != kNotFound;
    for (const auto& kernel : findIdentityKernels()) {
      ASSERT_EQ(kernel.run(exact, text.size(), sought), expected) << kernel.name << ' ' << round;
    }
  }
  EXPECT_GT(finds, 500u);
}

}  // namespace
}  // namespace velan::keyed
