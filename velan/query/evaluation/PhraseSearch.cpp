#include <algorithm>
#include <bit>
#include <unordered_map>

#include "velan/query/evaluation/PhraseSearchInternal.h"

namespace velan {
namespace {

constexpr size_t kBits = 64;
// In longer patterns the words around each anchor would be too many.
constexpr size_t kMostAroundAnchor = 16;
// Comparing a word with so many pieces costs no more than looking up what is known of it.
constexpr int kFewPlaces = 16;
// What is remembered of words is forgotten when it takes more bytes than this.
constexpr size_t kMostRemembered = 64 << 20;

void setBit(std::vector<uint64_t>& row, size_t position) { row[position / kBits] |= uint64_t{1} << (position % kBits); }

void forEachBit(uint64_t bits, auto visit) {
  for (; bits != 0; bits &= bits - 1) visit(static_cast<size_t>(std::countr_zero(bits)));
}

}  // namespace

PhraseSearch::PhraseSearch(const WordPattern& pattern, const SearchedText& text, Range range)
    : _pattern(pattern),
      _pieces(pattern._pieces),
      _anchor(pattern._anchor && _pieces.size() <= kMostAroundAnchor ? &*pattern._anchor : nullptr),
      _text(text),
      _starts(_anchor ? 0 : _pieces.size()),
      _reached(_anchor ? 0 : (_pieces.size() + kBits - 1) / kBits) {
  begin(range);
}

void PhraseSearch::begin(Range range) {
  _start = _location = range.location;
  _end = endOf(range);
  _isInOneWord = _anchor && _anchor->isInOneWord && _text.isDividedBySeparators();
  _isByProbes = _isInOneWord && _anchor->byProbes && !_anchor->literal.number();
  if (_anchor) {
    _hits.emplace(_isByProbes ? *_anchor->byProbes : _anchor->literal, _text, range);
    return;
  }
  std::ranges::fill(_reached, 0);
  _classes.clear();  // by words of the text before
}

bool PhraseSearch::searchOn(std::vector<Range>& found) {
  if (_isInOneWord) return _hits->visitNext(_location, found, [&](int64_t hit) { searchInOneWordAt(hit, found); });
  if (_hits) return _hits->visitNext(_location, found, [&](int64_t hit) { searchAt(hit, found); });
  const Range place = nextReadingAll();
  if (isPresent(place)) found.push_back(place);
  return isPresent(place);
}

// The word before is looked at first, where it is known to end: it costs least.
void PhraseSearch::searchInOneWordAt(int64_t hit, std::vector<Range>& found) {
  if (hit < _location) return;
  const WordPattern::Verdict verdict = _anchor->verdictAt(_text, hit);
  if (verdict == WordPattern::Verdict::No) return;
  const size_t piece = _anchor->piece;
  if (_anchor->before == 0 && piece > 0 && !WordPattern::mayEndBefore(_pieces[piece - 1], _text, hit - 1, _start))
    return;
  if (_isByProbes && !_text.hasUnitsAt(hit, _anchor->literal.units())) return;
  const Range word = _anchor->wordAround(_text, hit);
  _location = endOf(word);
  if (word.location < _start || endOf(word) > _end) return;
  if (!_pattern.matchesAtAnchor(_text, word, verdict)) return;
  const Range place = placeAround(word);
  if (isPresent(place)) found.push_back(place);
}

void PhraseSearch::searchAt(int64_t hit, std::vector<Range>& found) {
  if (hit < _location || (_hits->areShort() && !_anchor->mayMatchAt(_text, hit))) return;
  const Range word = _anchor->wordAt(_text, hit);
  if (!isPresent(word)) return;
  _location = endOf(word);
  if (word.location < _start || endOf(word) > _end) return;
  if (!_anchor->decides(_text, word, hit) && !WordPattern::matches(_pieces[_anchor->piece], _text, word)) return;
  const Range place = placeAround(word);
  if (isPresent(place)) found.push_back(place);
}

// Around a word that matches the piece of the anchor.
Range PhraseSearch::placeAround(Range word) const {
  Range last = word;
  for (size_t i = _anchor->piece + 1; i < _pieces.size(); ++i) {
    if (!WordPattern::mayBeginAfter(_pieces[i], _text, endOf(last), _end)) return kAbsentRange;
    last = _text.wordAfter(endOf(last), _end);
    if (!isPresent(last) || !WordPattern::matches(_pieces[i], _text, last)) return kAbsentRange;
  }
  Range first = word;
  for (size_t i = _anchor->piece; i-- > 0;) {
    if (!WordPattern::mayEndBefore(_pieces[i], _text, first.location, _start)) return kAbsentRange;
    first = _text.wordBefore(first.location - 1, _start);
    if (!isPresent(first) || !WordPattern::matches(_pieces[i], _text, first)) return kAbsentRange;
  }
  return {first.location, endOf(last) - first.location};
}

Range PhraseSearch::nextReadingAll() {
  const size_t last = _pieces.size() - 1;
  while (true) {
    const Range word = _text.firstWordIn(_location, _end);
    if (!isPresent(word)) {
      _location = _end;
      return kAbsentRange;
    }
    _location = endOf(word);
    _starts[_wordCount++ % _pieces.size()] = word.location;
    uint64_t carry = 1;  // a place may begin at every word
    for (uint64_t& bits : _reached) {
      const uint64_t out = bits >> (kBits - 1);
      bits = bits << 1 | carry;
      carry = out;
    }
    if (_pieces.size() % kBits != 0) _reached.back() &= (uint64_t{1} << (_pieces.size() % kBits)) - 1;
    keepMatching(word);
    if ((_reached[last / kBits] >> (last % kBits) & 1) != 0) {
      const int64_t start = _starts[_wordCount % _pieces.size()];
      return {start, endOf(word) - start};
    }
  }
}

void PhraseSearch::keepMatching(Range word) {
  int places = 0;
  for (const uint64_t bits : _reached) places += std::popcount(bits);
  if (places <= kFewPlaces || _reached.size() == 1) {
    for (size_t i = 0; i < _reached.size(); ++i) {
      forEachBit(_reached[i], [&](size_t bit) {
        if (!WordPattern::matches(_pieces[i * kBits + bit], _text, word)) _reached[i] &= ~(uint64_t{1} << bit);
      });
    }
    return;
  }
  WordClass& words = classOf(word);
  for (size_t i = 0; i < _reached.size(); ++i) {
    while (const uint64_t unknown = _reached[i] & ~words.known[i]) {
      learn(words, i * kBits + static_cast<size_t>(std::countr_zero(unknown)), word);
    }
    _reached[i] &= words.matching[i];
  }
}

PhraseSearch::WordClass& PhraseSearch::classOf(Range word) {
  if (_groups.empty()) groupPieces();
  if (_classes.size() * 2 * _reached.size() * sizeof(uint64_t) > kMostRemembered) _classes.clear();
  WordClass& words = _classes[{_text.units() + word.location, static_cast<size_t>(word.length)}];
  if (words.known.empty()) words = {Row(_reached.size()), Row(_reached.size())};
  return words;
}

void PhraseSearch::learn(WordClass& words, size_t position, Range word) const {
  const bool matches = WordPattern::matches(_pieces[position], _text, word);
  const size_t group = _groups[position];
  for (const size_t each : _groupPositions[group]) {
    setBit(words.known, each);
    if (matches) setBit(words.matching, each);
  }
  const Row& row = _groupRows[group];
  for (size_t i = 0; i < row.size(); ++i) {
    words.known[i] |= row[i];
    if (matches) words.matching[i] |= row[i];
  }
}

void PhraseSearch::groupPieces() {
  std::unordered_map<std::u16string_view, size_t> groupOf;  // the other members follow from the units
  for (size_t position = 0; position < _pieces.size(); ++position) {
    const auto [entry, isNew] = groupOf.try_emplace(_pieces[position].units, _groupPositions.size());
    if (isNew) _groupPositions.emplace_back();
    _groups.push_back(entry->second);
    _groupPositions[entry->second].push_back(position);
  }
  _groupRows.resize(_groupPositions.size());
  for (size_t group = 0; group < _groupPositions.size(); ++group) {
    if (_groupPositions[group].size() < _reached.size()) continue;
    _groupRows[group].resize(_reached.size());
    for (const size_t position : _groupPositions[group]) setBit(_groupRows[group], position);
    _groupPositions[group].clear();
  }
}

}  // namespace velan
