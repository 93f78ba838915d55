// Compiled for processors with PCLMULQDQ and SSE4.1.
#ifdef __x86_64__

#include "velan/text/digest/Crc32FoldingInternal.h"

namespace velan {

uint32_t crc32Clmul(uint32_t crc, const uint8_t* bytes, size_t length) {
  return crc32OfBytes<Single>(crc, bytes, length);
}

uint32_t crc32UnitsClmul(uint32_t crc, const unichar* units, size_t length) {
  return crc32OfUnits<Single>(crc, units, length);
}

}  // namespace velan

#endif  // __x86_64__
