#include "tests/Testing.h"
#include "tests/platform/files/TemporaryFolder.h"
#include "velan/base/propertylist/PropertyList.h"
#include "velan/markup/MarkupDecoding.h"
#include "velan/text/encoding/CharsetNames.h"
#include "velan/text/encoding/StringConversion.h"

namespace velan {
namespace {

std::u16string units(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

String page(const std::string& head, const String& body) {
  return String(u"<html><head>" + units(head) + u"</head><body>" + std::u16string(body.view()) + u"</body></html>");
}

std::string meta(const std::string& charset) {
  return "<meta http-equiv=\"Content-Type\" content=\"text/html; charset=" + charset + "\">";
}

// Default UTF-8: pages that name their encoding in three ways, or come with it.
TEST(MarkupDecoding, EveryEncodingIsRead) {
  const Cases<const char*, String> samples = {
      {"UTF-8", u"äßéż 漢字 \U0001F600"_s}, {"ISO-8859-1", u"äßé£ÿ"_s},       {"ISO-8859-2", u"ąęłżźćš"_s},
      {"windows-1251", u"Съешь же"_s},      {"koi8-u", u"Україна, їжак"_s},   {"macintosh", u"äöüß†é"_s},
      {"Shift_JIS", u"日本語のテキスト"_s}, {"ISO-2022-JP", u"日本語"_s},     {"gb2312", u"简体中文网页"_s},
      {"big5", u"繁體中文網頁"_s},          {"koi8-cs2", u"žluťoučký kůň"_s}, {"kamenicky", u"Příliš kůň"_s},
  };
  for (const auto& [charset, sample] : samples) {
    const String name = String::fromUTF8(charset);
    const StringEncoding encoding = NSEncodingFromName(name);
    const std::string xml = "<?xml version=\"1.0\" encoding=\"" + std::string(charset) + "\"?>";
    for (const std::string& head : {meta(charset), "<meta charset=" + std::string(charset) + ">", xml}) {
      const String text = page(head, sample);
      const DecodedMarkup decoded =
          decodedMarkup(dataUsingEncoding(text.view(), encoding), String(), StringEncoding::UTF8);
      EXPECT_EQ(decoded.text, text) << charset << ": " << decoded.text.toUTF8();
      EXPECT_EQ(decoded.encoding, encoding) << charset;
      EXPECT_EQ(decoded.declaredCharset, name);
    }
    const String text = page("", sample);
    const DecodedMarkup named = decodedMarkup(dataUsingEncoding(text.view(), encoding), name, StringEncoding::UTF8);
    EXPECT_EQ(named.text, text) << charset;
    EXPECT_EQ(named.evidence, MarkupEvidence::Name);
  }
}

// Pages whose declaration is wrong, missing or contradicted.
TEST(MarkupDecoding, TheChoiceBetweenResults) {
  using enum MarkupEvidence;
  using enum StringEncoding;
  const StringEncoding euccn = stringEncoding(TextEncoding::EUCCN);
  const StringEncoding gbk = stringEncoding(TextEncoding::GBK);
  const StringEncoding koi8r = stringEncoding(TextEncoding::KOI8R);
  // body: bytes; text: of the body
  using Table =
      Cases<const char*, StringEncoding, const char*, std::string, std::string, StringEncoding, MarkupEvidence, String>;
  const Table cases = {
      {"nothing is said", UTF8, "", "", "\xC3\xA9", UTF8, Default, u"é"_s},
      {"nothing is said, the default does not fit", UTF8, "", "", "a\xE9z", UTF8, Default, u"a\uFFFDz"_s},
      {"an unknown name", UTF8, "no-such", "", "\xC3\xA9", UTF8, Default, u"é"_s},
      {"a name without a converter", UTF8, "x-mac-japanese", "", "\xC3\xA9", UTF8, Default, u"é"_s},
      {"an unknown default", Invalid, "", "", "\xC3\xA9", UTF8, Default, u"é"_s},
      {"an unknown declaration", UTF8, "", meta("no-such"), "\xC3\xA9", UTF8, Default, u"é"_s},
      {"declared ASCII", UTF8, "", meta("us-ascii"), "e", UTF8, Default, u"e"_s},
      {"declared as the default is, but wrong", UTF8, "", meta("utf-8"), "a\xE9z", UTF8, Default, u"a\uFFFDz"_s},
      {"declared UTF-8, but Latin-1", WindowsLatin1, "", meta("utf-8"), "a\xE9z\xFC", WindowsLatin1, Default,
       u"aézü"_s},
      {"declared UTF-8 with one bad byte", WindowsLatin1, "", meta("utf-8"), "\xC3\xA9\xC3\xA4\xE9z", UTF8, Declaration,
       u"éä\uFFFDz"_s},
      {"a declaration goes before a name", UTF8, "koi8-r", meta("windows-1252"), "\xE9", WindowsLatin1, Declaration,
       u"é"_s},
      {"a name leaves less U+FFFD", UTF8, "koi8-r", meta("shift_jis"), "\xE9", koi8r, Fallback, u"И"_s},
      {"a name leaves less U+FFFD than a lenient reading", UTF8, "windows-1252", meta("utf-8"), "\xC3\xA9\xC3\xA4\xE9",
       WindowsLatin1, Name, u"Ã©Ã¤é"_s},
      {"named UTF-8, declared Latin-1, and both fit", UTF8, "utf-8", meta("iso-8859-1"), "\xC3\xA9", UTF8, Name,
       u"é"_s},
      {"named UTF-8, declared Windows-1251, and both fit", UTF8, "utf-8", meta("windows-1251"), "\xD0\x96", UTF8, Name,
       u"Ж"_s},
      {"named UTF-8, declared Windows-1252, and both fit", UTF8, "utf-8", meta("windows-1252"), "\xC3\xA9",
       WindowsLatin1, Declaration, u"Ã©"_s},
      {"UTF-8 by default, declared Latin-1, and both fit", UTF8, "", meta("iso-8859-1"), "\xC3\xA9", Latin1,
       Declaration, u"Ã©"_s},
      {"named UTF-8, declared Windows-1251, which fits", UTF8, "utf-8", meta("windows-1251"), "\xC6", WindowsCyrillic,
       Declaration, u"Ж"_s},
      {"Shift-JIS with what only another has", UTF8, "", meta("shift_jis"), "\xC6\xFC\xCB\xDC\xB8\xEC", EUCJapanese,
       Fallback, u"日本語"_s},
      {"Shift-JIS with a bad byte", UTF8, "", meta("shift_jis"), "\x93\xFA\x96\x7B\x8C\xEA\xFD.",
       stringEncoding(TextEncoding::ShiftJIS), Declaration, u"日本語\uFFFD."_s},
      {"Shift-JIS, but Latin-1", WindowsLatin1, "", meta("shift_jis"), "\xE9 \xE9 \xE9 ", WindowsLatin1, Fallback,
       u"é é é "_s},
      {"simplified Chinese with characters of GBK", UTF8, "", meta("gb2312"), "\xD6\xD0\x81\x40", gbk, Fallback,
       u"中丂"_s},
      {"simplified Chinese with a bad byte", UTF8, "", meta("gb2312"), "\xD6\xD0\xCE\xC4\xB0.", euccn, Declaration,
       u"中文\uFFFD."_s},
      {"Big5, but Latin-1", WindowsLatin1, "", meta("big5"), "\xE9 \xE9 ", WindowsLatin1, Fallback, u"é é "_s},
      {"Big5, but nothing that fits", UTF8, "", meta("big5"), "\xE9 \xFC ", Invalid, Fallback, String()},
      {"UTF-16 that could not be read so", WindowsLatin1, "", meta("utf-16"), "\xE9", WindowsLatin1, Default, u"é"_s},
      {"declared in the body", UTF8, "", "</head><body>" + meta("koi8-r"), "\xC3\xA9", UTF8, Default, u"é"_s},
  };
  for (const auto& [why, defaultEncoding, named, head, body, encoding, evidence, text] : cases) {
    const std::string bytes = "<html>" + head + "<p>" + body;
    const DecodedMarkup decoded = decodedMarkup(Data::withBytes(bytes), String::fromUTF8(named), defaultEncoding);
    EXPECT_EQ(decoded.encoding, encoding) << why << ": " << decoded.text.toUTF8();
    EXPECT_EQ(decoded.evidence, evidence) << why;
    if (!text) continue;
    const size_t start = decoded.text.view().find(u"<p>");
    EXPECT_EQ(decoded.text.substringFromIndex(static_cast<int64_t>(start) + 3), text) << why;
  }
}

TEST(MarkupDecoding, ByteOrderMarks) {
  using enum MarkupEvidence;
  using enum StringEncoding;
  using Table =
      Cases<const char*, std::string, StringEncoding, const char*, std::string, StringEncoding, MarkupEvidence>;
  const Table cases = {
      {"big-endian", "\xFE\xFF", UTF16BigEndian, "", "", UTF16BigEndian, ByteOrderMark},
      {"little-endian", "\xFF\xFE", UTF16LittleEndian, "", "", UTF16LittleEndian, ByteOrderMark},
      {"declared otherwise", "\xFF\xFE", UTF16LittleEndian, "", meta("iso-8859-1"), UTF16LittleEndian, ByteOrderMark},
      {"named so", "\xFF\xFE", UTF16LittleEndian, "utf-16le", meta("utf-8"), UTF16LittleEndian, Name},
      {"named without an order", "\xFF\xFE", UTF16LittleEndian, "utf-16", "", UTF16, Name},
      {"UTF-8", "\xEF\xBB\xBF", UTF8, "", "", UTF8, ByteOrderMark},
      {"UTF-8 declared otherwise", "\xEF\xBB\xBF", UTF8, "", meta("iso-8859-1"), UTF8, ByteOrderMark},
      {"UTF-8 named otherwise, declared so", "\xEF\xBB\xBF", UTF8, "iso-8859-1", meta("utf-8"), UTF8, Declaration},
  };
  for (const auto& [why, mark, written, named, head, encoding, evidence] : cases) {
    const String text = page(head, u"é漢"_s);
    const std::string bytes = mark + std::string(dataUsingEncoding(text.view(), written).view());
    const DecodedMarkup decoded = decodedMarkup(Data::withBytes(bytes), String::fromUTF8(named), WindowsLatin1);
    EXPECT_EQ(decoded.text, text) << why;
    EXPECT_EQ(decoded.encoding, encoding) << why;
    EXPECT_EQ(decoded.evidence, evidence) << why;
  }
}

TEST(MarkupDecoding, ShorterForms) {
  const Data data = Data::withBytes("<p>\xE9");
  EXPECT_EQ(stringWithMarkupData(data, StringEncoding::Latin1), u"<p>é"_s);
  EXPECT_EQ(stringWithMarkupData(data, u"text/html; charset=windows-1251"_s, StringEncoding::UTF8), u"<p>й"_s);
  EXPECT_EQ(stringWithMarkupData(data, u"koi8-r"_s, StringEncoding::UTF8, URL()), u"<p>И"_s);
  EXPECT_EQ(stringWithMarkupData(Data(), StringEncoding::UTF8), u""_s);
  EXPECT_EQ(stringWithMarkupData(Data::withBytes(""), StringEncoding::UTF8), u""_s);
}

TEST(MarkupFiles, AreReadLikeData) {
  const TemporaryFolder folder;
  StringEncoding used = StringEncoding::ASCII;
  folder.write("russian.html", "<meta charset=koi8-r>\xE9");
  EXPECT_EQ(stringWithMarkupContentsOfFile(folder.path("russian.html"), StringEncoding::UTF8, &used),
            u"<meta charset=koi8-r>И"_s);
  EXPECT_EQ(used, NSEncodingFromName(u"koi8-r"_s));
  folder.write("chinese.html", "<meta charset=big5>\xE9 \x8F \xFF");
  EXPECT_EQ(stringWithMarkupContentsOfFile(folder.path("chinese.html"), StringEncoding::UTF8, &used),
            u"<meta charset=big5>È è ˇ"_s);
  EXPECT_EQ(used, StringEncoding::MacRoman);
  EXPECT_TRUE(stringWithMarkupContentsOfFile(u"/nonexistent.html"_s, StringEncoding::UTF8, &used).isAbsent());
  EXPECT_EQ(used, StringEncoding::Invalid);
}

TEST(MarkupFiles, PropertyListsBecomeXML) {
  const TemporaryFolder folder;
  const Value list(ValueDictionary{{u"key"_s, u"wörd"_s}});
  const Data binary = writePropertyList(list, PropertyListFormat::Binary);
  const String xml = String::fromUTF8(writePropertyList(list, PropertyListFormat::XML).view());
  StringEncoding used = StringEncoding::ASCII;
  folder.write("list.plist", std::string(binary.view()));
  EXPECT_EQ(stringWithMarkupContentsOfFile(folder.path("list.plist"), StringEncoding::Latin1, &used), xml);
  EXPECT_EQ(used, StringEncoding::UTF8);
  folder.write("old.strings", "\"a\" = \"\xE9\";");
  EXPECT_EQ(stringWithMarkupContentsOfFile(folder.path("old.strings"), StringEncoding::Latin1, &used),
            u"\"a\" = \"é\";"_s);
  EXPECT_EQ(used, StringEncoding::Latin1);
}

}  // namespace
}  // namespace velan
