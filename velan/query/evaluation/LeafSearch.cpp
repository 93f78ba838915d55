#include <algorithm>

#include "velan/query/evaluation/LeafSearchInternal.h"
#include "velan/query/evaluation/QueryWalkInternal.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/Separators.h"

namespace velan {
namespace {

// A substring leaf carries its word between asterisks.
std::u16string_view plainWord(const QueryTerms& leaf) {
  std::u16string_view word = leaf.word().view();
  if (leaf.querySubstring() && word.size() > 1 && word.front() == u'*' && word.back() == u'*') {
    word = word.substr(1, word.size() - 2);
  }
  return word;
}

// A literal that begins and ends where words do holds a word unit at both ends.
bool isFoundNowhere(const std::u16string& literal, bool whole) {
  const auto separates = [](unichar c) { return isMemberOfCharacterSetRep(defaultWordSeparators(), c); };
  return literal.empty() || (whole && (separates(literal.front()) || separates(literal.back())));
}

const QueryTerms* onlyLeafOf(const QueryTerms& root) {
  const bool isGroupOfOne = !root.queryNot() && root.children().size() == 1;
  const QueryTerms& leaf = isGroupOfOne ? *root.children().front() : root;
  return leaf.isWord() && !leaf.queryNot() ? &leaf : nullptr;
}

}  // namespace

LeafPattern::LeafPattern(const QueryTerms& leaf, LeafKind kind, QueryComparison comparison)
    : _whole(!leaf.querySubstring()), _meaning(LeafMeaning::Words) {
  const unichar* table = comparisonTable(comparison);
  if (kind == LeafKind::Plain || (kind == LeafKind::Tolerant && !leaf.queryPhrase())) {
    const std::u16string word = mappedUnits(plainWord(leaf), table);
    _literal.emplace(word, table);
    _meaning = isFoundNowhere(word, _whole) ? LeafMeaning::Nothing : LeafMeaning::Literal;
    return;
  }
  if (kind == LeafKind::Tolerant) {
    _pattern = WordPattern::withPhrase(leaf.word().view(), table);
  } else {
    const bool fuzzy = contains(comparison, QueryComparison::Fuzzy);
    _pattern = WordPattern::withWildcard(leaf.word().view(), true, leaf.queryPhrase(), fuzzy, table);
  }
  if (!_pattern.isFound()) _meaning = LeafMeaning::Nothing;
  if (isWholeRange()) _meaning = LeafMeaning::WholeRange;
}

LeafPatterns::LeafPatterns(const QueryTerms& root, LeafKind kind, QueryComparison comparison)
    : _patterns(patternsOf(root, kind, comparison)),
      _manyTerms(root, _patterns, comparisonTable(comparison)),
      _onlyLeaf(onlyLeafOf(root)),
      _fewLiterals(comparisonTable(comparison)) {
  if (_onlyLeaf || _manyTerms.literals()) return;
  walkQuery(root, [this](const QueryTerms& node) {
    const auto pattern = _patterns.find(&node);
    Literal* const literal = pattern != _patterns.end() ? pattern->second.requiredLiteral() : nullptr;
    if (literal) literal->join(_fewLiterals);
    return true;
  });
}

std::unordered_map<const QueryTerms*, LeafPattern> LeafPatterns::patternsOf(const QueryTerms& root, LeafKind kind,
                                                                            QueryComparison comparison) {
  std::unordered_map<const QueryTerms*, LeafPattern> patterns;
  walkQuery(root, [&](const QueryTerms& node) {
    if (node.isWord()) patterns.try_emplace(&node, node, kind, comparison);
    return true;
  });
  return patterns;
}

const LeafPattern* LeafPatterns::find(const QueryTerms& leaf) const {
  const auto found = _patterns.find(&leaf);
  return found != _patterns.end() ? &found->second : nullptr;
}

std::vector<ExplainedPiece> explainedPieces(const QueryTerms& leaf, QueryComparison comparison) {
  return WordPattern::explained(leaf.word().view(), leaf.queryPhrase(), contains(comparison, QueryComparison::Fuzzy));
}

LeafSearch::LeafSearch(const SearchedText& text, const LeafPattern& pattern)
    : _text(text), _pattern(pattern), _textNumber(text.number()) {
  const WordPattern& words = pattern.pattern();
  const Range all{0, text.length()};
  if (words.isPhrase()) _search.emplace<PhraseSearch>(words, text, all);
  if (words.isOneWord()) _search.emplace<WordSearch>(words, text, all);
  const Literal* literal = pattern.literal();
  if (literal && literal->length() > 0) _search.emplace<LiteralHits>(*literal, text, all);
}

void LeafSearch::begin() {
  const Range all{0, _text.length()};
  if (auto* word = std::get_if<WordSearch>(&_search)) word->begin(all);
  if (auto* phrase = std::get_if<PhraseSearch>(&_search)) phrase->begin(all);
  if (auto* hits = std::get_if<LiteralHits>(&_search)) hits->begin(all);
  _found.clear();
  _location = 0;
  _isDone = false;
  _textNumber = _text.number();
}

// Appends the next places, if it finds any. False when all was searched.
bool LeafSearch::searchOn() {
  if (auto* word = std::get_if<WordSearch>(&_search)) return word->searchOn(_found);
  if (auto* phrase = std::get_if<PhraseSearch>(&_search)) return phrase->searchOn(_found);
  auto* hits = std::get_if<LiteralHits>(&_search);
  return hits && hits->visitNext(_location, _found, [this](int64_t hit) { searchLiteralAt(hit); });
}

void LeafSearch::searchLiteralAt(int64_t hit) {
  const int64_t length = _pattern.literal()->length();
  if (!_pattern.isWhole() || (_text.wordBeginsAt(hit) && _text.wordEndsAt(hit + length - 1))) {
    _found.push_back({hit, length});
    return;
  }
  // Going on at the next word, not the next unit, keeps a long literal in a text that repeats its units from being
  // compared again and again.
  if (length > LiteralHits::kShort) _location = _text.wordStartFrom(hit + 1);
}

Range LeafSearch::firstIn(Range range) {
  if (isWholeRange()) return range.length > 0 ? range : kAbsentRange;
  const Range* first = at(numberFrom(range.location));
  return first && first->location < endOf(range) && endOf(*first) <= endOf(range) ? *first : kAbsentRange;
}

std::span<const Range> LeafSearch::placesIn(Range range) {
  if (range.location == 0 && range.length == _text.length()) {
    while (!_isDone) _isDone = !searchOn();
    return _found;
  }
  const size_t last = numberFrom(endOf(range));
  const size_t first = numberFrom(range.location);
  const auto all = std::span<const Range>(_found).subspan(first, last - first);
  const auto isWithin = [end = endOf(range)](const Range& place) { return endOf(place) <= end; };
  if (all.empty() || isWithin(all.back())) return all;
  return all.first(static_cast<size_t>(std::ranges::partition_point(all, isWithin) - all.begin()));
}

const Range* LeafSearch::at(size_t number) {
  while (number >= _found.size() && !_isDone) _isDone = !searchOn();
  return number < _found.size() ? &_found[number] : nullptr;
}

size_t LeafSearch::numberFrom(int64_t location) {
  const auto liesBefore = [&] { return _found.empty() || _found.back().location < location; };
  while (!_isDone && liesBefore()) _isDone = !searchOn();
  if (liesBefore()) return _found.size();
  const auto byLocation = [](const Range& range, int64_t value) { return range.location < value; };
  return static_cast<size_t>(std::lower_bound(_found.begin(), _found.end(), location, byLocation) - _found.begin());
}

}  // namespace velan
