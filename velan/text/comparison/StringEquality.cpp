#include "velan/text/comparison/StringEquality.h"

#include <optional>

#include "velan/base/utf/UTF.h"
#include "velan/platform/CharacterDataInternal.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/comparison/Comparison.h"
#include "velan/text/kernels/UnitKernelsInternal.h"

namespace velan {
namespace {

// All comparisons of views below get views of one length.
bool equalThroughTable(std::u16string_view a, std::u16string_view b, const unichar* table) {
  return fastCompareUnicharsUsingConversionTable(a.data(), a.size(), b.data(), b.size(), table) == 0;
}

bool equalExactly(std::u16string_view a, std::u16string_view b) { return a == b; }

bool equalNonUmlauted(std::u16string_view a, std::u16string_view b) {
  return equalThroughTable(a, b, initUpperUmlautsCharsTable());
}

bool isAscii(unichar c) { return c < 0x80; }

constexpr UnitMapping kASCIIToLower = {nullptr, true, 'A', static_cast<unichar>('A' - 'a'), nullptr};

// Folding goes by characters, so what folds alike at the start can be left out; only the rest is worth the full
// folding.
bool equalNoCase(std::u16string_view a, std::u16string_view b) {
  size_t start = unitKernels().mismatch(a.data(), b.data(), a.size(), kASCIIToLower);
  if (start == a.size()) return true;
  if (isAscii(a[start]) && isAscii(b[start])) return false;
  if (start > 0 && isHighSurrogate(a[start - 1])) --start;  // never cut a character
  return equalWhenCaseFolded(a.substr(start), b.substr(start));
}

// The units of `range`, or nothing when it is not inside `string`.
std::optional<std::u16string_view> unitsOf(const String& string, Range range) {
  if (range.length == 0) return std::u16string_view();
  if (range.location < 0 || range.length < 0 || range.location > string.length() ||
      range.length > string.length() - range.location) {
    return std::nullopt;
  }
  return string.view().substr(static_cast<size_t>(range.location), static_cast<size_t>(range.length));
}

template <typename Equal>
bool rangeEquals(const String& string, Range range, const String& other, Equal equal) {
  if (!string || range.length != other.length()) return false;
  const auto units = unitsOf(string, range);
  return units && equal(*units, other.view());
}

}  // namespace

bool equalStringsUsingConversionTable(const String& a, const String& b, const unichar* table) {
  return a.length() == b.length() && equalThroughTable(a.view(), b.view(), table);
}

bool isEqualToStringNoCase(const String& string, const String& other) {
  return other && rangeEquals(string, {0, string.length()}, other, equalNoCase);
}

bool isNonUmlautedEqualToStringNoCase(const String& string, const String& other) {
  return other && rangeEquals(string, {0, string.length()}, other, equalNonUmlauted);
}

bool hasPrefixNoCase(const String& string, const String& prefix) {
  return !prefix.isEmpty() && rangeEquals(string, {0, prefix.length()}, prefix, equalNoCase);
}

bool hasSuffixNoCase(const String& string, const String& suffix) {
  const Range end{string.length() - suffix.length(), suffix.length()};
  return !suffix.isEmpty() && rangeEquals(string, end, suffix, equalNoCase);
}

bool rangeIsEqualTo(const String& string, Range range, const String& other) {
  return rangeEquals(string, range, other, equalExactly);
}

bool rangeIsEqualToNoCase(const String& string, Range range, const String& other) {
  return rangeEquals(string, range, other, equalNoCase);
}

bool rangeIsNonUmlautedEqualToNoCase(const String& string, Range range, const String& other) {
  return other && rangeEquals(string, range, other, equalNonUmlauted);
}

}  // namespace velan
