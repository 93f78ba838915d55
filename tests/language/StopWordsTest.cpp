// The lists that the library brings along, and lists in folders.

#include "tests/Testing.h"
#include "tests/platform/files/TemporaryFolder.h"
#include "velan/language/LanguageFilter.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/ConversionTables.h"

namespace velan {
namespace {

TEST(StopWords, ListsAreUsable) {
  const auto filter = LanguageFilter::init();
  ASSERT_GE(filter->languages().size(), 24u);
  EXPECT_EQ(filter->languages().front(), u"EN"_s);
  EXPECT_TRUE(std::is_sorted(filter->languages().begin() + 1, filter->languages().end()));
  for (size_t i = 0; i < filter->languages().size(); ++i) {
    const auto words = filter->stopWords(i);
    const std::string key = filter->languages()[i].toUTF8();
    EXPECT_GE(words.size(), 150u) << key;
    EXPECT_LE(words.size(), 200u) << key;
    for (const String& word : words) {
      EXPECT_GE(word.length(), 3) << key << ' ' << word.toUTF8();
      for (const unichar end : {word[0], word[word.length() - 1]}) {
        EXPECT_TRUE(isMemberOfCharacterSetRep(alphaCharacterSetRep(), end) && umlautsToAscii(end) < 128)
            << "never counts: " << key << ' ' << word.toUTF8();
      }
    }
  }
  const auto wordsFor = [&](const String& key) {
    const auto& keys = filter->languages();
    return filter->stopWords(static_cast<size_t>(std::find(keys.begin(), keys.end(), key) - keys.begin()));
  };
  const std::pair<String, String> relatives[] = {{u"DA", u"NO"}, {u"DA", u"SV"}, {u"NO", u"SV"}, {u"CS", u"SK"},
                                                 {u"HR", u"SL"}, {u"ES", u"PT"}, {u"ES", u"CA"}, {u"PL", u"CS"}};
  for (const auto& [a, b] : relatives) {
    for (const auto& [one, other] : {std::pair(wordsFor(a), wordsFor(b)), std::pair(wordsFor(b), wordsFor(a))}) {
      std::vector<String> own;
      std::set_difference(one.begin(), one.end(), other.begin(), other.end(), std::back_inserter(own));
      EXPECT_GE(own.size(), 100u) << a.toUTF8() << ' ' << b.toUTF8();
    }
  }
}

TEST(StopWords, TellTheExampleDocumentsApart) {
  const auto filter = LanguageFilter::init();
  const std::pair<const char*, const char16_t*> documents[] = {
      {"letters/archivist-to-insurer.txt", u"EN"},     {"letters/mueller-brief-zuerich.txt", u"DE"},
      {"letters/besson-lentille-du-phare.txt", u"FR"}, {"letters/carrasco-la-nieta-del-farero.txt", u"ES"},
      {"letters/hladik-archivni-dopis.txt", u"CS"},    {"letters/lindqvist-fyrmuseet.txt", u"SV"},
      {"letters/wrona-latarnia-morska.txt", u"PL"},    {"articles/vystavka-sto-ogney.txt", u"RU"},
      {"letters/alexiou-faros-almyri.txt", u"EL"},     {"letters/lin-dengta-zhaopian.txt", u"**"}};
  for (const auto& [path, language] : documents) {
    const String text = String::fromUTF8(contentsOf(VELAN_DOCUMENTS + std::string(path)));
    EXPECT_EQ(filter->languageOfText(text), String(language)) << path;
    filter->setLanguage(u"EN");
    EXPECT_EQ(filter->filterText(text), String(language) != u"EN"_s) << path;
  }
  const String letter = String::fromUTF8(contentsOf(VELAN_DOCUMENTS + std::string(documents[0].first)));
  EXPECT_EQ(filter->ISOLanguageCodeOfText(letter), u"en"_s);
  EXPECT_GT(filter->stopWordRatioOfText(letter), 0.2);
  EXPECT_EQ(filter->stopWordRatioOfText(u"слово слово слово слово"), 0);
}

TEST(StopWords, InFolders) {
  const TemporaryFolder folder, copy, untouched;
  const std::pair<const char*, const char*> files[] = {{"StopWordsZZ", "\xEF\xBB\xBFzig, zag\nzoo"},
                                                       {"StopWordsEN", "the and"},
                                                       {"StopWordsgEN", "general"},
                                                       {"StopWords", "nameless"},
                                                       {"StopWordsAA", "\xFF\xFE no UTF-8"},
                                                       {"OtherWordsBB", "other"}};
  for (const auto& [name, bytes] : files) folder.write(name, bytes);
  const auto filter = LanguageFilter::initWithDirectory(folder.path(""), false);
  EXPECT_EQ(filter->languages(), (std::vector<String>{u"EN"_s, u"AA"_s, u"ZZ"_s}));
  EXPECT_EQ(filter->stopWords(2), (std::vector<String>{u"zag"_s, u"zig"_s, u"zoo"_s}));
  EXPECT_TRUE(filter->stopWords(1).empty());

  EXPECT_TRUE(filter->writeToDirectory(copy.path("")));
  EXPECT_EQ(copy.read("StopWordsZZ"), "zag\nzig\nzoo\n");
  const auto again = LanguageFilter::initWithDirectory(copy.path(""), false);
  EXPECT_EQ(again->languages(), filter->languages());
  EXPECT_EQ(again->stopWords(0), filter->stopWords(0));

  EXPECT_FALSE(filter->writeToDirectory(u"/nowhere/at/all"));
  const auto leaving = LanguageFilter::initWithKeys({u"A"_s, u"/../B"_s}, {{u"word"_s}, {u"word"_s}}, false);
  EXPECT_FALSE(leaving->writeToDirectory(untouched.path("")));
  EXPECT_EQ(untouched.count(), 0u);
  EXPECT_TRUE(LanguageFilter::initWithDirectory(u"/nowhere/at/all", true)->languages().empty());
}

}  // namespace
}  // namespace velan
