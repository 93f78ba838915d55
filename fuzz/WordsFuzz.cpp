// Any units: the index agrees with a search from each place, and every operation on words stays inside the text.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "velan/query/words/FastWordEnumerator.h"
#include "velan/query/words/Hashtags.h"
#include "velan/query/words/Links.h"
#include "velan/query/words/WordSeparation.h"

namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

void checkWildcardIndex(const velan::String& text) {
  const auto pattern = velan::FastWordEnumerator::enumeratorWithString(text, true, true);
  int64_t index = 0;
  int64_t words = 0;
  while (velan::isPresent(pattern->enumerateNextWordAtIndex(&index))) ++words;
  require(words == pattern->numberOfWords());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  std::u16string units(size / 2, u'\0');
  if (units.empty()) return 0;
  std::memcpy(units.data(), bytes, units.size() * 2);
  const velan::String text(units);
  const auto enumerator = velan::FastWordEnumerator::enumeratorWithString(text);
  for (size_t i = 0; i < units.size(); ++i) {
    const auto index = static_cast<int64_t>(i);
    require(enumerator->rangeOfWordAtIndex(index) == velan::getWordRangeAtIndex(text, index));
    const velan::Range link = velan::getLinkRangeAtIndex(text, index);
    const bool contains = link.location <= index && index < velan::endOf(link) && velan::endOf(link) <= text.length();
    require(!velan::isPresent(link) || contains);
  }
  checkWildcardIndex(text);
  bool hyphenated = false;
  velan::wordsUsingWildcardSeparation(text, &hyphenated);
  velan::hashtags(text, true);
  return 0;
}
