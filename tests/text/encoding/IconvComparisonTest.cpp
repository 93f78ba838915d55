// Every code of every encoding that the C library's iconv knows too. docs/encodings.md explains the differences; their
// numbers are properties of the test's report (--gtest_output=xml).
#include <gtest/gtest.h>
#include <iconv.h>

#include <cstdint>
#include <string>

#include "tests/text/encoding/EncodingCodes.h"
#include "velan/text/encoding/EncodingTableInternal.h"

namespace velan {
namespace {

// What iconv calls it, and the most codes that either side alone has or that both read otherwise.
struct Peer {
  TextEncoding encoding;
  const char* name;
  size_t differences;
};

constexpr Peer kPeers[] = {
    {TextEncoding::MacRoman, "MACINTOSH", 2},
    {TextEncoding::MacCyrillic, "MAC-CYRILLIC", 1},
    {TextEncoding::MacCentralEurRoman, "MAC-CENTRALEUROPE", 0},
    {TextEncoding::MacIcelandic, "MAC-IS", 12},
    {TextEncoding::MacUkrainian, "MAC-UK", 1},
    {TextEncoding::ISOLatin1, "ISO-8859-1", 0},
    {TextEncoding::ISOLatin2, "ISO-8859-2", 0},
    {TextEncoding::ISOLatin3, "ISO-8859-3", 0},
    {TextEncoding::ISOLatin4, "ISO-8859-4", 0},
    {TextEncoding::ISOLatinCyrillic, "ISO-8859-5", 0},
    {TextEncoding::ISOLatinArabic, "ISO-8859-6", 0},
    {TextEncoding::ISOLatinGreek, "ISO-8859-7", 0},
    {TextEncoding::ISOLatinHebrew, "ISO-8859-8", 0},
    {TextEncoding::ISOLatin5, "ISO-8859-9", 0},
    {TextEncoding::ISOLatin6, "ISO-8859-10", 0},
    {TextEncoding::ISOLatinThai, "ISO-8859-11", 0},
    {TextEncoding::ISOLatin7, "ISO-8859-13", 0},
    {TextEncoding::ISOLatin8, "ISO-8859-14", 0},
    {TextEncoding::ISOLatin9, "ISO-8859-15", 0},
    {TextEncoding::ISOLatin10, "ISO-8859-16", 0},
    {TextEncoding::DOSLatinUS, "IBM437", 1},
    {TextEncoding::DOSBalticRim, "IBM775", 0},
    {TextEncoding::DOSLatin1, "IBM850", 0},
    {TextEncoding::DOSGreek1, "IBM851", 3},
    {TextEncoding::DOSLatin2, "IBM852", 1},
    {TextEncoding::DOSCyrillic, "IBM855", 0},
    {TextEncoding::DOSTurkish, "IBM857", 0},
    {TextEncoding::DOSPortuguese, "IBM860", 1},
    {TextEncoding::DOSIcelandic, "IBM861", 1},
    {TextEncoding::DOSHebrew, "IBM862", 1},
    {TextEncoding::DOSCanadianFrench, "IBM863", 1},
    {TextEncoding::DOSArabic, "IBM864", 5},
    {TextEncoding::DOSNordic, "IBM865", 1},
    {TextEncoding::DOSRussian, "IBM866", 0},
    {TextEncoding::DOSGreek2, "IBM869", 2},
    {TextEncoding::DOSThai, "CP874", 31},
    {TextEncoding::DOSJapanese, "CP932", 0},
    {TextEncoding::DOSChineseSimplified, "CP936", 2150},
    {TextEncoding::DOSKorean, "UHC", 190},
    {TextEncoding::DOSChineseTraditional, "CP950", 5810},
    {TextEncoding::WindowsLatin1, "WINDOWS-1252", 5},
    {TextEncoding::WindowsLatin2, "WINDOWS-1250", 5},
    {TextEncoding::WindowsCyrillic, "WINDOWS-1251", 1},
    {TextEncoding::WindowsGreek, "WINDOWS-1253", 15},
    {TextEncoding::WindowsLatin5, "WINDOWS-1254", 7},
    {TextEncoding::WindowsHebrew, "WINDOWS-1255", 12},
    {TextEncoding::WindowsArabic, "WINDOWS-1256", 0},
    {TextEncoding::WindowsBaltic, "WINDOWS-1257", 10},
    {TextEncoding::WindowsVietnamese, "WINDOWS-1258", 9},
    {TextEncoding::ASCII, "US-ASCII", 0},
    {TextEncoding::GBK, "GBK", 2150},
    {TextEncoding::GB18030, "GB18030", 24},
    {TextEncoding::EUCJP, "EUC-JP", 487},
    {TextEncoding::EUCCN, "EUC-CN", 1422},
    {TextEncoding::EUCTW, "EUC-TW", 477},
    {TextEncoding::EUCKR, "EUC-KR", 513},
    {TextEncoding::ShiftJIS, "SJIS", 2733},
    {TextEncoding::KOI8R, "KOI8-R", 0},
    {TextEncoding::Big5, "BIG5", 5810},
    {TextEncoding::Big5HKSCS, "BIG5-HKSCS", 815},
    {TextEncoding::VISCII, "VISCII", 0},
    {TextEncoding::KOI8U, "KOI8-U", 0},
    {TextEncoding::EBCDIC037, "IBM037", 0},
};

class Reader {
 public:
  explicit Reader(const char* name) : _converter(iconv_open("UTF-16LE", name)) {}
  ~Reader() {
    if (isKnown()) iconv_close(_converter);
  }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  bool isKnown() const { return _converter != reinterpret_cast<iconv_t>(-1); }
  String read(std::string bytes) const {
    unichar units[8];
    char* source = bytes.data();
    size_t left = bytes.size();
    auto* target = reinterpret_cast<char*>(units);
    size_t room = sizeof units;
    iconv(_converter, nullptr, nullptr, nullptr, nullptr);
    if (iconv(_converter, &source, &left, &target, &room) == static_cast<size_t>(-1)) return String();
    iconv(_converter, nullptr, nullptr, &target, &room);
    return String(std::u16string_view(units, (sizeof units - room) / sizeof(unichar)));
  }

 private:
  iconv_t _converter;
};

TEST(IconvComparison, EveryCodeReadsTheSame) {
  for (const Peer& peer : kPeers) {
    const Reader reader(peer.name);
    if (!reader.isKnown()) continue;
    size_t same = 0, onlyOurs = 0, onlyTheirs = 0, different = 0;
    for (const std::string& code : codesOf(peer.encoding)) {
      const String ours = stringWithBytes(code.data(), code.size(), stringEncoding(peer.encoding));
      const String theirs = reader.read(code);
      if (!ours && !theirs) continue;
      ++(ours == theirs ? same : !theirs ? onlyOurs : !ours ? onlyTheirs : different);
    }
    const std::string counts = std::to_string(same) + " same, " + std::to_string(onlyOurs) + " only here, " +
                               std::to_string(onlyTheirs) + " only there, " + std::to_string(different) + " different";
    RecordProperty(peer.name, counts);
    EXPECT_LE(onlyOurs + onlyTheirs + different, peer.differences) << peer.name << ": " << counts;
  }
}

}  // namespace
}  // namespace velan
