#include <sys/stat.h>

#include <filesystem>
#include <optional>

#include "tests/Testing.h"
#include "tests/platform/files/TemporaryFolder.h"
#include "velan/platform/files/ExtendedAttributes.h"
#include "velan/platform/files/FileContents.h"
#include "velan/platform/files/FileReplacement.h"
#include "velan/text/encoding/EncodingDetection.h"
#include "velan/text/encoding/StringConversion.h"
#include "velan/text/encoding/TextFiles.h"

namespace velan {
namespace {

using namespace std::string_view_literals;

constexpr const char* kCharset = "user.charset";
constexpr const char* kTextEncoding = "user.com.apple.TextEncoding";

class TextFiles : public testing::Test {
 protected:
  // Once the file is there, false where the volume keeps no such attributes.
  bool note(const char* name, const std::optional<std::string>& value) const {
    return value ? setExtendedAttribute(_path, name, *value) : removeExtendedAttribute(_path, name);
  }
  void write(std::string_view bytes) const { ASSERT_FALSE(replaceFile(_path, Data::withBytes(bytes))); }
  std::string contents() const { return std::string(readFileContents(_path, FileReading::Plain).view()); }

  const TemporaryFolder _folder;
  const String _path = _folder.path("text");
};

TEST_F(TextFiles, DetectionGoesByWhatSaysSo) {
  using enum EncodingEvidence;
  write("");
  const bool attributes = note(kCharset, "utf-8");
  using Table = Cases<const char*, std::string_view, std::optional<std::string>, std::optional<std::string>,
                      StringEncoding, String, EncodingEvidence>;
  const Table cases = {
      {"nothing at all", "", {}, {}, StringEncoding::UTF8, u"", ValidUTF8},
      {"UTF-8", "\xC3\xA9", {}, {}, StringEncoding::UTF8, u"\u00E9", ValidUTF8},
      {"a mark", "\xEF\xBB\xBFz", {}, {}, StringEncoding::UTF8, u"z", ByteOrderMark},
      {"UTF-16", "\xFE\xFF\0z"sv, {}, {}, StringEncoding::UTF16, u"z", ByteOrderMark},
      {"UTF-32 before UTF-16", "\xFF\xFE\0\0z\0\0\0"sv, {}, {}, StringEncoding::UTF32, u"z", ByteOrderMark},
      {"a mark that lies", "\xEF\xBB\xBF\xFF", {}, "windows-1252", StringEncoding::ASCII, {}, ByteOrderMark},
      {"neither", "\xE9", {}, {}, StringEncoding::ASCII, {}, None},
      {"a name and a number", "\xE9", "x;1282", {}, StringEncoding::WindowsCyrillic, u"\u0439", TextEncodingAttribute},
      {"a number with ends",
       "\xE9",
       std::string("; 1282\0", 7),
       {},
       StringEncoding::WindowsCyrillic,
       u"\u0439",
       TextEncodingAttribute},
      {"only a name", "\xE9", "windows-1252", {}, StringEncoding::WindowsLatin1, u"\u00E9", TextEncodingAttribute},
      {"a wrong number", "\xE9", "macintosh;99999", {}, StringEncoding::MacRoman, u"\u00C8", TextEncodingAttribute},
      {"it does not fit", "\xE9", "utf-8;134217984", "iso-8859-2", StringEncoding::Latin2, u"\u00E9", CharsetAttribute},
      {"the first that fits", "\xE9", "windows-1251", "iso-8859-2", StringEncoding::WindowsCyrillic, u"\u0439",
       TextEncodingAttribute},
      {"it says nothing", "\xC3\xA9", ";;", "nonsense", StringEncoding::UTF8, u"\u00E9", ValidUTF8},
  };
  for (const auto& [why, bytes, textEncoding, charset, expected, text, evidence] : cases) {
    if (!attributes && (textEncoding || charset)) continue;
    write(bytes);
    note(kTextEncoding, textEncoding);
    note(kCharset, charset);
    auto used = static_cast<StringEncoding>(77);
    EXPECT_EQ(stringWithContentsOfFile(_path, StringEncoding::Detect, &used), text) << why;
    EXPECT_EQ(used, expected) << why;
    EXPECT_EQ(detectedEncodingOfFile(_path, Data::withBytes(bytes)).evidence, evidence) << why;
    if (textEncoding || charset) continue;
    EXPECT_EQ(stringWithContentsOfData(Data::withBytes(bytes), StringEncoding::Invalid, &used), text) << why;
    EXPECT_EQ(used, expected) << why;
  }
}

TEST_F(TextFiles, AnExplicitEncodingIsToldInAnyCase) {
  write("\xE9\x81");
  auto used = StringEncoding::Invalid;
  EXPECT_EQ(stringWithContentsOfFile(_path, StringEncoding::Latin1, &used), u"\u00E9\u0081"_s);
  EXPECT_EQ(used, StringEncoding::Latin1);
  EXPECT_TRUE(stringWithContentsOfFile(_path, StringEncoding::UTF8, &used).isAbsent());
  EXPECT_EQ(used, StringEncoding::UTF8);
  EXPECT_TRUE(stringWithContentsOfFile(u"/no/such/file"_s, StringEncoding::Detect, &used).isAbsent());
  EXPECT_EQ(used, StringEncoding::ASCII);
  EXPECT_EQ(stringWithContentsOfFile(_path, StringEncoding::MacRoman), u"\u00C8\u00C5"_s);
}

TEST_F(TextFiles, WritingNotesWhatReadingCouldNotDetect) {
  for (const bool atomically : {false, true}) {
    std::filesystem::remove(_path.toUTF8());
    ASSERT_TRUE(writeToFile(u"\u0159"_s, _path, atomically, StringEncoding::WindowsLatin2));
    EXPECT_EQ(contents(), "\xF8");
    if (!note(kTextEncoding, "macintosh;0")) GTEST_SKIP() << "the volume keeps no extended attributes";
    EXPECT_EQ(extendedAttribute(_path, kCharset), "windows-1250");
    ASSERT_TRUE(writeToFile(u"x\u0159"_s, _path, atomically, StringEncoding::Latin2));
    EXPECT_EQ(stringWithContentsOfFile(_path, StringEncoding::Detect), u"x\u0159"_s);
    ASSERT_TRUE(writeToFile(u"\u0159"_s, _path, atomically, StringEncoding::UTF8));
    EXPECT_EQ(contents(), "\xC5\x99");
    EXPECT_FALSE(extendedAttribute(_path, kCharset) || extendedAttribute(_path, kTextEncoding));
  }
}

TEST_F(TextFiles, EveryWayOfChoosingAnEncodingTellsIt) {
  auto used = StringEncoding::Invalid;
  EXPECT_TRUE(writeToFileUsingDefaultEncoding(u"\u00E9"_s, _path, true, &used));
  EXPECT_EQ(used, StringEncoding::UTF8);
  setDefaultEncoding(StringEncoding::ASCII);
  EXPECT_FALSE(writeToFileUsingDefaultEncoding(u"\u00E9"_s, _path, true, &used));
  EXPECT_EQ(used, StringEncoding::ASCII) << "though writing failed";
  setDefaultEncoding(StringEncoding::UTF8);
  EXPECT_EQ(contents(), "\xC3\xA9") << "nothing was touched";
  EXPECT_TRUE(writeToFileUsingFastestEncoding(u"a"_s, _path, true, &used));
  EXPECT_EQ(used, StringEncoding::UTF16);
  EXPECT_EQ(contents(),
            "\xFF\xFE"
            "a\0"sv);
  EXPECT_TRUE(writeToFileUsingSmallestEncoding(u"a"_s, _path, false, &used));
  EXPECT_EQ(used, StringEncoding::ASCII);
  EXPECT_EQ(contents(), "a");
  EXPECT_FALSE(writeToFile(u"a"_s, _folder.path("none/text"), true, StringEncoding::UTF8));
  EXPECT_FALSE(writeToFile(u"a"_s, _folder.path("none/text"), false, StringEncoding::UTF8));
  EXPECT_FALSE(writeToFile(String(), _path, true, StringEncoding::UTF8));
  EXPECT_TRUE(writeToFile(u""_s, _path, true, StringEncoding::UTF8));
  EXPECT_EQ(contents(), "");
}

}  // namespace
}  // namespace velan
