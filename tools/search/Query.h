// A query with the options that say how it is compared.
#ifndef VELAN_TOOLS_SEARCH_QUERY_H
#define VELAN_TOOLS_SEARCH_QUERY_H

#include <memory>
#include <optional>
#include <string>

#include "velan/query/QueryTerms.h"
#include "velan/query/words/FastWordEnumerator.h"

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

struct Query {
  std::unique_ptr<QueryTerms> terms;
  QueryComparison comparison;
  bool wildcard;

  /// The index of `text` that suits the comparison; null for an empty text.
  std::unique_ptr<FastWordEnumerator> index(const String& text) const;
};

/// Parses the query and sets what the library keeps per process: East Asian text is split into words, and how similar
/// fuzzy words must be. Nothing after a complaint about options that exclude each other.
std::optional<Query> makeQuery(const QueryOptions& options);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_SEARCH_QUERY_H
