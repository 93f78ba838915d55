#include <charconv>
#include <cmath>
#include <limits>

#include "velan/keyed/TextNumbersInternal.h"

namespace velan::keyed {
namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Skips white space and one sign; true for a minus.
bool skipToDigits(std::string_view& text) {
  while (!text.empty() && (text.front() == ' ' || (text.front() >= '\t' && text.front() <= '\r')))
    text.remove_prefix(1);
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  return negative;
}

// Whether a number that no double can hold is too large rather than too small: its exponent and the place of its first
// digit that is not 0 tell.
bool isTooLarge(std::string_view number) {
  int64_t exponent = 0;
  const size_t e = number.find_first_of("eE");
  if (e != std::string_view::npos) {
    std::string_view digits = number.substr(e + 1);
    const bool negative = skipToDigits(digits);
    exponent = leadingInteger(digits);
    if (negative) exponent = -exponent;
  }
  const std::string_view mantissa = number.substr(0, e);
  const auto point = static_cast<int64_t>(std::min(mantissa.find('.'), mantissa.size()));
  const auto first = static_cast<int64_t>(std::min(mantissa.find_first_of("123456789"), mantissa.size()));
  // Compared so that nothing overflows: the lengths are far below 2^62.
  return exponent > first - point;
}

}  // namespace

bool booleanReading(std::string_view text) {
  skipToDigits(text);
  while (text.starts_with('0')) text.remove_prefix(1);
  return !text.empty() && std::string_view("YyTt123456789").find(text.front()) != std::string_view::npos;
}

int64_t leadingInteger(std::string_view text) {
  const bool negative = skipToDigits(text);
  uint64_t magnitude = 0;
  if (text.empty() || !isDigit(text.front())) return 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), magnitude);
  const uint64_t most = uint64_t{INT64_MAX} + negative;
  if (result.ec != std::errc() || magnitude > most) magnitude = most;
  return static_cast<int64_t>(negative ? 0 - magnitude : magnitude);
}

double leadingDouble(std::string_view text) {
  const bool negative = skipToDigits(text);
  const bool isNumber = !text.empty() && (isDigit(text[0]) || (text[0] == '.' && text.size() > 1 && isDigit(text[1])));
  if (!isNumber) return 0;
  double number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  if (result.ec == std::errc::result_out_of_range) {
    const std::string_view digits(text.data(), static_cast<size_t>(result.ptr - text.data()));
    number = isTooLarge(digits) ? std::numeric_limits<double>::infinity() : 0;
  }
  return negative ? -number : number;
}

}  // namespace velan::keyed
