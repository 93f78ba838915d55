// Hits as JSON Lines: one JSON object a line, in an envelope of "begin", "match", "context", "end" and "summary".
#ifndef VELAN_TOOLS_SEARCH_JSON_PRINTER_H
#define VELAN_TOOLS_SEARCH_JSON_PRINTER_H

#include <string>

#include "tools/documents/TextDecoding.h"
#include "tools/search/DocumentSearch.h"
#include "tools/search/SearchCounts.h"

namespace velan::tool {

/// The objects of one document with hits, from "begin", which names its encoding, to "end".
///
/// A "match" is a `LineBlock`. Its "lines" have their line ends; "line_number" and "absolute_offset" (in bytes of the
/// file) tell where the first line begins. Each of its "submatches" has "start" and "end" in UTF-8 bytes of "lines",
/// the "term" that was found, "primary" (whether it takes part in the match), and its place: "line" and "column" (from
/// 1, in characters), "byte_offset" and "byte_length" in the file's bytes, "utf16_offset" and "utf16_length" in code
/// units. Places are those of the source, in a page those among its tags; the byte-order mark belongs to the bytes
/// only.
std::string printJson(const std::string& path, const Document& document, const TextLines& lines,
                      const DocumentHits& hits, const SearchCounts& counts, size_t before, size_t after);

/// The last object. `withoutQuestionMarks` tells that everything was found by the query without the question marks at
/// the ends of its words.
std::string printJsonSummary(const SearchCounts& counts, bool withoutQuestionMarks);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_SEARCH_JSON_PRINTER_H
