#include "velan/query/filter/ByteSearch.h"

#include <algorithm>

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

size_t findPrint(std::string_view bytes, size_t from, const PrintTable& table) {
  static const auto find = findPrintKernels().best();
  return find(reinterpret_cast<const uint8_t*>(bytes.data()), std::min(from, bytes.size()), bytes.size(), table);
}

}  // namespace velan
