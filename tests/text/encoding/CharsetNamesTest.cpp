#include "tests/Testing.h"
#include "velan/text/encoding/CharsetNames.h"
#include "velan/text/encoding/EncodingTableInternal.h"

namespace velan {
namespace {

TEST(CharsetNames, NamesOfRealPages) {
  using enum TextEncoding;
  // names: other than those the table has, in which every encoding is found
  const Cases<TextEncoding, std::vector<const char*>> cases = {
      {UTF8, {"UTF8", "'utf-8'", " \"Utf-8\";", "unicode-1-1-utf-8"}},
      {UTF16, {"unicode", "ucs-2"}},
      {ISOLatin1, {"iso8859_1", "latin1"}},
      {ISOLatin2, {"iso_8859-2:1987"}},
      {ISOLatinHebrew, {"ISO-8859-8-I"}},
      {WindowsCyrillic, {"cp1251", "x-cp1251", "win-1251"}},
      {WindowsLatin1, {"windows1252", "x-user-defined"}},
      {DOSRussian, {"cp866"}},
      {KOI8R, {"koi8"}},
      {ShiftJIS, {"x-sjis"}},
      {DOSJapanese, {"cp932"}},
      {EUCJP, {"x-euc-jp"}},
      {GBK, {"x-gbk"}},
      {Big5, {"x-x-big5"}},
      {DOSKorean, {"ks_c_5601-1987"}},
      {MacRoman, {"x-mac-roman"}},
      {MacCentralEurRoman, {"x-mac-ce"}},
      {MacJapanese, {"x-mac-japanese"}},
      {Invalid, {"", "none", "x-", "iso-8859-12", "windows-99999", "\xC3\xBCtf-8"}},
  };
  for (const auto& [encoding, names] : cases) {
    for (const char* name : names) {
      EXPECT_EQ(charset2CFStringEncoding(name), encoding) << name;
      EXPECT_EQ(NSEncodingFromName(String::fromUTF8(name)), stringEncoding(encoding)) << name;
    }
  }
  EXPECT_EQ(NSEncodingFromName(String()), StringEncoding::Invalid);
  EXPECT_EQ(charset2NSStringEncoding(std::string(1000000, 'u')), StringEncoding::Invalid);
}

TEST(CharsetNames, EveryEncodingIsFoundByItsName) {
  for (const EncodingEntry& entry : encodingEntries()) {
    EXPECT_EQ(charset2CFStringEncoding(entry.name), entry.encoding) << entry.name;
    EXPECT_STREQ(charsetName(stringEncoding(entry.encoding)), entry.name);
  }
  EXPECT_EQ(charsetName(StringEncoding::Detect), nullptr);
  EXPECT_EQ(charsetName(stringEncoding(TextEncoding::MacJapanese)), nullptr);
}

TEST(CharsetNames, CzechPages) {
  EXPECT_EQ(stringWithKoi8cs2Data(Data::withBytes("P\xD2\xCD\xDA\xA1")), u"P\u0159\u00F6\u017E\uFFFD"_s);
  EXPECT_EQ(stringWithKamenickyData(Data::withBytes("P\xA9\xA1li\xA8")), u"P\u0159\u00EDli\u0161"_s);
  EXPECT_TRUE(stringWithKamenickyData(Data()).isAbsent());
}

}  // namespace
}  // namespace velan
