#include "velan/query/Stemming.h"

#include <algorithm>

#include "velan/base/MutableString.h"
#include "velan/platform/LanguageDetection.h"
#include "velan/platform/WordTokenizer.h"
#include "velan/platform/lemmas/Lemmatizer.h"
#include "velan/text/CharacterSets.h"

namespace velan {

namespace {

bool isUpper(unichar c) { return isMemberOfCharacterSetRep(upperCharacterSetRep(), c); }

// Whether a sentence ends in what stands between two words: at its punctuation, or at an empty line.
bool endsSentence(std::u16string_view between) {
  return between.find_first_of(u".!?:\u2026\u3002\uFF01\uFF1F") != std::u16string_view::npos ||
         std::count(between.begin(), between.end(), u'\n') > 1;
}

// The base form of a word, or nothing where it stays. In German a capital may tell a noun as well as a name.
String baseForm(const Lemmatizer& lemmatizer, std::u16string_view word, bool startsSentence, bool nounsHaveCapitals) {
  if (std::any_of(word.begin() + 1, word.end(), isUpper)) return String();  // "GNU", "l'Europe"
  const bool hasCapital = !startsSentence && isUpper(word.front());
  if (hasCapital && !nounsHaveCapitals) return String();
  const String lemma = lemmatizer.lemma(word);
  return hasCapital && !lemma.isEmpty() && !isUpper(lemma.view().front()) ? String() : lemma;
}

}  // namespace

String stringByStemmingWords(const String& string, std::string_view language) {
  if (string.length() < 2) return string;
  const auto tokenizer = WordTokenizer::create();
  if (!tokenizer) return string;
  const Lemmatizer* const lemmatizer = Lemmatizer::forLanguage(language);
  const bool nounsHaveCapitals = language.starts_with("de");
  MutableString stemmed;
  stemmed.reserve(string.length());
  int64_t copied = 0;
  bool startsSentence = true;
  const bool isWhole = tokenizer->enumerateTokens(string.view(), [&](const WordTokenizer::Token& token) {
    if (!token.isWord) return;
    const std::u16string_view between =
        string.view().substr(static_cast<size_t>(copied), static_cast<size_t>(token.location - copied));
    const std::u16string_view word =
        string.view().substr(static_cast<size_t>(token.location), static_cast<size_t>(token.length));
    startsSentence = startsSentence || endsSentence(between);
    const String lemma = lemmatizer ? baseForm(*lemmatizer, word, startsSentence, nounsHaveCapitals) : String();
    startsSentence = false;
    stemmed.appendString(between);
    stemmed.appendString(lemma.isEmpty() ? word : lemma.view());
    copied = token.location + token.length;
  });
  if (!isWhole) return string;
  return stemmed;
}

String stringByStemmingWords(const String& string) {
  return stringByStemmingWords(string, string.length() < 2 ? std::string() : detectedLanguage(string.view()));
}

}  // namespace velan
