#include <algorithm>
#include <array>
#include <new>

#include "velan/base/ASCII.h"
#include "velan/text/encoding/SingleBytePagesInternal.h"

namespace velan {
namespace {

class PageDecoder final : public Decoder {
 public:
  explicit PageDecoder(const SingleBytePage& page) : _page(page) {}

  DecodingStep decode(std::span<const uint8_t> bytes, bool /*last*/, unichar* units, size_t room,
                      int32_t* offsets) override {
    const size_t count = std::min(bytes.size(), room);
    for (size_t i = 0; i < count; ++i) {
      const unichar unit = _page.units[bytes[i]];
      if (unit == 0 && bytes[i] != 0) return {i + 1, i, 1, DecodingStop::Unassigned};
      units[i] = unit;
      if (offsets) offsets[i] = static_cast<int32_t>(i);
    }
    return {count, count, 0, count < bytes.size() ? DecodingStop::OutputFull : DecodingStop::InputEnd};
  }

 private:
  const SingleBytePage& _page;
};

class PageEncoder final : public Encoder {
 public:
  // By unit, then by code.
  explicit PageEncoder(const SingleBytePage& page) {
    for (size_t code = 0; code < 256; ++code) {
      const bool assigned = code == 0 || page.units[code] != 0;
      if (!assigned || page.unwritten.find(static_cast<char>(code)) != std::string_view::npos) continue;
      _codes[_count++] = {page.units[code], static_cast<uint8_t>(code)};
    }
    std::sort(_codes.begin(), _codes.begin() + _count);
  }

  bool encode(std::u16string_view text, std::string& bytes) override {
    for (const unichar unit : text) {
      const Code* end = _codes.data() + _count;
      const Code* found = std::lower_bound(static_cast<const Code*>(_codes.data()), end, Code{unit, 0});
      if (found == end || found->unit != unit) return false;
      bytes.push_back(static_cast<char>(found->code));
    }
    return true;
  }

 private:
  struct Code {
    unichar unit;
    uint8_t code;
    auto operator<=>(const Code&) const = default;
  };

  std::array<Code, 256> _codes;
  size_t _count = 0;
};

template <unsigned kCodes>
class LowestDecoder final : public Decoder {
 public:
  DecodingStep decode(std::span<const uint8_t> bytes, bool /*last*/, unichar* units, size_t room,
                      int32_t* offsets) override {
    const size_t count = std::min(bytes.size(), room);
    for (size_t i = 0; i < count; ++i) {
      if (bytes[i] >= kCodes) return {i + 1, i, 1, DecodingStop::Malformed};
      units[i] = bytes[i];
      if (offsets) offsets[i] = static_cast<int32_t>(i);
    }
    return {count, count, 0, count < bytes.size() ? DecodingStop::OutputFull : DecodingStop::InputEnd};
  }
};

template <unsigned kCodes>
class LowestEncoder final : public Encoder {
 public:
  bool encode(std::u16string_view text, std::string& bytes) override {
    const size_t start = bytes.size();
    bytes.resize(start + text.size());
    unichar all = 0;
    for (size_t i = 0; i < text.size(); ++i) {
      all |= text[i];
      bytes[start + i] = static_cast<char>(text[i]);
    }
    return all < kCodes;
  }
};

class NonLossyASCIIDecoder final : public Decoder {
 public:
  DecodingStep decode(std::span<const uint8_t> bytes, bool last, unichar* units, size_t room,
                      int32_t* offsets) override {
    size_t at = 0;
    for (size_t written = 0;; ++written) {
      if (at == bytes.size()) return {at, written, 0, DecodingStop::InputEnd};
      const Escape escape = escapeAt(bytes.subspan(at));
      if (escape.stop == DecodingStop::Truncated && !last) return {at, written, 0, DecodingStop::InputEnd};
      if (escape.stop != DecodingStop::InputEnd) {
        return {at + escape.length, written, escape.length, escape.stop};
      }
      if (written == room) return {at, written, 0, DecodingStop::OutputFull};
      if (offsets) offsets[written] = static_cast<int32_t>(at);
      units[written] = escape.unit;
      at += escape.length;
    }
  }

 private:
  struct Escape {
    DecodingStop stop;
    size_t length;
    unichar unit;
  };

  static Escape escapeAt(std::span<const uint8_t> bytes) {
    constexpr Escape kMalformed{DecodingStop::Malformed, 1, 0};
    if (bytes[0] >= 0x80) return kMalformed;
    if (bytes[0] != '\\') return {DecodingStop::InputEnd, 1, bytes[0]};
    if (bytes.size() == 1) return {DecodingStop::Truncated, 1, 0};
    if (bytes[1] == '\\') return {DecodingStop::InputEnd, 2, u'\\'};
    const bool hexadecimal = bytes[1] == 'u';
    const size_t first = hexadecimal ? 2 : 1;
    const size_t end = hexadecimal ? 6 : 4;
    uint32_t value = 0;
    for (size_t i = first; i < end; ++i) {
      if (i == bytes.size()) return {DecodingStop::Truncated, i, 0};
      const int digit = hexadecimalDigitValue(bytes[i]);
      if (digit < 0 || (!hexadecimal && digit > 7)) return kMalformed;
      value = value * (hexadecimal ? 16 : 8) + static_cast<uint32_t>(digit);
    }
    if (!hexadecimal && value > 0xFF) return kMalformed;
    return {DecodingStop::InputEnd, end, static_cast<unichar>(value)};
  }
};

class NonLossyASCIIEncoder final : public Encoder {
 public:
  bool encode(std::u16string_view text, std::string& bytes) override {
    for (const unichar unit : text) {
      if (unit == '\\') {
        bytes += "\\\\";
      } else if (unit < 0x80) {
        bytes.push_back(static_cast<char>(unit));
      } else if (unit <= 0xFF) {
        bytes.push_back('\\');
        for (int shift = 6; shift >= 0; shift -= 3) bytes.push_back(static_cast<char>('0' + ((unit >> shift) & 7)));
      } else {
        bytes += "\\u";
        for (int shift = 12; shift >= 0; shift -= 4) bytes.push_back(lowerHexadecimalDigit(unit >> shift));
      }
    }
    return true;
  }
};

template <typename Base, typename Converter, typename... Arguments>
std::unique_ptr<Base> made(const Arguments&... arguments) {
  return std::unique_ptr<Base>(new (std::nothrow) Converter(arguments...));
}

}  // namespace

std::unique_ptr<Decoder> pageDecoder(const SingleBytePage& page) { return made<Decoder, PageDecoder>(page); }
std::unique_ptr<Encoder> pageEncoder(const SingleBytePage& page) { return made<Encoder, PageEncoder>(page); }
std::unique_ptr<Decoder> asciiDecoder() { return made<Decoder, LowestDecoder<0x80>>(); }
std::unique_ptr<Encoder> asciiEncoder() { return made<Encoder, LowestEncoder<0x80>>(); }
std::unique_ptr<Decoder> latin1Decoder() { return made<Decoder, LowestDecoder<0x100>>(); }
std::unique_ptr<Encoder> latin1Encoder() { return made<Encoder, LowestEncoder<0x100>>(); }
std::unique_ptr<Decoder> nonLossyASCIIDecoder() { return made<Decoder, NonLossyASCIIDecoder>(); }
std::unique_ptr<Encoder> nonLossyASCIIEncoder() { return made<Encoder, NonLossyASCIIEncoder>(); }

}  // namespace velan
