// Encodings of one byte for each character that no other library here knows; make_single_byte_pages.py writes them.
#ifndef VELAN_TEXT_ENCODING_SINGLE_BYTE_PAGES_INTERNAL_H
#define VELAN_TEXT_ENCODING_SINGLE_BYTE_PAGES_INTERNAL_H

#include <memory>
#include <string_view>

#include "velan/platform/ConverterInternal.h"

namespace velan {

struct SingleBytePage {
  unichar units[256];          // 0 for a code that is not assigned, except code 0
  std::string_view unwritten;  // codes that are read but never written, because another means the same
};

extern const SingleBytePage kNextStepPage;
extern const SingleBytePage kMacSymbolPage;
extern const SingleBytePage kMacDingbatsPage;
extern const SingleBytePage kMacCroatianPage;
extern const SingleBytePage kMacRomanianPage;
extern const SingleBytePage kMacIcelandicPage;
extern const SingleBytePage kMacArabicPage;
extern const SingleBytePage kMacHebrewPage;
extern const SingleBytePage kMacThaiPage;
extern const SingleBytePage kLatin10Page;
extern const SingleBytePage kVisciiPage;
extern const SingleBytePage kJisX0201Page;
extern const SingleBytePage kKoi8Cs2Page;
extern const SingleBytePage kKamenickyPage;

/// Where two codes give the same character the lower one is written.
std::unique_ptr<Decoder> pageDecoder(const SingleBytePage& page);
std::unique_ptr<Encoder> pageEncoder(const SingleBytePage& page);

/// The first 128 or 256 characters of Unicode; anything from 0x80 up is malformed in ASCII.
std::unique_ptr<Decoder> asciiDecoder();
std::unique_ptr<Decoder> latin1Decoder();
std::unique_ptr<Encoder> asciiEncoder();
std::unique_ptr<Encoder> latin1Encoder();

/// ASCII in which backslashes stand for more: `\\` itself, `\ooo` (octal) for U+0080 to U+00FF, `\uxxxx` for any other
/// unit; another one is malformed.
std::unique_ptr<Decoder> nonLossyASCIIDecoder();
std::unique_ptr<Encoder> nonLossyASCIIEncoder();

}  // namespace velan

#endif  // VELAN_TEXT_ENCODING_SINGLE_BYTE_PAGES_INTERNAL_H
