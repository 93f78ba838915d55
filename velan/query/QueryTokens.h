// A query as the parser reads it, from left to right: for showing people what became of what they typed, and for
// changing that before a tree is made of it.
//
//   std::vector<QueryToken> tokens = queryTokens(typed, true);
//   std::erase_if(tokens, isOfNoUse);
//   const auto terms = queryTermsWithTokens(tokens, QueryOperator::And, QueryTerms::kDefaultDistance);
#ifndef VELAN_QUERY_QUERY_TOKENS_H
#define VELAN_QUERY_QUERY_TOKENS_H

#include <optional>
#include <span>
#include <vector>

#include "velan/base/FunctionRef.h"
#include "velan/base/Range.h"
#include "velan/query/QueryTerms.h"

namespace velan {

enum class QueryTokenKind : uint8_t {
  Word,      // a word or a pattern, which becomes a leaf
  Phrase,    // the same in quotation marks
  Operator,  // "AND", "|", "NEAR/5"
  Not,       // "NOT": turns the negation of the next term round
  Minus,     // "-" or "!": negates the next term
  Plus,      // "+": takes its negation back
  Open,      // of a group
  Close
};

struct QueryToken {
  QueryTokenKind kind;
  Range range;                                       // in the query, in code units; a phrase with its quotation marks
  String word;                                       // of a word or phrase
  QueryOperator queryOperator = QueryOperator::And;  // of an operator
  std::optional<int64_t> distance;                   // of an operator that names one, in words; 1 for a bare NEXT
};

/// Hands over the tokens of `query` in order. With `wildcard`, `[` and `]` belong to terms. May throw `std::bad_alloc`.
VELAN_EXPORT void enumerateQueryTokens(const String& query, bool wildcard, FunctionRef<void(QueryToken)> handler);

/// The tokens of `query` as a list.
VELAN_EXPORT std::vector<QueryToken> queryTokens(const String& query, bool wildcard);

/// The tree of these tokens; that of all tokens of a query is what `QueryTerms::initWithString` or `initWithWildcard`
/// makes of it. Ranges are of no meaning, a word or phrase without characters is left out. Never null; throws
/// `std::bad_alloc`.
VELAN_EXPORT std::unique_ptr<QueryTerms> queryTermsWithTokens(std::span<const QueryToken> tokens,
                                                              QueryOperator defaultOperator, int64_t defaultDistance);

}  // namespace velan

#endif  // VELAN_QUERY_QUERY_TOKENS_H
