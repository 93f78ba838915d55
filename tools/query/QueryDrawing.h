// Queries as trees of text.
#ifndef VELAN_TOOLS_QUERY_QUERY_DRAWING_H
#define VELAN_TOOLS_QUERY_QUERY_DRAWING_H

#include <cstdint>
#include <string>
#include <vector>

#include "tools/documents/SourcePlaces.h"
#include "velan/query/QueryExplanation.h"

namespace velan::tool {

/// What the lines of a tree are made of.
enum class TreeLines : uint8_t { Box, ASCII };

/// Those that the environment says can be shown.
TreeLines linesOfTerminal();

/// The query as its operators bind, an operator above what it joins; `terms` begin with the root. What a pattern looks
/// for stands below it and, if there is a document, where it is found behind it and whether operators hold behind them.
/// `source` is null for none. Of what binds in many ways the terms stand one below the other, as they were written.
std::string drawnQuery(const std::vector<ExplainedTerm>& terms, bool wildcard, const SourcePlaces* source,
                       TreeLines lines);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_QUERY_QUERY_DRAWING_H
