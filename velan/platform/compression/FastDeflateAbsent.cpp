// A library that was built without ISA-L: zlib deflates.
#include "velan/platform/ServicesInternal.h"
#include "velan/platform/compression/FastDeflateInternal.h"

namespace velan {

Data fastDeflated(std::span<const uint8_t>, bool) { return Data(); }

Service fastDeflateService() { return {"ISA-L", "", "fast compression"}; }

}  // namespace velan
