#include <cstdlib>
#include <unordered_set>

#include "tests/Testing.h"
#include "velan/base/MutableString.h"

namespace velan {
namespace {

TEST(String, AbsentAndEmptyDiffer) {
  const String absent, empty(u"");
  EXPECT_TRUE(absent.isAbsent() && String(static_cast<const unichar*>(nullptr)).isAbsent());
  EXPECT_TRUE(empty && empty.isEmpty() && empty.characters());
  EXPECT_NE(absent, empty);
  EXPECT_LT(absent, empty);
  EXPECT_LT(empty, String(u"a"));
  EXPECT_TRUE(absent.substring({0, 3}).isAbsent());
  EXPECT_TRUE(String::withCharacters(nullptr, 1).isAbsent());
  EXPECT_TRUE(String::withCharacters(u"a", -1).isAbsent());
}

TEST(String, LiteralsKeepNulUnits) {
  EXPECT_EQ(u"a\0b"_s.length(), 3);
  EXPECT_EQ(String(u"a\0b").length(), 1);
}

TEST(String, ComparesByCodeUnits) {
  EXPECT_LT(u"\U0001F600"_s, u"\uFFFD"_s) << "a surrogate is smaller than U+FFFD";
  EXPECT_EQ(u"abc"_s, String(u"abcd").substringToIndex(3));
  EXPECT_EQ(std::hash<String>()(u"abc"_s), std::hash<String>()(String(u"xabc").substringFromIndex(1)));
  const std::unordered_set<String> set{u"a", u"b", u"a"};
  EXPECT_EQ(set.size(), 2u);
}

TEST(String, SubstringsAreClippedAndOutliveTheirParent) {
  const String short_(u"0123456789");
  const Cases<Range, String> cases = {
      {{2, 3}, u"234"}, {{-4, 3}, u"012"}, {{8, 99}, u"89"},    {{10, 1}, u""},
      {{99, 1}, u""},   {{3, -1}, u""},    {kAbsentRange, u""}, {{1, INT64_MAX}, u"123456789"}};
  for (const auto& [range, expected] : cases) EXPECT_EQ(short_.substring(range), expected) << range.location;
  EXPECT_TRUE(short_.substring({0, 10}).isSameObject(short_));

  String slice;
  String sliceOfSlice;
  {
    const String text(std::u16string(100000, u'x') + u"y");
    slice = text.substring({10000, 90001});
    EXPECT_EQ(slice.characters(), text.characters() + 10000) << "a large piece shares";
    sliceOfSlice = slice.substring({5000, 85001});
    EXPECT_EQ(sliceOfSlice.characters(), text.characters() + 15000);
    EXPECT_NE(text.substring({50, 50000 - 1}).characters(), text.characters() + 50) << "less than half is copied";
    EXPECT_EQ(text.substring({50, 50000}).characters(), text.characters() + 50);
    const String page(std::u16string(1500, u'x'));
    EXPECT_NE(page.substring({1, 1023}).characters(), page.characters() + 1) << "less than 1,024 units are copied";
    EXPECT_EQ(page.substring({1, 1024}).characters(), page.characters() + 1);
  }
  slice = String();
  EXPECT_EQ(sliceOfSlice.length(), 85001);
  EXPECT_EQ(sliceOfSlice[85000], u'y');
}

TEST(String, NoCopyUsesAndFreesTheCallersUnits) {
  auto* units = static_cast<unichar*>(std::malloc(6));
  units[0] = units[1] = units[2] = u'a';
  String string = String::withCharactersNoCopy(units, 3, true);
  EXPECT_EQ(string.characters(), units);
  const String copy = string;
  string = String();
  EXPECT_EQ(copy, String(u"aaa"));  // the leak check of the sanitizer sees whether it is freed
  EXPECT_TRUE(String::withCharactersNoCopy(static_cast<unichar*>(std::malloc(2)), -1, true).isAbsent());
}

TEST(String, CopiesMayBeMadeAndDroppedOnSeveralThreads) {
  const String text(u"shared");
  inThreads(4, [text](int) {
    for (int k = 0; k < 1000; ++k) {
      const String copy = text;
      ASSERT_EQ(copy.length(), 6);
    }
  });
}

TEST(MutableString, EditsAreClippedToTheText) {
  MutableString text(u"hello");
  text.appendCharacter(u'!');
  text.appendString(u" you"_s);
  text.insertString(u">>", 0);
  text.deleteCharactersInRange({7, 1});
  EXPECT_EQ(text.string(), u">>hello you"_s);
  text.replaceCharactersInRange({2, 5}, u"bye");
  text.deleteCharactersInRange({-5, 2});
  text.deleteCharactersInRange({100, 2});
  EXPECT_EQ(String(text), u"bye you"_s);
  text.truncate(3);
  text.truncate(50);
  const unichar* const none = nullptr;
  text.appendString(none);
  EXPECT_EQ(text.view(), u"bye");
  EXPECT_TRUE(MutableString(none).isEmpty());
}

TEST(MutableString, TakesPartsOfItself) {
  MutableString text(u"0123456789abcdef");  // as long as the first room: growing moves it
  text.insertString(text.view().substr(2, 3), 1);
  text.appendString(text.view());
  text.replaceCharactersInRange({0, 16}, text.view().substr(36));
  EXPECT_EQ(text.view(), u"efdef0234123456789abcdef");
}

TEST(MutableString, HandsItsUnitsOver) {
  for (const int64_t room : {100000, 100010}) {
    MutableString text;
    text.reserve(room);
    text.appendCharacter(u'x', 100000);
    const unichar* const units = text.characters();
    const String taken = text.takeString();
    if (room == 100000) {
      EXPECT_EQ(taken.characters(), units);
    }
    EXPECT_EQ(taken, String(std::u16string(100000, u'x')));
    EXPECT_EQ(taken.substring({1000, 99000}).characters(), taken.characters() + 1000) << "large parts share it";
    EXPECT_EQ(text.takeString(), u""_s);
    text.appendString(u"again");
    MutableString moved = std::move(text);
    EXPECT_EQ(moved.takeString(), u"again"_s);
  }
}

}  // namespace
}  // namespace velan
