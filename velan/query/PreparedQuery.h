// A query that is asked of many texts: prepared once, then run on one text after the other.
//
//   const auto query = PreparedQuery::queryWithTerms(QueryTerms::initWithWildcard(u"lamp* NEAR/3 keeper"),
//                                                    QueryComparison::IgnoreCase, true);
//   QueryMatcher matcher(*query);
//   std::vector<QueryOccurrence> occurrences;
//   for (const String& text : texts) {
//     matcher.setText(text.view());
//     matcher.findOccurrences(occurrences);
//     ...
//   }
//
// What is made for a text is used again for the next one, so that short texts cost little more than their units.
// The functions of QueryMatching.h give the same answers; each call of theirs begins anew.
#ifndef VELAN_QUERY_PREPARED_QUERY_H
#define VELAN_QUERY_PREPARED_QUERY_H

#include <memory>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "velan/query/QueryExplanation.h"
#include "velan/query/QueryMatching.h"

namespace velan {

class LeafPatterns;
class QueryEvaluator;

/// A tree with its leaves analysed and mapped for one comparison. Never changes, so any number of threads may use it at
/// once. East Asian words in it are divided as `FastWordEnumerator::splitAsianWords` says when it is prepared.
class VELAN_EXPORT PreparedQuery {
 public:
  /// With `wildcard` the leaves are wildcard patterns, otherwise plain words. Null without `terms`, or when there is
  /// too little memory.
  static std::unique_ptr<const PreparedQuery> queryWithTerms(std::shared_ptr<const QueryTerms> terms,
                                                             QueryComparison comparison, bool wildcard);
  ~PreparedQuery();
  PreparedQuery(const PreparedQuery&) = delete;
  PreparedQuery& operator=(const PreparedQuery&) = delete;

  const QueryTerms& terms() const { return *_terms; }
  QueryComparison comparison() const { return _comparison; }
  bool wildcard() const { return _wildcard; }

  /// The index of `text` that suits the comparison best: `FastWordEnumerator::enumeratorDividingOnDemand`. Null for an
  /// empty or absent text, or when there is too little memory.
  std::unique_ptr<FastWordEnumerator> enumeratorWithString(const String& text) const;

  /// Groups of runs of units, mapped as the comparison maps texts: a text in which the query matches anywhere holds at
  /// least one of each group. No groups when nothing is required; an empty group when the query matches nothing. What
  /// is negated, optional or fuzzy and patterns without fixed units require nothing. The most telling groups come
  /// first. May throw `std::bad_alloc`.
  std::vector<std::vector<String>> requiredLiterals() const;

  /// The terms in the order of the tree with what they look for, down to `deepest` groups below the root; groups beyond
  /// are left out. May throw `std::bad_alloc`.
  std::vector<ExplainedTerm> explanation(size_t deepest) const;

 private:
  friend class QueryMatcher;
  PreparedQuery(std::shared_ptr<const QueryTerms> terms, QueryComparison comparison, bool wildcard);

  const std::shared_ptr<const QueryTerms> _terms;
  const QueryComparison _comparison;
  const bool _wildcard;
  const std::unique_ptr<LeafPatterns> _patterns;
};

/// A prepared query on one text, or on one after the other. Borrows both, and remembers what it found, so that all
/// answers together cost little more than the first one; each term is searched only as far as answers need it. One
/// thread at a time.
///
/// Ranges are in code units of the text and clipped to it. Words that a range cuts do not count, and proximity does not
/// reach beyond it: a text can be indexed once and asked about line by line.
class VELAN_EXPORT QueryMatcher {
 public:
  /// The enumerator must have been created without `wildcard`; one created to ignore case is searched so whatever the
  /// comparison says, then without the preparation unless that ignores case as well.
  QueryMatcher(const PreparedQuery& query, const FastWordEnumerator& enumerator);
  /// For texts that `setText` gives; until then the text is empty.
  explicit QueryMatcher(const PreparedQuery& query);
  ~QueryMatcher();
  QueryMatcher(const QueryMatcher&) = delete;
  QueryMatcher& operator=(const QueryMatcher&) = delete;

  /// `setText`: goes over to `text`, which must stay as it is as long as anything is asked of it. Its words are those
  /// of `FastWordEnumerator::enumeratorDividingOnDemand`, and an empty text matches nothing. Not for a matcher with an
  /// enumerator.
  void setText(std::u16string_view text);

  /// Whether the query matches the text. False as well when memory runs out.
  bool matches() { return matches({0, NSNotFound}); }
  /// Whether it matches the text in `range`.
  bool matches(Range range);
  /// Whether the text holds any term that is neither negated nor below a negated group. False as well when memory runs
  /// out.
  bool contains();
  /// Whether memory ran out during any call for this text: an answer of false is then none.
  bool ranOutOfMemory() const { return _ranOutOfMemory; }

  /// See `queryOccurrences`. May throw `std::bad_alloc`.
  std::vector<QueryOccurrence> occurrences(Range range) { return occurrences(range, {}); }
  /// The same where some leaves take no part in the match.
  std::vector<QueryOccurrence> occurrences(Range range, const std::unordered_set<const QueryTerms*>& withoutPart);
  /// The same in place of what `occurrences` holds, whose room is used again. May throw `std::bad_alloc`.
  void findOccurrences(std::vector<QueryOccurrence>& occurrences, Range range = {0, NSNotFound});
  /// `PreparedQuery::explanation` with which terms hold in the text, and where they stand.
  std::vector<ExplainedTerm> explanation(size_t deepest);
  /// The same for the text in `range`.
  std::vector<ExplainedTerm> explanation(size_t deepest, Range range);

 private:
  QueryEvaluator& evaluator();
  template <typename Ask>
  bool answer(Ask ask);
  // Not even a negated term holds then.
  bool hasNoText() const { return !_enumerator && _text.empty(); }
  int64_t length() const { return _enumerator ? _enumerator->length() : static_cast<int64_t>(_text.size()); }

  const PreparedQuery& _query;
  const FastWordEnumerator* const _enumerator;  // null where texts are set
  std::u16string_view _text;
  std::unique_ptr<QueryEvaluator> _evaluator;  // made when first needed
  bool _ranOutOfMemory = false;
};

}  // namespace velan

#endif  // VELAN_QUERY_PREPARED_QUERY_H
