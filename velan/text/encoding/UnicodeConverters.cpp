#include "velan/text/encoding/UnicodeConverters.h"

#include <algorithm>
#include <cstring>

#include "velan/base/utf/UTF.h"
#include "velan/text/encoding/DecodingInternal.h"
#include "velan/text/encoding/EncodingTableInternal.h"

namespace velan {
namespace {

std::span<const uint8_t> bytesOf(const void* bytes, size_t length) {
  return {static_cast<const uint8_t*>(bytes), bytes ? length : 0};
}

// The units of the character that `text` begins with.
size_t characterLength(std::u16string_view text) { return isHighSurrogate(text[0]) && text.size() > 1 ? 2 : 1; }

}  // namespace

void initUnicodeConverters(void) {}

int32_t convertUTF8ToUnicode(const void* bytes, size_t byteLength, unichar* chars, size_t capacity) {
  const auto decoder = decoderFor(TextEncoding::UTF8);
  if (!decoder) return ConverterUnknownEncoding;
  return decodeInto(*decoder, bytesOf(bytes, byteLength), Replaced::Nothing, chars, chars ? capacity : 0).status;
}

int32_t convertUnicodeToUTF8(const unichar* chars, size_t charLength, void* bytes, size_t capacity) {
  std::u16string_view text(chars, chars ? charLength : 0);
  auto* next = static_cast<char*>(bytes);
  size_t room = bytes ? capacity : 0;
  while (!text.empty()) {
    // As many units as fit if each takes the most bytes; the last ones alone.
    const size_t count = std::min(text.size(), room / kMaxUTF8BytesPerUnit);
    const Transcoded piece = convertUTF16ToUTF8(text.substr(0, count), next);
    next += piece.written;
    room -= piece.written;
    text.remove_prefix(piece.consumed);
    if (piece.consumed > 0 || text.empty()) continue;
    char character[2 * kMaxUTF8BytesPerUnit];
    const Transcoded one = convertUTF16ToUTF8(text.substr(0, characterLength(text)), character);
    if (one.consumed == 0) {
      return isHighSurrogate(text[0]) && text.size() == 1 ? ConverterPartialCharacter : ConverterMalformedInput;
    }
    if (one.written > room) return ConverterOutputFull;
    std::memcpy(next, character, one.written);
    next += one.written;
    room -= one.written;
    text.remove_prefix(one.consumed);
  }
  return ConverterSuccess;
}

int32_t convertEncodingToUnicode(const void* bytes, size_t byteLength, TextEncoding encoding, unichar* chars,
                                 size_t capacity, size_t* outLength) {
  if (outLength) *outLength = 0;
  const auto decoder = decoderFor(encoding);
  if (!decoder) return ConverterUnknownEncoding;
  const DecodingOutcome outcome =
      decodeInto(*decoder, bytesOf(bytes, byteLength), Replaced::Unassigned, chars, chars ? capacity : 0);
  if (outLength) *outLength = outcome.written;
  return outcome.status == ConverterSuccess ? 1 : 0;
}

}  // namespace velan
