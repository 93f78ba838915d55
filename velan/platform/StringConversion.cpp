#include "velan/platform/StringConversion.h"

#include <unicode/ucnv.h>

#include <algorithm>
#include <climits>
#include <iterator>
#include <memory>
#include <string>

#include "velan/base/ByteOrder.h"
#include "velan/base/MutableData.h"
#include "velan/base/UTF.h"

namespace velan {
namespace {

struct Converter {
  uint32_t encoding;
  const char* name;
};

// By number. The second half counts from 0x80000000.
constexpr Converter kConverters[] = {
    {3, "EUC-JP"},
    {8, "windows-31j"},
    {9, "ISO-8859-2"},
    {11, "windows-1251"},
    {12, "windows-1252"},
    {13, "windows-1253"},
    {14, "windows-1254"},
    {15, "windows-1250"},
    {21, "ISO-2022-JP"},
    {30, "macintosh"},
    {0x80000000, "macintosh"},
    {0x80000006, "x-mac-greek"},
    {0x80000007, "x-mac-cyrillic"},
    {0x8000001D, "x-mac-centraleurroman"},
    {0x80000023, "x-mac-turkish"},
    {0x80000201, "ISO-8859-1"},
    {0x80000202, "ISO-8859-2"},
    {0x80000203, "ISO-8859-3"},
    {0x80000204, "ISO-8859-4"},
    {0x80000205, "ISO-8859-5"},
    {0x80000206, "ISO-8859-6"},
    {0x80000207, "ISO-8859-7"},
    {0x80000208, "ISO-8859-8"},
    {0x80000209, "ISO-8859-9"},
    {0x8000020A, "ISO-8859-10"},
    {0x8000020B, "ISO-8859-11"},
    {0x8000020D, "ISO-8859-13"},
    {0x8000020E, "ISO-8859-14"},
    {0x8000020F, "ISO-8859-15"},
    {0x80000400, "ibm-437"},
    {0x80000410, "ibm-850"},
    {0x80000412, "ibm-852"},
    {0x80000420, "windows-31j"},
    {0x80000421, "windows-936"},
    {0x80000422, "windows-949"},
    {0x80000423, "windows-950"},
    {0x80000500, "windows-1252"},
    {0x80000501, "windows-1250"},
    {0x80000502, "windows-1251"},
    {0x80000503, "windows-1253"},
    {0x80000504, "windows-1254"},
    {0x80000505, "windows-1255"},
    {0x80000506, "windows-1256"},
    {0x80000507, "windows-1257"},
    {0x80000508, "windows-1258"},
    {0x80000600, "US-ASCII"},
    {0x80000631, "GBK"},
    {0x80000632, "gb18030"},
    {0x80000820, "ISO-2022-JP"},
    {0x80000840, "ISO-2022-KR"},
    {0x80000920, "EUC-JP"},
    {0x80000930, "GB2312"},
    {0x80000931, "EUC-TW"},
    {0x80000940, "EUC-KR"},
    {0x80000A01, "Shift_JIS"},
    {0x80000A02, "KOI8-R"},
    {0x80000A03, "Big5"},
    {0x80000A06, "Big5-HKSCS"},
    {0x80000A08, "KOI8-U"},
    {0x84000100, "UTF-7"},
    {0x98000100, "UTF-32BE"},
    {0x9C000100, "UTF-32LE"},
};

const char* converterName(uint32_t encoding) {
  const auto* found = std::lower_bound(std::begin(kConverters), std::end(kConverters), encoding,
                                       [](const Converter& entry, uint32_t number) { return entry.encoding < number; });
  return found != std::end(kConverters) && found->encoding == encoding ? found->name : nullptr;
}

Data bytesThroughConverter(std::u16string_view text, const char* name, std::string_view mark) {
  if (!name || text.size() > INT32_MAX / 8) return Data();
  UErrorCode error = U_ZERO_ERROR;
  const std::unique_ptr<UConverter, decltype(&ucnv_close)> converter(ucnv_open(name, &error), ucnv_close);
  if (U_FAILURE(error)) return Data();
  error = U_ZERO_ERROR;
  ucnv_setFromUCallBack(converter.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
  ucnv_setFallback(converter.get(), false);
  std::string bytes(mark);
  bytes.resize(mark.size() + static_cast<size_t>(UCNV_GET_MAX_BYTES_FOR_STRING(static_cast<int64_t>(text.size()),
                                                                               ucnv_getMaxCharSize(converter.get()))));
  const int32_t count =
      ucnv_fromUChars(converter.get(), bytes.data() + mark.size(), static_cast<int32_t>(bytes.size() - mark.size()),
                      text.data(), static_cast<int32_t>(text.size()), &error);
  return U_FAILURE(error) ? Data() : Data::withBytes(bytes.data(), mark.size() + static_cast<size_t>(count));
}

// One byte for each unit below `end`; nothing when there are others.
Data narrowBytes(std::u16string_view text, unichar end) {
  MutableData bytes;
  bytes.setLength(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] >= end) return Data();
    bytes.mutableBytes()[i] = static_cast<uint8_t>(text[i]);
  }
  return bytes.takeData();
}

Data unitBytes(std::u16string_view text, bool bigEndian, bool mark) {
  MutableData bytes;
  bytes.setLength(2 * (text.size() + (mark ? 1 : 0)));
  uint8_t* next = bytes.mutableBytes();
  const auto put = [&next, bigEndian](uint16_t c) {
    bigEndian ? storeBigEndian(next, c) : storeLittleEndian(next, c);
    next += sizeof c;
  };
  if (mark) put(0xFEFF);
  for (const unichar c : text) put(c);
  return bytes.takeData();
}

}  // namespace

Data dataUsingEncoding(std::u16string_view text, StringEncoding encoding) {
  if (encoding == stringEncoding(0x08000100)) encoding = StringEncoding::UTF8;
  if (encoding == stringEncoding(0x100)) encoding = StringEncoding::UTF16;
  switch (encoding) {
    case StringEncoding::ASCII:
      return narrowBytes(text, 0x80);
    case StringEncoding::Latin1:
      return narrowBytes(text, 0x100);
    case StringEncoding::UTF8: {
      const auto bytes = utf8FromUTF16(text);
      return bytes ? Data::withBytes(*bytes) : Data();
    }
    case StringEncoding::UTF16:
      return unitBytes(text, false, true);
    case StringEncoding::UTF16BigEndian:
      return unitBytes(text, true, false);
    case StringEncoding::UTF16LittleEndian:
      return unitBytes(text, false, false);
    case StringEncoding::UTF32:
      return bytesThroughConverter(text, "UTF-32LE", std::string_view("\xFF\xFE\0\0", 4));
    default:
      return bytesThroughConverter(text, converterName(static_cast<uint32_t>(encoding)), {});
  }
}

}  // namespace velan
