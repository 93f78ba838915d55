#include "velan/base/dates/ISODate.h"

#include "velan/base/ASCII.h"
#include "velan/base/dates/CivilTime.h"

namespace velan {
namespace {

template <typename Unit>
class ISODateReader {
 public:
  explicit ISODateReader(std::basic_string_view<Unit> text) : _rest(text) {}

  std::optional<Date> read(ISODateForm form) {
    CivilTime time;
    int year = 0;
    if (!takeNumber(4, year) || !take('-') || !takeNumber(2, time.month) || !take('-') || !takeNumber(2, time.day)) {
      return std::nullopt;
    }
    time.year = year;
    const bool extended = form == ISODateForm::Extended;
    if (extended && _rest.empty()) return dateFromCivilTime(time);
    if (!take('T') || !takeNumber(2, time.hour) || !take(':') || !takeNumber(2, time.minute) || !take(':') ||
        !takeNumber(2, time.second)) {
      return std::nullopt;
    }
    double fraction = 0;
    int offset = 0;
    if (extended && !takeFraction(fraction)) return std::nullopt;
    if (!take('Z') && !(extended && (_rest.empty() || takeOffset(offset)))) return std::nullopt;
    const auto date = dateFromCivilTime(time);
    if (!date || !_rest.empty()) return std::nullopt;
    return Date(date->timeIntervalSinceReferenceDate() - 60.0 * offset + fraction);
  }

 private:
  bool startsWithDigit() const { return !_rest.empty() && isASCIIDigit(_rest.front()); }

  bool take(char c) {
    if (_rest.empty() || _rest.front() != static_cast<Unit>(c)) return false;
    _rest.remove_prefix(1);
    return true;
  }

  // Exactly so many digits.
  bool takeNumber(int digits, int& number) {
    number = 0;
    for (int i = 0; i < digits; ++i, _rest.remove_prefix(1)) {
      if (!startsWithDigit()) return false;
      number = number * 10 + static_cast<int>(_rest.front() - '0');
    }
    return true;
  }

  // 0 without a decimal sign; false when no digit follows it.
  bool takeFraction(double& fraction) {
    if (!take('.') && !take(',')) return true;
    if (!startsWithDigit()) return false;
    // More digits than a double tells apart change nothing.
    uint64_t numerator = 0;
    double denominator = 1;
    for (int digits = 0; startsWithDigit(); _rest.remove_prefix(1), ++digits) {
      if (digits >= 18) continue;
      numerator = numerator * 10 + static_cast<uint64_t>(_rest.front() - '0');
      denominator *= 10;
    }
    fraction = static_cast<double>(numerator) / denominator;
    return true;
  }

  // In minutes, east positive.
  bool takeOffset(int& offset) {
    const bool west = take('-');
    if (!west && !take('+')) return false;
    int hours = 0;
    int minutes = 0;
    if (!takeNumber(2, hours)) return false;
    const bool hasMinutes = take(':') || !_rest.empty();
    if ((hasMinutes && !takeNumber(2, minutes)) || hours > 23 || minutes > 59) return false;
    offset = (west ? -1 : 1) * (hours * 60 + minutes);
    return true;
  }

  std::basic_string_view<Unit> _rest;
};

}  // namespace

std::optional<Date> dateFromISOText(std::string_view text, ISODateForm form) {
  return ISODateReader<char>(text).read(form);
}

std::optional<Date> dateFromISOText(std::u16string_view text, ISODateForm form) {
  return ISODateReader<char16_t>(text).read(form);
}

}  // namespace velan
