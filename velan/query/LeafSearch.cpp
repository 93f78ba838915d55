#include <algorithm>

#include "velan/query/LeafSearchInternal.h"

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

}  // namespace

LeafSearch::LeafSearch(const SearchedText& text, const QueryTerms& leaf, LeafKind kind, bool fuzzy)
    : _text(text),
      _literal(kind == LeafKind::Plain || (kind == LeafKind::Tolerant && !leaf.queryPhrase())),
      _whole(!leaf.querySubstring()) {
  if (_literal) {
    _word = text.mapped(plainWord(leaf));
  } else if (kind == LeafKind::Tolerant) {
    _pattern = WordPattern::withPhrase(text, leaf.word().view());
  } else {
    _pattern = WordPattern::withWildcard(text, leaf.word().view(), true, leaf.queryPhrase(), fuzzy);
  }
}

Range LeafSearch::firstIn(Range range) {
  if (isWholeRange()) return range.length > 0 ? range : kAbsentRange;
  const Range* first = at(numberFrom(range.location));
  return first && first->location < endOf(range) && endOf(*first) <= endOf(range) ? *first : kAbsentRange;
}

const Range* LeafSearch::at(size_t number) {
  while (number >= _found.size() && _frontier < _text.length()) {
    const Range rest{_frontier, _text.length() - _frontier};
    const Range next = _literal ? _text.findWord(_word, rest, _whole) : _pattern.firstIn(_text, rest);
    if (isPresent(next)) _found.push_back(next);
    _frontier = isPresent(next) ? next.location + 1 : _text.length();
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
