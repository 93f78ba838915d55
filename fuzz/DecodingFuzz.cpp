// Any bytes in any encoding: in one go, in pieces and with offsets the same text comes out, strict reading refuses just
// what lenient reading replaces, and what is written of a text reads the same.
#include <algorithm>

#include "fuzz/FuzzTarget.h"
#include "velan/text/encoding/Decoding.h"
#include "velan/text/encoding/DecodingInternal.h"
#include "velan/text/encoding/EncodingTableInternal.h"
#include "velan/text/encoding/StringConversion.h"

using namespace velan;

namespace {

std::u16string inPieces(TextEncoding encoding, std::span<const uint8_t> bytes, size_t piece) {
  const auto decoder = decoderFor(encoding);
  std::u16string units(bytes.size() * decoder->unitsPerByte(), u'\0');
  const DecodingOutcome outcome =
      decodeInto(*decoder, bytes, Replaced::Everything, units.data(), units.size(), nullptr, piece);
  require(outcome.status == ConverterSuccess);
  units.resize(outcome.written);
  return units;
}

// After an escape sequence that means nothing ICU goes on otherwise where it came in pieces.
bool hasEscapes(TextEncoding encoding) {
  using enum TextEncoding;
  constexpr TextEncoding kEncodings[] = {ISO2022JP, ISO2022JP1, ISO2022JP2,  ISO2022JP3, ISO2022CN, ISO2022CNExt,
                                         ISO2022KR, HZGB2312,   IMAPMailbox, UTF7,       SCSU};
  return std::ranges::find(kEncodings, encoding) != std::end(kEncodings);
}

void checkDecoding(TextEncoding number, const Data& data, size_t piece) {
  if (!decoderFor(number)) return;
  const StringEncoding encoding = stringEncoding(number);
  const DecodedText lenient = decodedText(data, encoding, MalformedText::Replace);
  require(!lenient.text.isAbsent());
  const DecodedText strict = decodedText(data, encoding, MalformedText::Refuse);
  require(strict.text.isAbsent() == (lenient.malformed > 0));
  require(strict.text.isAbsent() || strict.text == lenient.text);
  std::u16string pieces = inPieces(number, data.span(), piece);
  if (number == TextEncoding::UTF8 && data.view().starts_with("\xEF\xBB\xBF")) pieces.erase(0, 1);
  require(pieces == lenient.text.view() || (hasEscapes(number) && lenient.malformed + lenient.unassigned > 0));
  std::vector<int32_t> offsets;
  require(decodedText(data, encoding, MalformedText::Replace, offsets).text == lenient.text);
  require(offsets.size() == lenient.text.view().size() + 1 && std::ranges::is_sorted(offsets));
  require(offsets.back() == static_cast<int32_t>(data.length()));
  if (lenient.malformed + lenient.unassigned > 0) return;
  // A control character that shifts cannot be written as itself.
  if (hasEscapes(number) && lenient.text.view().find_first_of(u"\x1B\x0E\x0F") != std::u16string_view::npos) return;
  if (lenient.text.view().starts_with(u'\xFEFF')) return;  // it would be read as a byte-order mark
  if (const Data written = dataUsingEncoding(lenient.text.view(), encoding)) {
    require(stringWithData(written, encoding) == lenient.text);
  }
}

}  // namespace

FUZZ_TARGET(decoding) {
  const auto entries = encodingEntries();
  const TextEncoding encoding = entries[input.takeByte() % entries.size()].encoding;
  const size_t piece = 1 + input.takeByte() % 32u;
  checkDecoding(encoding, input.data(), piece);
}
