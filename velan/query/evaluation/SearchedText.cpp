#include <algorithm>
#include <cstring>
#include <new>

#include "velan/query/evaluation/SearchedTextInternal.h"
#include "velan/query/words/EastAsianWords.h"
#include "velan/query/words/WordIndexInternal.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/Separators.h"
#include "velan/text/UnitMappingInternal.h"
#include "velan/wildcard/WildcardPattern.h"

namespace velan {
namespace {

// Counting so many words by walking costs less than finding all words of the text first.
constexpr int64_t kWalkedWords = 64;
// So many units at most are looked at together, in which `count` words may well lie.
constexpr int64_t kLongestStretch = 512;
constexpr int64_t stretchOf(int64_t count) { return std::min(8 * count + 16, kLongestStretch); }

// How far few literals are looked for at first; each time after that as far as altogether before.
constexpr int64_t kFirstStretch = 1024;

// How many of the `count` units, at most `kLongestStretch`, that `marks` has behind one more are not marked, but the
// unit before is. Eight units a step; `marks` has room for as many more.
int64_t countRunStarts(uint8_t* marks, size_t count) {
  constexpr uint64_t kOnes = 0x0101010101010101, kEvenBytes = 0x00FF00FF00FF00FF, kPairs = 0x0001000100010001;
  static_assert(kLongestStretch / sizeof kOnes <= 0xFF);
  std::memset(marks + count + 1, 0xFF, sizeof kOnes);
  uint64_t starts = 0;
  for (size_t i = 0; i < count; i += sizeof kOnes) {
    uint64_t before, marked;
    std::memcpy(&before, marks + i, sizeof before);
    std::memcpy(&marked, marks + i + 1, sizeof marked);
    starts += before & ~marked & kOnes;
  }
  const uint64_t pairs = (starts & kEvenBytes) + (starts >> 8 & kEvenBytes);
  return static_cast<int64_t>(pairs * kPairs >> 48);
}

}  // namespace

QueryComparison comparisonOn(const FastWordEnumerator& enumerator, QueryComparison comparison) {
  return enumerator.isCaseInsensitive() ? comparison | QueryComparison::IgnoreCase : comparison;
}

const unichar* comparisonTable(QueryComparison comparison) {
  return unicharTableForWildcardComparison(static_cast<uint32_t>(comparison));
}

std::u16string mappedUnits(std::u16string_view units, const unichar* table) {
  std::u16string mapped(units);
  if (table) mapUnits(units.data(), units.size(), table, mapped.data());
  return mapped;
}

SearchedText::SearchedText(const FastWordEnumerator& enumerator, QueryComparison comparison, LiteralsTogether literals)
    : _words(&enumerator),
      _length(static_cast<int64_t>(enumerator.length())),
      _patternTable(comparisonTable(comparisonOn(enumerator, comparison))),
      _units(enumerator.searchedCharacters()),
      _table(enumerator.areInUpperCase(_units) && _patternTable == initUpperCharsTable() ? nullptr : _patternTable),
      _separators(enumerator._onDemand ? defaultWordSeparators() : nullptr),
      _mayBeDivided(enumerator._marksRuns),
      _many(literals.many),
      _few(literals.few) {}

SearchedText::SearchedText(QueryComparison comparison, LiteralsTogether literals)
    : _words(nullptr),
      _length(0),
      _patternTable(comparisonTable(comparison)),
      _units(nullptr),
      _table(_patternTable),
      _separators(defaultWordSeparators()),
      _mayBeDivided(FastWordEnumerator::splitAsianWords()),
      _many(literals.many),
      _few(literals.few) {}

void SearchedText::setText(std::u16string_view text) {
  ++_number;
  _words = nullptr;
  if (_findings) *_findings = Findings();
  _length = static_cast<int64_t>(text.size());
  _units = text.data();
  _mayBeDivided = FastWordEnumerator::splitAsianWords();
}

// Divided or not as it was when the text came.
const FastWordEnumerator& SearchedText::makeWords() const {
  using Division = FastWordEnumerator::Division;
  const String text = String::withCharactersNoCopy(const_cast<unichar*>(_units), _length, false);
  const Division division = _mayBeDivided ? Division::OnDemand : Division::Never;
  std::unique_ptr<const FastWordEnumerator>& words = findings().words;
  words = FastWordEnumerator::create(text, false, false, division, true);
  if (!words) throw std::bad_alloc();
  return *(_words = words.get());
}

// Of a long run the index knows more quickly whether it is divided.
bool SearchedText::isInDividedRun(int64_t index) const {
  constexpr int64_t kNear = 32;
  if (!isInText(index) || separates(index)) return false;
  for (const int64_t step : {-1, 1}) {
    for (int64_t i = index; isInText(i) && !separates(i); i += step) {
      if (isEastAsianUnichar(_units[i]) || std::abs(i - index) > kNear) return true;
    }
  }
  return false;
}

bool SearchedText::holdsEastAsian(Range range) const {
  return std::any_of(_units + range.location, _units + endOf(range), isEastAsianUnichar);
}

// The units around `index` without separators.
Range SearchedText::runAt(int64_t index) const {
  int64_t start = index;
  while (start > 0 && !separates(start - 1)) --start;
  return {start, separatorFrom(index) - start};
}

Range SearchedText::wordAt(int64_t index) const {
  if (_separators) {
    if (!isInText(index) || separates(index)) return kAbsentRange;
    const Range run = runAt(index);
    if (!isDivided(run)) return run;
  }
  return words().rangeOfWordAtIndex(index);
}

Range SearchedText::wordBefore(int64_t index, int64_t start) const {
  if (_separators && isInText(index)) {
    int64_t last = index;
    while (last >= start && last >= 0 && separates(last)) --last;
    if (last < start || last < 0) return kAbsentRange;
    const Range run = runAt(last);
    if (!isDivided(run)) return run.location >= start ? run : kAbsentRange;
  }
  return words().rangeOfPreviousWordFromIndex(index, start);
}

Range SearchedText::wordAfter(int64_t location, int64_t end) const {
  if (_separators && location >= 0) {
    int64_t first = location;
    if (first > 0 && first < end && !separates(first - 1)) {
      if (_mayBeDivided && !separates(first)) return firstWordIn(location, end);
      while (first < end && !separates(first)) ++first;
    }
    while (first < end && separates(first)) ++first;
    if (first >= end) return kAbsentRange;
    const Range run = runAt(first);
    if (!isDivided(run)) return endOf(run) <= end ? run : kAbsentRange;
  }
  return firstWordIn(location, end);
}

Range SearchedText::firstWordIn(int64_t location, int64_t end) const {
  const Range word = words().rangeOfNextWordFromIndex(location, end);
  return isPresent(word) && endOf(word) <= end ? word : kAbsentRange;
}

bool SearchedText::hasMappedUnits(const unichar* units, std::u16string_view literal) const {
  constexpr size_t kStep = 4;
  size_t i = 0;
  for (; literal.size() - i > kStep; i += kStep) {
    unsigned differ = 0;
    for (size_t k = i; k < i + kStep; ++k) differ |= static_cast<unsigned>(_table[units[k]] ^ literal[k]);
    if (differ != 0) return false;
  }
  unsigned differ = 0;
  for (; i < literal.size(); ++i) differ |= static_cast<unsigned>(_table[units[i]] ^ literal[i]);
  return differ == 0;
}

int64_t SearchedText::find(const Literal& literal, int64_t location, int64_t end) const {
  const auto length = static_cast<size_t>(end - location);
  const size_t found = literal.find(_units + location, length);
  return found == length ? -1 : location + static_cast<int64_t>(found);
}

const std::vector<LiteralSet::Hit>* SearchedText::allHits() const {
  if (!_many) return nullptr;
  std::optional<std::vector<LiteralSet::Hit>>& hits = findings().hits;
  if (!findings().wasSearched) {
    hits = _many->find(_units, static_cast<size_t>(_length));
    findings().wasSearched = true;
  }
  return hits ? &*hits : nullptr;
}

std::optional<std::span<const LiteralSet::Hit>> SearchedText::hitsOf(const Literal& literal, int64_t location) const {
  const std::vector<LiteralSet::Hit>* all = literal.number() ? allHits() : nullptr;
  if (!all) return std::nullopt;
  const LiteralSet::Hit first{*literal.number(), static_cast<uint32_t>(location)};
  const auto start = std::ranges::lower_bound(*all, first);
  const auto end = std::ranges::upper_bound(start, all->end(), first.literal, {}, &LiteralSet::Hit::literal);
  return std::span(start, end);
}

std::span<const uint32_t> SearchedText::placesOf(const Literal& literal, size_t known) const {
  PlacesOfFew& few = *_findings->few;
  const std::vector<uint32_t>& places = few.places[*literal.number()];
  while (places.size() <= known && few.looked < few.end) {
    const int64_t from = few.looked;
    few.looked = std::min(_length, 2 * from + kFirstStretch);
    const bool goesOn = _few->find(_units, static_cast<size_t>(_length), static_cast<size_t>(from),
                                   static_cast<size_t>(few.looked), few.places);
    if (!goesOn) few.end = few.looked;
  }
  return places;
}

int64_t SearchedText::knownUpTo(const Literal& literal) const {
  const int64_t end = _findings->few->end;
  return end == _length ? _length : _few->knownUpTo(*literal.number(), end);
}

bool SearchedText::holdsUnits(Range range, std::u16string_view literal) const {
  const auto length = static_cast<size_t>(range.length);
  return findMappedUnits(_units + range.location, length, literal.data(), literal.size(), _table) < length;
}

Range SearchedText::findWord(const Literal& literal, Range range, bool whole) const {
  const int64_t length = literal.length();
  const int64_t end = endOf(range);
  for (int64_t from = range.location; from <= end;) {
    from = find(literal, from, end);
    if (from < 0) return kAbsentRange;
    if (!whole || (wordBeginsAt(from) && wordEndsAt(from + length - 1))) return {from, length};
    // Going on at the next word, not the next unit, keeps a long literal in a text that repeats its units from being
    // compared again and again.
    from = words().locationOfNextWordFromIndex(from + 1, end);
  }
  return kAbsentRange;
}

int64_t SearchedText::wordStartBefore(int64_t location, int64_t count, int64_t start) const {
  if (count <= kWalkedWords && knowsAllByUnits()) {
    unichar begins[kLongestStretch + UnitKernels::kCopySlack];
    while (location > start) {
      const int64_t from = std::max(start, location - stretchOf(count));
      const auto found = static_cast<int64_t>(edgesIn(from, location, FastWordEnumerator::kWordBeginning, begins));
      if (found >= count) return from + begins[found - count];
      count -= found;
      location = from;
    }
    return location;
  }
  if (count <= kWalkedWords) {
    while (location > start && count > 0) {
      if (wordBeginsAt(--location)) --count;
    }
    return location;
  }
  indexWords();
  const std::vector<int64_t>& starts = findings().wordStarts;
  const auto before = std::lower_bound(starts.begin(), starts.end(), location) - starts.begin();
  return before < count ? start : std::max(start, starts[static_cast<size_t>(before - count)]);
}

int64_t SearchedText::wordEndAfter(int64_t location, int64_t count, int64_t end) const {
  if (count <= kWalkedWords && knowsAllByUnits()) {
    unichar ends[kLongestStretch + UnitKernels::kCopySlack];
    while (location < end) {
      const int64_t past = std::min(end, location + stretchOf(count));
      const auto found = static_cast<int64_t>(edgesIn(location, past, FastWordEnumerator::kWordEnd, ends));
      if (found >= count) return location + ends[count - 1] + 1;
      count -= found;
      location = past;
    }
    return location;
  }
  if (count <= kWalkedWords) {
    while (location < end && count > 0) {
      if (wordEndsAt(location++)) --count;
    }
    return location;
  }
  indexWords();
  const std::vector<int64_t>& ends = findings().wordEnds;
  const auto after = ends.end() - std::upper_bound(ends.begin(), ends.end(), location);
  return after < count ? end : std::min(end, *(ends.end() - after + count - 1));
}

bool SearchedText::knowsAllByUnits() const {
  if (!_separators || !_mayBeDivided) return _separators;
  std::optional<bool>& holdsEastAsian = findings().holdsEastAsian;
  const auto length = static_cast<size_t>(_length);
  if (!holdsEastAsian) holdsEastAsian = findEastAsian(_units, 0, length) < length;
  return !*holdsEastAsian;
}

// Writes where in `[from, end)`, which is at most `kLongestStretch`, words begin or end, and returns how many do.
size_t SearchedText::edgesIn(int64_t from, int64_t end, uint8_t type, unichar* edges) const {
  uint8_t marks[kLongestStretch + 2], types[kLongestStretch];
  const auto count = static_cast<size_t>(end - from);
  const int64_t first = std::max<int64_t>(from - 1, 0), past = std::min(end + 1, _length);
  marks[0] = marks[count + 1] = 0xFF;  // beyond the text lie separators
  unitKernels().markMembers(_units + first, static_cast<size_t>(past - first), _separators, findings().hints,
                            marks + (first - from + 1));
  unitKernels().runsFromMarks(marks, count, types);
  return unitKernels().positions(types, count, type, edges);
}

int64_t SearchedText::countWordStarts(int64_t from, int64_t end, int64_t most) const {
  uint8_t marks[kLongestStretch + 1 + sizeof(uint64_t)];
  int64_t count = 0;
  for (int64_t past; from < end && count <= most; from = past) {
    past = std::min(end, from + stretchOf(most));
    const int64_t first = std::max<int64_t>(from - 1, 0);
    marks[0] = 0xFF;  // before the text lies a separator
    unitKernels().markMembers(_units + first, static_cast<size_t>(past - first), _separators, findings().hints,
                              marks + (first - from + 1));
    count += countRunStarts(marks, static_cast<size_t>(past - from));
  }
  return std::min(count, most + 1);
}

void SearchedText::indexWords() const {
  Findings& found = findings();
  if (!found.wordStarts.empty()) return;
  for (int64_t i = 0; i < _length; ++i) {
    if (wordBeginsAt(i)) found.wordStarts.push_back(i);
    if (wordEndsAt(i)) found.wordEnds.push_back(i + 1);
  }
}

}  // namespace velan
