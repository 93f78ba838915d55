#include "velan/query/WordFinder.h"

#include "velan/query/evaluation/WordPatternInternal.h"

namespace velan {
namespace {

std::u16string_view unitsOf(const unichar* units, int64_t length) {
  return units && length > 0 ? std::u16string_view(units, static_cast<size_t>(length)) : std::u16string_view();
}

}  // namespace

int64_t FindWordInString(const FastWordEnumerator& enumerator, int64_t start, int64_t length, const unichar* word,
                         int64_t wordLength, QueryComparison comparison, bool wholeWord) {
  const SearchedText text(enumerator, comparison);
  const Literal literal(mappedUnits(unitsOf(word, wordLength), text.patternTable()), text.patternTable());
  return text.findWord(literal, clippedRange({start, length}, text.length()), wholeWord).location;
}

Range FindNonExactPhraseInString(const FastWordEnumerator& enumerator, int64_t start, int64_t length,
                                 const unichar* phrase, int64_t phraseLength, QueryComparison comparison) {
  const SearchedText text(enumerator, comparison);
  return WordPattern::withPhrase(unitsOf(phrase, phraseLength), text.patternTable())
      .firstIn(text, clippedRange({start, length}, text.length()));
}

Range FindWildcardStringInCharacters(const FastWordEnumerator& enumerator, Range range, const String& pattern,
                                     QueryComparison comparison, bool splitsPhrases, bool acceptsWholeRange,
                                     bool allowsFuzzy) {
  return FindWildcardInCharacters(enumerator, range, pattern.characters(), pattern.length(), comparison, splitsPhrases,
                                  acceptsWholeRange, allowsFuzzy);
}

Range FindWildcardInCharacters(const FastWordEnumerator& enumerator, Range range, const unichar* pattern,
                               int64_t patternLength, QueryComparison comparison, bool splitsPhrases,
                               bool acceptsWholeRange, bool allowsFuzzy) {
  const SearchedText text(enumerator, comparison);
  const bool fuzzy = allowsFuzzy && contains(comparison, QueryComparison::Fuzzy);
  const auto prepared =
      WordPattern::withWildcard(unitsOf(pattern, patternLength), splitsPhrases, false, fuzzy, text.patternTable());
  if (prepared.isWholeRange() && !acceptsWholeRange) return kAbsentRange;
  return prepared.firstIn(text, clippedRange(range, text.length()));
}

}  // namespace velan
