// Any units: the index agrees with a search from each place, and every operation on words stays inside the text.
#include "fuzz/FuzzTarget.h"
#include "velan/query/words/FastWordEnumerator.h"
#include "velan/query/words/Hashtags.h"
#include "velan/query/words/Links.h"
#include "velan/query/words/WordSeparation.h"

using namespace velan;

FUZZ_TARGET(words) {
  const String text(input.units());
  const auto enumerator = FastWordEnumerator::enumeratorWithString(text);
  if (!enumerator) return;
  for (int64_t index = 0; index < text.length(); ++index) {
    require(enumerator->rangeOfWordAtIndex(index) == getWordRangeAtIndex(text, index));
    const Range link = getLinkRangeAtIndex(text, index);
    require(!isPresent(link) || (link.location <= index && index < endOf(link) && endOf(link) <= text.length()));
  }
  const auto pattern = FastWordEnumerator::enumeratorWithString(text, true, true);
  int64_t index = 0, words = 0;
  while (isPresent(pattern->enumerateNextWordAtIndex(&index))) ++words;
  require(words == pattern->numberOfWords());
  bool hyphenated = false;
  wordsUsingWildcardSeparation(text, &hyphenated);
  hashtags(text, true);
}
