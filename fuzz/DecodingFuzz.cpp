// Any bytes in any encoding: in one go, in pieces and with offsets the same text comes out, strict reading refuses just
// what lenient reading replaces, and what is written of a text reads the same. UTF-8 also through every kernel.
#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "velan/base/utf/UTFKernelsInternal.h"
#include "velan/text/encoding/Decoding.h"
#include "velan/text/encoding/DecodingInternal.h"
#include "velan/text/encoding/EncodingTableInternal.h"
#include "velan/text/encoding/StringConversion.h"

namespace velan {
namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

void checkKernels(std::span<const uint8_t> bytes) {
  std::vector<unichar> expected(bytes.size());
  const Transcoded reference = utfKernels().reference().toUTF16(bytes.data(), bytes.size(), expected.data());
  for (const auto& kernel : utfKernels()) {
    std::vector<unichar> units(bytes.size());
    const Transcoded result = kernel.run.toUTF16(bytes.data(), bytes.size(), units.data());
    require(result.consumed == reference.consumed && result.written == reference.written);
    require(std::equal(units.begin(), units.begin() + static_cast<std::ptrdiff_t>(result.written), expected.begin()));
  }
}

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

void checkDecoding(TextEncoding number, std::span<const uint8_t> bytes, size_t piece) {
  if (!decoderFor(number)) return;
  const StringEncoding encoding = stringEncoding(number);
  const Data data = Data::withBytes(bytes.data(), bytes.size());
  const DecodedText lenient = decodedText(data, encoding, MalformedText::Replace);
  require(!lenient.text.isAbsent());
  const DecodedText strict = decodedText(data, encoding, MalformedText::Refuse);
  require(strict.text.isAbsent() == (lenient.malformed > 0));
  require(strict.text.isAbsent() || strict.text == lenient.text);
  std::u16string pieces = inPieces(number, bytes, piece);
  if (number == TextEncoding::UTF8 && bytes.size() >= 3 && data.view().starts_with("\xEF\xBB\xBF")) pieces.erase(0, 1);
  require(pieces == lenient.text.view() || (hasEscapes(number) && lenient.malformed + lenient.unassigned > 0));
  std::vector<int32_t> offsets;
  require(decodedText(data, encoding, MalformedText::Replace, offsets).text == lenient.text);
  require(offsets.size() == lenient.text.view().size() + 1 && std::ranges::is_sorted(offsets));
  if (lenient.malformed + lenient.unassigned > 0) return;
  // A control character that shifts cannot be written as itself.
  if (hasEscapes(number) && lenient.text.view().find_first_of(u"\x1B\x0E\x0F") != std::u16string_view::npos) return;
  if (lenient.text.view().starts_with(u'\xFEFF')) return;  // it would be read as a byte-order mark
  if (const Data written = dataUsingEncoding(lenient.text.view(), encoding)) {
    require(stringWithData(written, encoding) == lenient.text);
  }
}

}  // namespace
}  // namespace velan

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t length) {
  using namespace velan;
  if (length < 2) return 0;
  const auto entries = encodingEntries();
  const std::span<const uint8_t> rest(bytes + 2, length - 2);
  checkDecoding(entries[bytes[0] % entries.size()].encoding, rest, 1 + bytes[1] % 32u);
  checkKernels(rest);
  return 0;
}
