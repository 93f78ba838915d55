// Tells the language of a text by counting its stop words: "the" and "which" speak for English, "und" and "nicht" for
// German. Needs a few sentences; tells close relatives such as Danish and Norwegian apart; says nothing rather than
// something wrong. Texts in other scripts than the Latin one are told by their letters.
//
// The words come from plain text files, one a language, that anyone can edit. `DominantLanguage.h` has the other
// method, which needs no lists and knows more languages, and always looks at the beginning of the text alone.
#ifndef VELAN_LANGUAGE_LANGUAGE_FILTER_H
#define VELAN_LANGUAGE_LANGUAGE_FILTER_H

#include <concepts>
#include <memory>
#include <optional>
#include <vector>

#include "velan/base/String.h"
#include "velan/language/LanguageCounts.h"

namespace velan {

class StopWordTable;

/// Languages with their stop words, and perhaps a language of its own to hold texts against. May be used by several
/// threads while nobody sets anything. Languages are named by keys, by custom their ISO 639 code in capital letters
/// ("DE"; "NO" for Norwegian), as their files are; a key may be any string.
class VELAN_EXPORT LanguageFilter {
 public:
  /// `init`: with the stop words that the library brings along (see `stopWordsFolder`), diacritics ignored. Without
  /// languages when they are not found. Null only when memory runs out, here as in the other factories.
  static std::unique_ptr<LanguageFilter> init();
  /// `initWithDirectory:ignoreUmlauts`: with the words of all files in `directory` whose name is "StopWords" and a key;
  /// those with an empty key or the key "Gen" in any case are passed over. The languages are in the order of their
  /// keys. The files are UTF-8 (a byte-order mark is skipped) and are split by the default word separation; an
  /// unreadable file gives a language without words, an unreadable folder a filter without languages. With
  /// `ignoreUmlauts` stop words and texts are compared without diacritics.
  static std::unique_ptr<LanguageFilter> initWithDirectory(const String& directory,
                                                           std::same_as<bool> auto ignoreUmlauts) {
    return withDirectory(directory, ignoreUmlauts);
  }
  /// `initWithKeys:stopWords:ignoreUmlauts`: with the languages `keys` and a list of stop words for each; the shorter
  /// of the two lists counts. The key "EN" moves to the front, the others keep their order. Words are taken in lower
  /// case; one with an apostrophe or a full stop counts by the parts that word separation makes of it and, too, without
  /// these signs ("don't": "don", "t" and "dont").
  static std::unique_ptr<LanguageFilter> initWithKeys(const std::vector<String>& keys,
                                                      const std::vector<std::vector<String>>& stopWords,
                                                      std::same_as<bool> auto ignoreUmlauts) {
    return withKeys(keys, stopWords, ignoreUmlauts);
  }
  ~LanguageFilter();
  LanguageFilter(const LanguageFilter&) = delete;
  LanguageFilter& operator=(const LanguageFilter&) = delete;

  /// `writeToDirectory`: writes the stop words of each language to a file in the folder `directory`, one a line, as
  /// `initWithDirectory` reads them; files that are there are replaced. False when one cannot be written, or when a key
  /// is no file name there (empty, or with "/" or U+0000); then nothing is written.
  bool writeToDirectory(const String& directory) const;

  /// `languages`: the keys, in the order in which the languages challenge each other: among equals the first one wins.
  const std::vector<String>& languages() const { return _languageKeys; }
  /// The stop words of a language by its index, sorted, in the form in which they are compared; none for an index that
  /// does not exist.
  std::vector<String> stopWords(size_t language) const;

  /// `language`: the key of the filter's own language, or the name of a script group; absent when none is set.
  String language() const { return _language; }
  /// `setLanguage`: takes a key or an ISO 639 code, in any case ("DE", "de"; "nb" for "NO"), or "RU", "AR", "HE", "EL"
  /// and "**" for the script groups unless there are stop words under that key. Anything else, and an absent string,
  /// leaves the filter without a language.
  void setLanguage(const String& language);
  /// The index of the filter's own language in `languages()`, or 1000 Cyrillic, 1001 Arabic, 1002 Hebrew, 1003 Greek,
  /// 1004 other scripts; `NSNotFound` when none is set.
  int64_t languageIndex() const;
  /// `ISOLanguageCode`: the ISO 639 code of the filter's own language; absent when there is none.
  String ISOLanguageCode() const { return ISOCodeForLanguage(_language); }
  /// `ISOCodeForLanguage`: "de" for "DE", "nb" for "NO", "ru" for "RU". Absent for "**" and for keys that are not two
  /// or three ASCII letters.
  static String ISOCodeForLanguage(const String& language);
  /// "RU", "AR", "HE", "EL" or "**".
  static String nameOfScriptGroup(ScriptGroup group);

  /// `minWordLen`: words of a text with fewer code units are passed over; 3 unless set.
  int64_t minWordLen() const { return _minWordLen; }
  /// `setMinWordLen`: see `minWordLen`.
  void setMinWordLen(int64_t length) { _minWordLen = length; }
  /// `ignoreUmlauts`: whether diacritics make no difference.
  bool ignoreUmlauts() const { return _ignoreUmlauts; }

  /// Counts the words of `text`, once for all questions below; they ask it themselves when they are given a text.
  LanguageCounts countsOfText(const String& text) const;

  /// `languageOfText`: the key of the language of `text`, or "RU", "AR", "HE", "EL" or "**" for a text in Cyrillic,
  /// Arabic, Hebrew, Greek or another script than Latin; absent when undecided.
  String languageOfText(const String& text) const { return languageOfCounts(countsOfText(text)); }
  String languageOfCounts(const LanguageCounts& counts) const;
  /// `filterText`: whether `text` is clearly in another language than the filter's own. False when none is set, when
  /// there are no languages, and when undecided.
  bool filterText(const String& text) const { return isFiltered(countsOfText(text)); }
  bool isFiltered(const LanguageCounts& counts) const;
  /// `ISOLanguageCodeOfText`: the ISO 639 code of `languageOfText`; absent when there is none.
  String ISOLanguageCodeOfText(const String& text) const { return ISOCodeForLanguage(languageOfText(text)); }
  /// `stopWordRatioOfText`: how many of the words of `text` are stop words of the leading language, from 0 to 1; 0 when
  /// no language leads. Running text has 0.1 to 0.4, lists and tables next to nothing.
  double stopWordRatioOfText(const String& text) const { return stopWordRatioOfCounts(countsOfText(text)); }
  static double stopWordRatioOfCounts(const LanguageCounts& counts);

 private:
  LanguageFilter(bool ignoreUmlauts);
  static std::unique_ptr<LanguageFilter> withDirectory(const String& directory, bool ignoreUmlauts);
  static std::unique_ptr<LanguageFilter> withKeys(const std::vector<String>& keys,
                                                  const std::vector<std::vector<String>>& stopWords,
                                                  bool ignoreUmlauts);
  const unichar* table() const;
  std::optional<LanguageChoice> choiceOf(const String& language) const;
  String nameOf(LanguageChoice choice) const;

  std::vector<String> _languageKeys;
  std::unique_ptr<StopWordTable> _languageSets;  // by `_languageKeys`; holds `_maxWordLen`
  String _language;
  std::optional<LanguageChoice> _languageIndex;
  int64_t _minWordLen = 3;
  bool _ignoreUmlauts;
};

/// The folder with the stop words that the library brings along: `$VELAN_STOPWORDS` when that is set, else the one that
/// was installed with the library or lies beside it in a build tree. Absent when there is none.
VELAN_EXPORT String stopWordsFolder();

struct LanguageFilterContext;

/// `LanguageFilterHandler`: counts one word, for `enumerateWordsUsingHandler`; `context` is a `LanguageFilterContext`,
/// which only `LanguageFilter::countsOfText` makes. Always asks to continue.
VELAN_EXPORT bool LanguageFilterHandler(const String& string, const unichar* characters, int64_t start, int64_t length,
                                        void* context);

}  // namespace velan

#endif  // VELAN_LANGUAGE_LANGUAGE_FILTER_H
