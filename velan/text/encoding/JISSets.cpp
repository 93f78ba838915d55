#include <algorithm>
#include <new>
#include <string_view>
#include <utility>

#include "velan/text/encoding/JISSetsInternal.h"

namespace velan {
namespace {

constexpr const char* kISO2022 = "ISO-2022-JP-1";
constexpr char kEscape = 0x1B;

// What selects the set for the pairs that follow.
constexpr std::string_view escapeOf(JISSet set) {
  return set == JISSet::X0212 ? "\x1B$(D" : set == JISSet::X0208 ? "\x1B$B" : "\x1B$@";
}

// These would select other sets.
constexpr bool isShift(uint8_t byte) { return byte == 0x0E || byte == 0x0F || byte == kEscape; }

constexpr bool belongsToPair(uint8_t byte) { return byte >= 0x21 && byte <= 0x7E; }

class JISDecoder final : public Decoder {
 public:
  JISDecoder(JISSet set, std::unique_ptr<Decoder> converter) : _set(set), _converter(std::move(converter)) {}

  DecodingStep decode(std::span<const uint8_t> bytes, bool last, unichar* units, size_t room,
                      int32_t* offsets) override {
    size_t at = 0;
    size_t written = 0;
    while (at < bytes.size()) {
      unichar character[kMostUnits] = {bytes[at]};
      size_t length = 1;
      size_t count = 1;
      if (bytes[at] >= 0x21 || isShift(bytes[at])) {
        const bool isCut = at + 1 == bytes.size() && belongsToPair(bytes[at]);
        if (isCut && !last) return {at, written, 0, DecodingStop::InputEnd};
        if (isCut) return {at + 1, written, 1, DecodingStop::Truncated};
        if (!belongsToPair(bytes[at]) || !belongsToPair(bytes[at + 1])) {
          return {at + 1, written, 1, DecodingStop::Malformed};
        }
        length = 2;
        count = decodePair(bytes[at], bytes[at + 1], character);
        if (count == 0) return {at + 2, written, 2, DecodingStop::Unassigned};
      }
      if (room - written < count) return {at, written, 0, DecodingStop::OutputFull};
      std::copy_n(character, count, units + written);
      if (offsets) std::fill_n(offsets + written, count, static_cast<int32_t>(at));
      at += length;
      written += count;
    }
    return {at, written, 0, DecodingStop::InputEnd};
  }

 private:
  static constexpr size_t kMostUnits = 2;

  size_t decodePair(uint8_t first, uint8_t second, unichar* units) {
    if (_set != JISSet::X0212 && !isRow(first)) return 0;
    const std::string_view escape = escapeOf(_set);
    uint8_t bytes[8];
    escape.copy(reinterpret_cast<char*>(bytes), escape.size());
    bytes[escape.size()] = first;
    bytes[escape.size() + 1] = second;
    const DecodingStep step = _converter->decode({bytes, escape.size() + 2}, true, units, kMostUnits, nullptr);
    return step.stop == DecodingStop::InputEnd ? step.written : 0;
  }

  // Outside of these ICU has characters that are no part of the sets.
  static bool isRow(uint8_t first) { return first <= 0x28 || (first >= 0x30 && first <= 0x74); }

  JISSet _set;
  std::unique_ptr<Decoder> _converter;
};

class JISEncoder final : public Encoder {
 public:
  JISEncoder(JISSet set, std::unique_ptr<Encoder> converter) : _set(set), _converter(std::move(converter)) {}

  bool encode(std::u16string_view text, std::string& bytes) override {
    std::string escaped;
    if (!_converter->encode(text, escaped)) return false;
    const std::string_view wanted = escapeOf(_set == JISSet::X0212 ? _set : JISSet::X0208);
    bool inSet = false;
    for (std::string_view rest = escaped; !rest.empty();) {
      if (rest[0] == kEscape) {
        inSet = rest.starts_with(wanted);
        rest.remove_prefix(std::min(rest.size(), inSet ? wanted.size() : kOtherEscape));
        continue;
      }
      if (!inSet && static_cast<uint8_t>(rest[0]) >= 0x21) return false;
      bytes.push_back(rest[0]);
      rest.remove_prefix(1);
    }
    return true;
  }

 private:
  static constexpr size_t kOtherEscape = 3;  // of a set whose characters are refused, or of ASCII

  JISSet _set;
  std::unique_ptr<Encoder> _converter;
};

}  // namespace

std::unique_ptr<Decoder> jisDecoder(JISSet set) {
  auto converter = icuDecoder(kISO2022);
  return std::unique_ptr<Decoder>(converter ? new (std::nothrow) JISDecoder(set, std::move(converter)) : nullptr);
}

std::unique_ptr<Encoder> jisEncoder(JISSet set) {
  auto converter = icuEncoder(kISO2022);
  return std::unique_ptr<Encoder>(converter ? new (std::nothrow) JISEncoder(set, std::move(converter)) : nullptr);
}

}  // namespace velan
