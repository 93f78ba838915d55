// Every operation that walks a text once against one that edits unit by unit, on random texts of few different units.
#include <functional>

#include "tests/Testing.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/editing/Collapsing.h"
#include "velan/text/editing/Removal.h"
#include "velan/text/editing/Replacement.h"
#include "velan/text/editing/Tabs.h"
#include "velan/text/editing/Trimming.h"
#include "velan/text/inspection/SubstringSearch.h"

namespace velan {
namespace {

using namespace std::string_literals;

using Slow = std::function<void(std::u16string&)>;
using Test = std::function<bool(unichar)>;

bool endsLine(unichar c) { return u"\n\r\f\x0003\x2028\x2029\xFFFC\xFEFF"s.find(c) != std::u16string::npos; }
bool isSpace(unichar c) { return isMemberOfCharacterSetRep(spaceCharacterSetRep(), c); }
bool isWhite(unichar c) { return isMemberOfCharacterSetRep(whiteCharacterSetRep(), c); }
bool isDigit(unichar c) { return c == u'1' || c == 0x0661; }
bool isA(unichar c) { return c == u'a'; }
bool isTab(unichar c) { return c == u'\t'; }

Slow removing(const Test& test) {
  return [=](std::u16string& text) { std::erase_if(text, test); };
}

Slow trimming(const Test& test, bool prefix = true, bool suffix = true) {
  return [=](std::u16string& text) {
    while (prefix && !text.empty() && test(text.front())) text.erase(0, 1);
    while (suffix && !text.empty() && test(text.back())) text.pop_back();
  };
}

Slow collapsing(const Test& test, unichar replacement) {
  return [=](std::u16string& text) {
    for (size_t i = 0; i < text.size(); ++i) {
      if (!test(text[i])) continue;
      while (i + 1 < text.size() && test(text[i + 1])) text.erase(i + 1, 1);
      text[i] = replacement;
    }
  };
}

void decodeTabsSlowly(std::u16string& text, size_t width) {
  size_t column = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    const size_t spaces = isTab(text[i]) ? width - column % width : 1;
    if (isTab(text[i])) text.replace(i, 1, spaces, u' ');
    column = endsLine(text[i]) ? 0 : column + spaces;
    i += spaces - 1;
  }
}

void encodeTabsSlowly(std::u16string& text, size_t width) {
  size_t column = 0, start = text.npos;
  for (size_t i = 0; i < text.size(); ++i) {
    if (start == text.npos && isSpace(text[i])) start = i;
    if (!isSpace(text[i])) start = text.npos;
    column = endsLine(text[i]) ? 0 : isTab(text[i]) ? (column / width + 1) * width : column + 1;
    if (start == text.npos || column % width != 0) continue;
    text.replace(start, i + 1 - start, 1, u'\t');
    i = std::exchange(start, text.npos);
  }
}

// Returns how often.
int64_t replaceSlowly(std::u16string& text, const std::u16string& search, const std::u16string& by,
                      bool caseSensitive) {
  const auto equal = [=](unichar a, unichar b) { return caseSensitive ? a == b : toUpper(a) == toUpper(b); };
  int64_t count = 0;
  for (size_t i = 0; !search.empty() && i + search.size() <= text.size();) {
    const bool found = std::equal(search.begin(), search.end(), &text[i], equal);
    if (found) text.replace(i, search.size(), by);
    i += found ? by.size() : 1;
    count += found;
  }
  return count;
}

std::u16string randomText(std::u16string_view units, size_t longest) {
  static Chance chance(1);
  return chance.text(chance.below(longest + 1), units);
}

const std::u16string kUnits = u"aabA1\x0661  \t\t\n\r\f\v\x0003\x2028\x2029\xFFFC\x00A0\x0085\xFEFF\0"s;

TEST(LinearEditing, RemovingTrimmingAndCollapsing) {
  const Cases<const char*, std::function<void(MutableString&)>, std::function<String(const String&)>, Slow> cases = {
      {"set", [](auto& t) { removeCharacters(t, digitCharacterSetRep()); },
       [](auto& s) { return stringByRemovingCharacters(s, digitCharacterSetRep()); }, removing(isDigit)},
      {"null set", [](auto& t) { removeCharacters(t, nullptr); },
       [](auto& s) { return stringByRemovingCharacters(s, nullptr); }, [](auto&) {}},
      {"units", [](auto& t) { removeCharactersOfString(t, u"xa\t"); },
       [](auto& s) { return stringByRemovingCharactersOfString(s, u"a\ta"); },
       removing([](unichar c) { return isA(c) || isTab(c); })},
      {"feeds", removeFeeds, stringByRemovingFeeds, removing(endsLine)},
      {"tabs", removeTabs, stringByRemovingTabs, removing(isTab)},
      {"spaces", removeSpaces, stringByRemovingSpaces, removing(isSpace)},
      {"white", removeWhiteSpaces, stringByRemovingWhiteSpaces, removing(isWhite)},
      {"digits", removeDigits, stringByRemovingDigits, removing(isDigit)},
      {"trim white", trimWhiteSpaces, stringByTrimmingWhiteSpaces, trimming(isWhite)},
      {"trim feeds", trimFeeds, stringByTrimmingFeeds, trimming(endsLine)},
      {"trim unit", [](auto& t) { trimCharacter(t, u'a'); }, [](auto& s) { return stringByTrimmingCharacter(s, u'a'); },
       trimming(isA)},
      {"trim prefix", [](auto& t) { trimPrefixCharacter(t, u'a'); },
       [](auto& s) { return stringByTrimmingPrefixCharacter(s, u'a'); }, trimming(isA, true, false)},
      {"trim suffix", [](auto& t) { trimSuffixCharacter(t, u'a'); },
       [](auto& s) { return stringByTrimmingSuffixCharacter(s, u'a'); }, trimming(isA, false, true)},
      {"runs of spaces", [](auto& t) { removeMultipleSpaces(t); }, stringByRemovingMultipleSpaces,
       collapsing(isSpace, u' ')},
      {"runs of white", [](auto& t) { removeMultipleWhiteSpaces(t); },
       [](auto& s) { return stringByRemovingMultipleWhiteSpaces(s); }, collapsing(isWhite, u' ')},
      {"runs of feeds", [](auto& t) { removeMultipleFeeds(t); }, stringByRemovingMultipleFeeds,
       collapsing(endsLine, u'\n')},
  };
  for (int round = 0; round < 3000; ++round) {
    const std::u16string text = randomText(round % 2 ? kUnits : u"ab \n"s, round % 2 ? 24 : 5);
    const String string(text);
    for (const auto& [name, edit, twin, editSlowly] : cases) {
      std::u16string slow = text;
      editSlowly(slow);
      MutableString fast(string);
      edit(fast);
      ASSERT_EQ(fast.view(), slow) << name << ' ' << round;
      ASSERT_EQ(twin(string).view(), slow) << name << ' ' << round;
      ASSERT_EQ(twin(string).isSameObject(string), text == slow) << name << ' ' << round;
      ASSERT_TRUE(twin(String()).isAbsent()) << name;
    }
  }
}

TEST(LinearEditing, Tabs) {
  for (int round = 0; round < 3000; ++round) {
    const std::u16string text = randomText(kUnits, 24);
    for (const int width : {1, 2, 3, 8}) {
      std::u16string decoded = text, encoded = text;
      decodeTabsSlowly(decoded, static_cast<size_t>(width));
      encodeTabsSlowly(encoded, static_cast<size_t>(width));
      MutableString fast{std::u16string_view(text)};
      encodeTabs(fast, width);
      ASSERT_EQ(fast.view(), encoded) << round << ' ' << width;
      fast = MutableString(std::u16string_view(text));
      EXPECT_TRUE(decodeTabs(fast, width));
      ASSERT_EQ(fast.view(), decoded) << round << ' ' << width;
    }
  }
}

TEST(LinearEditing, ReplacingCountingAndDeleting) {
  for (int round = 0; round < 20000; ++round) {
    const std::u16string text = randomText(u"abA", 80), by = randomText(u"aBx", 6);
    const String string(text), search(randomText(u"abA", 4));
    for (const bool caseSensitive : {true, false}) {
      MutableString fast(string);
      std::u16string slow = text, deleted = text;
      const int64_t count = replaceSlowly(slow, std::u16string(search.view()), by, caseSensitive);
      replaceSlowly(deleted, std::u16string(search.view()), u"", caseSensitive);
      EXPECT_TRUE(replaceString(fast, search, String(by), caseSensitive));
      ASSERT_EQ(fast.view(), slow) << round;
      ASSERT_EQ(countSubstring(string, search, caseSensitive), count) << round;
      const String without = stringByRemovingString(string, search, caseSensitive);
      ASSERT_EQ(without.view(), deleted) << round;
      ASSERT_EQ(without.isSameObject(string), count == 0) << round;
      fast = MutableString(string);
      deleteString(fast, search, caseSensitive);
      ASSERT_EQ(fast.view(), deleted) << round;
    }
  }
}

}  // namespace
}  // namespace velan
