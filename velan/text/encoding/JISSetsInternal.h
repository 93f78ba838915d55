// Japanese character sets by themselves: pairs of bytes from 0x21 to 0x7E, as between the escapes of ISO 2022.
#ifndef VELAN_TEXT_ENCODING_JIS_SETS_INTERNAL_H
#define VELAN_TEXT_ENCODING_JIS_SETS_INTERNAL_H

#include <memory>

#include "velan/platform/ConverterInternal.h"

namespace velan {

enum class JISSet : uint8_t { C6226, X0208, X0212 };

/// Through ISO-2022-JP-1, which has the same pairs behind an escape sequence. Bytes below 0x21 stand for themselves,
/// except those that would select another set, which are malformed.
std::unique_ptr<Decoder> jisDecoder(JISSet set);
std::unique_ptr<Encoder> jisEncoder(JISSet set);

}  // namespace velan

#endif  // VELAN_TEXT_ENCODING_JIS_SETS_INTERNAL_H
