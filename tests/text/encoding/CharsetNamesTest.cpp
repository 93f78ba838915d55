#include <gtest/gtest.h>

#include "velan/text/encoding/CharsetNames.h"
#include "velan/text/encoding/EncodingTableInternal.h"

namespace velan {
namespace {

TEST(CharsetNames, NamesOfRealPages) {
  const struct {
    const char* name;
    TextEncoding encoding;
  } cases[] = {
      {"utf-8", TextEncoding::UTF8},
      {"UTF8", TextEncoding::UTF8},
      {"'utf-8'", TextEncoding::UTF8},
      {" \"Utf-8\";", TextEncoding::UTF8},
      {"unicode-1-1-utf-8", TextEncoding::UTF8},
      {"utf-16", TextEncoding::UTF16},
      {"unicode", TextEncoding::UTF16},
      {"ucs-2", TextEncoding::UTF16},
      {"UTF-16LE", TextEncoding::UTF16LittleEndian},
      {"us-ascii", TextEncoding::ASCII},
      {"ISO-8859-1", TextEncoding::ISOLatin1},
      {"iso8859_1", TextEncoding::ISOLatin1},
      {"latin1", TextEncoding::ISOLatin1},
      {"iso_8859-2:1987", TextEncoding::ISOLatin2},
      {"ISO-8859-8-I", TextEncoding::ISOLatinHebrew},
      {"iso-8859-15", TextEncoding::ISOLatin9},
      {"iso-8859-16", TextEncoding::ISOLatin10},
      {"windows-1250", TextEncoding::WindowsLatin2},
      {"cp1251", TextEncoding::WindowsCyrillic},
      {"x-cp1251", TextEncoding::WindowsCyrillic},
      {"win-1251", TextEncoding::WindowsCyrillic},
      {"windows1252", TextEncoding::WindowsLatin1},
      {"x-user-defined", TextEncoding::WindowsLatin1},
      {"windows-874", TextEncoding::DOSThai},
      {"cp866", TextEncoding::DOSRussian},
      {"IBM852", TextEncoding::DOSLatin2},
      {"koi8-r", TextEncoding::KOI8R},
      {"koi8", TextEncoding::KOI8R},
      {"koi8-u", TextEncoding::KOI8U},
      {"koi8-cs2", TextEncoding::KOI8CS2},
      {"Kamenicky", TextEncoding::Kamenicky},
      {"shift_jis", TextEncoding::ShiftJIS},
      {"x-sjis", TextEncoding::ShiftJIS},
      {"windows-31j", TextEncoding::DOSJapanese},
      {"cp932", TextEncoding::DOSJapanese},
      {"euc-jp", TextEncoding::EUCJP},
      {"x-euc-jp", TextEncoding::EUCJP},
      {"iso-2022-jp", TextEncoding::ISO2022JP},
      {"gb2312", TextEncoding::EUCCN},
      {"gbk", TextEncoding::GBK},
      {"x-gbk", TextEncoding::GBK},
      {"gb18030", TextEncoding::GB18030},
      {"hz-gb-2312", TextEncoding::HZGB2312},
      {"big5", TextEncoding::Big5},
      {"x-x-big5", TextEncoding::Big5},
      {"big5-hkscs", TextEncoding::Big5HKSCS},
      {"euc-kr", TextEncoding::EUCKR},
      {"ks_c_5601-1987", TextEncoding::DOSKorean},
      {"macintosh", TextEncoding::MacRoman},
      {"x-mac-roman", TextEncoding::MacRoman},
      {"x-mac-ce", TextEncoding::MacCentralEurRoman},
      {"x-mac-cyrillic", TextEncoding::MacCyrillic},
      {"x-mac-japanese", TextEncoding::MacJapanese},
      {"viscii", TextEncoding::VISCII},
      {"x-nextstep", TextEncoding::NEXTSTEP},
      {"", TextEncoding::Invalid},
      {"none", TextEncoding::Invalid},
      {"x-", TextEncoding::Invalid},
      {"iso-8859-12", TextEncoding::Invalid},
      {"windows-99999", TextEncoding::Invalid},
      {"\xC3\xBCtf-8", TextEncoding::Invalid},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(charset2CFStringEncoding(c.name), c.encoding) << c.name;
    EXPECT_EQ(NSEncodingFromName(String::fromUTF8(c.name)), stringEncoding(c.encoding)) << c.name;
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
