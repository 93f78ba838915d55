#include "velan/text/inspection/StringCreation.h"

#include <array>

#include "velan/base/ASCII.h"
#include "velan/base/MutableString.h"
#include "velan/platform/RandomBytesInternal.h"

namespace velan {

String uniqueString() {
  std::array<uint8_t, 16> bytes;
  if (!fillWithRandomBytes(bytes)) return String();
  bytes[6] = static_cast<uint8_t>(0x40 | (bytes[6] & 0x0F));  // the version
  bytes[8] = static_cast<uint8_t>(0x80 | (bytes[8] & 0x3F));  // the variant
  return String::filled(36, [&](unichar* units) {
    const unichar* const start = units;
    for (size_t i = 0; i < bytes.size(); ++i) {
      if (i == 4 || i == 6 || i == 8 || i == 10) *units++ = u'-';
      *units++ = static_cast<unichar>(lowerHexadecimalDigit(bytes[i] >> 4));
      *units++ = static_cast<unichar>(lowerHexadecimalDigit(bytes[i]));
    }
    return units - start;
  });
}

String stringWithComponents(const std::vector<String>& components) {
  MutableString joined;
  for (size_t i = 0; i < components.size(); ++i) {
    if (i > 0) joined.appendCharacter(u' ');
    joined.appendString(components[i]);
  }
  return joined.takeString();
}

}  // namespace velan
