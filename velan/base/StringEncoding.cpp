#include "velan/base/StringEncoding.h"

namespace velan {
namespace {

struct SmallNumber {
  StringEncoding encoding;
  TextEncoding converter;
};

constexpr SmallNumber kSmallNumbers[] = {
    {StringEncoding::ASCII, TextEncoding::ASCII},
    {StringEncoding::NeXTSTEP, TextEncoding::NEXTSTEP},
    {StringEncoding::EUCJapanese, TextEncoding::EUCJP},
    {StringEncoding::UTF8, TextEncoding::UTF8},
    {StringEncoding::Latin1, TextEncoding::ISOLatin1},
    {StringEncoding::Symbol, TextEncoding::MacSymbol},
    {StringEncoding::NonLossyASCII, TextEncoding::NonLossyASCII},
    {StringEncoding::ShiftJIS, TextEncoding::DOSJapanese},
    {StringEncoding::Latin2, TextEncoding::ISOLatin2},
    {StringEncoding::UTF16, TextEncoding::UTF16},
    {StringEncoding::WindowsCyrillic, TextEncoding::WindowsCyrillic},
    {StringEncoding::WindowsLatin1, TextEncoding::WindowsLatin1},
    {StringEncoding::WindowsGreek, TextEncoding::WindowsGreek},
    {StringEncoding::WindowsTurkish, TextEncoding::WindowsLatin5},
    {StringEncoding::WindowsLatin2, TextEncoding::WindowsLatin2},
    {StringEncoding::ISO2022Japanese, TextEncoding::ISO2022JP},
    {StringEncoding::MacRoman, TextEncoding::MacRoman},
};

constexpr uint32_t kConverterNumber = 0x80000000u;

}  // namespace

StringEncoding stringEncoding(TextEncoding encoding) {
  for (const SmallNumber& small : kSmallNumbers) {
    if (small.converter == encoding) return small.encoding;
  }
  return static_cast<StringEncoding>(kConverterNumber | static_cast<uint32_t>(encoding));
}

TextEncoding textEncoding(StringEncoding encoding) {
  for (const SmallNumber& small : kSmallNumbers) {
    if (small.encoding == encoding) return small.converter;
  }
  const auto number = static_cast<uint32_t>(encoding);
  if (number < kConverterNumber || asksForDetection(encoding)) return TextEncoding::Invalid;
  return static_cast<TextEncoding>(number & ~kConverterNumber);
}

}  // namespace velan
