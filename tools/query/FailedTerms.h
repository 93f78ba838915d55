// Terms that occur without having done anything for the match.
#ifndef VELAN_TOOLS_QUERY_FAILED_TERMS_H
#define VELAN_TOOLS_QUERY_FAILED_TERMS_H

#include <unordered_set>

#include "velan/query/PreparedQuery.h"

namespace velan::tool {

/// Finds the leaves that stand where a query fails in a text that matches as a whole: in "a AND b OR c" those of "a AND
/// b" where "b" is missing. May be used by several threads at once.
class FailedTerms {
 public:
  explicit FailedTerms(const PreparedQuery& query);
  /// Those in `range`, which matches. Groups far down are taken to hold. Throws `std::bad_alloc`.
  std::unordered_set<const QueryTerms*> in(QueryMatcher& matcher, Range range) const;

 private:
  bool _mayBe;
};

}  // namespace velan::tool

#endif  // VELAN_TOOLS_QUERY_FAILED_TERMS_H
