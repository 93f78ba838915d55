#include "velan/query/Stemming.h"

#include "velan/base/MutableString.h"
#include "velan/platform/LanguageDetection.h"
#include "velan/platform/WordTokenizer.h"
#include "velan/platform/lemmas/Lemmatizer.h"

namespace velan {

String stringByStemmingWords(const String& string) {
  if (string.length() < 2) return string;
  const auto tokenizer = WordTokenizer::create();
  if (!tokenizer) return string;
  const Lemmatizer* const lemmatizer = Lemmatizer::forLanguage(detectedLanguage(string.view()));
  MutableString stemmed;
  stemmed.reserve(string.length());
  int64_t copied = 0;
  tokenizer->enumerateTokens(string.view(), [&](const WordTokenizer::Token& token) {
    if (!token.isWord) return;
    stemmed.appendCharacters(string.characters() + copied, token.location - copied);
    const std::u16string_view word(string.characters() + token.location, static_cast<size_t>(token.length));
    const String lemma = lemmatizer ? lemmatizer->lemma(word) : String();
    stemmed.appendString(lemma ? lemma.view() : word);
    copied = token.location + token.length;
  });
  return stemmed.takeString();
}

}  // namespace velan
