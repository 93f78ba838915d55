#include <cmath>

#include "tests/Testing.h"
#include "velan/base/Base64.h"
#include "velan/base/MutableData.h"
#include "velan/base/propertylist/PropertyList.h"

namespace velan {
namespace {

Value everyKind() {
  return ValueDictionary{
      {u"numbers", ValueArray{0, 255, 256, 65536, 4294967296, -1, INT64_MIN, INT64_MAX, UINT64_MAX, 'A', 1.5f, 0.1}},
      {u"odd numbers", ValueArray{-INFINITY, 1e308, -0.0, true, false, true}},
      {u"texts", ValueArray{u"", u"plain", u"\u00FCber <&> \"'\r\n\t", u"\U0001F600", u"plain"}},
      {u"data", ValueArray{Data::withBytes(""), Data::withBytes(std::string(300, '\xA5'))}},
      {u"dates", ValueArray{Date(0), Date(-86400), Date(5e8)}},
      {u"\u00E9 key", ValueArray{ValueArray{}, ValueDictionary{}, ValueArray{ValueArray{ValueDictionary{{u"", 1}}}}}},
  };
}

TEST(PropertyList, EveryKindGoesThroughBothForms) {
  for (const auto format : {PropertyListFormat::Binary, PropertyListFormat::XML}) {
    const Data file = writePropertyList(everyKind(), format);
    const Value read = readPropertyList(file);
    EXPECT_EQ(read, everyKind());
    EXPECT_EQ(writePropertyList(read, format), file);
  }
  const Value lone(String(std::u16string{u'a', 0, 0xD800}));
  EXPECT_EQ(readPropertyList(writePropertyList(lone, PropertyListFormat::Binary)), lone);
}

TEST(PropertyList, WhatAFormHasNoRoomForIsRefused) {
  const Cases<const char*, Value, bool> cases = {
      {"absent", Value(), false},
      {"a URL inside", ValueArray{URL::withString(u"x:y")}, false},
      {"U+0000", u"\0"_s, true},
      {"a lone surrogate as key", ValueDictionary{{String(std::u16string(1, 0xDC00)), 1}}, true},
      {"U+FFFF", String(std::u16string(1, 0xFFFF)), true},
      {"a date beyond year 9999", Date(1e12), true},
      {"no date", Date(NAN), true},
  };
  for (const auto& [why, value, binary] : cases) {
    EXPECT_EQ(!writePropertyList(value, PropertyListFormat::Binary).isAbsent(), binary) << why;
    EXPECT_TRUE(writePropertyList(value, PropertyListFormat::XML).isAbsent()) << why;
  }
}

Value nested(size_t depth) {
  Value value = ValueArray{};
  for (size_t i = 1; i < depth; ++i) value = ValueArray{value};
  return value;
}

TEST(PropertyList, DepthIsLimited) {
  for (const auto format : {PropertyListFormat::Binary, PropertyListFormat::XML}) {
    EXPECT_EQ(readPropertyList(writePropertyList(nested(kPropertyListDepth), format)), nested(kPropertyListDepth));
    EXPECT_TRUE(writePropertyList(nested(kPropertyListDepth + 1), format).isAbsent());
  }
  // Long ways that share their ends: deep, although no way is deep when each part is first met.
  Value shared = nested(300);
  Value longWay = shared;
  for (int i = 0; i < 300; ++i) longWay = ValueArray{longWay};
  EXPECT_TRUE(writePropertyList(ValueArray{shared, longWay}, PropertyListFormat::Binary).isAbsent());
  std::string xml = "<plist>";
  for (int i = 0; i < 100000; ++i) xml += "<array>";
  EXPECT_TRUE(readPropertyList(Data::withBytes(xml)).isAbsent());
}

TEST(PropertyList, SharedContainersStayShared) {
  Value bomb = ValueArray{u"x"};
  for (int i = 0; i < 60; ++i) bomb = ValueArray{bomb, bomb};
  const Data file = writePropertyList(bomb, PropertyListFormat::Binary);
  EXPECT_LT(file.length(), 500u);
  const Value read = readPropertyList(file);
  EXPECT_TRUE(read.array()[0].isSameContainer(read.array()[1]));
  EXPECT_EQ(read, bomb);
  EXPECT_TRUE(writePropertyList(read, PropertyListFormat::XML).isAbsent()) << "written out it would be 2^60 values";
}

// A binary property list of `objects`, one byte per offset and per reference; the first is the top.
Data binary(const std::vector<std::string>& objects, std::string_view offsets = {}) {
  std::string file = "bplist00";
  std::string table;
  for (const auto& object : objects) {
    table.push_back(static_cast<char>(file.size()));
    file += object;
  }
  if (!offsets.empty()) table = offsets;
  const auto tableOffset = static_cast<char>(file.size());
  const auto count = static_cast<char>(table.size());
  file += table + std::string(6, '\0') + "\1\1" + std::string(7, '\0') + count + std::string(15, '\0') + tableOffset;
  return Data::withBytes(file);
}

TEST(PropertyList, AnEncodingThatIsNotReadIsNamed) {
  const CapturedLog log;
  const auto xml = Data::withBytes("<?xml version='1.0' encoding='KOI8-R'?><string>a</string>");
  EXPECT_TRUE(readPropertyList(xml).isAbsent());
  const auto ascii = Data::withBytes("<?xml version='1.0' encoding='US-ASCII'?><string>\xC3\xA9</string>");
  EXPECT_TRUE(readPropertyList(ascii).isAbsent()) << "not what it declares";
  EXPECT_EQ(log.messages.at(0), "WARNING: Property list in an encoding that is not read: KOI8-R");
}

// Beside the numbers and texts that another implementation writes and judges.
TEST(PropertyList, BinaryObjects) {
  const Cases<const char*, std::vector<std::string>, Value> cases = {
      {"null", {std::string(1, '\0')}, Value()},
      {"sixteen bytes, negative", {"\x14" + std::string(15, '\xFF') + '\xFE'}, -2},
      {"beyond 64 bits", {"\x14" + std::string(7, '\0') + '\1' + std::string(8, '\0')}, Value()},
      {"a real of one byte", {{"\x20\0", 2}}, Value()},
      {"UID", {"\x81\x01\x02"}, 258},
      {"a set reads as an array", {"\xC1\x01", "\x51z"}, ValueArray{u"z"}},
      {"a string that is not ASCII", {"\x51\x80"}, Value()},
      {"the count is no integer", {"\x5F\x51\x02ok"}, Value()},
      {"the string ends after the objects", {"\x53xy"}, Value()},
      {"a key that is no string", {"\xD1\x01\x01", "\x10\x07"}, Value()},
      {"a reference beyond the objects", {"\xA1\x02", "\x09"}, Value()},
      {"a cycle", {"\xA1\x01", {"\xA1\0", 2}}, Value()},
  };
  for (const auto& [why, objects, expected] : cases) {
    const Value read = readPropertyList(binary(objects));
    EXPECT_EQ(read, expected) << why << ": " << describe(read);
  }
}

TEST(PropertyList, OverlappingObjectsAreRefused) {
  // Each byte begins a data object that reaches almost to the end: decoding them all would be quadratic.
  std::vector<std::string> objects = {"\xA4\x01\x02\x03\x04", "\x48\x48\x48\x48zzzzzzzz"};
  EXPECT_TRUE(readPropertyList(binary(objects, "\x08\x0D\x0E\x0F\x10")).isAbsent());
  EXPECT_FALSE(readPropertyList(binary({"\xA2\x01\x01", "\x48zzzzzzzz"})).isAbsent());
}

TEST(PropertyList, BinaryFilesThatAreCut) {
  const Data file = writePropertyList(everyKind(), PropertyListFormat::Binary);
  for (size_t length = 0; length < file.length(); ++length) {
    EXPECT_TRUE(readPropertyList(Data::withBytes(file.bytes(), length)).isAbsent()) << length;
  }
}

TEST(PropertyList, XMLDocuments) {
  const Cases<std::string, Value> cases = {
      {"\xEF\xBB\xBF<?xml version=\"1.0\"?><!-- a > b --><!DOCTYPE plist SYSTEM \"a>b\"> <true></true>", true},
      {"<plist><string>a<!-- x -->b<![CDATA[<&\r\n]]>&#x1F600;&amp;&lt;\r</string></plist>", u"ab<&\n\U0001F600&<\n"},
      {"<?xml version='1.0' encoding = 'ISO-8859-1'?><string>\xE9&#xE9;</string>", u"\u00E9\u00E9"},
      {"<?xml version='1.0' encoding=\"utf-8\"?><string>\xC3\xA9</string>", u"\u00E9"},
      {"\xEF\xBB\xBF<?xml version='1.0' encoding='latin1'?><string>\xC3\xA9</string>", u"\u00E9"},
      {"<?xml version='1.0' encoding='us-ascii'?><string>a</string>", u"a"},
      {"<integer> -0x10 </integer>", -16},
      {"<integer>18446744073709551616</integer>", Value()},
      {"<integer>1 2</integer>", Value()},
      {"<real>+1e400</real>", INFINITY},
      {"<real>1e-400</real>", 0.0},
      {"<real>+-1</real>", Value()},
      {"<real>1,5</real>", Value()},
      {"<date>2001-01-01T00:00:10Z</date>", Date(10)},
      {"<data> aGVs\n\tbG8= </data>", Data::withBytes("hello")},
      {"<data>a</data>", Value()},
      {"<dict><key>a</key><integer>1</integer><key>a</key><integer>2</integer></dict>", ValueDictionary{{u"a", 2}}},
      {"<dict><key>a</key></dict>", Value()},
      {"<array><key>a</key></array>", Value()},
      {"<array><dict></array></dict>", Value()},
      {"<array><true/>text</array>", Value()},
      {"<plist><true/><true/></plist>", Value()},
      {"<plist><true/>", Value()},
      {"<string>&unknown;</string>", Value()},
      {"<string>&#0;</string>", Value()},
      {"<string>\xFF</string>", Value()},
      {"<!DOCTYPE plist [<!ENTITY a \"b\">]><plist><string>&a;</string></plist>", Value()},
      {"", Value()},
  };
  for (const auto& [xml, expected] : cases) {
    const Value read = readPropertyList(Data::withBytes(xml));
    EXPECT_EQ(read, expected) << xml << ": " << describe(read);
    // The same document in UTF-16.
    const String units = String::fromUTF8(xml.starts_with("\xEF") ? xml.substr(3) : xml);
    std::string wide = "\xFF\xFE";
    for (const unichar unit : units) wide += {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
    EXPECT_EQ(readPropertyList(Data::withBytes(wide)), units ? expected : Value()) << xml;
  }
}

// Base64 of any length goes both ways where property lists are judged by another implementation.
TEST(Base64, RefusesWhatIsNone) {
  EXPECT_EQ(dataFromBase64("TQ").view(), "M") << "padding may be left out";
  for (const char* text : {"T", "TR==", "TQ=", "TQ===", "T=Q=", "TWE=TWE=", "TW*n"}) {
    EXPECT_TRUE(dataFromBase64(text).isAbsent()) << text;
  }
}

}  // namespace
}  // namespace velan
