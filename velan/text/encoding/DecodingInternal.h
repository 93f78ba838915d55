// Running a decoder over a whole text.
#ifndef VELAN_TEXT_ENCODING_DECODING_INTERNAL_H
#define VELAN_TEXT_ENCODING_DECODING_INTERNAL_H

#include <cstdint>
#include <span>
#include <string_view>

#include "velan/base/CTypes.h"
#include "velan/base/StringEncoding.h"
#include "velan/platform/ConverterInternal.h"
#include "velan/text/encoding/UnicodeConverters.h"

namespace velan {

/// What becomes U+FFFD; anything else without a character stops the conversion.
enum class Replaced : uint8_t { Nothing, Unassigned, Everything };

struct DecodingOutcome {
  int32_t status;  // a `ConverterStatus`
  size_t written = 0;
  size_t malformed = 0;   // sequences replaced because they are malformed or cut off
  size_t unassigned = 0;  // codes replaced because they stand for nothing
};

/// Decodes `bytes` into room for `room` units, in pieces of at most `piece` bytes. `offsets`, where it is not null, has
/// the same room and receives where each unit's sequence begins; `bytes` then has at most INT32_MAX bytes.
DecodingOutcome decodeInto(Decoder& decoder, std::span<const uint8_t> bytes, Replaced replaced, unichar* units,
                           size_t room, int32_t* offsets = nullptr, size_t piece = SIZE_MAX);

/// The length of the byte-order mark that `bytes` begin with, if `encoding` is UTF-8; otherwise 0.
size_t utf8MarkLength(std::string_view bytes, StringEncoding encoding);

}  // namespace velan

#endif  // VELAN_TEXT_ENCODING_DECODING_INTERNAL_H
