// Hits as lines for people and for line-oriented tools.
#ifndef VELAN_TOOLS_SEARCH_LINE_PRINTER_H
#define VELAN_TOOLS_SEARCH_LINE_PRINTER_H

#include <string>

#include "tools/documents/TextDecoding.h"
#include "tools/search/DocumentSearch.h"
#include "tools/search/LineStyle.h"

namespace velan::tool {

/// The lines of the hits in the form "path:number:line", "path-number-line" for context lines and "--" between lines
/// that do not follow each other; with columns, in bytes of the source in UTF-8 from 1, "path:number:column:line". In
/// color, occurrences that take part in the match are bold, others are dim.
std::string printLines(const std::string& path, const Document& document, const TextLines& lines,
                       const DocumentHits& hits, const LineStyle& style);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_SEARCH_LINE_PRINTER_H
