#include "velan/text/digest/Hexadecimal.h"

#include "velan/base/ASCII.h"

namespace velan {

String hexadecimalString(std::span<const uint8_t> bytes) {
  return String::filled(static_cast<int64_t>(bytes.size()) * 2, [bytes](unichar* units) {
    for (const uint8_t byte : bytes) {
      *units++ = static_cast<unichar>(lowerHexadecimalDigit(byte >> 4));
      *units++ = static_cast<unichar>(lowerHexadecimalDigit(byte));
    }
    return static_cast<int64_t>(bytes.size()) * 2;
  });
}

}  // namespace velan
