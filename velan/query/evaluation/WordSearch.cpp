#include <algorithm>

#include "velan/query/evaluation/WordSearchInternal.h"
#include "velan/wildcard/WildcardMatching.h"
#include "velan/wildcard/WildcardPattern.h"

namespace velan {
namespace {

// Types whose literal units stand in one run.
constexpr bool hasOneLiteral(uint32_t type) {
  return type == WildcardTypeExact || type == WildcardTypePrefix || type == WildcardTypeSuffix ||
         type == WildcardTypeContains;
}

}  // namespace

bool WordSearch::Element::matches(unichar unit) const {
  if (pattern.size() == 1) return pattern.front() == u'?' || pattern.front() == unit;
  return stringMatchesUnixWildcard(&unit, &unit + 1, pattern.data(), pattern.data() + pattern.size());
}

WordSearch::WordSearch(const WordPattern& pattern, const SearchedText& text, Range range)
    : _pattern(pattern),
      _piece(pattern._pieces.front()),
      _text(text),
      _anchor(pattern._anchor ? &*pattern._anchor : nullptr) {
  if (_anchor) _hits.emplace(_anchor->literal, text, range);
  if (_piece.type == WildcardTypeExact && _piece.fuzzy) _similarity = WordPattern::preparedSimilarity(_piece, text);
  begin(range);
}

void WordSearch::begin(Range range) {
  _location = range.location;
  _end = endOf(range);
  _mayStandForSeveral = _text.mayBeDivided() && _piece.type != WildcardTypeExact && !_piece.standsForAnyWord;
  if (_hits) _hits->begin(range);
  _isInOneWord = _anchor && _anchor->isInOneWord && _text.isDividedBySeparators();
  if (!_similarity) return;
  _leastSimilarity = minWildcardFuzzyAnalogy();
  _similarLengths = _similarity->similarLengths(_leastSimilarity);
  _stretch = 256;
}

// The places around the next hits of the anchor, or in the next word.
bool WordSearch::searchOn(std::vector<Range>& found) {
  if (_isInOneWord) return _hits->visitNext(_location, found, [&](int64_t hit) { searchInOneWordAt(hit, found); });
  if (_hits) return _hits->visitNext(_location, found, [&](int64_t hit) { searchAt(hit, found); });
  if (_similarity) return searchSimilar(found);
  const Range word = _text.firstWordIn(_location, _end);
  if (!isPresent(word)) return false;
  searchWord(word, WordPattern::matches(_piece, _text, word), found);
  return true;
}

// The similar words in the next stretch of text. A run is only divided when a word in it may be similar.
bool WordSearch::searchSimilar(std::vector<Range>& found) {
  if (_location >= _end) return false;
  const int64_t stretchEnd = _stretch < _end - _location ? _location + _stretch : _end;
  int64_t next = stretchEnd;
  const auto unitsOf = [this](Range range) {
    return std::u16string_view(_text.units() + range.location, static_cast<size_t>(range.length));
  };
  const auto addIfSimilar = [&](Range word) {
    if (!_similarLengths.contain(static_cast<size_t>(word.length))) return;
    if (_similarity->isSimilar(unitsOf(word), _leastSimilarity)) found.push_back(word);
  };
  _text.handRuns({_location, stretchEnd - _location}, [&](const SearchedText::Run& run) {
    const int64_t end = endOf(run.range);
    if (!run.isWhole && end == stretchEnd && end < _end) {
      next = run.range.location;
    } else if (!run.isUndivided) {
      if (run.isWhole) addIfSimilar(run.range);
    } else if (_similarity->mayHoldSimilar(unitsOf(run.range), _leastSimilarity)) {
      for (Range word{run.range.location, 0}; isPresent(word = _text.firstWordIn(endOf(word), end));) {
        addIfSimilar(word);
      }
    }
  });
  constexpr int64_t kEnough = 4096;
  if (_stretch < kEnough || next == _location) _stretch *= 2;
  _location = next;
  return true;
}

void WordSearch::searchInOneWordAt(int64_t hit, std::vector<Range>& found) {
  if (hit < _location) return;
  const WordPattern::Verdict verdict = _anchor->verdictAt(_text, hit);
  if (verdict == WordPattern::Verdict::No) return;
  const Range word = _anchor->wordAround(_text, hit);
  const bool isWithin = word.location >= _location && endOf(word) <= _end;
  if (isWithin && _pattern.matchesAtAnchor(_text, word, verdict)) appendRange(found, word);
  _location = endOf(word);
}

void WordSearch::searchAt(int64_t hit, std::vector<Range>& found) {
  if (hit < _location || (_hits->areShort() && !_anchor->mayMatchAt(_text, hit))) return;
  const Range word = _anchor->wordAt(_text, hit);
  if (!isPresent(word)) return;
  const int64_t end = endOf(word);
  if (word.location >= _location && end <= _end) {
    const bool matches = _anchor->decides(_text, word, hit) || WordPattern::matches(_piece, _text, word);
    if (_mayStandForSeveral) return searchWord(word, matches, found);
    if (matches) appendRange(found, word);
  }
  _location = end;
}

void WordSearch::searchWord(Range word, bool matches, std::vector<Range>& found) {
  const Range run = _mayStandForSeveral ? runAround(word) : word;
  if (run.length > word.length) {
    searchRun(run, found);
  } else if (matches) {
    found.push_back(word);
  }
  _location = endOf(run);
}

// The word with all whole words to be searched that touch it or each other. Where the pattern has its literal units in
// one run none before the word matters: the shortest stretch that ends at a word begins where that run does.
Range WordSearch::runAround(Range word) const {
  int64_t start = word.location;
  while (!hasOneLiteral(_piece.type) && start > _location && _text.wordEndsAt(start - 1)) {
    const int64_t before = _text.words().locationOfPreviousWordFromIndex(start - 1, _location);
    if (before == NSNotFound) break;
    start = before;
  }
  int64_t end = endOf(word);
  while (end < _end && _text.wordBeginsAt(end)) {
    const Range next = _text.firstWordIn(end, _end);
    if (!isPresent(next)) break;
    end = endOf(next);
  }
  return {start, end - start};
}

// At the end of each word: the shortest stretch that ends there, unless a shorter one lies in it.
void WordSearch::searchRun(Range run, std::vector<Range>& found) {
  splitPattern();
  _starts.assign(_elements.size() + 1, -1);
  const unichar* table = _text.table();
  int64_t lastStart = -1;
  for (Range word = _text.firstWordIn(run.location, endOf(run)); isPresent(word);
       word = _text.firstWordIn(endOf(word), endOf(run))) {
    _starts.front() = word.location;
    passStars();
    for (int64_t i = word.location; i < endOf(word); ++i) {
      const unichar unit = _text.units()[i];
      read(table ? table[unit] : unit);
    }
    const int64_t start = WordPattern::matches(_piece, _text, word) ? word.location : _starts.back();
    if (start <= lastStart) continue;
    found.push_back({start, endOf(word) - start});
    lastStart = start;
  }
}

void WordSearch::splitPattern() {
  if (!_elements.empty()) return;
  for (std::u16string_view rest = _piece.units; !rest.empty(); rest.remove_prefix(_elements.back().pattern.size())) {
    const size_t close = rest.front() == u'[' ? rest.find(u']') : 0;
    _elements.push_back({rest.substr(0, std::min(close, rest.size() - 1) + 1)});
  }
}

void WordSearch::read(unichar unit) {
  for (size_t i = _elements.size() + 1; i-- > 0;) {
    const int64_t stays = i < _elements.size() && _elements[i].isStar() ? _starts[i] : -1;
    const bool comes = i > 0 && _starts[i - 1] > stays && !_elements[i - 1].isStar() && _elements[i - 1].matches(unit);
    _starts[i] = comes ? _starts[i - 1] : stays;
  }
  passStars();
}

void WordSearch::passStars() {
  for (size_t i = 0; i < _elements.size(); ++i) {
    if (_elements[i].isStar()) _starts[i + 1] = std::max(_starts[i + 1], _starts[i]);
  }
}

}  // namespace velan
