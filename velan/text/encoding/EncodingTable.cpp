#include <algorithm>

#include "velan/text/encoding/EncodingTableInternal.h"
#include "velan/text/encoding/JISSetsInternal.h"
#include "velan/text/encoding/SingleBytePagesInternal.h"
#include "velan/text/encoding/UnicodeFormsInternal.h"

namespace velan {
namespace {

using enum TextEncoding;

const char* converterName(const EncodingEntry& entry) { return static_cast<const char*>(entry.argument); }

const SingleBytePage& page(const EncodingEntry& entry) { return *static_cast<const SingleBytePage*>(entry.argument); }

constexpr EncodingEntry icu(TextEncoding encoding, const char* name, const char* converter) {
  return {encoding, name, [](const EncodingEntry& entry) { return icuDecoder(converterName(entry)); },
          [](const EncodingEntry& entry) { return icuEncoder(converterName(entry)); }, converter};
}

constexpr EncodingEntry icu(TextEncoding encoding, const char* name) { return icu(encoding, name, name); }

constexpr EncodingEntry pc(TextEncoding encoding, const char* name, const char* converter) {
  return {encoding, name,
          [](const EncodingEntry& entry) { return icuDecoder(converterName(entry), ControlCodes::AsInASCII); },
          [](const EncodingEntry& entry) { return icuEncoder(converterName(entry), ControlCodes::AsInASCII); },
          converter};
}

constexpr EncodingEntry viaIconv(TextEncoding encoding, const char* name, const char* converter) {
  return {encoding, name, [](const EncodingEntry& entry) { return iconvDecoder(converterName(entry)); },
          [](const EncodingEntry& entry) { return iconvEncoder(converterName(entry)); }, converter};
}

constexpr EncodingEntry viaPage(TextEncoding encoding, const char* name, const SingleBytePage& page) {
  return {encoding, name, [](const EncodingEntry& entry) { return pageDecoder(velan::page(entry)); },
          [](const EncodingEntry& entry) { return pageEncoder(velan::page(entry)); }, &page};
}

template <JISSet set>
constexpr EncodingEntry jis(TextEncoding encoding, const char* name) {
  return {encoding, name, [](const EncodingEntry&) { return jisDecoder(set); },
          [](const EncodingEntry&) { return jisEncoder(set); }};
}

template <auto decoder, auto encoder>
constexpr EncodingEntry own(TextEncoding encoding, const char* name) {
  return {encoding, name, [](const EncodingEntry&) { return decoder(); },
          [](const EncodingEntry&) { return encoder(); }};
}

template <ByteOrder order>
constexpr EncodingEntry utf16(TextEncoding encoding, const char* name) {
  return {encoding, name, [](const EncodingEntry&) { return utf16Decoder(order, LoneSurrogates::Refuse); },
          [](const EncodingEntry&) { return utf16Encoder(order); }};
}

template <ByteOrder order>
constexpr EncodingEntry utf32(TextEncoding encoding, const char* name) {
  return {encoding, name, [](const EncodingEntry&) { return utf32Decoder(order); },
          [](const EncodingEntry&) { return utf32Encoder(order); }};
}

const EncodingEntry kEntries[] = {
    icu(MacRoman, "macintosh"),
    viaPage(MacArabic, "x-mac-arabic", kMacArabicPage),
    viaPage(MacHebrew, "x-mac-hebrew", kMacHebrewPage),
    icu(MacGreek, "x-mac-greek"),
    icu(MacCyrillic, "x-mac-cyrillic"),
    viaPage(MacThai, "x-mac-thai", kMacThaiPage),
    icu(MacCentralEurRoman, "x-mac-centraleurroman"),
    viaPage(MacSymbol, "x-mac-symbol", kMacSymbolPage),
    viaPage(MacDingbats, "x-mac-dingbats", kMacDingbatsPage),
    icu(MacTurkish, "x-mac-turkish"),
    viaPage(MacCroatian, "x-mac-croatian", kMacCroatianPage),
    viaPage(MacIcelandic, "x-mac-icelandic", kMacIcelandicPage),
    viaPage(MacRomanian, "x-mac-romanian", kMacRomanianPage),
    icu(MacUkrainian, "x-mac-ukrainian", "x-mac-cyrillic"),
    utf16<ByteOrder::FromMark>(UTF16, "UTF-16"),
    own<latin1Decoder, latin1Encoder>(ISOLatin1, "ISO-8859-1"),
    icu(ISOLatin2, "ISO-8859-2"),
    icu(ISOLatin3, "ISO-8859-3"),
    icu(ISOLatin4, "ISO-8859-4"),
    icu(ISOLatinCyrillic, "ISO-8859-5"),
    icu(ISOLatinArabic, "ISO-8859-6"),
    icu(ISOLatinGreek, "ISO-8859-7"),
    icu(ISOLatinHebrew, "ISO-8859-8"),
    icu(ISOLatin5, "ISO-8859-9"),
    icu(ISOLatin6, "ISO-8859-10"),
    icu(ISOLatinThai, "ISO-8859-11"),
    icu(ISOLatin7, "ISO-8859-13"),
    icu(ISOLatin8, "ISO-8859-14"),
    icu(ISOLatin9, "ISO-8859-15"),
    viaPage(ISOLatin10, "ISO-8859-16", kLatin10Page),
    pc(DOSLatinUS, "IBM437", "ibm-437"),
    pc(DOSGreek, "IBM737", "ibm-737"),
    pc(DOSBalticRim, "IBM775", "ibm-775"),
    pc(DOSLatin1, "IBM850", "ibm-850"),
    pc(DOSGreek1, "IBM851", "ibm-851"),
    pc(DOSLatin2, "IBM852", "ibm-852"),
    pc(DOSCyrillic, "IBM855", "ibm-855"),
    pc(DOSTurkish, "IBM857", "ibm-857"),
    pc(DOSPortuguese, "IBM860", "ibm-860"),
    pc(DOSIcelandic, "IBM861", "ibm-861"),
    pc(DOSHebrew, "IBM862", "ibm-862"),
    pc(DOSCanadianFrench, "IBM863", "ibm-863"),
    pc(DOSArabic, "IBM864", "ibm-864"),
    pc(DOSNordic, "IBM865", "ibm-865"),
    pc(DOSRussian, "IBM866", "ibm-866"),
    pc(DOSGreek2, "IBM869", "ibm-869"),
    icu(DOSThai, "windows-874"),
    pc(DOSJapanese, "Windows-31J", "windows-31j"),
    icu(DOSChineseSimplified, "windows-936"),
    icu(DOSKorean, "windows-949"),
    icu(DOSChineseTraditional, "windows-950"),
    icu(WindowsLatin1, "windows-1252"),
    icu(WindowsLatin2, "windows-1250"),
    icu(WindowsCyrillic, "windows-1251"),
    icu(WindowsGreek, "windows-1253"),
    icu(WindowsLatin5, "windows-1254"),
    icu(WindowsHebrew, "windows-1255"),
    icu(WindowsArabic, "windows-1256"),
    icu(WindowsBaltic, "windows-1257"),
    icu(WindowsVietnamese, "windows-1258"),
    viaIconv(WindowsKoreanJohab, "windows-1361", "JOHAB"),
    own<asciiDecoder, asciiEncoder>(ASCII, "US-ASCII"),
    viaPage(JISX0201_76, "JIS_X0201", kJisX0201Page),
    jis<JISSet::X0208>(JISX0208_83, "JIS_X0208-1983"),
    jis<JISSet::X0208>(JISX0208_90, "JIS_X0208-1990"),
    jis<JISSet::X0212>(JISX0212_90, "JIS_X0212-1990"),
    jis<JISSet::C6226>(JISC6226_78, "JIS_C6226-1978"),
    viaIconv(ShiftJISX0213, "Shift_JISX0213", "SHIFT_JISX0213"),
    icu(GB2312_80, "IBM5478", "ibm-5478"),
    icu(GBK, "GBK"),
    icu(GB18030, "GB18030", "gb18030"),
    icu(KSC5601_87, "IBM971", "ibm-971"),
    viaIconv(KSC5601_92_Johab, "JOHAB", "JOHAB"),
    icu(ISO2022JP, "ISO-2022-JP"),
    icu(ISO2022JP2, "ISO-2022-JP-2"),
    icu(ISO2022JP1, "ISO-2022-JP-1"),
    viaIconv(ISO2022JP3, "ISO-2022-JP-3", "ISO-2022-JP-3"),
    icu(ISO2022CN, "ISO-2022-CN"),
    icu(ISO2022CNExt, "ISO-2022-CN-EXT"),
    icu(ISO2022KR, "ISO-2022-KR"),
    icu(EUCJP, "EUC-JP"),
    icu(EUCCN, "GB2312"),
    icu(EUCTW, "EUC-TW"),
    icu(EUCKR, "EUC-KR"),
    pc(ShiftJIS, "Shift_JIS", "Shift_JIS"),
    icu(KOI8R, "KOI8-R"),
    icu(Big5, "Big5"),
    icu(HZGB2312, "HZ-GB-2312"),
    icu(Big5HKSCS, "Big5-HKSCS"),
    viaPage(VISCII, "VISCII", kVisciiPage),
    icu(KOI8U, "KOI8-U"),
    icu(IMAPMailbox, "IMAP-mailbox-name"),
    viaPage(NEXTSTEP, "x-nextstep", kNextStepPage),
    own<nonLossyASCIIDecoder, nonLossyASCIIEncoder>(NonLossyASCII, "x-nonlossy-ascii"),
    icu(EBCDIC037, "IBM037", "ibm-037"),
    viaPage(KOI8CS2, "koi8-cs2", kKoi8Cs2Page),
    viaPage(Kamenicky, "kamenicky", kKamenickyPage),
    icu(UTF7, "UTF-7"),
    own<utf8Decoder, utf8Encoder>(UTF8, "UTF-8"),
    utf32<ByteOrder::FromMark>(UTF32, "UTF-32"),
    utf16<ByteOrder::Big>(UTF16BigEndian, "UTF-16BE"),
    utf16<ByteOrder::Little>(UTF16LittleEndian, "UTF-16LE"),
    utf32<ByteOrder::Big>(UTF32BigEndian, "UTF-32BE"),
    utf32<ByteOrder::Little>(UTF32LittleEndian, "UTF-32LE"),
    icu(SCSU, "SCSU"),
};

}  // namespace

std::span<const EncodingEntry> encodingEntries() { return kEntries; }

const EncodingEntry* encodingEntry(TextEncoding encoding) {
  const auto* found = std::ranges::lower_bound(kEntries, encoding, {}, &EncodingEntry::encoding);
  return found != std::end(kEntries) && found->encoding == encoding ? found : nullptr;
}

std::unique_ptr<Decoder> decoderFor(TextEncoding encoding) {
  const EncodingEntry* entry = encodingEntry(encoding);
  return entry ? entry->decoder(*entry) : nullptr;
}

std::unique_ptr<Encoder> encoderFor(TextEncoding encoding) {
  const EncodingEntry* entry = encodingEntry(encoding);
  return entry ? entry->encoder(*entry) : nullptr;
}

}  // namespace velan
