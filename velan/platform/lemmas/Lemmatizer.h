// Base forms of words ("went" is a form of "go"), from the lexical data that the machine has.
#ifndef VELAN_PLATFORM_LEMMAS_LEMMATIZER_H
#define VELAN_PLATFORM_LEMMAS_LEMMATIZER_H

#include <memory>
#include <string>
#include <string_view>

#include "velan/base/String.h"

namespace velan {

/// The lemma data of one language.
///
/// English uses WordNet's files (irregular forms, base forms, and rules for the regular endings), found in the folder
/// that the environment variable `VELAN_WORDNET` names or in the distribution's. Every other language, and English
/// where WordNet is missing, uses a Hunspell dictionary from a folder of `$DICPATH` or of the distribution. Data are
/// read when a language is first asked for and kept until the process ends. Safe from any thread.
class VELAN_EXPORT Lemmatizer {
 public:
  /// For a language code such as "en", "de" or "pt-BR", whose part after the language does not count. Null when the
  /// machine has no data for it; that, too, is remembered.
  static const Lemmatizer* forLanguage(std::string_view code);

  /// The base form of `word`, or an absent string when it is not known. Its capitals follow the dictionary ("Mice"
  /// gives "mouse"), but a word that is its own base form is returned as it stands. So are function words (articles,
  /// pronouns, prepositions, conjunctions; auxiliaries except in English) of German, French, English, Spanish, Italian,
  /// Dutch and Portuguese. What is elided in French and Italian stays before the base form of the rest ("d'enfants"
  /// gives "d'enfant"). Of several readings the likelier one is taken: in English the one that WordNet's texts have
  /// more often. May throw `std::bad_alloc`.
  String lemma(std::u16string_view word) const;

  ~Lemmatizer();
  Lemmatizer(const Lemmatizer&) = delete;
  Lemmatizer& operator=(const Lemmatizer&) = delete;

 private:
  struct Data;
  explicit Lemmatizer(std::unique_ptr<Data> data);
  static std::unique_ptr<Lemmatizer> load(const std::string& language);

  std::unique_ptr<Data> _data;
};

}  // namespace velan

#endif  // VELAN_PLATFORM_LEMMAS_LEMMATIZER_H
