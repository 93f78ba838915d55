#include "velan/text/search/Containment.h"

#include <algorithm>
#include <cstring>

#include "velan/base/String.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/search/TwoWaySearchInternal.h"
#include "velan/text/search/UnitBlocksInternal.h"
#include "velan/text/search/UnitSearchInternal.h"

namespace velan {
namespace {

bool canContain(const void* haystack, size_t haystackLength, const void* needle, size_t needleLength) {
  return haystack && needle && needleLength >= 1 && needleLength <= haystackLength;
}

// A scan stays ahead of the two-way search while it compares no more than a few units per position.
bool isTooSlow(size_t compared, size_t position) { return compared / 4 > position + 1024; }

// All matching below goes by positions; `text` and `needle` give the mapped unit at a position. The result is the
// least position of a match, or `length`.
template <typename Text, typename Needle>
size_t findMapped(Text text, size_t length, Needle needle, size_t needleLength) {
  const size_t last = needleLength - 1;
  const unichar firstUnit = needle(0), lastUnit = needle(last);
  size_t compared = 0;
  for (size_t position = 0; position + last < length; ++position) {
    if (text(position) != firstUnit || text(position + last) != lastUnit) continue;
    size_t i = 1;
    while (i < last && text(position + i) == needle(i)) ++i;
    if (i >= last) return position;
    if (compared += i; !isTooSlow(compared, position)) continue;
    const auto rest = [=](size_t k) { return text(position + k); };
    return position + findTwoWay(rest, length - position, needle, needleLength);
  }
  return length;
}

const unichar* pointerTo(const unichar* haystack, size_t length, size_t position) {
  return position < length ? haystack + position : nullptr;
}

}  // namespace

size_t findUnits(const unichar* haystack, size_t length, const unichar* needle, size_t needleLength) {
  if (!canContain(haystack, length, needle, needleLength)) return length;
  const size_t last = needleLength - 1;
  const size_t positions = length - last;
  size_t compared = 0;
  for (size_t block = 0; block < positions; block += kBlock) {
    const size_t end = std::min(block + kBlock, positions);
    if (end - block == kBlock && !blockHolds(haystack + block, haystack + block + last, needle[0], needle[last])) {
      continue;
    }
    for (size_t position = block; position < end; ++position) {
      if (haystack[position] != needle[0] || haystack[position + last] != needle[last]) continue;
      const size_t same = commonPrefixLength(haystack + position, needle, needleLength);
      if (same == needleLength) return position;
      if (compared += same; !isTooSlow(compared, position)) continue;
      return position + findTwoWay([=](size_t k) { return haystack[position + k]; }, length - position,
                                   [=](size_t k) { return needle[k]; }, needleLength);
    }
  }
  return length;
}

size_t findMappedUnits(const unichar* haystack, size_t length, const unichar* needle, size_t needleLength,
                       const unichar* table) {
  if (!canContain(haystack, length, needle, needleLength)) return length;
  return findMapped([=](size_t i) { return table[haystack[i]]; }, length, [=](size_t i) { return needle[i]; },
                    needleLength);
}

const unichar* fastContainsUnichars(const unichar* haystack, size_t haystackLength, const unichar* needle,
                                    size_t needleLength) {
  // Leaving out the last unit leaves out the last position, and no other.
  const size_t length = haystackLength == 0 ? 0 : haystackLength - 1;
  return pointerTo(haystack, length, findUnits(haystack, length, needle, needleLength));
}

const unichar* fastCaseInsensitiveContainsUnichars(const unichar* haystack, size_t haystackLength,
                                                   const unichar* needle, size_t needleLength) {
  if (!canContain(haystack, haystackLength, needle, needleLength)) return nullptr;
  const unichar* upper = initUpperCharsTable();
  const size_t position = findMapped([=](size_t i) { return upper[haystack[i]]; }, haystackLength,
                                     [=](size_t i) { return upper[needle[i]]; }, needleLength);
  return pointerTo(haystack, haystackLength, position);
}

const unichar* fastUnicharsContainChars(const unichar* haystack, size_t haystackLength, const char* needle,
                                        size_t needleLength) {
  if (!canContain(haystack, haystackLength, needle, needleLength)) return nullptr;
  const auto isNegative = [](char byte) { return static_cast<signed char>(byte) < 0; };
  if (std::any_of(needle, needle + needleLength, isNegative)) return nullptr;
  const size_t position = findMapped([=](size_t i) { return haystack[i]; }, haystackLength,
                                     [=](size_t i) { return widened(needle[i]); }, needleLength);
  return pointerTo(haystack, haystackLength, position);
}

const unichar* fastCaseInsensitiveUnicharsContainChars(const unichar* haystack, size_t haystackLength,
                                                       const char* needle, size_t needleLength) {
  if (!canContain(haystack, haystackLength, needle, needleLength)) return nullptr;
  const unichar* upper = initUpperCharsTable();
  const size_t position = findMapped([=](size_t i) { return upper[haystack[i]]; }, haystackLength,
                                     [=](size_t i) { return upper[widened(needle[i])]; }, needleLength);
  return pointerTo(haystack, haystackLength, position);
}

bool fastContainsSubCStrings(const String& string, int64_t length, const char* const* patterns, const unichar* table) {
  if (length < 1 || string.isEmpty() || !patterns) return false;
  const auto searched = static_cast<size_t>(std::min(length, string.length()));
  const unichar* units = string.characters();
  for (; *patterns; ++patterns) {
    const char* pattern = *patterns;
    const size_t patternLength = std::strlen(pattern);
    if (!canContain(units, searched, pattern, patternLength)) continue;
    const auto needle = [=](size_t i) { return widened(pattern[i]); };
    const size_t position = table
                                ? findMapped([=](size_t i) { return table[units[i]]; }, searched, needle, patternLength)
                                : findMapped([=](size_t i) { return units[i]; }, searched, needle, patternLength);
    if (position < searched) return true;
  }
  return false;
}

}  // namespace velan
