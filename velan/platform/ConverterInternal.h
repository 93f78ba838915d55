// Converters between bytes in some encoding and UTF-16: the form that all of them share, and the two engines of other
// libraries. A converter has state and belongs to one conversion; creating one is cheap.
#ifndef VELAN_PLATFORM_CONVERTER_INTERNAL_H
#define VELAN_PLATFORM_CONVERTER_INTERNAL_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "velan/base/CTypes.h"

namespace velan {

/// Why a decoder came back.
enum class DecodingStop : uint8_t {
  InputEnd,    // wants more bytes; those not consumed are to be given again with what follows
  OutputFull,  // wants more room
  Malformed,   // what was consumed ends with bytes that nobody may write in this encoding
  Truncated,   // what was consumed ends with the beginning of a sequence, and no more follows
  Unassigned,  // what was consumed ends with a well-formed code that stands for no character
};

struct DecodingStep {
  size_t consumed;  // bytes
  size_t written;   // units
  size_t rejected;  // bytes at the end of the consumed ones that gave no unit
  DecodingStop stop;
};

class Decoder {
 public:
  Decoder() = default;
  Decoder(const Decoder&) = delete;
  Decoder& operator=(const Decoder&) = delete;
  virtual ~Decoder() = default;

  /// The most units that one byte can give.
  virtual size_t unitsPerByte() const { return 1; }
  /// Decodes until something stops it, writing whole characters only; may be called again after every stop. `last`: no
  /// bytes follow these. Where `offsets` is not null it receives, for each unit, where its sequence begins in `bytes`
  /// (negative: in an earlier piece).
  virtual DecodingStep decode(std::span<const uint8_t> bytes, bool last, unichar* units, size_t room,
                              int32_t* offsets) = 0;
};

class Encoder {
 public:
  Encoder() = default;
  Encoder(const Encoder&) = delete;
  Encoder& operator=(const Encoder&) = delete;
  virtual ~Encoder() = default;

  /// Appends the bytes of the whole text. False when the encoding cannot express it; `bytes` is then of no use.
  virtual bool encode(std::u16string_view text, std::string& bytes) = 0;
};

/// What the codes 0x1A, 0x1C and 0x7F stand for. ICU takes them in turn for U+001C, U+007F and U+001A in code pages of
/// PCs, as mainframes once did; in texts they are what they are in ASCII.
enum class ControlCodes : uint8_t { AsInICU, AsInASCII };

/// A converter of ICU by its name there. Null when there is none, or too little memory.
std::unique_ptr<Decoder> icuDecoder(const char* name, ControlCodes controls = ControlCodes::AsInICU);
std::unique_ptr<Encoder> icuEncoder(const char* name, ControlCodes controls = ControlCodes::AsInICU);

/// A converter of the C library's `iconv` by its name there. It does not tell malformed from unassigned codes: a byte
/// below 0x80, or one that no byte from 0x80 up follows, counts as malformed. Null when there is none.
std::unique_ptr<Decoder> iconvDecoder(const char* name);
std::unique_ptr<Encoder> iconvEncoder(const char* name);

/// ICU's first name for the encoding that it knows as `alias`, however that is written; null when it knows none.
/// The name lives as long as the process.
const char* icuCanonicalName(const char* alias);

}  // namespace velan

#endif  // VELAN_PLATFORM_CONVERTER_INTERNAL_H
