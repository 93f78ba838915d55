// A library that was built without libdeflate: zlib inflates.
#include "velan/platform/ServicesInternal.h"
#include "velan/platform/compression/FastDeflateInternal.h"

namespace velan {

Data fastInflated(std::span<const uint8_t>, size_t) { return Data(); }

Service fastInflateService() { return {"libdeflate", "", "fast expansion"}; }

}  // namespace velan
