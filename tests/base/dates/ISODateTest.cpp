#include "tests/Testing.h"
#include "velan/base/dates/ISODate.h"

namespace velan {
namespace {

constexpr double kNone = -1;

TEST(ISODate, FormsThatAreRead) {
  // universal: read as `UniversalSeconds`
  const Cases<std::string, double, double> cases = {
      {"2001-01-02T00:00:01Z", 86401, 86401},
      {"2001-01-02", kNone, 86400},
      {"2001-01-01T01:00:00", kNone, 3600},
      {"2001-01-01T00:00:01.25Z", kNone, 1.25},
      {"2001-01-01T00:00:01,5", kNone, 1.5},
      {"2001-01-01T00:00:00.50000000000000000000000000000009Z", kNone, 0.5},
      {"2001-01-01T01:30:00+01:00", kNone, 1800},
      {"2001-01-01T01:30:00.5+0130", kNone, 0.5},
      {"2001-01-01T00:00:00-02", kNone, 7200},
      {"2001-01-01T00:00:01.Z", kNone, kNone},
      {"2001-01-01T01:30:00+1", kNone, kNone},
      {"2001-01-01T01:30:00+01:", kNone, kNone},
      {"2001-01-01T01:30:00+24:00", kNone, kNone},
      {"2001-01-01T01:30:00+01:60", kNone, kNone},
      {"2001-01-01T01:30:00+01:00Z", kNone, kNone},
      {"2001-01-01T00:00:01Zx", kNone, kNone},
      {"2001-01-01T", kNone, kNone},
      {"2001-02-29", kNone, kNone},
      {"2001-01-01T24:00:00Z", kNone, kNone},
      {"2001-1-01", kNone, kNone},
      {" 2001-01-01", kNone, kNone},
      {"", kNone, kNone},
  };
  const auto seconds = [](std::optional<Date> date) { return date ? date->timeIntervalSinceReferenceDate() : kNone; };
  for (const auto& [text, universal, extended] : cases) {
    EXPECT_EQ(seconds(dateFromISOText(text, ISODateForm::UniversalSeconds)), universal) << text;
    EXPECT_EQ(seconds(dateFromISOText(text, ISODateForm::Extended)), extended) << text;
    const std::u16string units(text.begin(), text.end());
    EXPECT_EQ(seconds(dateFromISOText(units, ISODateForm::Extended)), extended) << text;
  }
  EXPECT_FALSE(dateFromISOText(u"200\u0131-01-01", ISODateForm::Extended)) << "only ASCII digits count";
}

}  // namespace
}  // namespace velan
