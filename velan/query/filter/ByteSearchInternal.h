// The ways to find prints.
#ifndef VELAN_QUERY_FILTER_BYTE_SEARCH_INTERNAL_H
#define VELAN_QUERY_FILTER_BYTE_SEARCH_INTERNAL_H

#include "velan/base/kernels/KernelsInternal.h"
#include "velan/query/filter/ByteSearch.h"

namespace velan {

/// The least position from `from` on where some kind is possible in the `length` bytes; one with less than three bytes
/// behind it when there is none.
using FindPrint = size_t (*)(const uint8_t* bytes, size_t from, size_t length, const PrintTable& table);
const Kernels<FindPrint>& findPrintKernels();

/// The reference, also for kernels' tails.
size_t findPrintScalar(const uint8_t* bytes, size_t from, size_t length, const PrintTable& table);
/// 32 and 64 positions at a time. Only where the CPU has AVX2, and AVX512.
size_t findPrintAvx2(const uint8_t* bytes, size_t from, size_t length, const PrintTable& table);
size_t findPrintAvx512(const uint8_t* bytes, size_t from, size_t length, const PrintTable& table);

}  // namespace velan

#endif  // VELAN_QUERY_FILTER_BYTE_SEARCH_INTERNAL_H
