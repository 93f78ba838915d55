// Dates as people write them: year, month, day and time of day.
#ifndef VELAN_BASE_DATES_CIVIL_TIME_H
#define VELAN_BASE_DATES_CIVIL_TIME_H

#include <cstdint>
#include <optional>

#include "velan/base/String.h"
#include "velan/base/dates/Date.h"

namespace velan {

/// A date of the Gregorian calendar, extended over all years, in universal time. The year before 1 is 0.
struct CivilTime {
  int64_t year = 2001;
  int month = 1;  // 1 to 12
  int day = 1;    // 1 to 31
  int hour = 0;
  int minute = 0;
  int second = 0;
  int millisecond = 0;
  int weekday = 1;    // 0 is Sunday; ignored by `dateFromCivilTime`
  int dayOfYear = 1;  // 1 to 366; ignored by `dateFromCivilTime`
};

/// The civil time of `date`, rounded down to milliseconds. Nothing for a date that is not a number, or further than
/// some 280 million years away.
VELAN_EXPORT std::optional<CivilTime> civilTimeFromDate(Date date);

/// The date of a civil time. Nothing when a field is outside its range (February 30th), or the year further than some
/// 280 million away.
VELAN_EXPORT std::optional<Date> dateFromCivilTime(const CivilTime& time);

/// `date` in universal time, by the directives of `format`. Names are English and no locale has any influence.
///
/// | directive | text | directive | text |
/// |---|---|---|---|
/// | `%%` | a percent sign | `%M` | minute, 00 to 59 |
/// | `%a` `%A` | weekday: Mon, Monday | `%p` | AM or PM |
/// | `%b` `%B` | month: Jan, January | `%S` | second, 00 to 59 |
/// | `%c` | `%X %x` | `%w` | weekday, 0 (Sunday) to 6 |
/// | `%d` | day of the month, 01 to 31 | `%x` | date: `%m/%d/%y` |
/// | `%e` | day of the month without a leading zero | `%X` | time of day: `%H:%M:%S` |
/// | `%F` | milliseconds, 000 to 999 | `%y` | year without its century, 00 to 99 |
/// | `%H` `%I` | hour, 00 to 23 and 01 to 12 | `%Y` | year, at least four digits |
/// | `%j` | day of the year, 001 to 366 | `%z` | offset of the time zone: +0000 |
/// | `%m` | month, 01 to 12 | `%Z` | name of the time zone: UTC |
///
/// Any other directive stays as it is. Absent for an absent format and for a date without a civil time.
VELAN_EXPORT String formatDate(Date date, const String& format);

}  // namespace velan

#endif  // VELAN_BASE_DATES_CIVIL_TIME_H
