// Dates as ISO 8601 writes them.
#ifndef VELAN_BASE_DATES_ISO_DATE_H
#define VELAN_BASE_DATES_ISO_DATE_H

#include <cstdint>
#include <optional>
#include <string_view>

#include "velan/base/dates/Date.h"

namespace velan {

/// Which dates are read.
enum class ISODateForm : uint8_t {
  /// `2001-02-03T04:05:06Z`, nothing else.
  UniversalSeconds,
  /// Also `2001-02-03` alone (its midnight), and behind the seconds a fraction (`.5` or `,5`, any number of digits) and
  /// an offset instead of `Z` (`+01:00`, `+0100` or `+01`, at most 23:59); without `Z` or offset the time is universal.
  Extended
};

/// The date that the whole text is, in ASCII; nothing when it has another form or no such day or time exists
/// (February 30th, 24:00). Fractions are kept as exactly as the date can.
VELAN_EXPORT std::optional<Date> dateFromISOText(std::string_view text, ISODateForm form);
VELAN_EXPORT std::optional<Date> dateFromISOText(std::u16string_view text, ISODateForm form);

}  // namespace velan

#endif  // VELAN_BASE_DATES_ISO_DATE_H
