#include <cmath>

#include "tests/Testing.h"
#include "velan/base/Value.h"
#include "velan/base/dates/CivilTime.h"

namespace velan {
namespace {

TEST(Value, KeepsTheKindOfWhatItIsMadeFrom) {
  const Cases<Value, ValueKind, int64_t> cases = {
      {nullptr, ValueKind::Absent, 0},
      {true, ValueKind::Boolean, 1},
      {'A', ValueKind::Character, 65},
      {static_cast<int16_t>(-2), ValueKind::Int32, -2},
      {5u, ValueKind::UInt32, 5},
      {UINT64_MAX, ValueKind::UInt64, INT64_MAX},
      {-1.9f, ValueKind::Float, -1},
      {1e300, ValueKind::Double, INT64_MAX},
      {std::nan(""), ValueKind::Double, 0},
      {u"text", ValueKind::String, 0},
      {String(), ValueKind::Absent, 0},
      {Data::withBytes("x"), ValueKind::Data, 0},
      {URL::withString(u"http://a.example/"), ValueKind::URL, 0},
      {ValueArray{1, 2}, ValueKind::Array, 0},
  };
  for (const auto& [value, kind, number] : cases) {
    EXPECT_EQ(value.kind(), kind) << describe(value);
    EXPECT_EQ(value.int64Value(), number) << describe(value);
  }
  EXPECT_EQ(Value(-1).uint64Value(), 0u);
  EXPECT_EQ(Value(1e300).uint64Value(), UINT64_MAX);
}

TEST(Value, NumbersAreEqualByWhatTheyStandFor) {
  EXPECT_EQ(Value(1), Value(true));
  EXPECT_EQ(Value(2), Value(2.0));
  EXPECT_EQ(Value(std::nan("")), Value(std::nanf("")));
  EXPECT_EQ(Value(9223372036854775808u), Value(9223372036854775808.0));
  EXPECT_NE(Value(INT64_MAX), Value(9223372036854775808.0)) << "as a double they would be the same";
  EXPECT_NE(Value(UINT64_MAX), Value(-1));
  EXPECT_NE(Value(0), Value());
  EXPECT_NE(Value(ValueArray{1, 2}), Value(ValueArray{1}));
  EXPECT_NE(Value(ValueDictionary{{u"a", 1}}), Value(ValueDictionary{{u"a", 2}}));
}

TEST(Value, LaterEntriesOfADictionaryReplaceEarlierOnes) {
  const ValueDictionary entries{{u"b", 1}, {u"a", 2}, {u"b", 3}, {u"c", 4}, {u"b", 5}};
  EXPECT_EQ(entries.size(), 3u);
  EXPECT_EQ(entries[u"b"], Value(5));
  EXPECT_EQ(entries.find(u"d"), nullptr);
  EXPECT_EQ(entries.entries()[0].key, String(u"a"));
}

// A million levels would overflow the stack of anything that recurses.
TEST(Value, DeepNestingIsComparedAndDestroyed) {
  Value a(1), b(1);
  for (int i = 0; i < 1000000; ++i) {
    a = i % 2 ? Value(ValueArray{a}) : Value(ValueDictionary{{u"k", a}});
    b = i % 2 ? Value(ValueArray{b}) : Value(ValueDictionary{{u"k", b}});
  }
  EXPECT_EQ(a, b);
  EXPECT_NE(a, Value(ValueArray{b}));
}

// 2^64 paths lead to the innermost value: whoever follows them all never ends.
TEST(Value, SharedPartsAreComparedOnce) {
  Value a(ValueArray{1}), b(ValueArray{1}), c(ValueArray{2});
  for (int i = 0; i < 64; ++i) {
    a = ValueArray{a, a};
    b = ValueArray{b, Value(b.array())};
    c = ValueArray{c, c};
  }
  EXPECT_EQ(a, b);
  EXPECT_NE(a, c);
}

TEST(URL, IsWhatAURLMayHold) {
  for (const auto& text : {u"http://a.example/x?y=%20#z", u"mailto:a@b.example", u"/relative", u"FILE:///x"}) {
    EXPECT_EQ(URL::withString(text).absoluteString(), String(text));
  }
  for (const auto& text : {u"", u"a b", u"http://\u00E9/", u"100%", u"%4", u"a\tb", u"<x>"}) {
    EXPECT_TRUE(URL::withString(text).isAbsent());
  }
  EXPECT_TRUE(URL::withString(String()).isAbsent());
}

TEST(URL, FilePathsGoBothWays) {
  const String path(u"/a b%?#[\u00FC]\U0001F600");
  const URL url = URL::fileURLWithPath(path);
  EXPECT_EQ(url.absoluteString(), String(u"file:///a%20b%25%3F%23%5B%C3%BC%5D%F0%9F%98%80"));
  EXPECT_TRUE(url.isFileURL());
  EXPECT_EQ(url.path(), path);
  EXPECT_EQ(URL::fileURLWithPath(u"/").absoluteString(), String(u"file:///"));
  EXPECT_EQ(URL::withString(u"file://host/x%41?q").path(), String(u"/xA"));
  EXPECT_TRUE(URL::withString(u"http://a/x").path().isAbsent());
  EXPECT_TRUE(URL::withString(u"file:///%FF").path().isAbsent());
  EXPECT_TRUE(URL::fileURLWithPath(u"relative").isAbsent());
  EXPECT_TRUE(URL::fileURLWithPath(String(std::u16string{u'/', 0xD800})).isAbsent());
}

TEST(CivilTime, FormatsEveryDirective) {
  const auto date = dateFromCivilTime({.year = 2009, .month = 3, .day = 5, .hour = 13, .minute = 7, .second = 9});
  ASSERT_TRUE(date);
  const Cases<const unichar*, const unichar*> cases = {
      {u"%a %A %b %B", u"Thu Thursday Mar March"},   {u"%d|%e|%j|%m|%y|%Y|%w", u"05|5|064|03|09|2009|4"},
      {u"%H %I %M %p %S %F", u"13 01 07 PM 09 250"}, {u"%x, %X, %c", u"03/05/09, 13:07:09, 13:07:09 03/05/09"},
      {u"%z %Z 100%% %q %", u"+0000 UTC 100% %q %"}, {u"", u""},
  };
  for (const auto& [format, text] : cases) {
    EXPECT_EQ(formatDate(Date(date->timeIntervalSinceReferenceDate() + 0.25), format), String(text));
  }
  EXPECT_TRUE(formatDate(*date, String()).isAbsent());
  EXPECT_TRUE(formatDate(Date(std::nan("")), u"%Y").isAbsent());
  EXPECT_TRUE(formatDate(Date(1e300), u"%Y").isAbsent());
}

TEST(CivilTime, KnownDates) {
  const Cases<double, const unichar*> cases = {
      {0, u"1970-01-01 00:00:00 Thu 001"},
      {-1, u"1969-12-31 23:59:59 Wed 365"},
      {951782400, u"2000-02-29 00:00:00 Tue 060"},
      {4107542400, u"2100-03-01 00:00:00 Mon 060"},
      {-62135596800, u"0001-01-01 00:00:00 Mon 001"},
      {-62198755200, u"-0001-01-01 00:00:00 Fri 001"},
  };
  for (const auto& [unixTime, text] : cases) {
    EXPECT_EQ(formatDate(Date::withUnixTime(unixTime), u"%Y-%m-%d %H:%M:%S %a %j").toUTF8(), String(text).toUTF8());
  }
  for (int64_t day = -1000000; day < 1000000; day += 13) {
    const Date date(static_cast<double>(day) * 86400);
    EXPECT_EQ(dateFromCivilTime(*civilTimeFromDate(date)), date);
  }
  EXPECT_FALSE(dateFromCivilTime({.year = 1900, .month = 2, .day = 29}));
  EXPECT_FALSE(dateFromCivilTime({.month = 13}));
}

}  // namespace
}  // namespace velan
