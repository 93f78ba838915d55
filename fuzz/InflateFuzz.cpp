// Any bytes as a deflate stream: with and without a limit, and whatever inflates comes back after deflating again.
#include "fuzz/FuzzTarget.h"
#include "velan/storage/Compression.h"

using namespace velan;

FUZZ_TARGET(inflate) {
  constexpr size_t kLimit = 1 << 20;
  const std::string_view bytes = input.bytes;
  const Data limited = dataByInflatingBytes(bytes.data(), bytes.size(), kLimit);
  if (!limited) {
    MutableData partial(Data::withBytes("before"));
    require(!setDataByInflatingBytes(partial, bytes.data(), bytes.size(), kLimit) && partial.length() <= kLimit);
    return;
  }
  MutableData inPlace(input.data());
  require(setDataByInflating(inPlace) && inPlace.data() == limited);
  require(limited.isEmpty() || dataByInflatingData(dataByGzippingData(limited, 1)) == limited);
  require(limited.isEmpty() || dataByInflatingData(limited, limited.length() - 1) != limited);
}
