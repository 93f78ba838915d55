// The query of a command line.
#ifndef VELAN_TOOLS_SEARCH_QUERY_H
#define VELAN_TOOLS_SEARCH_QUERY_H

#include <memory>
#include <string>

#include "velan/query/PreparedQuery.h"

namespace CLI {
class App;
}

namespace velan::tool {

/// As given on the command line.
struct QueryOptions {
  std::string query;
  bool caseSensitive = false;
  bool ignoreDiacritics = false;
  bool fuzzy = false;
  double similarity = 0.75;  // the least that fuzzy accepts
  int64_t distance = QueryTerms::kDefaultDistance;
  bool noWildcards = false;
};

/// Declares the query and what it is told.
void addQueryOptions(CLI::App& command, QueryOptions& options);

/// Parses the query and sets what the library keeps per process: East Asian text is split into words, and how similar
/// fuzzy words must be. Null after a complaint about options that exclude each other.
std::unique_ptr<const PreparedQuery> makeQuery(const QueryOptions& options);

/// The index of a text; null for an empty one. Throws `std::bad_alloc`.
std::unique_ptr<FastWordEnumerator> indexOf(const String& text, const PreparedQuery& query);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_SEARCH_QUERY_H
