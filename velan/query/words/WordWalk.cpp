// Queries for words, and walking from word to word.
#include <algorithm>
#include <span>

#include "velan/base/MutableString.h"
#include "velan/query/words/FastWordEnumerator.h"
#include "velan/query/words/WordIndexInternal.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/Separators.h"
#include "velan/text/kernels/UnitKernelsInternal.h"

namespace velan {

namespace {

bool isHyphen(unichar c) { return c == u'-' || c == u'\u00AD' || c == u'\u2010'; }

}  // namespace

int64_t FastWordEnumerator::numberOfWords(int64_t minLen) const {
  if (minLen < 2) return numberOfWords();
  int64_t count = 0;
  enumerateWordsInRange({0, length()}, [&](const FastWordEnumerator&, int64_t, int64_t wordLength) {
    count += wordLength >= minLen;
    return false;
  });
  return count;
}

bool FastWordEnumerator::containsSeparatorInRange(Range range) const {
  const Range clipped = clippedRange(range, length());
  const auto end = static_cast<size_t>(endOf(clipped));
  return findIndexed(static_cast<size_t>(clipped.location), end, kSeparator) < end;
}

int64_t FastWordEnumerator::locationOfPreviousWordFromIndex(int64_t index, int64_t start) const {
  start = std::max<int64_t>(start, 0);
  if (index < start || index >= length()) return NSNotFound;
  const auto end = static_cast<size_t>(index) + 1;
  const size_t found = findDividedBackwards(static_cast<size_t>(start), end, kWordBeginning);
  return found < end ? static_cast<int64_t>(found) : NSNotFound;
}

int64_t FastWordEnumerator::locationOfNextWordFromIndex(int64_t index, int64_t end) const {
  end = std::min(end, length());
  if (index < 0 || index >= end) return NSNotFound;
  const auto limit = static_cast<size_t>(end);
  const size_t found = findDivided(static_cast<size_t>(index), limit, kWordBeginning);
  return found < limit ? static_cast<int64_t>(found) : NSNotFound;
}

// The last unit of the word that goes on at `index`.
int64_t FastWordEnumerator::wordEndFromIndex(int64_t index) const {
  return static_cast<int64_t>(findDivided(static_cast<size_t>(index), _length, kWordEnd));
}

Range FastWordEnumerator::rangeOfWordAtIndex(int64_t index) const {
  if (isWordSeparatorAtIndex(index)) return kAbsentRange;
  return rangeOfPreviousWordFromIndex(index, 0);
}

Range FastWordEnumerator::rangeOfPreviousWordFromIndex(int64_t index, int64_t start) const {
  const int64_t location = locationOfPreviousWordFromIndex(index, start);
  return location == NSNotFound ? kAbsentRange : Range{location, wordEndFromIndex(location) - location + 1};
}

Range FastWordEnumerator::rangeOfNextWordFromIndex(int64_t index, int64_t end) const {
  const int64_t location = locationOfNextWordFromIndex(index, end);
  return location == NSNotFound ? kAbsentRange : Range{location, wordEndFromIndex(location) - location + 1};
}

Range FastWordEnumerator::enumerateFarWordAtIndex(int64_t* index) const {
  if (!index) return kAbsentRange;
  const Range word = rangeOfNextWordFromIndex(std::max<int64_t>(*index, 0), length());
  *index = isPresent(word) ? endOf(word) : length();
  return word;
}

int64_t FastWordEnumerator::enumerateWordsInRange(Range range, WordHandler handler, void* context) const {
  if (!handler) return 0;
  return enumerateWordsInRange(range, [=](const FastWordEnumerator& words, int64_t start, int64_t length) {
    return handler(words, start, length, context);
  });
}

int64_t FastWordEnumerator::enumerateWordsInRange(Range range, WordBlock block) const {
  if (!block) return 0;
  return enumerateWordsInRange(range, [=](const FastWordEnumerator& words, int64_t start, int64_t length) {
    return block(words, start, length);
  });
}

// Makes the types of a stretch what they are until a dictionary divides runs, or what they stay.
void FastWordEnumerator::completeIndex(size_t from, size_t end, bool divides) const {
  if (_onDemand) {
    for (size_t i = from; i < end; i = (i / kBlock + 1) * kBlock) indexAround(i);
  }
  if (!divides) return;
  while (_hasUndivided && (from = findType(_index.get(), from, end, kUndivided)) < end) divideRunAt(from);
}

// Looks at stretches of the text, each of which gives all starts and ends of its words at once; a word that goes on
// behind its stretch is taken with the next one, or alone where it is as long. Without `kDivides` a run that a
// dictionary may divide is one word.
template <bool kDivides>
size_t FastWordEnumerator::takeWords(Range* range, Range* words, size_t most) const {
  constexpr size_t kStretch = 512;
  const Range clipped = clippedRange(*range, length());
  const auto end = static_cast<size_t>(endOf(clipped));
  auto from = static_cast<size_t>(clipped.location);
  size_t count = 0;
  for (size_t length; from < end && count == 0 && most > 0; from += length) {
    length = std::min({kStretch, 4 * most, end - from});
    completeIndex(from, from + length, kDivides);
    const uint8_t* types = _index.get() + from;
    unichar starts[1 + kStretch + UnitKernels::kCopySlack], ends[kStretch + UnitKernels::kCopySlack];
    const bool isInWord = (types[0] & (kSeparator | kWordBeginning)) == 0;
    starts[0] = 0;
    const size_t begun = unitKernels().positions(types, length, kWordBeginning, starts + isInWord) + isInWord;
    size_t ended = unitKernels().positions(types, length, kWordEnd, ends);
    count = std::min(ended, most);
    for (size_t i = 0; i < count; ++i) {
      words[i] = {static_cast<int64_t>(from + starts[i]), ends[i] - starts[i] + 1};
    }
    if (count > 0) {
      length = ends[count - 1] + size_t{1};
    } else if (begun > 0) {
      const size_t start = from + starts[0], behind = from + length;
      const size_t last = kDivides ? findDivided(behind, end, kWordEnd) : findIndexed(behind, end, kWordEnd);
      const size_t wordEnd = std::min(last + 1, end);
      words[count++] = {static_cast<int64_t>(start), static_cast<int64_t>(wordEnd - start)};
      length = wordEnd - from;
    }
  }
  *range = {static_cast<int64_t>(from), static_cast<int64_t>(end - from)};
  return count;
}

size_t FastWordEnumerator::wordsInRange(Range* range, Range* words, size_t most) const {
  return range && words ? takeWords<true>(range, words, most) : 0;
}

void FastWordEnumerator::handRuns(Range range, FunctionRef<void(const Run& run)> hand) const {
  Range runs[kWordsAtOnce];
  while (const size_t count = takeWords<false>(&range, runs, kWordsAtOnce)) {
    for (const Range& run : std::span(runs, count)) {
      const uint8_t first = _index[static_cast<size_t>(run.location)];
      const uint8_t last = _index[static_cast<size_t>(endOf(run) - 1)];
      hand({run, (first & kWordBeginning) != 0 && (last & kWordEnd) != 0, (first & kUndivided) != 0});
    }
  }
}

// Where the word goes on whose last unit is before `wordEnd`, when a hyphen and a line end follow; else NSNotFound.
int64_t FastWordEnumerator::continuationAfterHyphen(int64_t wordEnd) const {
  if (wordEnd + 1 >= length() || !isHyphen(_characters[wordEnd])) return NSNotFound;
  int64_t index = wordEnd + 1;
  if (!isMemberOfCharacterSetRep(defaultLineSeparators(), _characters[index])) return NSNotFound;
  const bool carriageReturn = _characters[index++] == u'\r';
  if (carriageReturn && index < length() && _characters[index] == u'\n') ++index;
  while (index < length() && isMemberOfCharacterSetRep(spaceCharacterSetRep(), _characters[index])) ++index;
  return isWordBeginningAtIndex(index) ? index : NSNotFound;
}

void FastWordEnumerator::enumerateWords(int64_t minLen, bool* hyphenated,
                                        FunctionRef<void(std::u16string_view word)> handle) const {
  if (hyphenated) *hyphenated = false;
  const unichar* const characters = this->characters();
  std::u16string joined;
  int64_t index = 0;
  for (Range word; isPresent(word = enumerateNextWordAtIndex(&index));) {
    std::u16string_view units(characters + word.location, static_cast<size_t>(word.length));
    int64_t next = hyphenated ? continuationAfterHyphen(index) : NSNotFound;
    if (next != NSNotFound) {
      *hyphenated = true;
      joined = units;
      for (; next != NSNotFound; next = continuationAfterHyphen(index)) {
        index = wordEndFromIndex(next) + 1;
        joined.append(characters + next, static_cast<size_t>(index - next));
      }
      units = joined;
    }
    if (static_cast<int64_t>(units.size()) >= minLen) handle(units);
  }
}

String FastWordEnumerator::stringBySeparatingWords() const {
  if (!_characters) return String();
  const unichar* const characters = this->characters();
  MutableString joined;
  joined.reserve(length());
  enumerateWordsInRange({0, length()}, [&](const FastWordEnumerator&, int64_t start, int64_t wordLength) {
    if (!joined.isEmpty()) joined.appendCharacter(u' ');
    joined.appendCharacters(characters + start, wordLength);
    return false;
  });
  return joined.takeString();
}

}  // namespace velan
