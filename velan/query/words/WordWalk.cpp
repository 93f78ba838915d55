// Queries for words, and walking from word to word.
#include <algorithm>

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
  handWords<true>({0, length()}, [&](size_t start, size_t end) {
    count += static_cast<int64_t>(end - start) >= minLen;
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

Range FastWordEnumerator::enumerateNextWordAtIndex(int64_t* index) const {
  if (!index) return kAbsentRange;
  const Range word = rangeOfNextWordFromIndex(std::max<int64_t>(*index, 0), length());
  *index = isPresent(word) ? endOf(word) : length();
  return word;
}

int64_t FastWordEnumerator::enumerateWordsInRange(Range range, WordHandler handler, void* context) const {
  if (!handler) return 0;
  return handWords<true>(range, [&](size_t start, size_t end) {
    return handler(*this, static_cast<int64_t>(start), static_cast<int64_t>(end - start), context);
  });
}

int64_t FastWordEnumerator::enumerateWordsInRange(Range range, WordBlock block) const {
  if (!block) return 0;
  return handWords<true>(range, [&](size_t start, size_t end) {
    return block(*this, static_cast<int64_t>(start), static_cast<int64_t>(end - start));
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

// Calls `hand(start, end)` for each word, where each stretch of the text gives its words' starts and ends at once.
template <bool kDivides, typename Hand>
int64_t FastWordEnumerator::handWords(Range range, Hand hand) const {
  constexpr size_t kStretch = 512;
  constexpr size_t kRoom = 1 + kStretch + UnitKernels::kCopySlack;
  unichar starts[kRoom], ends[kRoom];  // of the same words
  const Range clipped = clippedRange(range, length());
  const auto rangeEnd = static_cast<size_t>(endOf(clipped));
  auto from = static_cast<size_t>(clipped.location);
  if (from >= rangeEnd) return 0;
  size_t start = from;  // of the word that goes on
  completeIndex(from, from + 1, kDivides);
  bool goesOn = (_index[from] & (kSeparator | kWordBeginning)) == 0;
  int64_t count = 0;
  for (size_t length; from < rangeEnd; from += length) {
    length = std::min(kStretch, rangeEnd - from);
    completeIndex(from, from + length, kDivides);
    const uint8_t* types = _index.get() + from;
    const size_t ended = unitKernels().positions(types, length, kWordEnd, ends);
    const size_t begun = unitKernels().positions(types, length, kWordBeginning, starts + goesOn) + goesOn;
    size_t next = 0;
    if (goesOn && ended > 0 && hand(start, from + ends[next++] + 1)) return count;
    for (; next < ended; ++next) {
      if (hand(from + starts[next], from + ends[next] + 1)) return count + static_cast<int64_t>(next);
    }
    count += static_cast<int64_t>(ended);
    const bool isLonger = goesOn && ended == 0;
    goesOn = begun > ended;
    if (goesOn && !isLonger) start = from + starts[ended];
  }
  return goesOn && !hand(start, rangeEnd) ? count + 1 : count;
}

void FastWordEnumerator::handRuns(Range range, FunctionRef<void(const Run& run)> hand) const {
  handWords<false>(range, [&](size_t start, size_t end) {
    const uint8_t first = _index[start], last = _index[end - 1];
    hand({{static_cast<int64_t>(start), static_cast<int64_t>(end - start)},
          (first & kWordBeginning) != 0 && (last & kWordEnd) != 0,
          (first & kUndivided) != 0});
    return false;
  });
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
  std::u16string joined;
  int64_t index = 0;
  for (Range word; isPresent(word = enumerateNextWordAtIndex(&index));) {
    std::u16string_view units(_characters + word.location, static_cast<size_t>(word.length));
    int64_t next = hyphenated ? continuationAfterHyphen(index) : NSNotFound;
    if (next != NSNotFound) {
      *hyphenated = true;
      joined = units;
      for (; next != NSNotFound; next = continuationAfterHyphen(index)) {
        index = wordEndFromIndex(next) + 1;
        joined.append(_characters + next, static_cast<size_t>(index - next));
      }
      units = joined;
    }
    if (static_cast<int64_t>(units.size()) >= minLen) handle(units);
  }
}

String FastWordEnumerator::stringBySeparatingWords() const {
  if (!_characters) return String();
  MutableString joined;
  joined.reserve(length());
  handWords<true>({0, length()}, [&](size_t start, size_t end) {
    if (!joined.isEmpty()) joined.appendCharacter(u' ');
    joined.appendCharacters(_characters + start, static_cast<int64_t>(end - start));
    return false;
  });
  return joined.takeString();
}

}  // namespace velan
