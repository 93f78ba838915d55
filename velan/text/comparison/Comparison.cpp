#include "velan/text/comparison/Comparison.h"

#include <algorithm>
#include <cstring>

#include "velan/text/ConversionTables.h"
#include "velan/text/ConversionTablesInternal.h"
#include "velan/text/search/UnitBlocksInternal.h"

namespace velan {
namespace {

int64_t lengthDifference(size_t a, size_t b) { return static_cast<int64_t>(a - b); }

// The C library's `memcmp` is the fastest test of long texts for equality, but does not tell where they differ: so it
// skips stretches that do not.
size_t equalStretches(const unichar* a, const unichar* b, size_t length) {
  constexpr size_t kStretch = 512;
  size_t i = 0;
  while (length - i >= kStretch && std::memcmp(a + i, b + i, kStretch * sizeof(unichar)) == 0) i += kStretch;
  return i;
}

int64_t compareUnits(const unichar* a, size_t lengthA, const unichar* b, size_t lengthB, const unichar* table) {
  if (!a) lengthA = 0;
  if (!b) lengthB = 0;
  const size_t shorter = std::min(lengthA, lengthB);
  size_t i = table ? 0 : equalStretches(a, b, shorter);
  i += unitKernels().mismatch(a + i, b + i, shorter - i, mappingOf(table));
  if (i == shorter) return lengthDifference(lengthA, lengthB);
  return table ? int64_t{table[a[i]]} - int64_t{table[b[i]]} : int64_t{a[i]} - int64_t{b[i]};
}

template <typename A, typename B, typename MapA, typename MapB>
int64_t compareMixed(const A* a, size_t lengthA, const B* b, size_t lengthB, MapA mapA, MapB mapB) {
  if (!a) lengthA = 0;
  if (!b) lengthB = 0;
  const size_t shorter = std::min(lengthA, lengthB);
  for (size_t i = 0; i < shorter; ++i) {
    if (mapA(a[i]) != mapB(b[i])) return int64_t{mapA(a[i])} - int64_t{mapB(b[i])};
  }
  return lengthDifference(lengthA, lengthB);
}

constexpr auto identity = [](auto unit) { return unit; };

}  // namespace

int64_t fastCompareUnichars(const unichar* a, size_t lengthA, const unichar* b, size_t lengthB) {
  return compareUnits(a, lengthA, b, lengthB, nullptr);
}

int64_t fastCompareUnicharsUsingConversionTable(const unichar* a, size_t lengthA, const unichar* b, size_t lengthB,
                                                const unichar* table) {
  return compareUnits(a, lengthA, b, lengthB, table);
}

int64_t fastCompareUnicharsWithChars(const unichar* a, size_t lengthA, const char* bytes, size_t lengthB) {
  return compareMixed(a, lengthA, bytes, lengthB, identity, widened);
}

int64_t fastCompareChars(const char* bytesA, size_t lengthA, const char* bytesB, size_t lengthB) {
  const auto number = [](char byte) { return static_cast<signed char>(byte); };
  return compareMixed(bytesA, lengthA, bytesB, lengthB, number, number);
}

int64_t fastCaseInsensitiveCompareUnichars(const unichar* a, size_t lengthA, const unichar* b, size_t lengthB) {
  return compareUnits(a, lengthA, b, lengthB, initUpperCharsTable());
}

int64_t fastCaseInsensitiveCompareUnicharsWithChars(const unichar* a, size_t lengthA, const char* bytes,
                                                    size_t lengthB) {
  const unichar* upper = initUpperCharsTable();
  return compareMixed(
      a, lengthA, bytes, lengthB, [upper](unichar c) { return upper[c]; },
      [upper](char byte) { return upper[widened(byte)]; });
}

int64_t fastCaseInsensitiveCompareChars(const char* bytesA, size_t lengthA, const char* bytesB, size_t lengthB) {
  const unichar* upper = initUpperCharsTable();
  const auto map = [upper](char byte) { return upper[widened(byte)]; };
  return compareMixed(bytesA, lengthA, bytesB, lengthB, map, map);
}

}  // namespace velan
