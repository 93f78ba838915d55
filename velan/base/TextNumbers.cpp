#include "velan/base/TextNumbers.h"

#include <charconv>
#include <limits>

#include "velan/base/ASCII.h"

namespace velan {
namespace {

// Removes one sign; true for a minus.
template <typename Text>
bool takeSign(Text& text) {
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  return negative;
}

template <typename Text>
bool skipToDigits(Text& text) {
  while (!text.empty() && isASCIIWhiteSpace(text.front())) text.remove_prefix(1);
  return takeSign(text);
}

// Stops at the nearest 64-bit number when there are more digits than fit.
template <typename Text>
int64_t integerAtStart(Text text) {
  const bool negative = skipToDigits(text);
  const uint64_t most = uint64_t{INT64_MAX} + negative;
  uint64_t magnitude = 0;
  for (; !text.empty() && isASCIIDigit(text.front()); text.remove_prefix(1)) {
    const auto digit = static_cast<uint64_t>(text.front() - '0');
    magnitude = magnitude > (most - digit) / 10 ? most : magnitude * 10 + digit;
  }
  return static_cast<int64_t>(negative ? 0 - magnitude : magnitude);
}

// Whether a number that no double can hold is too large rather than too small: its exponent and the place of its first
// digit that is not 0 tell.
bool isTooLarge(std::string_view number) {
  const size_t e = number.find_first_of("eE");
  const int64_t exponent = e == std::string_view::npos ? 0 : leadingInteger(number.substr(e + 1));
  const std::string_view mantissa = number.substr(0, e);
  const auto point = static_cast<int64_t>(std::min(mantissa.find('.'), mantissa.size()));
  const auto first = static_cast<int64_t>(std::min(mantissa.find_first_of("123456789"), mantissa.size()));
  // Compared so that nothing overflows: the lengths are far below 2^62.
  return exponent > first - point;
}

// As `std::from_chars`, with the nearest double instead of an error when the number is out of range. The rest of the
// text stays in `text`; nothing when no number begins it.
std::optional<double> takeDouble(std::string_view& text) {
  double number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  if (result.ec == std::errc::invalid_argument) return std::nullopt;
  const auto length = static_cast<size_t>(result.ptr - text.data());
  if (result.ec == std::errc::result_out_of_range) {
    number = isTooLarge(text.substr(0, length)) ? std::numeric_limits<double>::infinity() : 0;
  }
  text.remove_prefix(length);
  return number;
}

}  // namespace

bool booleanReading(std::string_view text) {
  skipToDigits(text);
  while (text.starts_with('0')) text.remove_prefix(1);
  return !text.empty() && std::string_view("YyTt123456789").find(text.front()) != std::string_view::npos;
}

int64_t leadingInteger(std::string_view text) { return integerAtStart(text); }
int64_t leadingInteger(std::u16string_view text) { return integerAtStart(text); }

double leadingDouble(std::string_view text) {
  const bool negative = skipToDigits(text);
  const std::string_view digits = text.substr(text.starts_with('.') ? 1 : 0);
  const bool isNumber = !digits.empty() && isASCIIDigit(digits.front());
  const double number = isNumber ? takeDouble(text).value_or(0) : 0;
  return negative && isNumber ? -number : number;
}

std::optional<double> doubleFromText(std::string_view text) {
  const bool negative = takeSign(text);
  if (text.starts_with('-')) return std::nullopt;
  const auto number = takeDouble(text);
  if (!number || !text.empty()) return std::nullopt;
  return negative ? -*number : *number;
}

}  // namespace velan
