#include "velan/query/filter/ByteSearchInternal.h"

namespace velan {

void PrintTable::add(const BytePrint& print, unsigned kind) {
  const auto bit = static_cast<uint8_t>(1u << kind);
  for (size_t i = 0; i < kPrintLength; ++i) {
    for (size_t byte = 0; byte < 256; ++byte) {
      if (!print[i][byte]) continue;
      low[i][byte & 15] |= bit;
      high[i][byte >> 4] |= bit;
    }
  }
}

size_t findPrintScalar(const uint8_t* bytes, size_t from, size_t length, const PrintTable& table) {
  while (from + kPrintLength <= length && table.kindsAt(bytes + from) == 0) ++from;
  return from;
}

const Kernels<FindPrint>& findPrintKernels() {
  using enum CPUFeatures;
  static const Kernels<FindPrint> kernels({
      {"scalar", None, findPrintScalar},
#ifdef __x86_64__
      {"avx2", AVX2, findPrintAvx2},
      {"avx512", AVX512, findPrintAvx512},
#endif
  });
  return kernels;
}

}  // namespace velan
