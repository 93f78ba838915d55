#include "velan/text/search/Containment.h"

#include <algorithm>
#include <cstring>

#include "velan/base/String.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/search/UnitBlocksInternal.h"
#include "velan/text/search/UnitSearchInternal.h"

namespace velan {
namespace {

bool canContain(const void* haystack, size_t haystackLength, const void* needle, size_t needleLength) {
  return haystack && needle && needleLength >= 1 && needleLength <= haystackLength;
}

// The bytes of a needle as units, through `table` if there is one.
struct NeedleBytes {
  const char* bytes;
  const unichar* table = nullptr;

  unichar operator()(size_t i) const { return table ? table[widened(bytes[i])] : widened(bytes[i]); }
};

const unichar* pointerTo(const unichar* haystack, size_t length, size_t position) {
  return position < length ? haystack + position : nullptr;
}

}  // namespace

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
  const size_t position = UnitSearch(NeedleUnits{needle, upper}, needleLength, upper).find(haystack, haystackLength);
  return pointerTo(haystack, haystackLength, position);
}

const unichar* fastUnicharsContainChars(const unichar* haystack, size_t haystackLength, const char* needle,
                                        size_t needleLength) {
  if (!canContain(haystack, haystackLength, needle, needleLength)) return nullptr;
  const auto isNegative = [](char byte) { return static_cast<signed char>(byte) < 0; };
  if (std::any_of(needle, needle + needleLength, isNegative)) return nullptr;
  const size_t position = UnitSearch(NeedleBytes{needle}, needleLength, nullptr).find(haystack, haystackLength);
  return pointerTo(haystack, haystackLength, position);
}

const unichar* fastCaseInsensitiveUnicharsContainChars(const unichar* haystack, size_t haystackLength,
                                                       const char* needle, size_t needleLength) {
  if (!canContain(haystack, haystackLength, needle, needleLength)) return nullptr;
  const unichar* upper = initUpperCharsTable();
  const size_t position = UnitSearch(NeedleBytes{needle, upper}, needleLength, upper).find(haystack, haystackLength);
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
    const size_t position = UnitSearch(NeedleBytes{pattern}, patternLength, table).find(units, searched);
    if (position < searched) return true;
  }
  return false;
}

}  // namespace velan
