// Compiled for processors with VPCLMULQDQ and AVX-512.
#ifdef __x86_64__

#include "velan/text/digest/Crc32FoldingInternal.h"

namespace velan {

uint32_t crc32Avx512(uint32_t crc, const uint8_t* bytes, size_t length) {
  return crc32OfBytes<Fourfold, Double, Single>(crc, bytes, length);
}

uint32_t crc32UnitsAvx512(uint32_t crc, const unichar* units, size_t length) {
  return crc32OfUnits<Fourfold, Double, Single>(crc, units, length);
}

}  // namespace velan

#endif  // __x86_64__
