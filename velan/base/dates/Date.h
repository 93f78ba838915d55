// A point in time.
#ifndef VELAN_BASE_DATES_DATE_H
#define VELAN_BASE_DATES_DATE_H

#include <compare>

#include "velan/base/CTypes.h"

namespace velan {

/// Seconds from 1970-01-01 00:00:00 UTC to the reference date.
inline constexpr double kUnixTimeOfReferenceDate = 978307200;

/// Seconds, with fractions, since the reference date 2001-01-01 00:00:00 UTC; leap seconds are not counted.
class Date {
 public:
  constexpr Date() = default;
  constexpr explicit Date(double secondsSinceReferenceDate) : _seconds(secondsSinceReferenceDate) {}
  static constexpr Date withUnixTime(double seconds) { return Date(seconds - kUnixTimeOfReferenceDate); }

  constexpr double timeIntervalSinceReferenceDate() const { return _seconds; }
  constexpr double unixTime() const { return _seconds + kUnixTimeOfReferenceDate; }

  friend constexpr bool operator==(const Date&, const Date&) = default;
  friend constexpr std::partial_ordering operator<=>(const Date&, const Date&) = default;

 private:
  double _seconds = 0;
};

}  // namespace velan

#endif  // VELAN_BASE_DATES_DATE_H
