// Converters for UTF-8, UTF-16 and UTF-32.
#ifndef VELAN_TEXT_ENCODING_UNICODE_FORMS_INTERNAL_H
#define VELAN_TEXT_ENCODING_UNICODE_FORMS_INTERNAL_H

#include <memory>

#include "velan/platform/ConverterInternal.h"

namespace velan {

/// FromMark reads a byte-order mark and leaves it out, big-endian without one; it writes a mark, then little-endian.
enum class ByteOrder : uint8_t { Big, Little, FromMark };

/// A surrogate without its partner is malformed, or passes.
enum class LoneSurrogates : bool { Refuse, Keep };

/// A byte-order mark is kept as U+FEFF.
std::unique_ptr<Decoder> utf8Decoder();
std::unique_ptr<Decoder> utf16Decoder(ByteOrder order, LoneSurrogates loneSurrogates);
std::unique_ptr<Decoder> utf32Decoder(ByteOrder order);

/// UTF-16 takes any units.
std::unique_ptr<Encoder> utf8Encoder();
std::unique_ptr<Encoder> utf16Encoder(ByteOrder order);
std::unique_ptr<Encoder> utf32Encoder(ByteOrder order);

}  // namespace velan

#endif  // VELAN_TEXT_ENCODING_UNICODE_FORMS_INTERNAL_H
