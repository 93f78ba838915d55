#include "tools/query/QueryWords.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

#include "velan/wildcard/WildcardPattern.h"

namespace velan::tool {
namespace {

// From here on words are divided by dictionary, so that others may be in them.
constexpr unichar kFirstEastAsian = 0x2E80;

}  // namespace

std::unique_ptr<const QueryWords> QueryWords::wordsOf(const PreparedQuery& query) {
  std::unique_ptr<QueryWords> words(new QueryWords(query));
  if (words->_text.isEmpty()) return nullptr;
  const String text = words->_text.takeString();
  std::shared_ptr<const QueryTerms> terms =
      query.wildcard() ? QueryTerms::initWithWildcard(text) : QueryTerms::initWithString(text);
  words->_query = PreparedQuery::queryWithTerms(std::move(terms), query.comparison(), query.wildcard());
  if (!words->_query) throw std::bad_alloc();
  return words;
}

QueryWords::QueryWords(const PreparedQuery& query)
    : _table(unicharTableForWildcardComparison(static_cast<uint32_t>(query.comparison()))),
      _mayBeAnything(contains(query.comparison(), QueryComparison::Fuzzy)) {
  for (const ExplainedTerm& term : query.explanation(std::numeric_limits<uint32_t>::max())) {
    if (term.meaning == LeafMeaning::Literal) {
      if (const auto index = FastWordEnumerator::enumeratorWithString(term.term->word())) {
        index->enumerateWords(1, nullptr, [this](std::u16string_view word) { add(word); });
      }
    }
    for (const ExplainedPiece& piece : term.pieces) {
      if (!piece.standsForAnyWord && piece.normalForm) add(piece.pattern.view());
    }
  }
}

void QueryWords::add(std::u16string_view pattern) {
  if (!_text.isEmpty()) _text.appendString(u" OR "_s);
  _text.appendCharacter(u'"');
  _text.appendString(pattern);
  _text.appendCharacter(u'"');
  const size_t wildcard = pattern.find_first_of(u"*?[]");
  if (wildcard == std::u16string_view::npos) {
    const std::u16string units = folded(pattern);
    for (size_t i = 0; i + 1 < units.size(); ++i) {
      if ((units[i] | units[i + 1]) < 0x80) _joins.set(static_cast<size_t>(units[i]) << 7 | units[i + 1]);
    }
    _words.insert(units);
  } else {
    _beginnings.push_back(folded(pattern.substr(0, wildcard)));
  }
}

bool QueryWords::mayBe(std::u16string_view word) const {
  if (_mayBeAnything || std::ranges::any_of(word, [](unichar c) { return c >= kFirstEastAsian; })) return true;
  const std::u16string units = folded(word);
  return _words.contains(units) || std::ranges::any_of(_beginnings, [&](const std::u16string& beginning) {
           return units.starts_with(beginning);
         });
}

bool QueryWords::mayJoin(char before, char after) const {
  if (_mayBeAnything || !_beginnings.empty() || ((before | after) & 0x80) != 0) return true;
  const std::u16string units = folded(std::u16string{static_cast<unichar>(before), static_cast<unichar>(after)});
  return (units[0] | units[1]) >= 0x80 || _joins[static_cast<size_t>(units[0]) << 7 | units[1]];
}

std::u16string QueryWords::folded(std::u16string_view word) const {
  std::u16string units(word);
  if (_table) std::ranges::transform(units, units.begin(), [this](unichar c) { return _table[c]; });
  return units;
}

}  // namespace velan::tool
