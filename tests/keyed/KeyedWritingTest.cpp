#include "tests/Testing.h"
#include "tests/keyed/KeyedSample.h"
#include "velan/keyed/KeyedInspection.h"
#include "velan/keyed/KeyedReading.h"
#include "velan/keyed/KeyedWriting.h"

namespace velan {
namespace {

TEST(KeyedWriting, AppendsTheBytesOfTheFormatAndReadsThem) {
  MutableData data;
  addBool(data, true, 7);
  addUnsigned(data, 0xFF000001, 7);
  addSigned(data, -2, 7);
  addUnsignedLongLong(data, 0x8000000000000001, 7);
  addSignedLongLong(data, INT64_MIN, 7);
  addFloat(data, -2.5f, 7);
  addDouble(data, 2.5, 7);
  addDate(data, Date(100), 7);
  EXPECT_TRUE(addString(data, u"\u00E9", 7));
  EXPECT_TRUE(addURL(data, URL::withString(u"x:y"), 7));
  EXPECT_TRUE(addBytes(data, "abc", 3, 7));
  EXPECT_EQ(data.view(), record("VLbl", "\1") + record("VLun", "\xFF\0\0\1"s) + record("VLsi", "\xFF\xFF\xFF\xFE") +
                             record("VLul", "\x80\0\0\0\0\0\0\1"s) + record("VLsl", "\x80") +
                             record("VLfl", "\xC0\x20") + record("VLdb", "\x40\x04") + record("VLda", "\x40\x59") +
                             record("VLst", "\0\0\0\2"s, "\xC3\xA9") + record("VLst", "\0\0\0\3"s, "x:y") +
                             record("VLdt", "\0\0\0\3"s, "abc"));
  EXPECT_TRUE(boolForKey(data, 7));
  EXPECT_EQ(unsignedForKey(data, 7), 0xFF000001);
  EXPECT_EQ(signedForKey(data, 7), -2);
  EXPECT_EQ(unsignedLongLongForKey(data, 7), 0x8000000000000001);
  EXPECT_EQ(signedLongLongForKey(data, 7), INT64_MIN);
  EXPECT_EQ(floatForKey(data, 7), -2.5f);
  EXPECT_EQ(doubleForKey(data, 7), 2.5);
  EXPECT_EQ(dateForKey(data, 7), Date(100));
  EXPECT_EQ(stringForKey(data, 7), String(u"\u00E9"));
  EXPECT_EQ(dataForKey(data, 7).view(), "abc");

  EXPECT_TRUE(addPlist(data, ValueArray{1}, 7));
  MutableData again;
  for (const KeyedRecord& each : inspectKeyedData(data).records) {
    EXPECT_TRUE(addRecord(again, each.marker, each.key, valueOfRecord(data, each))) << each.offset;
  }
  EXPECT_EQ(again.view(), data.view());
  EXPECT_TRUE(valueOfRecord(data, {data.length() - 15, 16, VLun, 7}).isAbsent());
}

TEST(KeyedWriting, WhatHasNoRecordIsRefused) {
  MutableData data;
  const CapturedLog log;
  const bool results[] = {
      addString(data, String(), 1),
      addString(data, u"", 1),
      addString(data, String(std::u16string{u'a', 0xD800}), 1),
      addString(data, String(std::u16string(1000, u'a') + unichar{0xD800}), 1),
      addData(data, Data::withBytes(""), 1),
      addBytes(data, nullptr, 5, 1),
      addBytes(data, "x", size_t{1} << 32, 1),
      addPlist(data, ValueArray{Value()}, 1),
      addRecord(data, VLbl, 1, 1),
      addRecord(data, VLun, 1, -1),
      addRecord(data, VLsi, 1, 0x80000000),
      addRecord(data, VLul, 1, 1.0),
      addRecord(data, VLsl, 1, uint64_t{1} << 63),
      addRecord(data, VLfl, 1, 1e40),
      addRecord(data, VLdb, 1, u"1"),
      addRecord(data, VLda, 1, 1.0),
      addRecord(data, fourCharacterCode("VLxx"), 1, 1),
  };
  for (const bool result : results) EXPECT_FALSE(result);
  EXPECT_TRUE(data.isEmpty());
  EXPECT_EQ(log.messages, std::vector<std::string>{"WARNING: Property list serializaiton failed: array of 1 values"});
}

TEST(KeyedWriting, BytesOfTheBufferItselfCanBeAdded) {
  MutableData data;
  for (int i = 0; i < 100; ++i) addUnsigned(data, 5, 1);
  const std::string before(data.view());
  EXPECT_TRUE(addBytes(data, data.bytes(), data.length(), 2));
  EXPECT_EQ(dataForKey(data, 2).view(), before);
}

TEST(KeyedWriting, SettingOverwritesInPlace) {
  MutableData data = everyType();
  const size_t length = data.length();
  setBool(data, false, 1), setUnsigned(data, 20, 2), setSigned(data, 30, 3), setUnsignedLongLong(data, 40, 4);
  setSignedLongLong(data, 50, 5), setFloat(data, 60, 6), setDouble(data, 70, 7), setDate(data, Date(80), 8);
  EXPECT_EQ(data.length(), length);
  const Value values[] = {false, 20, 30, 40, 50, 60.0, 70.0, Date(80)};
  const auto records = inspectKeyedData(data).records;
  for (size_t i = 0; i < std::size(values); ++i) EXPECT_EQ(valueOfRecord(data, records[i]), values[i]) << i;
  setBool(data, true, 2);
  EXPECT_EQ(data.length(), length + 16) << "another type under the same key is another record";
  EXPECT_EQ(unsignedForKey(data, 2), 20u);
  MutableData damaged(Data::withBytes("VLxxdamaged bytes"));
  EXPECT_TRUE(setUnsigned(damaged, 1, 1));
  EXPECT_EQ(damaged.length(), 33u);
}

TEST(KeyedWriting, SettingStringsMovesThemToTheEnd) {
  MutableData data;
  addStrings(data, {u"a", u"b"}, 1);
  EXPECT_TRUE(setString(data, u"new", 1));
  EXPECT_EQ(stringsForKey(data, 1), (std::vector<String>{u"b", u"new"}));
  EXPECT_FALSE(setString(data, u"", 1));
  EXPECT_EQ(stringsForKey(data, 1), std::vector<String>{u"new"});
  EXPECT_TRUE(setURL(data, URL::withString(u"u:1"), 1));
  EXPECT_TRUE(setData(data, Data::withBytes("one"), 1));
  EXPECT_TRUE(setBytes(data, "two", 3, 1));
  EXPECT_TRUE(setPlist(data, ValueArray{1}, 1));
  EXPECT_TRUE(setPlist(data, ValueArray{2}, 1));
  EXPECT_EQ(numberOfKeyedData(data, 0), 3u);
  EXPECT_EQ(plistForKey(data, 1), Value(ValueArray{2}));
  EXPECT_EQ(dataForKey(data, 1).view(), "two");
  data.appendBytes("damaged", 7);
  EXPECT_TRUE(setString(data, u"newer", 1));
  EXPECT_TRUE(isValid(data)) << "the damaged end goes, the new record does not";
  EXPECT_EQ(stringForKey(data, 1), String(u"newer"));
}

TEST(KeyedWriting, RemovesTheFirstMatchOrAll) {
  const Cases<void (*)(MutableData&, uint32_t), uint32_t, size_t> cases = {
      {removeBoolForKey, VLbl, 1},           {removeUnsignedForKey, VLun, 1},
      {removeSignedForKey, VLsi, 1},         {removeUnsignedLongLongForKey, VLul, 1},
      {removeSignedLongLongForKey, VLsl, 1}, {removeFloatForKey, VLfl, 1},
      {removeDoubleForKey, VLdb, 1},         {removeDateForKey, VLda, 1},
      {removeDataForKey, VLdt, 1},           {removePlistForKey, VLpl, 1},
      {removeStringForKey, VLst, 1},         {removeURLForKey, VLst, 1},
      {removeStringsForKey, VLst, 0},        {removeURLsForKey, VLst, 0},
  };
  std::string all;
  for (const char* marker : {"VLbl", "VLun", "VLsi", "VLul", "VLsl", "VLfl", "VLdb", "VLda"})
    all += record(marker, "\1");
  for (const char* marker : {"VLst", "VLdt", "VLpl"}) all += record(marker, "\0\0\0\2"s, "zz");
  for (const auto& [remove, marker, left] : cases) {
    MutableData data((all + all).data(), all.size() * 2);
    remove(data, 8);
    EXPECT_EQ(data.view(), all + all) << "another key";
    remove(data, 7);
    EXPECT_EQ(numberOfKeyedData(data, marker), left);
    EXPECT_EQ(numberOfKeyedData(data, 0), 20 + left);
    EXPECT_TRUE(isValid(data));
    EXPECT_EQ(data.view().starts_with(all), false) << "the first of both goes";
  }
}

TEST(KeyedWriting, RemovingCutsOffADamagedEnd) {
  const std::string whole = record("VLun", "\1");
  for (const std::string& tail : {record("VLxx", ""), record("VLdt", "\0\0\0\x50"s, "abcd"), "fragment"s}) {
    MutableData data((whole + tail + whole).data(), whole.size() + tail.size() + (tail == "fragment" ? 0 : 16));
    removeStringForKey(data, 99);
    EXPECT_EQ(data.view(), whole);
  }
  MutableData tiny(Data::withBytes("ten bytes."));
  removeBoolForKey(tiny, 1);
  EXPECT_TRUE(tiny.isEmpty());
}

TEST(KeyedWriting, RemovesWhatAHandlerChooses) {
  MutableData data = everyType();
  removeKeyedDataUsingHandler(data, [](uint32_t marker, uint32_t key) { return marker != VLdb && key != 9; });
  EXPECT_EQ(data.length(), 16u + 20u);
  EXPECT_EQ(stringForKey(data, 9), String(u"text"));
}

}  // namespace
}  // namespace velan
