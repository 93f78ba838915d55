// Every operation that walks a text once against one that edits unit by unit, on random texts of few different units.
#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <string>

#include "velan/text/CharacterSets.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/editing/Collapsing.h"
#include "velan/text/editing/Ligatures.h"
#include "velan/text/editing/Removal.h"
#include "velan/text/editing/Replacement.h"
#include "velan/text/editing/Tabs.h"
#include "velan/text/editing/Trimming.h"
#include "velan/text/inspection/Lines.h"
#include "velan/text/inspection/SubstringSearch.h"

namespace velan {
namespace {

using namespace std::string_literals;

using Slow = std::function<void(std::u16string&)>;
using Test = std::function<bool(unichar)>;

const std::u16string kLineEnds = u"\n\r\f\x0003\x2028\x2029\xFFFC\xFEFF";
bool endsLine(unichar c) { return kLineEnds.find(c) != kLineEnds.npos; }
bool isSpace(unichar c) { return isMemberOfCharacterSetRep(spaceCharacterSetRep(), c); }
bool isWhite(unichar c) { return isMemberOfCharacterSetRep(whiteCharacterSetRep(), c); }

Slow removing(const Test& test) {
  return [=](std::u16string& text) {
    for (size_t i = 0; i < text.size();) test(text[i]) ? static_cast<void>(text.erase(i, 1)) : static_cast<void>(++i);
  };
}

Slow trimming(const Test& test) {
  return [=](std::u16string& text) {
    while (!text.empty() && test(text.front())) text.erase(0, 1);
    while (!text.empty() && test(text.back())) text.pop_back();
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
    if (endsLine(text[i])) {
      column = 0;
    } else if (text[i] == u'\t') {
      const size_t spaces = width - column % width;
      text.replace(i, 1, spaces, u' ');
      i += spaces - 1;
      column += spaces;
    } else {
      ++column;
    }
  }
}

void encodeTabsSlowly(std::u16string& text, size_t width) {
  size_t column = 0, start = text.npos;
  for (size_t i = 0; i < text.size(); ++i) {
    if (endsLine(text[i])) {
      column = 0;
      start = text.npos;
    } else if (isSpace(text[i])) {
      if (start == text.npos) start = i;
      column = text[i] == u'\t' ? (column / width + 1) * width : column + 1;
      if (column % width != 0) continue;
      text.replace(start, i + 1 - start, 1, u'\t');
      i = start;
      start = text.npos;
    } else {
      ++column;
      start = text.npos;
    }
  }
}

// Also counts.
int64_t replaceSlowly(std::u16string& text, const std::u16string& search, const std::u16string& by,
                      bool caseSensitive) {
  int64_t count = 0;
  for (size_t i = 0; !search.empty() && i + search.size() <= text.size();) {
    bool equal = true;
    for (size_t k = 0; k < search.size(); ++k) {
      equal = equal && (caseSensitive ? text[i + k] == search[k] : toUpper(text[i + k]) == toUpper(search[k]));
    }
    if (equal) text.replace(i, search.size(), by);
    i += equal ? by.size() : 1;
    count += equal;
  }
  return count;
}

class RandomTexts {
 public:
  std::u16string text(const std::u16string& units, size_t longest) {
    std::u16string result(_random() % (longest + 1), u'\0');
    for (unichar& c : result) c = units[_random() % units.size()];
    return result;
  }

 private:
  std::mt19937 _random{1};  // fixed: a failure can be repeated
};

TEST(LinearEditing, EqualsEditingUnitByUnit) {
  const auto unit = [](unichar wanted) { return [wanted](unichar c) { return c == wanted; }; };
  struct Case {
    const char* name;
    std::function<void(MutableString&)> edit;
    Slow slow;
  };
  std::vector<Case> cases = {
      {"spaces", removeSpaces, removing(isSpace)},
      {"white", removeWhiteSpaces, removing(isWhite)},
      {"feeds", removeFeeds, removing(endsLine)},
      {"units", [](auto& t) { removeCharactersOfString(t, u" ba"); },
       removing([](unichar c) { return c == u' ' || c == u'a' || c == u'b'; })},
      {"trim white", trimWhiteSpaces, trimming(isWhite)},
      {"trim feeds", trimFeeds, trimming(endsLine)},
      {"trim unit", [](auto& t) { trimCharacter(t, u'a'); }, trimming(unit(u'a'))},
      {"multiple spaces", [](auto& t) { removeMultipleSpaces(t); }, collapsing(isSpace, u' ')},
      {"multiple white", [](auto& t) { removeMultipleWhiteSpaces(t); }, collapsing(isWhite, u' ')},
      {"multiple feeds", [](auto& t) { removeMultipleFeeds(t); }, collapsing(endsLine, u'\n')},
      {"a member's replacement", [](auto& t) { removeMultipleWhiteSpaces(t, true, false, u'a'); },
       collapsing(isSpace, u'a')},
      {"ligatures", convertLigaturesToCharacters,
       [](auto& t) {
         replaceSlowly(t, u"\xFB03", u"ffi", true);
         replaceSlowly(t, u"\x0152", u"OE", true);
       }},
  };
  for (const size_t width : {1u, 2u, 3u, 8u}) {
    const auto w = static_cast<int64_t>(width);
    cases.push_back({"decode", [w](auto& t) { decodeTabs(t, w); }, [=](auto& t) { decodeTabsSlowly(t, width); }});
    cases.push_back({"encode", [w](auto& t) { encodeTabs(t, w); }, [=](auto& t) { encodeTabsSlowly(t, width); }});
  }
  RandomTexts random;
  for (int round = 0; round < 3000; ++round) {
    const std::u16string text = random.text(u"aab  \t\t\n\r\x00A0\xFEFF\xFB03\x0152\0"s, 24);
    for (const Case& c : cases) {
      MutableString fast{std::u16string_view(text)};
      std::u16string slow = text;
      c.edit(fast);
      c.slow(slow);
      ASSERT_EQ(fast.view(), slow) << c.name << ' ' << round;
    }
  }
}

TEST(LinearEditing, ReplacingEqualsReplacingOneByOne) {
  RandomTexts random;
  for (int round = 0; round < 20000; ++round) {
    const std::u16string text = random.text(u"abA", 80), search = random.text(u"abA", 4), by = random.text(u"aBx", 6);
    for (const bool caseSensitive : {true, false}) {
      MutableString fast{std::u16string_view(text)};
      std::u16string slow = text;
      const int64_t count = replaceSlowly(slow, search, by, caseSensitive);
      EXPECT_TRUE(replaceString(fast, String(search), String(by), caseSensitive));
      ASSERT_EQ(fast.view(), slow) << round;
      ASSERT_EQ(countSubstring(String(text), String(search), caseSensitive), count) << round;
      slow = text;
      replaceSlowly(slow, search, u"", caseSensitive);
      ASSERT_EQ(stringByRemovingString(String(text), String(search), caseSensitive).view(), slow) << round;
    }
  }
}

TEST(LinearEditing, LinesAndTheirEndsMakeTheText) {
  RandomTexts random;
  for (int round = 0; round < 3000; ++round) {
    const std::u16string text = random.text(u"ab\n\r\r\f\xFEFF\x2028", 12);
    std::u16string joined;
    const std::vector<String> all = lines(String(text));
    for (const String& line : all) {
      joined += line.view();
      for (const unichar c : line) ASSERT_FALSE(endsLine(c)) << round;
      if (joined.size() == text.size()) break;
      joined += text[joined.size()];
      ASSERT_TRUE(endsLine(joined.back())) << round;
      if (joined.back() == u'\r' && text[joined.size()] == u'\n') joined += u'\n';
    }
    ASSERT_EQ(joined, text) << round;
  }
}

}  // namespace
}  // namespace velan
