// The query of a command line.
#ifndef VELAN_TOOLS_QUERY_QUERY_H
#define VELAN_TOOLS_QUERY_QUERY_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/query/QueryCorrections.h"
#include "velan/query/PreparedQuery.h"

namespace CLI {
class App;
}

namespace velan::tool {

/// As given on the command line.
struct QueryOptions {
  std::string query;
  bool isGiven = false;                   // `query`, which may be empty
  std::vector<std::string> alternatives;  // instead of it, when there are any
  bool isPhrase = false;                  // each of them as a whole
  bool caseSensitive = false;
  bool ignoreDiacritics = false;
  bool fuzzy = false;
  double similarity = 0.68;  // the least that fuzzy accepts
  std::string typedSimilarity;
  int64_t distance = QueryTerms::kDefaultDistance;
  bool noWildcards = false;
  bool verbatim = false;  // words are looked for as they are spelt
  KeywordCase keywords = KeywordCase::Auto;
};

/// The query of a command line as it is searched.
struct TypedQuery {
  CorrectedQuery reading;
  std::unique_ptr<const PreparedQuery> query;
  std::unique_ptr<const PreparedQuery> otherwise;  // to try when nothing is found; null if there is no other reading
};

/// Declares the query and what it is told.
void addQueryOptions(CLI::App& command, QueryOptions& options);

/// Parses the query and sets what the library keeps per process: East Asian text is split into words, and how similar
/// fuzzy words must be. Nothing after a complaint about options that exclude each other, or about a query of which
/// nothing can ever be found.
std::optional<TypedQuery> makeQuery(const QueryOptions& options);

/// The index of a text; null for an empty one. Throws `std::bad_alloc`.
std::unique_ptr<FastWordEnumerator> indexOf(const String& text, const PreparedQuery& query);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_QUERY_QUERY_H
