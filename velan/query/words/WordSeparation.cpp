#include "velan/query/words/WordSeparation.h"

#include <algorithm>

#include "velan/query/words/EastAsianWords.h"
#include "velan/query/words/SeparationInternal.h"
#include "velan/text/Separators.h"

namespace velan {

namespace {

int64_t _enumerateWordsUsingBlock(const String& string, StringWordBlock block, StringWordHandler handler,
                                  void* context) {
  if (!block && !handler) return 0;
  const unichar* const units = string.characters();
  return enumerateRuns(string.view(), defaultWordSeparators(), [&](Range word) {
    return block ? block(string, units, word.location, word.length)
                 : handler(string, units, word.location, word.length, context);
  });
}

// An enumerator over the run alone when it is to be divided into East Asian words, else null: the run is one word.
std::unique_ptr<FastWordEnumerator> enumeratorOfAsianRun(const String& string, Range run) {
  const unichar* const start = string.characters() + run.location;
  if (!FastWordEnumerator::splitAsianWords() || std::none_of(start, start + run.length, isEastAsianUnichar)) {
    return nullptr;
  }
  return FastWordEnumerator::initWithCharactersNoCopy(start, run.length, false);
}

Range wordInRun(const String& string, Range run, int64_t index) {
  const auto enumerator = enumeratorOfAsianRun(string, run);
  if (!enumerator) return run;
  const Range word = enumerator->rangeOfWordAtIndex(index - run.location);
  return isPresent(word) ? Range{run.location + word.location, word.length} : run;
}

String wordAtIndex(const String& string, int64_t index) {
  const Range word = getWordRangeAtIndex(string, index);
  return isPresent(word) ? string.substring(word) : String();
}

bool isWordUnit(unichar c) { return !isMemberOfCharacterSetRep(defaultWordSeparators(), c); }

}  // namespace

int64_t enumerateWordsUsingHandler(const String& string, StringWordHandler handler, void* context) {
  return _enumerateWordsUsingBlock(string, nullptr, handler, context);
}

int64_t enumerateWordsUsingBlock(const String& string, StringWordBlock block) {
  return _enumerateWordsUsingBlock(string, block, nullptr, nullptr);
}

int64_t numberOfWordsUsingDefaultSeparation(const String& string) {
  return numberOfWordsUsingDefaultSeparation(string, 1);
}

int64_t numberOfWordsUsingDefaultSeparation(const String& string, int64_t minLen) {
  const auto enumerator = FastWordEnumerator::enumeratorWithString(string);
  return enumerator ? enumerator->numberOfWords(minLen) : 0;
}

std::optional<std::vector<String>> wordsUsingWildcardSeparation(const String& string, bool* hyphenated) {
  if (hyphenated) *hyphenated = false;
  const auto enumerator = FastWordEnumerator::enumeratorWithString(string, false, true);
  if (!enumerator && !string.isEmpty()) throw std::bad_alloc();
  return wordListOfEnumerator<std::vector<String>>(enumerator.get(), 1, hyphenated);
}

int64_t numberOfWordsUsingWildcardSeparation(const String& string) {
  const auto enumerator = FastWordEnumerator::enumeratorWithString(string, false, true);
  return enumerator ? enumerator->numberOfWords(1) : 0;
}

String firstWord(const String& string) {
  const auto* const found = std::find_if(string.begin(), string.end(), isWordUnit);
  return wordAtIndex(string, found - string.begin());
}

String lastWord(const String& string) {
  int64_t index = string.length() - 1;
  while (index >= 0 && !isWordUnit(string[index])) --index;
  return wordAtIndex(string, index);
}

Range getWordRangeAtIndex(const String& string, int64_t index) {
  if (index < 0 || index >= string.length() || !isWordUnit(string[index])) return kAbsentRange;
  return wordInRun(string, runAround(string.view(), defaultWordSeparators(), index), index);
}

}  // namespace velan
