// Hits as lines for people and for line-oriented tools.
#ifndef VELAN_TOOLS_SEARCH_LINE_PRINTER_H
#define VELAN_TOOLS_SEARCH_LINE_PRINTER_H

#include <string>

#include "tools/search/DocumentSearch.h"

namespace velan::tool {

/// How lines are printed.
struct LineStyle {
  bool color = false;
  bool withPath = false;  // before each line, or above them with `heading`
  bool heading = false;
  size_t context = 0;  // lines around those with occurrences
};

/// The name of a document as it stands before a line or alone.
std::string paintedPath(const std::string& path, bool color);

/// The lines of the hits in the form "path:number:line", "path-number-line" for context lines and "--" between lines
/// that do not follow each other. In color, occurrences that take part in the match are bold, others are not.
std::string printLines(const std::string& path, const String& text, const TextLines& lines, const DocumentHits& hits,
                       const LineStyle& style);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_SEARCH_LINE_PRINTER_H
