// Every code of every encoding that the C library's iconv knows too. docs/encodings.md explains the differences; their
// numbers are properties of the test's report (--gtest_output=xml).
#include <iconv.h>

#include <map>

#include "tests/Testing.h"
#include "tests/text/encoding/EncodingCodes.h"

namespace velan {
namespace {

using enum TextEncoding;

// What iconv calls it, and the most codes that either side alone has or that both read otherwise.
const std::map<TextEncoding, std::pair<std::string, size_t>> kPeers = {
    {MacRoman, {"MACINTOSH", 2}},
    {MacCyrillic, {"MAC-CYRILLIC", 1}},
    {MacCentralEurRoman, {"MAC-CENTRALEUROPE", 0}},
    {MacIcelandic, {"MAC-IS", 12}},
    {MacUkrainian, {"MAC-UK", 1}},
    {DOSLatinUS, {"IBM437", 1}},
    {DOSGreek1, {"IBM851", 3}},
    {DOSLatin2, {"IBM852", 1}},
    {DOSPortuguese, {"IBM860", 1}},
    {DOSIcelandic, {"IBM861", 1}},
    {DOSHebrew, {"IBM862", 1}},
    {DOSCanadianFrench, {"IBM863", 1}},
    {DOSArabic, {"IBM864", 5}},
    {DOSNordic, {"IBM865", 1}},
    {DOSGreek2, {"IBM869", 2}},
    {DOSThai, {"CP874", 31}},
    {DOSJapanese, {"CP932", 0}},
    {DOSChineseSimplified, {"CP936", 2150}},
    {DOSKorean, {"UHC", 190}},
    {DOSChineseTraditional, {"CP950", 5810}},
    {WindowsLatin1, {"WINDOWS-1252", 5}},
    {WindowsLatin2, {"WINDOWS-1250", 5}},
    {WindowsCyrillic, {"WINDOWS-1251", 1}},
    {WindowsGreek, {"WINDOWS-1253", 15}},
    {WindowsLatin5, {"WINDOWS-1254", 7}},
    {WindowsHebrew, {"WINDOWS-1255", 12}},
    {WindowsBaltic, {"WINDOWS-1257", 10}},
    {WindowsVietnamese, {"WINDOWS-1258", 9}},
    {DOSBalticRim, {"IBM775", 0}},
    {DOSLatin1, {"IBM850", 0}},
    {DOSCyrillic, {"IBM855", 0}},
    {DOSTurkish, {"IBM857", 0}},
    {DOSRussian, {"IBM866", 0}},
    {WindowsArabic, {"WINDOWS-1256", 0}},
    {ASCII, {"US-ASCII", 0}},
    {KOI8R, {"KOI8-R", 0}},
    {VISCII, {"VISCII", 0}},
    {KOI8U, {"KOI8-U", 0}},
    {EBCDIC037, {"IBM037", 0}},
    {GBK, {"GBK", 2150}},
    {GB18030, {"GB18030", 24}},
    {EUCJP, {"EUC-JP", 487}},
    {EUCCN, {"EUC-CN", 1422}},
    {EUCTW, {"EUC-TW", 477}},
    {EUCKR, {"EUC-KR", 513}},
    {ShiftJIS, {"SJIS", 2733}},
    {Big5, {"BIG5", 5810}},
    {Big5HKSCS, {"BIG5-HKSCS", 815}},
};

String read(iconv_t converter, std::string bytes) {
  unichar units[8];
  char* source = bytes.data();
  size_t left = bytes.size();
  auto* target = reinterpret_cast<char*>(units);
  size_t room = sizeof units;
  iconv(converter, nullptr, nullptr, nullptr, nullptr);
  if (iconv(converter, &source, &left, &target, &room) == static_cast<size_t>(-1)) return String();
  iconv(converter, nullptr, nullptr, &target, &room);
  return String(std::u16string_view(units, (sizeof units - room) / sizeof(unichar)));
}

TEST(IconvComparison, EveryCodeReadsTheSame) {
  auto peers = kPeers;
  for (uint32_t part = 1; part <= 16; ++part) {
    peers[static_cast<TextEncoding>(0x200 + part)] = {"ISO-8859-" + std::to_string(part), 0};
  }
  for (const auto& [encoding, peer] : peers) {
    const auto& [name, differences] = peer;
    const iconv_t converter = iconv_open("UTF-16LE", name.c_str());
    if (converter == reinterpret_cast<iconv_t>(-1)) continue;
    size_t same = 0, onlyOurs = 0, onlyTheirs = 0, different = 0;
    for (const std::string& code : codesOf(encoding)) {
      const String ours = stringWithBytes(code.data(), code.size(), stringEncoding(encoding));
      const String theirs = read(converter, code);
      if (!ours && !theirs) continue;
      ++(ours == theirs ? same : !theirs ? onlyOurs : !ours ? onlyTheirs : different);
    }
    iconv_close(converter);
    const std::string counts = std::to_string(same) + " same, " + std::to_string(onlyOurs) + " only here, " +
                               std::to_string(onlyTheirs) + " only there, " + std::to_string(different) + " different";
    RecordProperty(name, counts);
    EXPECT_LE(onlyOurs + onlyTheirs + different, differences) << name << ": " << counts;
  }
}

}  // namespace
}  // namespace velan
