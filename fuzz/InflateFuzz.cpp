// Any bytes as a deflate stream: with and without a limit, and whatever inflates comes back after deflating again.
#include <cstdlib>

#include "velan/storage/Compression.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t length) {
  using namespace velan;
  constexpr size_t kLimit = 1 << 20;
  const Data limited = dataByInflatingBytes(bytes, length, kLimit);
  if (!limited) {
    MutableData partial("before", 6);
    if (setDataByInflatingBytes(partial, bytes, length, kLimit) || partial.length() > kLimit) std::abort();
    return 0;
  }
  MutableData inPlace(bytes, length);
  if (!setDataByInflating(inPlace) || inPlace.data() != limited) std::abort();
  if (!limited.isEmpty() && dataByInflatingData(dataByGzippingData(limited, 1)) != limited) std::abort();
  if (!limited.isEmpty() && dataByInflatingData(limited, limited.length() - 1) == limited) std::abort();
  return 0;
}
