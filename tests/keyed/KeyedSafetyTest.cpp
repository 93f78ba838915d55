// Buffers that are damaged in every small way go through every operation; the address sanitizer watches.
#include "tests/Testing.h"
#include "tests/keyed/EveryOperation.h"
#include "tests/keyed/KeyedSample.h"

namespace velan {
namespace {

TEST(KeyedSafety, EveryCombinationOfExtremeLengths) {
  const std::string lengths[] = {"\0\0\0\0"s, "\0\0\0\1"s, "\x80\0\0\0"s, "\xFF\xFF\xFF\xFF"};
  const char* headers[] = {"VLst\0\0\0\x09", "VLdt\0\0\0\x0A", "VLpl\0\0\0\x0B", "VLst_key", "VLst_val", "VLdt_val"};
  for (const char* first : headers) {
    for (const char* second : headers) {
      for (size_t i = 0; i < 64; ++i) {
        const std::string payloads[] = {"", "k", "VLst"};
        std::string bytes = std::string(first, 8) + lengths[i % 4] + "\0\0\0\0"s + payloads[i / 16 % 3];
        bytes += std::string(second, 8) + lengths[i / 4 % 4] + "\0\0\0\0"s + payloads[i / 16 % 3];
        EXPECT_EQ(applyEveryOperation(bytes), isTiledByRecords(bytes));
      }
    }
  }
}

}  // namespace
}  // namespace velan
