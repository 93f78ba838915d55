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

LeafPatterns::LeafPatterns(const QueryTerms& root, LeafKind kind, QueryComparison comparison) {
  walkQuery(root, [&](const QueryTerms& node) {
    if (node.isWord()) _patterns.try_emplace(&node, node, kind, comparison);
    return true;
  });
}

const LeafPattern* LeafPatterns::find(const QueryTerms& leaf) const {
  const auto found = _patterns.find(&leaf);
  return found != _patterns.end() ? &found->second : nullptr;
}

std::vector<ExplainedPiece> explainedPieces(const QueryTerms& leaf, QueryComparison comparison) {
  return WordPattern::explained(leaf.word().view(), leaf.queryPhrase(), contains(comparison, QueryComparison::Fuzzy));
}

LeafSearch::LeafSearch(const SearchedText& text, const LeafPattern& pattern) : _text(text), _pattern(pattern) {
  const WordPattern& words = pattern.pattern();
  const Range all{0, text.length()};
  if (words.isPhrase()) _phrase.emplace(words, text, all);
  if (words.isOneWord()) _word.emplace(words, text, all);
}

Range LeafSearch::next() {
  if (_phrase) return _phrase->next();
  if (_word) return _word->next();
  if (!_pattern.literal()) return kAbsentRange;
  return _text.findWord(*_pattern.literal(), {_frontier, _text.length() - _frontier}, _pattern.isWhole());
}

Range LeafSearch::firstIn(Range range) {
  if (isWholeRange()) return range.length > 0 ? range : kAbsentRange;
  const Range* first = at(numberFrom(range.location));
  return first && first->location < endOf(range) && endOf(*first) <= endOf(range) ? *first : kAbsentRange;
}

const Range* LeafSearch::at(size_t number) {
  while (number >= _found.size() && _frontier < _text.length()) {
    const Range place = next();
    if (isPresent(place)) _found.push_back(place);
    _frontier = isPresent(place) ? place.location + 1 : _text.length();
  }
  return number < _found.size() ? &_found[number] : nullptr;
}

size_t LeafSearch::numberFrom(int64_t location) {
  if (_found.empty() || _found.back().location < location) {
    size_t number = _found.size();
    while (const Range* place = at(number)) {
      if (place->location >= location) return number;
      ++number;
    }
    return number;
  }
  const auto byLocation = [](const Range& range, int64_t value) { return range.location < value; };
  return static_cast<size_t>(std::lower_bound(_found.begin(), _found.end(), location, byLocation) - _found.begin());
}

}  // namespace velan
