#include "tests/Testing.h"
#include "tests/keyed/KeyedSample.h"
#include "velan/keyed/KeyedIndex.h"
#include "velan/keyed/KeyedReading.h"

namespace velan {
namespace {

// Also behind what ends a walk, and in buffers that are cut anywhere.
TEST(KeyedIndex, FindsWhatReadingAllBytesFinds) {
  Chance chance(1);
  for (int round = 0; round < 300; ++round) {
    MutableData data;
    for (size_t left = chance.below(40); left > 0; --left) {
      const auto key = static_cast<uint32_t>(chance.below(round % 2 ? 5 : 1000));
      if (chance.below(4) == 0) {
        addString(data, chance.text(1 + chance.below(20), u"abc"), key);
      } else if (chance.below(4) == 0) {
        addSigned(data, static_cast<int32_t>(chance()), key);
      } else {
        addUnsigned(data, static_cast<uint32_t>(chance()), key);
      }
    }
    std::string bytes(data.view());
    if (round % 3 == 0) bytes.resize(bytes.size() - std::min(bytes.size(), chance.below(40)));
    if (round % 5 == 0 && !bytes.empty()) bytes[chance.below(bytes.size())] ^= 4;
    const Data all = Data::withBytes(bytes.data(), bytes.size());
    const auto index = KeyedIndex::keyedIndex(all);
    for (uint32_t key = 0; key < (round % 2 ? 6 : 1000); ++key) {
      ASSERT_EQ(unsignedForKey(index->bytesFrom(VLun, key), key), unsignedForKey(all, key)) << round;
      ASSERT_EQ(signedForKey(index->bytesFrom(VLsi, key), key), signedForKey(all, key)) << round;
      ASSERT_EQ(containsStringForKey(index->bytesFrom(VLst, key), key), containsStringForKey(all, key)) << round;
      ASSERT_EQ(stringsForKey(index->bytesFrom(VLst, key), key), stringsForKey(all, key)) << round;
    }
  }
}

TEST(KeyedIndex, HoldsNothingForNoBytes) {
  EXPECT_EQ(KeyedIndex::keyedIndex(Data())->bytesFrom(VLun, 0).length(), 0u);
  const MutableData data = everyType();
  EXPECT_EQ(KeyedIndex::keyedIndex(data)->bytesFrom(VLun, 1).length(), 0u);
}

}  // namespace
}  // namespace velan
