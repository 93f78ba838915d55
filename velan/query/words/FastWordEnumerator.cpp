#include "velan/query/words/FastWordEnumerator.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

#include "velan/base/MutableString.h"
#include "velan/platform/WordTokenizer.h"
#include "velan/query/words/EastAsianWords.h"
#include "velan/query/words/WordIndexInternal.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/Separators.h"
#include "velan/text/UnitMappingInternal.h"
#include "velan/text/kernels/UnitKernelsInternal.h"

namespace velan {

static_assert(FastWordEnumerator::kSeparator == UnitKernels::kMarked &&
              FastWordEnumerator::kWordBeginning == UnitKernels::kRunBegins &&
              FastWordEnumerator::kWordEnd == UnitKernels::kRunEnds);

namespace {

std::atomic<bool> splitsAsianWords{false};

bool isHyphen(unichar c) { return c == u'-' || c == u'\u00AD' || c == u'\u2010'; }

// Room for `length` units from malloc, which is how owned units are freed; null when there is none.
unichar* allocateUnits(int64_t length) {
  return static_cast<size_t>(length) <= SIZE_MAX / sizeof(unichar)
             ? static_cast<unichar*>(std::malloc(static_cast<size_t>(length) * sizeof(unichar)))
             : nullptr;
}

}  // namespace

FastWordEnumerator::FastWordEnumerator(bool wildcard) : _wildcard(wildcard) {}
FastWordEnumerator::~FastWordEnumerator() { invalidate(); }

std::unique_ptr<FastWordEnumerator> FastWordEnumerator::create(const String& string, bool caseInsensitive,
                                                               bool wildcard, Division division, bool onDemand) {
  if (string.isEmpty()) return nullptr;
  std::unique_ptr<FastWordEnumerator> enumerator(new (std::nothrow) FastWordEnumerator(wildcard));
  if (!enumerator) return nullptr;
  enumerator->_string = string;
  if (caseInsensitive) {
    if (!enumerator->copyInUpperCase(string.characters(), string.length())) return nullptr;
  } else {
    enumerator->_characters = string.characters();
    enumerator->_length = static_cast<uint64_t>(string.length());
  }
  return enumerator->initIndex(division, onDemand) ? std::move(enumerator) : nullptr;
}

std::unique_ptr<FastWordEnumerator> FastWordEnumerator::enumeratorWithString(const String& string) {
  return create(string, false, false, divisionBySetting(), false);
}

std::unique_ptr<FastWordEnumerator> FastWordEnumerator::enumeratorWithString(const String& string, bool caseInsensitive,
                                                                             bool wildcard) {
  return create(string, caseInsensitive, wildcard, divisionBySetting(), false);
}

std::unique_ptr<FastWordEnumerator> FastWordEnumerator::enumeratorSplittingAsianWords(const String& string) {
  return create(string, false, false, Division::Now, false);
}

std::unique_ptr<FastWordEnumerator> FastWordEnumerator::enumeratorDividingOnDemand(const String& string,
                                                                                   bool caseInsensitive) {
  return create(string, caseInsensitive, false, splitAsianWords() ? Division::OnDemand : Division::Never, true);
}

std::unique_ptr<FastWordEnumerator> FastWordEnumerator::initWithString(const String& string) {
  return enumeratorWithString(string, false, false);
}

std::unique_ptr<FastWordEnumerator> FastWordEnumerator::initWithString(const String& string, bool caseInsensitive,
                                                                       bool wildcard) {
  return enumeratorWithString(string, caseInsensitive, wildcard);
}

std::unique_ptr<FastWordEnumerator> FastWordEnumerator::initWithCharacters(const unichar* characters, int64_t length,
                                                                           bool caseInsensitive) {
  if (!characters || length <= 0) return nullptr;
  if (!caseInsensitive) return enumeratorWithString(String::withCharacters(characters, length));
  std::unique_ptr<FastWordEnumerator> enumerator(new (std::nothrow) FastWordEnumerator(false));
  const bool ready = enumerator && enumerator->copyInUpperCase(characters, length) &&
                     enumerator->initIndex(divisionBySetting(), false);
  return ready ? std::move(enumerator) : nullptr;
}

std::unique_ptr<FastWordEnumerator> FastWordEnumerator::initWithCharactersNoCopy(const unichar* characters,
                                                                                 int64_t length, bool freeWhenDone) {
  std::unique_ptr<FastWordEnumerator> enumerator(new (std::nothrow) FastWordEnumerator(false));
  if (enumerator) return enumerator->setCharacters(characters, length, freeWhenDone) ? std::move(enumerator) : nullptr;
  if (freeWhenDone) std::free(const_cast<unichar*>(characters));
  return nullptr;
}

bool FastWordEnumerator::setCharacters(const unichar* characters, int64_t length, bool freeWhenDone) {
  releaseCharacters();
  _characters = characters;
  _freeCharacters = freeWhenDone;
  _length = characters && length > 0 ? static_cast<uint64_t>(length) : 0;
  if (_length > 0 && initIndex(divisionBySetting(), false)) return true;
  invalidate();
  return false;
}

void FastWordEnumerator::releaseCharacters() {
  if (_freeCharacters) std::free(const_cast<unichar*>(_characters));
  _upperCase = false;
  _freeCharacters = false;
  _characters = nullptr;
  _string = String();
  _length = 0;
  _numWords = 0;
  _hasUndivided = false;
  _onDemand = false;
  _indexed.reset();
}

void FastWordEnumerator::invalidate() {
  releaseCharacters();
  _index.reset();
  _indexCapacity = 0;
  _tokenizer.reset();
}

bool FastWordEnumerator::copyInUpperCase(const unichar* characters, int64_t length) {
  unichar* const copy = allocateUnits(length);
  if (!copy) return false;
  mapUnits(characters, static_cast<size_t>(length), initUpperCharsTable(), copy);
  _characters = copy;
  _freeCharacters = true;
  _length = static_cast<uint64_t>(length);
  _upperCase = true;
  return true;
}

bool FastWordEnumerator::initIndex(Division division, bool onDemand) {
  _numWords = 0;
  _hasUndivided = false;
  _marksRuns = division != Division::Never;
  _onDemand = onDemand;
  if (onDemand) return true;
  if (!makeRoomForIndex()) return false;
  _numWords = _wildcard ? indexWildcardWords(_characters, _length, defaultWildcardSeparators(), _index.get())
                        : indexWords(_characters, _length, defaultWordSeparators(), _index.get());
  if (_marksRuns) markAsianRuns(0, _length);
  try {
    if (division == Division::Now && _hasUndivided) divideAll();
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

bool FastWordEnumerator::makeRoomForIndex() const {
  if (_indexCapacity < _length) {
    _index.reset(new (std::nothrow) uint8_t[_length]);
    _indexCapacity = _index ? _length : 0;
  }
  return _index != nullptr;
}

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
  const std::u16string_view run(_characters + range.location, static_cast<size_t>(range.length));
  uint8_t* const types = _index.get();
  _tokenizer->enumerateTokens(run, [&](const WordTokenizer::Token& token) {
    const int64_t start = range.location + token.location;
    if (token.location == 0 || (types[start] & kWordBeginning)) return;
    types[start - 1] |= kWordEnd;
    types[start] |= kWordBeginning;
    ++_numWords;
  });
}

bool FastWordEnumerator::splitAsianWords() { return splitsAsianWords.load(std::memory_order_relaxed); }

void FastWordEnumerator::storeSplitAsianWords(bool split) { splitsAsianWords.store(split, std::memory_order_relaxed); }

String FastWordEnumerator::locale() { return u"root"_s; }

String FastWordEnumerator::string() const { return _string ? _string : substringWithRange({0, length()}); }

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

String FastWordEnumerator::substringWithRange(Range range) const {
  if (!_characters) return String();
  const Range clipped = clippedRange(range, length());
  return String::withCharacters(_characters + clipped.location, clipped.length);
}

String FastWordEnumerator::lowercaseSubstringWithRange(Range range) const {
  if (!_characters) return String();
  const Range clipped = clippedRange(range, length());
  return mappedString({_characters + clipped.location, static_cast<size_t>(clipped.length)}, initLowerCharsTable());
}

String FastWordEnumerator::uppercaseSubstringWithRange(Range range) const {
  if (!_characters) return String();
  const Range clipped = clippedRange(range, length());
  return mappedString({_characters + clipped.location, static_cast<size_t>(clipped.length)}, initUpperCharsTable());
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
