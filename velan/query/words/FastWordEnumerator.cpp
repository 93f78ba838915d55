#include "velan/query/words/FastWordEnumerator.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>

#include "velan/platform/WordTokenizer.h"
#include "velan/query/words/WordIndexInternal.h"
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
  enumerator->_characters = string.characters();
  enumerator->_length = static_cast<uint64_t>(string.length());
  enumerator->_upperCase = caseInsensitive;
  if (caseInsensitive && !(enumerator->_upper = allocateUnits(string.length()))) return nullptr;
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
  unichar* const copy = allocateUnits(length);
  if (!copy) return nullptr;
  mapUnits(characters, static_cast<size_t>(length), initUpperCharsTable(), copy);
  auto enumerator = initWithCharactersNoCopy(copy, length, true);
  if (enumerator) enumerator->_upperCase = true;
  return enumerator;
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
  std::free(_upper);
  _upper = nullptr;
  _copy = Copy::None;
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

// Whoever comes first makes the copy, and others wait for it. Searches go without: no unit that divides words has
// another case.
const unichar* FastWordEnumerator::charactersInUpperCase() const {
  Copy copy = _copy.load(std::memory_order_acquire);
  if (copy == Copy::None && _copy.compare_exchange_strong(copy, Copy::BeingMade)) {
    mapUnits(_characters, _length, initUpperCharsTable(), _upper);
    _copy.store(Copy::Made, std::memory_order_release);
    _copy.notify_all();
  } else {
    _copy.wait(Copy::BeingMade, std::memory_order_acquire);
  }
  return _upper;
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
  std::memset(_index.get() + _length, kSeparator, kNearUnits);
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
    _index.reset(new (std::nothrow) uint8_t[_length + kNearUnits]);
    _indexCapacity = _index ? _length : 0;
  }
  return _index != nullptr;
}

bool FastWordEnumerator::splitAsianWords() { return splitsAsianWords.load(std::memory_order_relaxed); }

void FastWordEnumerator::storeSplitAsianWords(bool split) { splitsAsianWords.store(split, std::memory_order_relaxed); }

String FastWordEnumerator::locale() { return u"root"_s; }

String FastWordEnumerator::string() const { return _string ? _string : substringWithRange({0, length()}); }

String FastWordEnumerator::substringWithRange(Range range) const {
  if (!_characters) return String();
  const Range clipped = clippedRange(range, length());
  return String::withCharacters(characters() + clipped.location, clipped.length);
}

String FastWordEnumerator::lowercaseSubstringWithRange(Range range) const {
  if (!_characters) return String();
  const Range clipped = clippedRange(range, length());
  return mappedString({characters() + clipped.location, static_cast<size_t>(clipped.length)}, initLowerCharsTable());
}

String FastWordEnumerator::uppercaseSubstringWithRange(Range range) const {
  if (!_characters) return String();
  const Range clipped = clippedRange(range, length());
  return mappedString({characters() + clipped.location, static_cast<size_t>(clipped.length)}, initUpperCharsTable());
}

}  // namespace velan
