#include "tests/Testing.h"
#include "tests/keyed/EveryOperation.h"
#include "tests/keyed/KeyedSample.h"
#include "velan/keyed/KeyedReading.h"
#include "velan/keyed/KeyedWriting.h"

namespace velan {
namespace {

// What the library writes is compared with bytes in KeyedWritingTest, and every other read is a part of these.
TEST(KeyedReading, ReadsWhatBytesStandFor) {
  EXPECT_TRUE(isValid(MutableData()) && !isValid(Data()));
  const Data number = Data::withBytes(record("VLbl", "\2") + record("VLda", "\x40\x59"));
  EXPECT_TRUE(isValid(number) && boolForKey(number, 7)) << "2 is YES";
  EXPECT_EQ(timeIntervalSinceReferenceDateForKey(number, 7), 100);
  EXPECT_EQ(descriptionWithCalendarFormat(number, u"%Y-%m-%d %H:%M:%S", 7), String(u"2001-01-01 00:01:40"));
  const Data string = Data::withBytes(record("VLst", "\0\0\0\2"s, "\xC3\xA9"));
  EXPECT_EQ(stringNoCopyForKey(string, 7), String(u"\u00E9"));
  EXPECT_EQ(stringDataForKey(string, 7).view(), "\xC3\xA9");
  EXPECT_TRUE(containsString(string, u"\u00E9", 7));
  EXPECT_FALSE(containsString(string, u"e\u0301", 7) || containsString(string, u"", 7));
  const Data path = Data::withBytes(record("VLst", "\0\0\0\4"s, "/a b"));
  EXPECT_EQ(URLForKey(path, 7).absoluteString(), String(u"file:///a%20b"));
  EXPECT_TRUE(containsURL(Data::withBytes(record("VLst", "\0\0\0\3"s, "x:y")), URL::withString(u"x:y"), 7));
  const Data bytes = Data::withBytes(record("VLdt", "\0\0\0\3"s, "abc"));
  EXPECT_EQ(dataNoCopyForKey(bytes, 7).bytes(), bytes.bytes() + 16);
}

TEST(KeyedReading, ShortBuffersHoldNothing) {
  const std::string bytes = record("VLun", "\1\1\1\1");
  for (size_t length = 0; length < 16; ++length) {
    const Data cut = Data::withBytes(bytes.data(), length);
    EXPECT_FALSE(containsUnsignedForKey(cut, 7) || numberOfKeyedData(cut, 0) != 0) << length;
  }
}

TEST(KeyedReading, TheLengthOfARecordReachesBeyondTheBuffer) {
  const Data data = Data::withBytes(record("VLun", "\0\0\0\5"s) + record("VLst", "\0\0\0\1"s, "a") +
                                    record("VLst", "\0\0\0\3"s, "bc"));
  EXPECT_FALSE(isValid(data));
  EXPECT_EQ(unsignedForKey(data, 7), 5u);
  EXPECT_TRUE(containsStringForKey(data, 7));
  EXPECT_EQ(numberOfStringsForKey(data, 7), 2u);
  EXPECT_EQ(numberOfKeyedData(data, 0), 3u);
  EXPECT_EQ(stringsForKey(data, 7), std::vector<String>{u"a"});
  const Data alone = data.subdata({33, 18});
  EXPECT_TRUE(containsStringForKey(alone, 7));
  EXPECT_FALSE(containsString(alone, u"bc", 7));
  EXPECT_TRUE(stringForKey(alone, 7).isAbsent() && stringDataForKey(alone, 7).isAbsent());
  EXPECT_FALSE(stringsForKey(alone, 7));
  EXPECT_FALSE(isEqualToKeyedData(alone, alone, 0)) << "a record without a value has no equal";
}

TEST(KeyedReading, Lists) {
  MutableData data;
  addStrings(data, {u"/x", u"b", u"c d"}, 1);
  const std::string bad = record("VLst", "\0\0\0\1"s, "\xFF", 1);
  data.appendBytes(bad.data(), bad.size());
  addString(data, u"e", 1);
  addString(data, u"other", 2);
  EXPECT_EQ(stringsForKey(data, 1), (std::vector<String>{u"/x", u"b", u"c d", u"e"}));
  EXPECT_EQ(URLsForKey(data, 1)->size(), 3u) << "a space is no part of a URL";
  EXPECT_EQ(numberOfURLsForKey(data, 1), 5u);
  EXPECT_EQ(numberOfStrings(data), 6u);
  std::vector<String> strings{u"first"};
  EXPECT_EQ(addStringsForKey(data, 1, strings), 4u);
  EXPECT_EQ(strings.size(), 5u);
  std::vector<URL> urls;
  EXPECT_EQ(addURLsForKey(data, 2, urls), 1u);
  EXPECT_FALSE(stringsForKey(data, 3));
  EXPECT_FALSE(URLsForKey(data, 3));
  int calls = 0;
  const auto handler = [](const String& string, void* context) {
    ++*static_cast<int*>(context);
    return string == String(u"b");
  };
  EXPECT_EQ(handleStringsForKey(data, 1, handler, &calls), 1u);
  EXPECT_EQ(calls, 4) << "YES does not stop it";
  EXPECT_EQ(handleStringsForKey(data, 1, nullptr, nullptr), 0u);
}

TEST(KeyedReading, HandsOverRecordsByTheirMarker) {
  const Data data = everyType().takeData();
  const auto visited = [&data](uint32_t marker, bool strings) {
    std::string text;
    handleKeyedDataUsingHandler(
        data,
        [&text](uint32_t found, uint32_t key, const void* value) {
          text += std::to_string(key);
          if (found == VLun) text.append(":").append(std::to_string(*static_cast<const uint32_t*>(value)));
          if (found == VLfl) text.append(":").append(std::to_string(*static_cast<const float*>(value)));
          if (found == VLda) text.append(":").append(std::to_string(*static_cast<const double*>(value)));
          if (found == VLst) text.append(":").append(static_cast<const String*>(value)->toUTF8());
          text += " ";
          return true;
        },
        marker, strings, true);
    return text;
  };
  const std::string fixed = "1 2:4000000000 3 4 5 6:0.500000 7 8:86400.000000 ";
  EXPECT_EQ(visited(0, false), fixed);
  EXPECT_EQ(visited(0, true), fixed + "9:text 1600873849:pair ");
  EXPECT_EQ(visited(VLsi, true), "3 9:text 1600873849:pair ") << "strings come whatever the marker is";
  EXPECT_EQ(visited(VLst, false), "");
  EXPECT_EQ(visited(VLdt, true), "");
}

TEST(KeyedReading, UnknownMarkersEndAWalkButAreCounted) {
  const Data data = Data::withBytes(record("VLun", "\0\0\0\1"s) + record("VLxx", "") + record("VLsi", "\0\0\0\1"s));
  EXPECT_TRUE(containsUnsignedForKey(data, 7) && !containsSignedForKey(data, 7));
  EXPECT_EQ(numberOfKeyedData(data, 0), 3u);
  EXPECT_EQ(numberOfKeyedData(data, fourCharacterCode("VLxx")), 1u);
  EXPECT_EQ(handleKeyedDataUsingHandler(data, [](uint32_t, uint32_t, const void*) { return true; }), 1u);
}

TEST(KeyedReading, EqualityIgnoresTheOrderAndLooksOneWay) {
  MutableData a;
  MutableData b;
  addUnsigned(a, 1, 1), addString(a, u"x", 2), addString(a, u"x", 2);
  addString(b, u"y", 2), addString(b, u"x", 2), addUnsigned(b, 1, 1);
  EXPECT_TRUE(isEqualToKeyedData(a, b, 0)) << "one x serves both";
  EXPECT_FALSE(isEqualToKeyedData(b, a, 0)) << "y has no equal";
  EXPECT_TRUE(isEqualToKeyedData(b, a, VLun));
  EXPECT_FALSE(isEqualToKeyedData(a, MutableData(), 0));
  EXPECT_TRUE(isEqualToKeyedData(MutableData(), MutableData(), 0));
  b.mutableBytes()[14] = 1;  // bytes that no string uses
  EXPECT_TRUE(isEqualToKeyedData(a, b, 0));
  b.mutableBytes()[b.length() - 1] = 1;  // a byte of the number's value area
  EXPECT_FALSE(isEqualToKeyedData(a, b, 0));
}

TEST(KeyedReading, EqualityTakesNoQuadraticTime) {
  MutableData forward;
  MutableData backward;
  for (uint32_t i = 0; i < 100000; ++i) {
    addUnsigned(forward, i, i);
    addUnsigned(backward, 99999 - i, 99999 - i);
  }
  EXPECT_TRUE(isEqualToKeyedData(forward, backward, 0));
}

// Any bytes go through every operation where the fuzz targets are tested.
TEST(KeyedSafety, EveryCombinationOfExtremeLengths) {
  const std::string lengths[] = {"\0\0\0\0"s, "\0\0\0\1"s, "\x80\0\0\0"s, "\xFF\xFF\xFF\xFF"};
  const char* headers[] = {"VLst\0\0\0\x09", "VLdt\0\0\0\x0A", "VLpl\0\0\0\x0B", "VLst_key", "VLst_val", "VLdt_val"};
  for (const char* first : headers) {
    for (const char* second : headers) {
      for (size_t i = 0; i < 64; ++i) {
        const std::string payloads[] = {"", "k", "VLst"};
        std::string bytes = std::string(first, 8) + lengths[i % 4] + "\0\0\0\0"s + payloads[i / 16 % 3];
        bytes += std::string(second, 8) + lengths[i / 4 % 4] + "\0\0\0\0"s + payloads[i / 16 % 3];
        EXPECT_EQ(applyEveryOperation(bytes), isTiledByRecords(bytes));
      }
    }
  }
}

}  // namespace
}  // namespace velan
