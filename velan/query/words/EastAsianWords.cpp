#include "velan/query/words/EastAsianWords.h"

#include <algorithm>
#include <new>

#include "velan/base/MutableString.h"
#include "velan/query/words/FastWordEnumerator.h"

namespace velan {

String stringBySeparatingAsianWords(const String& string) {
  if (string.length() < 2 || std::none_of(string.begin(), string.end(), isEastAsianUnichar)) return string;
  const auto enumerator = FastWordEnumerator::enumeratorSplittingAsianWords(string);
  if (!enumerator) throw std::bad_alloc();
  MutableString spaced;
  spaced.reserve(string.length() + string.length() / 2);
  int64_t copied = 0;
  for (int64_t i = 1; i < string.length(); ++i) {
    if (!enumerator->isWordBeginningAtIndex(i) || !enumerator->isWordEndBeforeIndex(i)) continue;
    spaced.appendCharacters(string.characters() + copied, i - copied);
    spaced.appendCharacter(u' ');
    copied = i;
  }
  if (copied == 0) return string;
  spaced.appendCharacters(string.characters() + copied, string.length() - copied);
  return spaced.takeString();
}

}  // namespace velan
