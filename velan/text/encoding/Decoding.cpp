#include "velan/text/encoding/Decoding.h"

#include <algorithm>

#include "velan/base/utf/UTF.h"
#include "velan/text/encoding/DecodingInternal.h"
#include "velan/text/encoding/EncodingTableInternal.h"

namespace velan {
namespace {

constexpr unichar kReplacement = 0xFFFD;

bool isReplaced(DecodingStop stop, Replaced replaced) {
  return replaced == Replaced::Everything || (replaced == Replaced::Unassigned && stop == DecodingStop::Unassigned);
}

int32_t statusFor(DecodingStop stop) {
  switch (stop) {
    case DecodingStop::OutputFull:
      return ConverterOutputFull;
    case DecodingStop::Malformed:
      return ConverterMalformedInput;
    case DecodingStop::Truncated:
      return ConverterPartialCharacter;
    case DecodingStop::Unassigned:
      return ConverterUnassignedCode;
    case DecodingStop::InputEnd:
      break;
  }
  return ConverterSuccess;
}

// Offsets within a piece become offsets within the whole.
void shiftOffsets(int32_t* offsets, size_t count, size_t start) {
  for (size_t i = 0; i < count; ++i) {
    offsets[i] = static_cast<int32_t>(std::max<int64_t>(static_cast<int64_t>(start) + offsets[i], 0));
  }
}

}  // namespace

DecodingOutcome decodeInto(Decoder& decoder, std::span<const uint8_t> bytes, Replaced replaced, unichar* units,
                           size_t room, int32_t* offsets, size_t piece) {
  DecodingOutcome outcome{ConverterSuccess};
  size_t at = 0;
  size_t grown = 0;  // by what a decoder left behind, so that it sees more next time
  for (;;) {
    const size_t rest = bytes.size() - at;
    const size_t count = rest - std::min(grown, rest) < piece ? rest : piece + grown;
    const bool last = count == rest;
    int32_t* stepOffsets = offsets ? offsets + outcome.written : nullptr;
    const DecodingStep step =
        decoder.decode(bytes.subspan(at, count), last, units + outcome.written, room - outcome.written, stepOffsets);
    if (offsets) shiftOffsets(stepOffsets, step.written, at);
    outcome.written += step.written;
    at += step.consumed;
    grown = count - step.consumed;
    if (step.stop == DecodingStop::InputEnd) {
      if (last) return outcome;
      continue;
    }
    grown = 0;
    if (step.stop == DecodingStop::OutputFull || !isReplaced(step.stop, replaced)) {
      outcome.status = statusFor(step.stop);
      return outcome;
    }
    if (outcome.written == room) {
      outcome.status = ConverterOutputFull;
      return outcome;
    }
    if (offsets) offsets[outcome.written] = static_cast<int32_t>(at - std::min(at, step.rejected));
    units[outcome.written++] = kReplacement;
    ++(step.stop == DecodingStop::Unassigned ? outcome.unassigned : outcome.malformed);
    if (step.stop == DecodingStop::Truncated && at == bytes.size()) return outcome;
  }
}

size_t utf8MarkLength(std::string_view bytes, StringEncoding encoding) {
  constexpr std::string_view kMark = "\xEF\xBB\xBF";
  return textEncoding(encoding) == TextEncoding::UTF8 && bytes.starts_with(kMark) ? kMark.size() : 0;
}

size_t DecodedText::wellFormedNonASCII() const {
  const auto units = text.view();
  const auto characters =
      std::count_if(units.begin(), units.end(), [](unichar unit) { return unit >= 0x80 && !isLowSurrogate(unit); });
  return static_cast<size_t>(characters) - malformed;
}

namespace {

DecodedText decoded(const Data& bytes, StringEncoding encoding, MalformedText malformed,
                    std::vector<int32_t>* offsets) {
  DecodedText result;
  const auto decoder = asksForDetection(encoding) ? nullptr : decoderFor(textEncoding(encoding));
  if (!decoder || bytes.isAbsent() || (offsets && bytes.length() > INT32_MAX)) return result;
  const size_t start = utf8MarkLength(bytes.view(), encoding);
  const size_t room = (bytes.length() - start) * decoder->unitsPerByte();
  if (offsets) offsets->resize(room + 1);
  const auto fill = [&](unichar* units) -> int64_t {
    const Replaced replaced = malformed == MalformedText::Replace ? Replaced::Everything : Replaced::Unassigned;
    const DecodingOutcome outcome =
        decodeInto(*decoder, bytes.span().subspan(start), replaced, units, room, offsets ? offsets->data() : nullptr);
    result.malformed = outcome.malformed;
    result.unassigned = outcome.unassigned;
    return outcome.status == ConverterSuccess ? static_cast<int64_t>(outcome.written) : -1;
  };
  result.text = String::filled(static_cast<int64_t>(room), fill);
  if (offsets) {
    const auto length = static_cast<size_t>(result.text.length());
    shiftOffsets(offsets->data(), length, start);
    (*offsets)[length] = static_cast<int32_t>(bytes.length());
    offsets->resize(length + 1);
  }
  return result;
}

}  // namespace

DecodedText decodedText(const Data& bytes, StringEncoding encoding, MalformedText malformed) {
  return decoded(bytes, encoding, malformed, nullptr);
}

DecodedText decodedText(const Data& bytes, StringEncoding encoding, MalformedText malformed,
                        std::vector<int32_t>& offsets) {
  return decoded(bytes, encoding, malformed, &offsets);
}

}  // namespace velan
