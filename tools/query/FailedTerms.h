// Terms that occur without having done anything for the match.
#ifndef VELAN_TOOLS_QUERY_FAILED_TERMS_H
#define VELAN_TOOLS_QUERY_FAILED_TERMS_H

#include <set>

#include "velan/query/PreparedQuery.h"

namespace velan::tool {

/// The words of the leaves that stand only where the query fails in `range`, which matches as a whole: in "a AND b OR
/// c" those of "a AND b" where "b" is missing. Groups far down are taken to hold. Throws `std::bad_alloc`.
std::set<String> failedTerms(const PreparedQuery& query, QueryMatcher& matcher, Range range);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_QUERY_FAILED_TERMS_H
