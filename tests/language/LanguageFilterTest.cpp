#include <set>

#include "tests/Testing.h"
#include "velan/language/DominantLanguage.h"
#include "velan/language/LanguageFilter.h"
#include "velan/query/words/WordSeparation.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/ConversionTables.h"

namespace velan {
namespace {

using Lists = std::vector<std::vector<String>>;

std::vector<String> wordsOf(const String& text) {
  return wordsUsingDefaultSeparation(text).value_or(std::vector<String>());
}

// Two languages of made-up words, and one that shares a word with the first.
std::unique_ptr<LanguageFilter> smallFilter() {
  return LanguageFilter::initWithKeys(
      {u"AA"_s, u"EN"_s, u"BB"_s},
      Lists{wordsOf(u"alba arne asta avis apex"), wordsOf(u"elk ember easel ether erst"),
            wordsOf(u"bob alba bent bask bale")},
      false);
}

TEST(LanguageFilter, Decisions) {
  const auto filter = smallFilter();
  const String filler = repeated(u"zzz ", 40);
  const Cases<const char*, String, const char16_t*> cases = {
      {"four different stop words decide", u"alba arne asta avis", u"AA"},
      {"three do not, however often they come", repeated(u"arne asta avis ", 50), nullptr},
      {"a count of 4 among 160 words is not above a fortieth", u"alba arne asta avis" + repeated(u" zzz", 156),
       nullptr},
      {"among 159 it is", u"alba arne asta avis" + repeated(u" zzz", 155), u"AA"},
      {"equal counts go to the first, and EN is the first", u"alba arne asta avis elk ember easel ether", u"EN"},
      {"two more than the leader before are too few", u"elk ember easel ether alba arne asta avis avis avis", nullptr},
      {"three more are enough", u"elk ember easel ether alba arne asta avis avis avis avis", u"AA"},
      {"short words count for nothing among the characters", repeated(u"xy ", 30) + u"слово слово слово", u"RU"},
      {"case makes no difference", u"ALBA Arne aSTA avis", u"AA"},
      {"diacritics do", u"álba arné ásta avís", nullptr},
      {"Cyrillic", u"elk ember easel ether быстрая коричневая лиса прыгает через ленивую собаку потом снова", u"RU"},
      {"Greek", u"η γρήγορη καφετιά αλεπού πηδάει πάνω από τον τεμπέλη σκύλο", u"EL"},
      {"Hebrew", u"השועל החום המהיר קופץ מעל הכלב העצלן", u"HE"},
      {"Arabic", u"الثعلب البني السريع يقفز فوق الكلب الكسول", u"AR"},
      {"another script", u"ธงชาติ ภาษา ประเทศ กรุงเทพ", u"**"},
      {"too few words of a script", u"zzz zzz zzz zzz zzz zzz zzz zzz слово слово слово", nullptr},
      {"numbers and signs", u"123 4567 89012", nullptr},
      {"nothing", u"", nullptr},
  };
  for (const auto& [why, text, language] : cases) EXPECT_EQ(filter->languageOfText(text), String(language)) << why;
  EXPECT_TRUE(filter->languageOfText(String()).isAbsent());
}

TEST(LanguageFilter, OwnLanguage) {
  const auto filter = smallFilter();
  const String foreign = repeated(u"elk ember easel ether ", 2);
  EXPECT_FALSE(filter->filterText(foreign)) << "none is set";
  const Cases<const char16_t*, const char16_t*, int64_t, bool> cases = {
      {u"AA", u"AA", 1, true},
      {u"bb", u"BB", 2, true},
      {u"en", u"EN", 0, false},
      {u"RU", u"RU", 1000, true},
      {u"**", u"**", 1004, true},
      {u"XX", nullptr, NSNotFound, false},
      {nullptr, nullptr, NSNotFound, false},
  };
  for (const auto& [given, language, index, filters] : cases) {
    filter->setLanguage(given);
    EXPECT_EQ(filter->language(), String(language));
    EXPECT_EQ(filter->languageIndex(), index) << filter->language().toUTF8();
    EXPECT_EQ(filter->filterText(foreign), filters) << filter->language().toUTF8();
  }
  filter->setLanguage(u"AA");
  EXPECT_FALSE(filter->filterText(u"elk ember easel ether alba arne")) << "only two more than the own language has";
  EXPECT_TRUE(filter->filterText(u"elk ember easel ether alba")) << "three more";
  EXPECT_TRUE(filter->filterText(repeated(u"слово ", 8)));
}

TEST(LanguageFilter, CodesAndSettings) {
  EXPECT_EQ(LanguageFilter::ISOCodeForLanguage(u"DE"), u"de"_s);
  EXPECT_EQ(LanguageFilter::ISOCodeForLanguage(u"NO"), u"nb"_s);
  for (const char16_t* none : {u"**", u"", u"D", u"Klingon", u"d-e"}) {
    EXPECT_TRUE(LanguageFilter::ISOCodeForLanguage(none).isAbsent());
  }
  const auto filter =
      LanguageFilter::initWithKeys({u"NO"_s, u"RU"_s}, Lists{wordsOf(u"ikke"), wordsOf(u"nikogda")}, true);
  filter->setLanguage(u"nb");
  EXPECT_EQ(filter->language(), u"NO"_s);
  EXPECT_EQ(filter->ISOLanguageCode(), u"nb"_s);
  filter->setLanguage(u"RU");
  EXPECT_EQ(filter->languageIndex(), 1) << "stop words under the key of a script group";
  EXPECT_TRUE(filter->ignoreUmlauts());
  EXPECT_EQ(filter->minWordLen(), 3);
  filter->setMinWordLen(5);
  EXPECT_EQ(filter->countsOfText(u"ikke ikke").languages[0].words, 0);

  const auto signs = LanguageFilter::initWithKeys({u"XX"_s, u"YY"_s}, Lists{{u"Don't"_s, u"Stra\u00DFe"_s}}, true);
  EXPECT_EQ(signs->languages().size(), 1u) << "the shorter list counts";
  EXPECT_EQ(signs->stopWords(0), (std::vector<String>{u"don"_s, u"dont"_s, u"stra\u00DFe"_s, u"t"_s}));
}

// Hits by their definition: every word of the text held against every stop word of every language.
TEST(LanguageFilter, CountsEqualASlowVersion) {
  Chance chance(7);
  const std::u16string_view parts[] = {u"al", u"be", u"B\u00E9", u"ga", u"слово", u"7", u"\u00F8", u" ", u" ", u", "};
  const auto isLatin = [](unichar c) {
    return isMemberOfCharacterSetRep(alphaCharacterSetRep(), c) && umlautsToAscii(c) < 128;
  };
  for (int round = 0; round < 300; ++round) {
    const bool ignoreUmlauts = round % 2 == 0;
    const auto folded = [&](const String& word) {
      return String::filled(word.length(), [&](unichar* units) {
        const unichar* table = ignoreUmlauts ? initLowerUmlautsCharsTable() : initLowerCharsTable();
        std::transform(word.begin(), word.end(), units, [&](unichar c) { return table[c]; });
        return word.length();
      });
    };
    const Lists lists{wordsOf(chance.text(40, parts)), wordsOf(chance.text(40, parts))};
    const auto filter = LanguageFilter::initWithKeys({u"A"_s, u"B"_s}, lists, ignoreUmlauts);
    const String text = chance.text(200, parts);
    const LanguageCounts counts = filter->countsOfText(text);
    for (size_t i = 0; i < lists.size(); ++i) {
      int64_t hits = 0;
      std::set<String> distinct;
      for (const String& word : wordsOf(text)) {
        if (word.length() < 3 || !isLatin(word[0]) || !isLatin(word[word.length() - 1])) continue;
        const auto equals = [&](const String& stopWord) { return folded(stopWord) == folded(word); };
        if (std::none_of(lists[i].begin(), lists[i].end(), equals)) continue;
        ++hits;
        distinct.insert(folded(word));
      }
      EXPECT_EQ(counts.languages[i].words, hits) << text.toUTF8();
      EXPECT_EQ(counts.languages[i].distinct, std::min<size_t>(distinct.size(), 4));
    }
  }
}

TEST(DominantLanguage, OfStrings) {
  EXPECT_TRUE(dominantLanguage(String()).isAbsent());
  EXPECT_TRUE(dominantLanguage(u"").isAbsent());
  const String code = dominantLanguage(u"Der Leuchtturm steht seit vielen Jahren auf der kleinen Insel vor der Küste.");
  EXPECT_TRUE(code.isAbsent() || code == u"de"_s) << code.toUTF8();
}

}  // namespace
}  // namespace velan
