#include "velan/text/inspection/Rotation.h"

#include <algorithm>

#include "velan/base/ASCII.h"

namespace velan {

String stringByRotating(const String& string, uint64_t places) {
  const auto offset = static_cast<unsigned>(places % 26);
  if (string.isEmpty() || offset == 0) return string;
  const auto rotated = [offset](unichar c) {
    const unsigned a = isASCIILowerCase(c) ? u'a' : u'A';
    return isASCIILetter(c) ? static_cast<unichar>(a + (c - a + offset) % 26) : c;
  };
  return String::filled(string.length(), [&](unichar* units) {
    std::ranges::transform(string, units, rotated);
    return string.length();
  });
}

}  // namespace velan
