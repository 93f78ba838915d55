// Every code of every encoding that the C library's iconv knows too. docs/encodings.md explains the differences; their
// numbers are properties of the test's report (--gtest_output=xml).
#include <iconv.h>

#include <map>

#include "tests/Testing.h"
#include "tests/text/encoding/EncodingCodes.h"
#include "velan/text/encoding/EncodingTableInternal.h"

namespace velan {
namespace {

using enum TextEncoding;

// What iconv calls an encoding that it does not find by our name.
const std::map<TextEncoding, const char*> kNames = {
    {MacCyrillic, "MAC-CYRILLIC"},
    {MacCentralEurRoman, "MAC-CENTRALEUROPE"},
    {MacIcelandic, "MAC-IS"},
    {MacUkrainian, "MAC-UK"},
    {DOSThai, "CP874"},
    {DOSJapanese, "CP932"},
    {DOSChineseSimplified, "CP936"},
    {DOSKorean, "UHC"},
    {DOSChineseTraditional, "CP950"},
    {EUCCN, "EUC-CN"},
    {ShiftJIS, "SJIS"},
};

// The most codes that either side alone has or that both read otherwise; none elsewhere.
const std::map<size_t, std::vector<TextEncoding>> kDifferences = {
    {1,
     {MacCyrillic, MacUkrainian, DOSLatinUS, DOSLatin2, DOSPortuguese, DOSIcelandic, DOSHebrew, DOSCanadianFrench,
      DOSNordic, WindowsCyrillic}},
    {2, {MacRoman, DOSGreek2}},
    {3, {DOSGreek1}},
    {5, {DOSArabic, WindowsLatin1, WindowsLatin2}},
    {7, {WindowsLatin5}},
    {9, {WindowsVietnamese}},
    {10, {WindowsBaltic}},
    {12, {MacIcelandic, WindowsHebrew}},
    {15, {WindowsGreek}},
    {24, {GB18030}},
    {31, {DOSThai}},
    {190, {DOSKorean}},
    {477, {EUCTW}},
    {487, {EUCJP}},
    {513, {EUCKR}},
    {815, {Big5HKSCS}},
    {1422, {EUCCN}},
    {2150, {DOSChineseSimplified, GBK}},
    {2733, {ShiftJIS}},
    {5810, {DOSChineseTraditional, Big5}},
};

size_t differencesOf(TextEncoding encoding) {
  for (const auto& [count, encodings] : kDifferences) {
    if (std::ranges::find(encodings, encoding) != encodings.end()) return count;
  }
  return 0;
}

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
  size_t compared = 0;
  for (const EncodingEntry& entry : encodingEntries()) {
    const TextEncoding encoding = entry.encoding;
    const std::string name = kNames.contains(encoding) ? kNames.at(encoding) : entry.name;
    if (name.starts_with("UTF-") || name.starts_with("ISO-2022")) continue;  // have no codes that stand for themselves
    const iconv_t converter = iconv_open("UTF-16LE", name.c_str());
    if (converter == reinterpret_cast<iconv_t>(-1)) continue;
    ++compared;
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
    EXPECT_LE(onlyOurs + onlyTheirs + different, differencesOf(encoding)) << name << ": " << counts;
  }
  EXPECT_GT(compared, 60u);
}

}  // namespace
}  // namespace velan
