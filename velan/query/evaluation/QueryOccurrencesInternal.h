// Where the leaves of a query occur in a text, and which of these places satisfy it.
#ifndef VELAN_QUERY_EVALUATION_QUERY_OCCURRENCES_INTERNAL_H
#define VELAN_QUERY_EVALUATION_QUERY_OCCURRENCES_INTERNAL_H

#include <unordered_set>
#include <vector>

#include "velan/query/QueryMatching.h"
#include "velan/query/evaluation/QueryEvaluatorInternal.h"

namespace velan {

/// All places in `range` where a leaf matches that is neither negated nor below a negated group, by location, the
/// longer first, each range once. A place is primary when it takes part in the match: under a proximity operator when
/// it is near enough to its partner, or for the partner when it lies in the span of such a place (or in a piece outside
/// of all spans), elsewhere always; but those of some leaves never.
std::vector<QueryOccurrence> occurrencesOfQuery(QueryEvaluator& evaluator, const QueryTerms& root, Range range,
                                                const std::unordered_set<const QueryTerms*>& withoutPart);

/// The same in place of what `occurrences` holds, whose room is used again, for the tree that the evaluator's patterns
/// were prepared for.
void findOccurrences(QueryEvaluator& evaluator, const QueryTerms& root, Range range,
                     std::vector<QueryOccurrence>& occurrences);

}  // namespace velan

#endif  // VELAN_QUERY_EVALUATION_QUERY_OCCURRENCES_INTERNAL_H
