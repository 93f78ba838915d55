// What the terms of a query look for, and how they fare in a text: for showing people why it matches or does not.
#ifndef VELAN_QUERY_QUERY_EXPLANATION_H
#define VELAN_QUERY_QUERY_EXPLANATION_H

#include <optional>
#include <vector>

#include "velan/base/Range.h"
#include "velan/query/QueryTerms.h"

namespace velan {

/// What a leaf looks for.
enum class LeafMeaning : uint8_t {
  Nothing,     // never found
  WholeRange,  // a lone `*`: whatever range is searched
  Literal,     // its units as they are
  Words        // words in a row, as its pieces say
};

/// One word that a leaf of wildcard patterns looks for.
struct ExplainedPiece {
  String pattern;            // as it was written
  uint32_t type;             // by `optimizeWildcard`
  String normalForm;         // absent for an unusable one
  bool standsForAnyWord;     // it has no literal, and any word of fitting length will do
  bool acceptsSimilarWords;  // `QueryComparison::Fuzzy` applies
};

/// A node of the tree. It borrows from the tree.
struct ExplainedTerm {
  const QueryTerms* term;
  const QueryTerms* partner;  // the term before it, if a proximity operator relates it to that; else null
  size_t depth;               // 0 for the root, which comes first
  bool isFirst;               // of its group, so that its own operator does not count
  LeafMeaning meaning = LeafMeaning::Nothing;  // of a leaf
  std::vector<ExplainedPiece> pieces;          // of a leaf of wildcard patterns, also where one of them is never found

  /// In a text: whether the term holds there, with its partner if it has one. Nothing where a group above relates it,
  /// so that it is not asked by itself.
  std::optional<bool> holds;
  std::vector<Range> places;  // in a text: where a leaf is found, negated or not; they may overlap
};

/// What a leaf looks for, asked without preparing a query: whether it can match at all. With `wildcard` it is a
/// pattern, otherwise plain words. `Nothing` for a group. May throw `std::bad_alloc`.
VELAN_EXPORT LeafMeaning leafMeaning(const QueryTerms& leaf, QueryComparison comparison, bool wildcard);

}  // namespace velan

#endif  // VELAN_QUERY_QUERY_EXPLANATION_H
