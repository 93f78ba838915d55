// Why a text does not match a query.
#ifndef VELAN_TOOLS_QUERY_FAILURE_REASONS_H
#define VELAN_TOOLS_QUERY_FAILURE_REASONS_H

#include <string>
#include <vector>

#include "tools/documents/SourcePlaces.h"
#include "tools/query/Query.h"

namespace velan::tool {

/// A sentence for each term that stands in the way, up to ten: which one is absent, and what would find it (other
/// options, a wildcard); how far apart two words are; what must not be there but is. `terms` is the query's explanation
/// in `text`, in which it does not match; `verbatim` is that of `WordReadings`. Throws `std::bad_alloc`.
std::vector<std::string> failureReasons(const PreparedQuery& query, const std::vector<ExplainedTerm>& terms,
                                        const String& text, const SourcePlaces& source, bool verbatim);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_QUERY_FAILURE_REASONS_H
