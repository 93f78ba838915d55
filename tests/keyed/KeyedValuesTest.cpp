#include <cmath>

#include "tests/Testing.h"
#include "tests/keyed/KeyedSample.h"
#include "velan/keyed/KeyedReading.h"
#include "velan/keyed/KeyedValues.h"

namespace velan {
namespace {

constexpr KeyedKeyBuffer kKey{"k", 1};

const std::string kKeyRecord = "VLst_key"s + "\0\0\0\1"s + "\0\0\0\0"s + "k";

MutableData pairWith(const Value& value) {
  MutableData data;
  addValue(data, value, u"k");
  return data;
}

// A pair whose value is a record that was written with the key "k" of four bytes.
Data pairWithRecord(const std::string& marker, const std::string& area, const std::string& payload = {}) {
  std::string value = record(marker, area, payload);
  value.replace(4, 4, "_val");
  return Data::withBytes(kKeyRecord + value);
}

TEST(KeyedValues, EachKindHasItsRecord) {
  const Cases<Value, const char*, std::string, std::string> cases = {
      {true, "VLbl", "\1", ""},
      {'A', "VLsi", "\0\0\0A"s, ""},
      {static_cast<signed char>(-2), "VLsi", "\xFF\xFF\xFF\xFE", ""},
      {300, "VLsl", "\0\0\0\0\0\0\1\x2C"s, ""},
      {-1, "VLsl", std::string(8, '\xFF'), ""},
      {UINT64_MAX, "VLsl", std::string(8, '\xFF'), ""},
      {1.0f, "VLfl", "\x3F\x80", ""},
      {1.0, "VLdb", "\x3F\xF0", ""},
      {Date(1), "VLda", "\x3F\xF0", ""},
      {u"\u00E9", "VLst", "\0\0\0\2"s, "\xC3\xA9"},
      {URL::withString(u"x:y"), "VLst", "\0\0\0\3"s, "x:y"},
      {Data::withBytes("abc"), "VLdt", "\0\0\0\3"s, "abc"},
  };
  for (const auto& [value, marker, area, payload] : cases) {
    EXPECT_EQ(pairWith(value).view(), pairWithRecord(marker, area, payload).view()) << describe(value);
  }
  EXPECT_EQ(getValueForKey(pairWith(ValueDictionary{{u"a", 1}}), u"k"), Value(ValueDictionary{{u"a", 1}}));
}

TEST(KeyedValues, WhatCannotBeAPairAddsNothingOrAKeyOnly) {
  const String lone(std::u16string(1, 0xD800));
  const CapturedLog log;
  MutableData data;
  addValue(data, Value(), u"k");
  addValue(data, u"", u"k");
  addValue(data, lone, u"k");
  addValue(data, 1, String());
  addValue(data, 1, u"");
  addValue(data, 1, lone);
  EXPECT_TRUE(data.isEmpty());
  addValue(data, Data::withBytes(""), u"k");
  EXPECT_EQ(data.view(), kKeyRecord);
  EXPECT_FALSE(containsValueForKey(data, u"k"));
  EXPECT_TRUE(log.messages.empty());
  EXPECT_FALSE(containsValueForKey(data, u""));
  EXPECT_TRUE(getValueForKey(data, lone).isAbsent());
  EXPECT_EQ(log.messages,
            (std::vector<std::string>{"WARNING: Key encoding failed: ", "WARNING: Key encoding failed: \xEF\xBF\xBD"}));
}

TEST(KeyedValues, TypedReads) {
  const std::string ones(8, '\xFF');
  const std::string nan("\x7F\xF8\0\0\0\0\0\0", 8);
  const Cases<Data, bool, int64_t, double> cases = {
      {pairWithRecord("VLbl", "\2"), true, 2, 2},
      {pairWithRecord("VLun", "\0\0\1\0"s), false, 256, 256},
      {pairWithRecord("VLsi", "\xFF\xFF\xFF\xFE"), true, 4294967294, -2},
      {pairWithRecord("VLul", ones), true, -1, 18446744073709551615.0},
      {pairWithRecord("VLsl", ones), true, -1, -1},
      {pairWithRecord("VLfl", "\xC0\x20"), true, -2, -2.5},
      {pairWithRecord("VLdb", "\x3F\xE0"), false, 0, 0.5},
      {pairWithRecord("VLdb", "\x7F\xF0"), true, INT64_MAX, INFINITY},
      {pairWithRecord("VLdb", "\xFF\xF0"), false, INT64_MIN, -INFINITY},
      {pairWithRecord("VLda", "\xC0\x59"), true, -100, -100},
      {pairWith(u"  -007.5e1xyz"), true, -7, -75},
      {pairWith(u" -00true"), true, 0, 0},
      {pairWith(u"99999999999999999999"), true, INT64_MAX, 1e20},
      {pairWith(u"-99999999999999999999"), true, INT64_MIN, -1e20},
      {pairWith(u"0.00001e400"), false, 0, INFINITY},
      {pairWith(u"1e-400"), true, 1, 0},
      {pairWith(u"inf"), false, 0, 0},
      {pairWith(u"-.5"), false, 0, -0.5},
      {pairWithRecord("VLst", "\0\0\0\7"s, "1"), false, 0, 0},
      {pairWith(ValueArray{1}), false, 0, 0},
      {Data(), false, 0, 0},
  };
  for (const auto& [data, asBool, asInteger, asDouble] : cases) {
    EXPECT_EQ(boolValueForKeyBuffer(data, kKey), asBool) << data.view();
    EXPECT_EQ(longLongValueForKeyBuffer(data, kKey), asInteger) << data.view();
    EXPECT_EQ(doubleValueForKeyBuffer(data, kKey), asDouble) << data.view();
  }
  EXPECT_TRUE(std::isnan(doubleValueForKeyBuffer(pairWithRecord("VLdb", nan), kKey)));
  EXPECT_EQ(longLongValueForKeyBuffer(pairWithRecord("VLdb", nan), kKey), 0);
  EXPECT_EQ(getValueForKey(pairWithRecord("VLsi", "\xFF\xFF\xFF\xFF"), u"k"), Value(-1));
}

TEST(KeyedValues, PairsStandAmongOtherRecords) {
  MutableData data;
  addString(data, u"k", kKeyedPairKey);  // no value follows
  addUnsigned(data, 5, 1);
  addUnsigned(data, 6, kKeyedPairValue);
  addString(data, u"stray", kKeyedPairKey);
  addValue(data, 1, u"k");
  addValue(data, 2, u"other");
  addValue(data, 3, u"k");
  EXPECT_EQ(getValueForKey(data, u"k"), Value(1));
  EXPECT_EQ(copyValueForKeyBuffer(data, kKey), Value(1));
  EXPECT_EQ(getValueForKeyBuffer(data, {"other", 5}), Value(2));
  for (const KeyedKeyBuffer key : {KeyedKeyBuffer{nullptr, 1}, {"k", 0}, {"k", -1}}) {
    EXPECT_FALSE(containsValueForKeyBuffer(data, key));
  }
  EXPECT_FALSE(containsValueForKey(data, u"stray"));
  EXPECT_EQ(getKeys(data), (std::vector<String>{u"k", u"other", u"k"}));
  EXPECT_EQ(getValues(data), (std::vector<Value>{1, 2, 3}));
  EXPECT_EQ(Value(getKeyedValues(data)), Value(ValueDictionary{{u"k", 3}, {u"other", 2}}));
  removeValueForKey(data, u"k");
  EXPECT_EQ(getValueForKey(data, u"k"), Value(3));
  setValue(data, u"new", u"k");
  EXPECT_EQ(getKeys(data), (std::vector<String>{u"other", u"k"}));
  EXPECT_EQ(unsignedForKey(data, 1), 5u);
  setKeyedValues(data, {{u"a", 1}});
  EXPECT_EQ(data.length(), 16u + 1 + 16);
}

TEST(KeyedValues, DamagedPairs) {
  MutableData data = pairWith(1);
  const std::string key("\0\0\0\1\0\0\0\0\xFF", 9);
  const std::string badKey = "VLst_key" + key + std::string(pairWith(2).view().substr(17));
  data.appendBytes(badKey.data(), badKey.size());
  const std::string overlong(pairWithRecord("VLdt", "\0\0\0\7"s, "1").view());
  data.appendBytes(overlong.data(), overlong.size());
  EXPECT_EQ(getValues(data), (std::vector<Value>{1, 2})) << "a key that is not UTF-8 still has a value";
  EXPECT_EQ(getKeys(data), std::vector<String>{u"k"});
  removeValueForKey(data, u"k");
  EXPECT_TRUE(containsValueForKey(data, u"k")) << "the header of the value is there";
  EXPECT_TRUE(getValueForKey(data, u"k").isAbsent());
  const size_t length = data.length();
  removeValueForKey(data, u"k");
  EXPECT_EQ(data.length(), length) << "a damaged end stays";
}

}  // namespace
}  // namespace velan
