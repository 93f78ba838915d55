#include "velan/text/inspection/Numbers.h"

#include "velan/base/ASCII.h"
#include "velan/text/search/UnitSearchInternal.h"

namespace velan {

bool containsNumberWithNDigits(const unichar* string, size_t length, int64_t n) {
  if (!string || n < 1 || static_cast<uint64_t>(n) > length) return false;
  int64_t digits = 0;
  for (size_t i = 0; i < length; ++i) {
    digits = isASCIIDigit(string[i]) ? digits + 1 : 0;
    if (digits == n) return true;
  }
  return false;
}

int64_t countNumbers(const String& string) {
  int64_t count = 0;
  bool inNumber = false;
  for (const unichar c : string) {
    const bool isDigit = isASCIIDigit(c);
    count += isDigit && !inNumber;
    inNumber = isDigit;
  }
  return count;
}

bool containsNumber(const String& string, const String& number) {
  const std::u16string_view text = string.view(), digits = number.view();
  const auto isDigitAt = [text](size_t i) { return i < text.size() && isASCIIDigit(text[i]); };
  for (size_t start = 0; start < text.size();) {
    const size_t position = start + findUnits(text.data() + start, text.size() - start, digits.data(), digits.size());
    if (position == text.size()) return false;
    const size_t end = position + digits.size();
    if (!(position > 0 && isDigitAt(position - 1)) && !isDigitAt(end)) return true;
    start = end;
  }
  return false;
}

}  // namespace velan
