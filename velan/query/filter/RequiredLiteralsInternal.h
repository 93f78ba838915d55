// What a text must hold for a query to match it.
#ifndef VELAN_QUERY_FILTER_REQUIRED_LITERALS_INTERNAL_H
#define VELAN_QUERY_FILTER_REQUIRED_LITERALS_INTERNAL_H

#include <string>
#include <vector>

#include "velan/query/evaluation/LeafSearchInternal.h"

namespace velan {

/// Groups of runs of units, mapped like the patterns: a text in which the query matches anywhere holds one of each
/// group. None when nothing is required; a group that is empty when the query matches nothing.
///
/// And and proximity join what both sides require. Of what the sides of an or require one group each is kept, joined
/// to one: that is less than they require, but a single question. What is negated, optional or fuzzy requires nothing.
std::vector<std::vector<std::u16string>> requiredLiterals(const QueryTerms& root, const LeafPatterns& patterns);

}  // namespace velan

#endif  // VELAN_QUERY_FILTER_REQUIRED_LITERALS_INTERNAL_H
