// Indexing where a query comes to, and the runs of East Asian units that a dictionary divides.
#include <algorithm>
#include <new>

#include "velan/platform/WordTokenizer.h"
#include "velan/query/words/EastAsianWords.h"
#include "velan/query/words/FastWordEnumerator.h"
#include "velan/query/words/WordIndexInternal.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/Separators.h"

namespace velan {

// With the blocks that runs to be marked go on in, so that all of a run is indexed at once.
void FastWordEnumerator::indexBlock(size_t block) const {
  if (!_indexed) {
    if (!makeRoomForIndex()) throw std::bad_alloc();
    _indexed = std::make_unique<bool[]>(_length / kBlock + 1);
  }
  const uint8_t* separators = defaultWordSeparators();
  size_t from = block * kBlock;
  size_t end = std::min<size_t>(from + kBlock, _length);
  if (_marksRuns) {
    const auto isInWord = [&](size_t index) {
      return !isMemberOfCharacterSetRep(separators, _characters[index - 1]) &&
             !isMemberOfCharacterSetRep(separators, _characters[index]);
    };
    while (from > 0 && isInWord(from)) from -= kBlock;
    while (end < _length && isInWord(end)) end = std::min<size_t>(end + kBlock, _length);
  }
  _numWords += indexWordsIn(_characters, from, end, _length, separators, _index.get());
  for (size_t i = from; i < end; i += kBlock) _indexed[i / kBlock] = true;
  if (_marksRuns) markAsianRuns(from, end);
}

void FastWordEnumerator::indexAll() const {
  for (size_t i = 0; i < _length; i += kBlock) indexAround(i);
}

// `findType` in an index that is made as far as it looks.
size_t FastWordEnumerator::findIndexed(size_t from, size_t end, uint8_t mask) const {
  if (!_onDemand) return findType(_index.get(), from, end, mask);
  while (from < end) {
    indexAround(from);
    const size_t blockEnd = std::min(end, (from / kBlock + 1) * kBlock);
    const size_t found = findType(_index.get(), from, blockEnd, mask);
    if (found < blockEnd) return found;
    from = blockEnd;
  }
  return end;
}

size_t FastWordEnumerator::findIndexedBackwards(size_t start, size_t end, uint8_t mask) const {
  if (!_onDemand) return findTypeBackwards(_index.get(), start, end, mask);
  for (size_t after = end; after > start;) {
    indexAround(after - 1);
    const size_t blockStart = std::max(start, (after - 1) / kBlock * kBlock);
    const size_t found = findTypeBackwards(_index.get(), blockStart, after, mask);
    if (found < after) return found;
    after = blockStart;
  }
  return end;
}

// Marks each run of word units that holds an East Asian unit, looking at every unit once. A piece of a pattern stays
// whole: the dictionary would take its wildcards for words.
void FastWordEnumerator::markAsianRuns(size_t from, size_t end) const {
  for (size_t found = from; (found = findEastAsian(_characters, found, end)) < end;) {
    const Range run = rangeOfWordAtIndex(static_cast<int64_t>(found));
    found = isPresent(run) ? static_cast<size_t>(endOf(run)) : found + 1;
    if (!isPresent(run) || (_wildcard && holdsWildcard(run))) continue;
    for (int64_t i = run.location; i < endOf(run); ++i) _index[static_cast<size_t>(i)] |= kUndivided;
    _hasUndivided = true;
  }
}

bool FastWordEnumerator::holdsWildcard(Range run) const {
  const unichar* const start = _characters + run.location;
  return std::any_of(start, start + run.length,
                     [](unichar c) { return c == u'*' || c == u'?' || c == u'[' || c == u']'; });
}

void FastWordEnumerator::divideAll() const {
  for (size_t found = 0; (found = findType(_index.get(), found, _length, kUndivided)) < _length;) divideRunAt(found);
  _hasUndivided = false;
}

// A run that could not be divided stays marked.
void FastWordEnumerator::divideRunAt(size_t index) const {
  uint8_t* const types = _index.get();
  const auto isInRun = [&](size_t i) { return (!_onDemand || _indexed[i / kBlock]) && (types[i] & kUndivided); };
  size_t start = index;
  while (start > 0 && isInRun(start - 1)) --start;
  size_t end = index + 1;
  while (end < _length && isInRun(end)) ++end;
  initWordInRange({static_cast<int64_t>(start), static_cast<int64_t>(end - start)});
  for (size_t i = start; i < end; ++i) types[i] &= static_cast<uint8_t>(~kUndivided);
}

uint8_t FastWordEnumerator::typeAfterDividing(size_t index) const {
  divideRunAt(index);
  return _index[index];
}

// `findType` in an index whose runs are divided as far as it looks.
size_t FastWordEnumerator::findDivided(size_t from, size_t end, uint8_t mask) const {
  while (true) {
    from = findIndexed(from, end, mask | kUndivided);
    if (from == end || !(_index[from] & kUndivided)) return from;
    divideRunAt(from);
  }
}

size_t FastWordEnumerator::findDividedBackwards(size_t start, size_t end, uint8_t mask) const {
  while (true) {
    const size_t found = findIndexedBackwards(start, end, mask | kUndivided);
    if (found == end || !(_index[found] & kUndivided)) return found;
    divideRunAt(found);
  }
}

// Divides a word where the tokens inside it meet; they cover it without gaps. The word itself was counted, and stays
// one when there is no tokenizer.
void FastWordEnumerator::initWordInRange(Range range) const {
  if (!_tokenizer) _tokenizer = WordTokenizer::create();
  if (!_tokenizer) return;
  const std::u16string_view run(characters() + range.location, static_cast<size_t>(range.length));
  uint8_t* const types = _index.get();
  _tokenizer->enumerateTokens(run, [&](const WordTokenizer::Token& token) {
    const int64_t start = range.location + token.location;
    if (token.location == 0 || (types[start] & kWordBeginning)) return;
    types[start - 1] |= kWordEnd;
    types[start] |= kWordBeginning;
    ++_numWords;
  });
}

}  // namespace velan
