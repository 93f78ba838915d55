// What a person may have meant otherwise than a query says.
#ifndef VELAN_TOOLS_QUERY_QUERY_DOUBTS_H
#define VELAN_TOOLS_QUERY_QUERY_DOUBTS_H

#include <optional>
#include <string>
#include <vector>

#include "tools/query/QueryCorrections.h"

namespace velan::tool {

/// A sentence for each sign or keyword that became an operator or a set and may have been meant as text, and for each
/// number that is no distance, up to ten: what it became, and how to write the other thing.
std::vector<std::string> doubtsAbout(const CorrectedQuery& query);

/// The terms of a group as they are folded from left to right: "(red OR blue) AND green". Nothing where the order makes
/// no difference, or for very many terms.
std::optional<std::string> bindingOf(const QueryTerms& group);

/// A sentence for a group in which AND or a proximity operator follows OR or XOR; nothing for any other.
std::optional<std::string> doubtAboutBinding(const QueryTerms& group);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_QUERY_QUERY_DOUBTS_H
