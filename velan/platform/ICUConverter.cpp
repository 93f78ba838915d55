#include <unicode/ucnv.h>

#include <algorithm>
#include <climits>
#include <iterator>
#include <new>

#include "velan/platform/ConverterInternal.h"

namespace velan {
namespace {

// ICU counts bytes in 32 bits.
constexpr size_t kMostBytes = 1u << 30;

using Converter = std::unique_ptr<UConverter, decltype(&ucnv_close)>;

Converter opened(const char* name) {
  UErrorCode error = U_ZERO_ERROR;
  Converter converter(ucnv_open(name, &error), ucnv_close);
  if (U_FAILURE(error)) converter.reset();
  return converter;
}

constexpr unichar kTurn[] = {0x1A, 0x1C, 0x7F};

// What stands in the turn one place before or after the unit.
unichar turned(unichar unit, size_t places) {
  const auto* found = std::find(std::begin(kTurn), std::end(kTurn), unit);
  return found == std::end(kTurn) ? unit : kTurn[(static_cast<size_t>(found - kTurn) + places) % std::size(kTurn)];
}

constexpr size_t kForward = 1;
constexpr size_t kBack = 2;

// With the callback that stops, ICU hands every code without a character back, and can go on behind it.
class ICUDecoder final : public Decoder {
 public:
  ICUDecoder(Converter converter, ControlCodes controls) : _converter(std::move(converter)), _controls(controls) {
    UErrorCode error = U_ZERO_ERROR;
    ucnv_setToUCallBack(_converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
    ucnv_setFallback(_converter.get(), false);
  }

  // SCSU has windows whose characters are pairs.
  size_t unitsPerByte() const override { return ucnv_getType(_converter.get()) == UCNV_SCSU ? 2 : 1; }

  DecodingStep decode(std::span<const uint8_t> bytes, bool last, unichar* units, size_t room,
                      int32_t* offsets) override {
    const size_t count = std::min(bytes.size(), kMostBytes);
    const auto* begin = reinterpret_cast<const char*>(bytes.data());
    const char* source = begin;
    unichar* target = units;
    UErrorCode error = U_ZERO_ERROR;
    ucnv_toUnicode(_converter.get(), &target, units + room, &source, begin + count, offsets,
                   last && count == bytes.size(), &error);
    if (_controls == ControlCodes::AsInASCII) {
      std::transform(units, target, units, [](unichar unit) { return turned(unit, kBack); });
    }
    DecodingStep step{static_cast<size_t>(source - begin), static_cast<size_t>(target - units), 0, stopFor(error)};
    if (step.stop != DecodingStop::InputEnd && step.stop != DecodingStop::OutputFull) {
      char invalid[UCHAR_MAX + 1];
      int8_t length = INT8_MAX;
      error = U_ZERO_ERROR;
      ucnv_getInvalidChars(_converter.get(), invalid, &length, &error);
      if (U_SUCCESS(error)) step.rejected = static_cast<size_t>(std::max<int8_t>(length, 0));
    }
    return step;
  }

 private:
  static DecodingStop stopFor(UErrorCode error) {
    if (U_SUCCESS(error)) return DecodingStop::InputEnd;
    if (error == U_BUFFER_OVERFLOW_ERROR) return DecodingStop::OutputFull;
    if (error == U_INVALID_CHAR_FOUND) return DecodingStop::Unassigned;
    return error == U_TRUNCATED_CHAR_FOUND ? DecodingStop::Truncated : DecodingStop::Malformed;
  }

  Converter _converter;
  ControlCodes _controls;
};

class ICUEncoder final : public Encoder {
 public:
  ICUEncoder(Converter converter, ControlCodes controls) : _converter(std::move(converter)), _controls(controls) {
    UErrorCode error = U_ZERO_ERROR;
    ucnv_setFromUCallBack(_converter.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
    ucnv_setFallback(_converter.get(), false);
  }

  bool encode(std::u16string_view text, std::string& bytes) override {
    if (_controls == ControlCodes::AsInICU ||
        text.find_first_of(std::u16string_view(kTurn, std::size(kTurn))) == text.npos) {
      return encodeAsInICU(text, bytes);
    }
    std::u16string turnedText(text);
    for (unichar& unit : turnedText) unit = turned(unit, kForward);
    return encodeAsInICU(turnedText, bytes);
  }

 private:
  bool encodeAsInICU(std::u16string_view text, std::string& bytes) {
    const unichar* source = text.data();
    const unichar* end = source + text.size();
    char piece[8192];
    UErrorCode error = U_BUFFER_OVERFLOW_ERROR;
    while (error == U_BUFFER_OVERFLOW_ERROR || source < end) {
      const unichar* limit = source + std::min<size_t>(static_cast<size_t>(end - source), kMostBytes / 2);
      char* target = piece;
      error = U_ZERO_ERROR;
      ucnv_fromUnicode(_converter.get(), &target, piece + sizeof piece, &source, limit, nullptr, limit == end, &error);
      bytes.append(piece, static_cast<size_t>(target - piece));
      if (U_FAILURE(error) && error != U_BUFFER_OVERFLOW_ERROR) return false;
    }
    return true;
  }

  Converter _converter;
  ControlCodes _controls;
};

}  // namespace

std::unique_ptr<Decoder> icuDecoder(const char* name, ControlCodes controls) {
  Converter converter = opened(name);
  return std::unique_ptr<Decoder>(converter ? new (std::nothrow) ICUDecoder(std::move(converter), controls) : nullptr);
}

std::unique_ptr<Encoder> icuEncoder(const char* name, ControlCodes controls) {
  Converter converter = opened(name);
  return std::unique_ptr<Encoder>(converter ? new (std::nothrow) ICUEncoder(std::move(converter), controls) : nullptr);
}

const char* icuCanonicalName(const char* alias) {
  UErrorCode error = U_ZERO_ERROR;
  const char* name = ucnv_getAlias(alias, 0, &error);
  return U_SUCCESS(error) ? name : nullptr;
}

}  // namespace velan
