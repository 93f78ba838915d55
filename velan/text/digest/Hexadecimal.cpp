#include "velan/text/digest/Hexadecimal.h"

namespace velan {

String hexadecimalString(std::span<const uint8_t> bytes) {
  if (bytes.empty()) return String(u"");
  return String::filled(static_cast<int64_t>(bytes.size()) * 2, [bytes](unichar* units) {
    constexpr char16_t kDigits[] = u"0123456789abcdef";
    for (const uint8_t byte : bytes) {
      *units++ = kDigits[byte >> 4];
      *units++ = kDigits[byte & 0xF];
    }
    return static_cast<int64_t>(bytes.size()) * 2;
  });
}

}  // namespace velan
