#include <algorithm>
#include <bit>
#include <cstring>

#include "velan/query/words/EastAsianWords.h"
#include "velan/query/words/WordIndexInternal.h"
#include "velan/text/kernels/UnitKernelsInternal.h"

namespace velan {

namespace {

// Small enough for the first-level cache, beside the part of the bitmap that a text uses.
constexpr size_t kBlock = 4096;
constexpr uint8_t kMark = 0xFF;

// `mark(first, count, marks)` gives the marks of a stretch of the text. Each block has one mark on either side; beyond
// the text lie separators. The types of a block are written after the marks of the unit behind it are known, so that
// the marks may come from the place of the types.
template <class Mark>
size_t indexBlocks(size_t from, size_t end, size_t length, uint8_t* types, Mark mark) {
  uint8_t marks[1 + kBlock + 1];
  size_t words = 0;
  marks[0] = kMark;
  if (from > 0) mark(from - 1, 1, marks);
  for (size_t first = from; first < end; first += kBlock) {
    const size_t count = std::min(kBlock, end - first);
    const size_t withNext = std::min(count + 1, length - first);
    mark(first, withNext, marks + 1);
    if (withNext == count) marks[count + 1] = kMark;
    words += unitKernels().runsFromMarks(marks, count, types + first);
    marks[0] = marks[count];
  }
  return words;
}

// The same byte eight times.
constexpr uint64_t repeated(uint8_t byte) { return byte * uint64_t{0x0101010101010101}; }

uint64_t eightTypes(const uint8_t* types) {
  uint64_t eight;
  std::memcpy(&eight, types, sizeof eight);
  return eight;
}

// Which of eight bytes in memory order is the first or the last that is not zero; `bytes` is not zero.
size_t firstByte(uint64_t bytes) {
  return static_cast<size_t>(std::endian::native == std::endian::little ? std::countr_zero(bytes)
                                                                        : std::countl_zero(bytes)) /
         8;
}
size_t lastByte(uint64_t bytes) {
  return 7 - static_cast<size_t>(std::endian::native == std::endian::little ? std::countl_zero(bytes)
                                                                            : std::countr_zero(bytes)) /
                 8;
}

}  // namespace

size_t indexWords(const unichar* units, size_t length, const uint8_t* separators, uint8_t* types) {
  return indexWordsIn(units, 0, length, length, separators, types);
}

size_t indexWordsIn(const unichar* units, size_t from, size_t end, size_t length, const uint8_t* separators,
                    uint8_t* types) {
  SetHints hints;
  return indexBlocks(from, end, length, types, [&](size_t first, size_t count, uint8_t* marks) {
    unitKernels().markMembers(units + first, count, separators, hints, marks);
  });
}

size_t indexWildcardWords(const unichar* units, size_t length, const uint8_t* separators, uint8_t* types) {
  SetHints hints;
  unitKernels().markMembers(units, length, separators, hints, types);
  for (size_t i = 0; i + 1 < length; ++i) {
    if (units[i] != '[' || units[i + 1] == ']') continue;
    const size_t start = i;
    while (i < length && units[i] != ']') ++i;
    std::memset(types + start, 0, std::min(i + 1, length) - start);
  }
  return indexBlocks(0, length, length, types,
                     [&](size_t first, size_t count, uint8_t* marks) { std::memcpy(marks, types + first, count); });
}

size_t findEastAsian(const unichar* units, size_t from, size_t end) {
  constexpr size_t kStep = 32;
  const auto isBelow = [](const unichar* step) {
    unsigned high = 0;
    for (size_t i = 0; i < kStep; ++i) high |= static_cast<unsigned>(step[i] >= kFirstEastAsian);
    return high == 0;
  };
  while (from < end) {
    if (end - from >= kStep && isBelow(units + from)) {
      from += kStep;
      continue;
    }
    for (const size_t stop = std::min(end, from + kStep); from < stop; ++from) {
      if (isEastAsianUnichar(units[from])) return from;
    }
  }
  return end;
}

size_t findType(const uint8_t* types, size_t from, size_t end, uint8_t mask) {
  for (; from < end && end - from >= 8; from += 8) {
    if (const uint64_t hits = eightTypes(types + from) & repeated(mask)) return from + firstByte(hits);
  }
  while (from < end && !(types[from] & mask)) ++from;
  return from < end ? from : end;
}

size_t findTypeBackwards(const uint8_t* types, size_t start, size_t end, uint8_t mask) {
  size_t after = end;
  for (; after > start && after - start >= 8; after -= 8) {
    if (const uint64_t hits = eightTypes(types + after - 8) & repeated(mask)) return after - 8 + lastByte(hits);
  }
  while (after > start && !(types[after - 1] & mask)) --after;
  return after > start ? after - 1 : end;
}

}  // namespace velan
