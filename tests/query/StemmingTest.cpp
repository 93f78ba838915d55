

#include "tests/Testing.h"
#include "tests/platform/files/TemporaryFolder.h"
#include "velan/platform/LanguageDetection.h"
#include "velan/platform/Services.h"
#include "velan/platform/lemmas/HunspellDictionaryInternal.h"
#include "velan/platform/lemmas/Lemmatizer.h"
#include "velan/platform/lemmas/WordNetInternal.h"
#include "velan/query/Stemming.h"

namespace velan {
namespace {

bool hasService(const std::string& name) {
  const std::vector<Service> all = services();
  return std::any_of(all.begin(), all.end(), [&](const auto& s) { return s.name == name && !s.version.empty(); });
}

// Dictionaries of a few words in a folder of their own, which the environment names before anything looks for it: the
// machine's own are not needed, and not seen.
class Stemming : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    static const TemporaryFolder folder;
    folder.write("noun.exc", "mice mouse\n");
    folder.write("index.adj", "nice a 1\n");
    folder.write("verb.exc", "went go\nlay_on lie\nmice nonsense\nsaw see\nground grind\n");
    folder.write("index.verb",
                 "  1 The licence\ngo v 1\nhouse v 1\nwalk v 1\ntry v 1\nsee v 1\nsaw v 1\ngrind v 1\nmeet v 1\n");
    folder.write("index.noun",
                 "house n 1\nmeeting n 1\nhi n 1\nwalking_stick n 1\nyear n 1\nyears n 1\nground n 1\nwalking n 1\n");
    folder.write(
        "cntlist.rev",
        "saw%2:35:00:: 1 1\nsee%2:39:00:: 1 700\nground%1:17:00:: 1 100\ngrind%2:36:00:: 1 10\nyear%1:28:00:: 1 700\n"
        "years%1:28:00:: 1 3\nmeet%2:41:00:: 1 237\nmeeting%1:14:00:: 1 30\nmeeting%1:14:01:: 2 9\n"
        "walk%2:38:00:: 1 200\nwalking%1:04:00:: 1 8\nbroken\nbroken%\nsee%9:1 5000000\n");
    folder.write("qq.aff", "SET ISO8859-2\nSFX S Y 1\nSFX S 0 y .\n");
    folder.write("qq.dic", "2\nza\xB3o\xBF/S\nkot/S\n");
    folder.write("de_DE.aff",
                 "SET UTF-8\nSFX E Y 1\nSFX E 0 en .\nSFX U Y 1\nSFX U 0 ungen .\nSFX N Y 1\nSFX N r nn r\n");
    folder.write("de_DE.dic", "6\nlauf/E\nLauf/E\nzeit/U\nHaus\nGnu/E\nsuch/E\nsuchen\nwer/N\n");
    folder.write("fr.aff", "SET UTF-8\nSFX R Y 1\nSFX R er 0 er\nSFX S Y 1\nSFX S 0 s .\n");
    folder.write("fr.dic", "5\nligne/S\ndan/S\nmai/S\nenfant/S\nligner/R\nligneser/R\n");
    setenv("VELAN_WORDNET", (folder / "").c_str(), 1);
    setenv("DICPATH", ("/nonexistent:" + folder / "").c_str(), 1);
  }
};

TEST_F(Stemming, Lemmas) {
  const Cases<const char*, const char*, String, String> cases = {
      {"en-GB", "irregular", u"went"_s, u"go"_s},
      {"en-GB", "the first list wins", u"mice"_s, u"nonsense"_s},
      {"en-GB", "a rule that puts letters back", u"tries"_s, u"try"_s},
      {"en-GB", "comparison", u"nicest"_s, u"nice"_s},
      {"en-GB", "a base form stays, as it is written", u"Meeting"_s, u"Meeting"_s},
      {"en-GB", "unless the other reading is far more frequent", u"walking"_s, u"walk"_s},
      {"en-GB", "a plural that is listed, too", u"years"_s, u"year"_s},
      {"en-GB", "the irregular form is the more frequent reading", u"saw"_s, u"see"_s},
      {"en-GB", "the irregular form is the rarer reading", u"ground"_s, u"ground"_s},
      {"en-GB", "capitals", u"WALKED"_s, u"walk"_s},
      {"en-GB", "a small word is no plural", u"his"_s, u"his"_s},
      {"en-GB", "only an ending", u"ing"_s, String()},
      {"en-GB", "terms of several words are left out", u"lay_on"_s, String()},
      {"en-GB", "outside ASCII", u"cafés"_s, String()},
      {"QQ_AA", "another way of writing the code", u"koty"_s, u"kot"_s},
      {"qq", "in the dictionary's encoding", u"założy"_s, u"założ"_s},
      {"qq", "not in its encoding", u"日本"_s, String()},
      {"qq", "unknown", u"pies"_s, String()},
      {"de", "small", u"laufen"_s, u"lauf"_s},
      {"de", "a noun is told by its capital", u"Laufen"_s, u"Lauf"_s},
      {"de", "a base form itself, though also a form of another", u"suchen"_s, u"suchen"_s},
      {"de", "a function word", u"wenn"_s, u"wenn"_s},
  };
  for (const auto& [language, why, word, lemma] : cases) {
    const Lemmatizer* lemmatizer = Lemmatizer::forLanguage(language);
    ASSERT_EQ(lemmatizer != nullptr, *language == 'e' || hasService("Hunspell")) << language;
    EXPECT_EQ(lemmatizer ? lemmatizer->lemma(word.view()) : lemma, lemma) << why;
  }
  EXPECT_EQ(Lemmatizer::forLanguage("qq"), Lemmatizer::forLanguage("QQ_AA"));
  for (const char* code : {"", "zz", "../../etc", "en/x", "-en"}) EXPECT_FALSE(Lemmatizer::forLanguage(code)) << code;
}

TEST_F(Stemming, WholeTexts) {
  const String text =
      u"In the evening they went to their houses, (houses) to sleep, and the Houses walked back to work! Houses. "
      u"Nothing about it was the nicest thing in the world..."_s;
  const String expected = hasService("CLD2") ? u"In the evening they go to their house, (house) to sleep, and the "
                                               u"Houses walk back to work! house. "
                                               u"Nothing about it was the nice thing in the world"_s
                                             : text.substringToIndex(text.length() - 3);
  EXPECT_EQ(stringByStemmingWords(text).toUTF8(), expected.toUTF8());
  EXPECT_EQ(stringByStemmingWords(u"日本 !?"_s), u"日本"_s) << "what follows the last word is lost";
  EXPECT_EQ(stringByStemmingWords(u" !?"_s), u""_s);
  const String single = u"!"_s;
  EXPECT_TRUE(stringByStemmingWords(single).isSameObject(single));
  EXPECT_TRUE(stringByStemmingWords(String()).isAbsent());
}

TEST_F(Stemming, KeepsFunctionWordsElisionsAndNames) {
  const Cases<const char*, String, String> cases = {
      {"fr", u"Dans la ligne, mais dans les lignes d'enfants l’Enfants"_s,
       u"Dans la ligne, mais dans les ligne d'enfant l’Enfants"_s},
      {"de-AT", u"Das Haus, wenn Zeitungen GNUEN laufen"_s, u"Das Haus, wenn Zeitung GNUEN lauf"_s},
      {"en", u"houses"_s, u"house"_s},
      {"en", u"the Houses\nof Houses\n\nHouses"_s, u"the Houses\nof Houses\n\nhouse"_s},
      {"zz", u"the houses"_s, u"the houses"_s},
  };
  for (const auto& [language, text, stemmed] : cases) {
    if (*language != 'e' && !hasService("Hunspell")) continue;
    EXPECT_EQ(stringByStemmingWords(text, language).toUTF8(), stemmed.toUTF8()) << language;
  }
}

TEST_F(Stemming, FromManyThreads) {
  inThreads(8, [](int) {
    const Lemmatizer* german = Lemmatizer::forLanguage("de-AT");
    for (int round = 0; german && round < 50; ++round) EXPECT_EQ(german->lemma(u"Zeitungen"), u"Zeitung"_s);
    EXPECT_EQ(stringByStemmingWords(u"no words known"_s).length(), 14);
  });
}

TEST(LanguageDetection, TellsLanguages) {
  const Cases<String, const char*> cases = {
      {u"Der schnelle braune Fuchs springt über den faulen Hund, und die Katze sieht ihm dabei zu."_s, "de"},
      {u"The committee will meet again next week to discuss the remaining questions."_s, "en"},
      {u"吾輩は猫である。名前はまだ無い。どこで生れたかとんと見当がつかぬ。"_s, "ja"},
      {u"我们明天去北京参加会议，然后在那里住三天。"_s, "zh"},
      {u""_s, ""},
      {u"x"_s, ""},
  };
  for (const auto& [text, language] : cases) {
    EXPECT_EQ(detectedLanguage(text.view()), hasService("CLD2") ? language : "") << text.toUTF8();
  }
  std::u16string cut(kLanguageSampleLength - 1, u' ');
  cut += u"\U0001F600 tail";
  EXPECT_EQ(detectedLanguage(cut), "");
}

}  // namespace
}  // namespace velan
