// Queries evaluated by their definition, slowly: what the tests compare the library with. It shares only the folding of
// units, the separators and the comparison of two words, which have tests of their own.
#ifndef VELAN_TESTS_QUERY_QUERY_REFERENCE_H
#define VELAN_TESTS_QUERY_QUERY_REFERENCE_H

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "velan/base/Range.h"
#include "velan/query/QueryMatching.h"

namespace velan {

/// A node of a query, open to be built by hand.
struct ReferenceTerm {
  std::u16string word;  // of a leaf; empty for a group
  std::vector<ReferenceTerm> children;
  QueryOperator op = QueryOperator::And;
  bool negated = false;
  bool phrase = false;
  int64_t distance = QueryTerms::kDefaultDistance;

  bool isProximity() const { return velan::isProximity(op) && distance > 0; }
};

/// A copy of the library's tree.
ReferenceTerm referenceOf(const QueryTerms& node);

/// The tree in one line: groups in parentheses (not the root), `!` before negated terms, phrases in quotation marks,
/// and between terms `&`, `|`, `^`, `NEAR/2` and so on. Equal trees have equal texts.
std::string dumpOf(const ReferenceTerm& root);
std::string dumpOf(const QueryTerms& root);

/// One line for each occurrence.
std::string dumpOf(const std::vector<QueryOccurrence>& occurrences);

/// A text of ASCII, Latin-1 letters and ASCII separators with its words.
class ReferenceText {
 public:
  ReferenceText(std::u16string text, QueryComparison comparison, bool wildcard);

  bool matches(const ReferenceTerm& node, Range range) const { return holds(node, nullptr, node, range); }
  bool contains(const ReferenceTerm& node) const;
  Range wholeRange() const { return {0, static_cast<int64_t>(_text.size())}; }

  /// Where the leaf is found, negated or not, from left to right; places may overlap.
  std::vector<Range> placesOf(const ReferenceTerm& leaf, Range range) const;
  std::vector<QueryOccurrence> occurrences(const ReferenceTerm& root, Range range) const;

 private:
  using Parts = std::map<const ReferenceTerm*, std::vector<Range>>;  // the ranges in which a leaf takes part

  bool holds(const ReferenceTerm& node, const ReferenceTerm* partner, const ReferenceTerm& relation, Range range) const;
  bool foldOf(const ReferenceTerm& group, const ReferenceTerm* partner, const ReferenceTerm& relation,
              Range range) const;
  Range spanAround(Range place, const ReferenceTerm& relation, Range range) const;
  std::vector<Range> satisfiedPieces(const ReferenceTerm& leaf, const ReferenceTerm& partner,
                                     const ReferenceTerm& relation, Range range) const;
  void collectParts(const ReferenceTerm& node, const ReferenceTerm* partner, const ReferenceTerm& relation, Range range,
                    Parts& parts) const;
  bool isAnything(std::u16string_view word) const;
  std::u16string folded(std::u16string_view text) const;
  bool wordIsLike(std::u16string_view pattern, const Range& word) const;

  std::u16string _text;  // folded
  std::vector<Range> _words;
  QueryComparison _comparison;
  bool _wildcard;
};

}  // namespace velan

#endif  // VELAN_TESTS_QUERY_QUERY_REFERENCE_H
