// Bytes as hexadecimal text.
#ifndef VELAN_TEXT_DIGEST_HEXADECIMAL_H
#define VELAN_TEXT_DIGEST_HEXADECIMAL_H

#include <span>

#include "velan/base/String.h"

namespace velan {

/// `hexadecimalString`: two lower-case digits for each byte.
VELAN_EXPORT String hexadecimalString(std::span<const uint8_t> bytes);

}  // namespace velan

#endif  // VELAN_TEXT_DIGEST_HEXADECIMAL_H
