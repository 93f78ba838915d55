#include <sys/random.h>
#include <unistd.h>

#include <algorithm>

#include "velan/platform/RandomBytesInternal.h"

namespace velan {

bool fillWithRandomBytes(std::span<uint8_t> bytes) {
  constexpr size_t kMostAtOnce = 256;  // the most that `getentropy` gives
  while (!bytes.empty()) {
    const auto part = bytes.first(std::min(bytes.size(), kMostAtOnce));
    if (getentropy(part.data(), part.size()) != 0) return false;
    bytes = bytes.subspan(part.size());
  }
  return true;
}

}  // namespace velan
