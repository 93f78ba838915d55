// Which files a search need not decode.
#ifndef VELAN_TOOLS_SEARCH_DOCUMENT_FILTER_H
#define VELAN_TOOLS_SEARCH_DOCUMENT_FILTER_H

#include <memory>
#include <optional>
#include <string_view>

#include "tools/search/PageFilter.h"
#include "tools/search/SearchOptions.h"
#include "tools/search/SpellingFilter.h"
#include "velan/query/filter/QueryFilter.h"

namespace velan::tool {

/// Says of files, by their bytes, that a search finds nothing in them. May be used by several threads at once.
class DocumentFilter {
 public:
  /// Borrows the options.
  DocumentFilter(const SearchOptions& options, const PreparedQuery& query);

  /// Whether the query surely matches nowhere in the text of a file with these bytes. False also for what is no text,
  /// and where only the text can tell.
  bool refuses(std::string_view bytes, const FileOrigin& file) const;

 private:
  bool mayFindElsewhere(std::string_view bytes, bool isPage) const;

  const SearchOptions& _options;
  std::unique_ptr<const QueryFilter> _literals;  // null when it can refuse nothing
  std::optional<SpellingFilter> _spelling;       // as the others where there are literals
  std::optional<PageFilter> _pages;
};

}  // namespace velan::tool

#endif  // VELAN_TOOLS_SEARCH_DOCUMENT_FILTER_H
