// Bytes as text (RFC 4648, section 4).
#ifndef VELAN_BASE_BASE64_H
#define VELAN_BASE_BASE64_H

#include <span>
#include <string>
#include <string_view>

#include "velan/base/Data.h"

namespace velan {

/// Appends the Base64 form of `bytes` to `text`, padded with `=`, without line ends.
VELAN_EXPORT void appendBase64(std::span<const uint8_t> bytes, std::string& text);

/// The bytes that `text` encodes. White space is skipped; padding must end the text and may be left out. Absent for any
/// other character, for a single character over, and for set bits that belong to no byte.
VELAN_EXPORT Data dataFromBase64(std::string_view text);

}  // namespace velan

#endif  // VELAN_BASE_BASE64_H
