#include "velan/base/dates/CivilTime.h"

#include <cmath>

namespace velan {
namespace {

// Years are counted from March, so that the leap day is the last of its year, in cycles of 400 years.
constexpr int64_t kDaysPerCycle = 146097;
constexpr int64_t kSecondsPerDay = 86400;
constexpr int64_t kReferenceDay = 730791;  // 2001-01-01, counted from 0000-03-01
constexpr double kFarthestSeconds = 9e15;
constexpr int64_t kFarthestYear = 280000000;

int64_t floorDivide(int64_t a, int64_t b) { return a / b - (a % b < 0); }

bool isLeapYear(int64_t year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

int daysOfMonth(int64_t year, int month) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && isLeapYear(year) ? 29 : kDays[month - 1];
}

// Days from 0000-03-01 to the first of a month counted from March (0) to February (11). From March on the months'
// lengths repeat every five months, 153 days.
int64_t daysBeforeMonth(int monthFromMarch) { return (153 * monthFromMarch + 2) / 5; }

int64_t dayNumber(int64_t year, int month, int day) {
  const int monthFromMarch = (month + 9) % 12;
  const int64_t marchYear = year - (month <= 2);
  const int64_t cycle = floorDivide(marchYear, 400);
  const int64_t yearOfCycle = marchYear - cycle * 400;
  return cycle * kDaysPerCycle + yearOfCycle * 365 + yearOfCycle / 4 - yearOfCycle / 100 +
         daysBeforeMonth(monthFromMarch) + day - 1;
}

void setDay(CivilTime& time, int64_t number) {
  const int64_t cycle = floorDivide(number, kDaysPerCycle);
  const int64_t dayOfCycle = number - cycle * kDaysPerCycle;
  // Without the leap days before it, every year has 365 days.
  const int64_t yearOfCycle =
      (dayOfCycle - dayOfCycle / 1460 + dayOfCycle / 36524 - dayOfCycle / (kDaysPerCycle - 1)) / 365;
  const auto dayOfYear = static_cast<int>(dayOfCycle - (yearOfCycle * 365 + yearOfCycle / 4 - yearOfCycle / 100));
  const int monthFromMarch = (5 * dayOfYear + 2) / 153;
  time.month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;
  time.day = dayOfYear - static_cast<int>(daysBeforeMonth(monthFromMarch)) + 1;
  time.year = cycle * 400 + yearOfCycle + (time.month <= 2);
  time.weekday = static_cast<int>(((number + 3) % 7 + 7) % 7);  // 0000-03-01 was a Wednesday
  time.dayOfYear = static_cast<int>(number - dayNumber(time.year, 1, 1)) + 1;
}

bool inRange(int value, int low, int high) { return value >= low && value <= high; }

constexpr std::u16string_view kWeekdays[] = {u"Sunday",   u"Monday", u"Tuesday", u"Wednesday",
                                             u"Thursday", u"Friday", u"Saturday"};
constexpr std::u16string_view kMonths[] = {u"January", u"February", u"March",     u"April",   u"May",      u"June",
                                           u"July",    u"August",   u"September", u"October", u"November", u"December"};

void appendNumber(std::u16string& text, int64_t number, size_t digits) {
  char reversed[20];
  size_t count = 0;
  uint64_t rest = number < 0 ? 0 - static_cast<uint64_t>(number) : static_cast<uint64_t>(number);
  for (; rest || count < digits; rest /= 10) reversed[count++] = static_cast<char>('0' + rest % 10);
  if (number < 0) text.push_back(u'-');
  while (count) text.push_back(static_cast<unichar>(reversed[--count]));
}

void appendTime(std::u16string& text, const CivilTime& time) {
  appendNumber(text, time.hour, 2);
  text.push_back(u':');
  appendNumber(text, time.minute, 2);
  text.push_back(u':');
  appendNumber(text, time.second, 2);
}

int64_t yearOfCentury(const CivilTime& time) { return (time.year % 100 + 100) % 100; }

void appendShortDate(std::u16string& text, const CivilTime& time) {
  appendNumber(text, time.month, 2);
  text.push_back(u'/');
  appendNumber(text, time.day, 2);
  text.push_back(u'/');
  appendNumber(text, yearOfCentury(time), 2);
}

bool appendDirective(std::u16string& text, const CivilTime& time, unichar directive) {
  const std::u16string_view weekday = kWeekdays[time.weekday];
  const std::u16string_view month = kMonths[time.month - 1];
  switch (directive) {
    case u'%':
      text.push_back(u'%');
      break;
    case u'a':
      text += weekday.substr(0, 3);
      break;
    case u'A':
      text += weekday;
      break;
    case u'b':
      text += month.substr(0, 3);
      break;
    case u'B':
      text += month;
      break;
    case u'c':
      appendTime(text, time), text.push_back(u' '), appendShortDate(text, time);
      break;
    case u'd':
      appendNumber(text, time.day, 2);
      break;
    case u'e':
      appendNumber(text, time.day, 1);
      break;
    case u'F':
      appendNumber(text, time.millisecond, 3);
      break;
    case u'H':
      appendNumber(text, time.hour, 2);
      break;
    case u'I':
      appendNumber(text, (time.hour + 11) % 12 + 1, 2);
      break;
    case u'j':
      appendNumber(text, time.dayOfYear, 3);
      break;
    case u'm':
      appendNumber(text, time.month, 2);
      break;
    case u'M':
      appendNumber(text, time.minute, 2);
      break;
    case u'p':
      text += time.hour < 12 ? u"AM" : u"PM";
      break;
    case u'S':
      appendNumber(text, time.second, 2);
      break;
    case u'w':
      appendNumber(text, time.weekday, 1);
      break;
    case u'x':
      appendShortDate(text, time);
      break;
    case u'X':
      appendTime(text, time);
      break;
    case u'y':
      appendNumber(text, yearOfCentury(time), 2);
      break;
    case u'Y':
      appendNumber(text, time.year, 4);
      break;
    case u'z':
      text += u"+0000";
      break;
    case u'Z':
      text += u"UTC";
      break;
    default:
      return false;
  }
  return true;
}

}  // namespace

std::optional<CivilTime> civilTimeFromDate(Date date) {
  const double interval = date.timeIntervalSinceReferenceDate();
  if (!(std::fabs(interval) < kFarthestSeconds)) return std::nullopt;
  const double wholeSeconds = std::floor(interval);
  const auto seconds = static_cast<int64_t>(wholeSeconds);
  const int64_t days = floorDivide(seconds, kSecondsPerDay);
  const auto secondOfDay = static_cast<int>(seconds - days * kSecondsPerDay);
  CivilTime time;
  setDay(time, days + kReferenceDay);
  time.hour = secondOfDay / 3600;
  time.minute = secondOfDay / 60 % 60;
  time.second = secondOfDay % 60;
  time.millisecond = static_cast<int>((interval - wholeSeconds) * 1000);
  return time;
}

std::optional<Date> dateFromCivilTime(const CivilTime& time) {
  if (time.year > kFarthestYear || time.year < -kFarthestYear || !inRange(time.month, 1, 12) ||
      !inRange(time.day, 1, daysOfMonth(time.year, time.month)) || !inRange(time.hour, 0, 23) ||
      !inRange(time.minute, 0, 59) || !inRange(time.second, 0, 59) || !inRange(time.millisecond, 0, 999)) {
    return std::nullopt;
  }
  const int64_t days = dayNumber(time.year, time.month, time.day) - kReferenceDay;
  const int64_t seconds = days * kSecondsPerDay + int64_t{3600} * time.hour + int64_t{60} * time.minute + time.second;
  return Date(static_cast<double>(seconds) + time.millisecond / 1000.0);
}

String formatDate(Date date, const String& format) {
  const auto time = civilTimeFromDate(date);
  if (!time || format.isAbsent()) return String();
  const std::u16string_view pattern = format.view();
  std::u16string text;
  for (size_t i = 0; i < pattern.size(); ++i) {
    const bool directive = pattern[i] == u'%' && i + 1 < pattern.size();
    if (directive && appendDirective(text, *time, pattern[i + 1])) {
      ++i;
    } else {
      text.push_back(pattern[i]);
    }
  }
  return String(text);
}

}  // namespace velan
