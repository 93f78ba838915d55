#include "tests/Testing.h"
#include "velan/text/CharacterSetOperations.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/Separators.h"

namespace velan {
namespace {

TEST(CharacterSets, Members) {
  using namespace std::string_view_literals;
  const Cases<const char*, const uint8_t*, std::u16string_view, std::u16string_view> sets = {
      {"empty", emptyCharacterSetRep(), u"", u"\0a \xFFFF"sv},
      {"space", spaceCharacterSetRep(), u"\0\t \x00A0\x3000"sv, u"a\n\r\x2028\x200B"},
      {"white", whiteCharacterSetRep(), u"\0\x03\t\n\v\f\r \x0085\x00A0\x2028\x2029\x3000\xFEFF\xFFFC"sv,
       u"x\x01\x1F\x200B\xFFFD"},
      {"alpha", alphaCharacterSetRep(), u"aZ\x00DF\x00AA\x0301\x0345\x01C5\x65E5\xFF9E",
       u"1\x2160\x24B6 -\xD835\xE000"},
      {"alphanumeric", alphaNumCharacterSetRep(), u"aZ1\x00BD\x2160\x0663\x0301", u" _\x24B6"},
      {"digit", digitCharacterSetRep(), u"09\x0660\x0966\xFF19", u"a\x00B2\x2160"},
      {"lower", lowerCharacterSetRep(), u"az\x00DF\x017F", u"AZ\x01C5\x00AA\x0345"},
      {"upper", upperCharacterSetRep(), u"AZ\x00C4\x01C4\x01C5", u"a\x01C6\x2160"},
      {"white space of the database", bitmap(CharacterSet::WhitespaceAndNewline), u"\n\x0085\x2029 ", u"\t\x03\xFEFF"},
      {"punctuation", bitmap(CharacterSet::Punctuation), u"!_\x2019\x3001", u"+$a"},
      {"symbol", bitmap(CharacterSet::Symbol), u"+$^\x309B", u"!a"},
      {"control", bitmap(CharacterSet::Control), u"\x01\x7F\x00AD\x200B", u" a"},
      {"illegal", bitmap(CharacterSet::Illegal), u"\x0378\xFFFE\xFFFF", u"a\xE000\xD800"},
      {"word", defaultWordSeparators(),
       u"\0 -_'#*?[]\x02C6\x00BD\x00B2\x200D\xD800\xDFFF\xF400\xF8FF\xFFFD\xFFFE\xFFFF\x20AC"sv,
       u"a1\x00DF\x65E5\xE000\xF3FF\xF900\x0301\x2160\x00AA"},
      {"wildcard", defaultWildcardSeparators(), u"\0 -_'#^\\|\xDFFF"sv, u"*?[]a1"},
      {"sentence", defaultSentenceSeparators(), u"!.:?", u",;\n\x3002"},
      {"line", defaultLineSeparators(), u"\r\n\f\x2028\x2029\x03\xFFFC\x0085", u"\v \xFEFF"},
  };
  for (const auto& [name, rep, members, others] : sets) {
    for (const unichar c : members) EXPECT_TRUE(isMemberOfCharacterSetRep(rep, c)) << name << ' ' << int{c};
    for (const unichar c : others) EXPECT_FALSE(isMemberOfCharacterSetRep(rep, c)) << name << ' ' << int{c};
  }
}

TEST(CharacterSetOperations, WholeStrings) {
  const std::u16string digits(300, u'7');
  const Cases<const char*, String, bool, bool, bool, int64_t> cases = {
      {"absent", String(), false, false, true, 0},
      {"empty", u"", false, false, true, 0},
      {"the last of three", u"ab1", true, false, false, 1},
      {"long", digits, true, true, true, 300},
      {"all but the last of a long one", digits + u"x", true, false, false, 300},
  };
  for (const auto& [why, string, any, all, allIfEmpty, count] : cases) {
    EXPECT_EQ(characterPartOfSet(string, digitCharacterSetRep()), any) << why;
    EXPECT_EQ(charactersPartOfSet(string, digitCharacterSetRep(), false), all) << why;
    EXPECT_EQ(charactersPartOfSet(string, digitCharacterSetRep(), true), allIfEmpty) << why;
    EXPECT_EQ(countCharactersPartOfSet(string, digitCharacterSetRep()), count) << why;
    EXPECT_FALSE(characterPartOfSet(string, nullptr)) << why;
    EXPECT_EQ(countCharactersPartOfSet(string, nullptr), 0) << why;
  }
}

}  // namespace
}  // namespace velan
