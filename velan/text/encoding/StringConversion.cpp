#include "velan/text/encoding/StringConversion.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "velan/text/encoding/DecodingInternal.h"
#include "velan/text/encoding/EncodingTableInternal.h"
#include "velan/text/encoding/UnicodeFormsInternal.h"

namespace velan {
namespace {

std::atomic<StringEncoding> sharedDefault = StringEncoding::UTF8;

// A string holds any units, so it takes them from UTF-16 as they are.
std::unique_ptr<Decoder> stringDecoder(StringEncoding encoding) {
  switch (encoding) {
    case StringEncoding::UTF16:
      return utf16Decoder(ByteOrder::FromMark, LoneSurrogates::Keep);
    case StringEncoding::UTF16BigEndian:
      return utf16Decoder(ByteOrder::Big, LoneSurrogates::Keep);
    case StringEncoding::UTF16LittleEndian:
      return utf16Decoder(ByteOrder::Little, LoneSurrogates::Keep);
    default:
      return asksForDetection(encoding) ? nullptr : decoderFor(textEncoding(encoding));
  }
}

}  // namespace

StringEncoding defaultEncoding() { return sharedDefault.load(std::memory_order_relaxed); }

void setDefaultEncoding(StringEncoding encoding) { sharedDefault.store(encoding, std::memory_order_relaxed); }

String stringWithBytes(const void* bytes, size_t length, StringEncoding encoding) {
  if (!bytes && length > 0) return String();
  const std::string_view text(static_cast<const char*>(bytes), length);
  encoding = stringEncoding(textEncoding(encoding));
  if (encoding == StringEncoding::UTF8) return String::fromUTF8(text.substr(utf8MarkLength(text, encoding)));
  const auto decoder = stringDecoder(encoding);
  if (!decoder) return String();
  const std::span<const uint8_t> span(static_cast<const uint8_t*>(bytes), length);
  const size_t room = length * decoder->unitsPerByte();
  return String::filled(static_cast<int64_t>(room), [&](unichar* units) -> int64_t {
    const DecodingOutcome outcome = decodeInto(*decoder, span, Replaced::Nothing, units, room);
    return outcome.status == ConverterSuccess ? static_cast<int64_t>(outcome.written) : -1;
  });
}

String stringWithData(const Data& data, StringEncoding encoding) {
  return data ? stringWithBytes(data.bytes(), data.length(), encoding) : String();
}

String stringWithCString(const char* bytes, size_t length, StringEncoding encoding) {
  return stringWithBytes(bytes, length, encoding);
}

String stringWithNullTerminatedCString(const char* bytes, StringEncoding encoding) {
  return bytes ? stringWithBytes(bytes, std::strlen(bytes), encoding) : String();
}

String stringWithCharacter(unichar character) { return String(std::u16string_view(&character, 1)); }

Data dataUsingEncoding(std::u16string_view text, StringEncoding encoding) {
  const auto encoder = asksForDetection(encoding) ? nullptr : encoderFor(textEncoding(encoding));
  if (!encoder) return Data();
  try {
    auto bytes = std::make_unique<std::string>();
    if (!encoder->encode(text, *bytes)) return Data();
    bytes->shrink_to_fit();
    return Data::withOwner(std::move(bytes), bytes->data(), bytes->size());
  } catch (const std::bad_alloc&) {
    return Data();
  }
}

StringEncoding fastestEncoding(const String& /*string*/) { return StringEncoding::UTF16; }

StringEncoding smallestEncoding(const String& string) {
  const bool fits = std::ranges::all_of(string.view(), [](unichar unit) { return unit < 0x80; });
  return fits ? StringEncoding::ASCII : StringEncoding::UTF16;
}

}  // namespace velan
