// Which files a search need not decode.
#ifndef VELAN_TOOLS_SEARCH_DOCUMENT_FILTER_H
#define VELAN_TOOLS_SEARCH_DOCUMENT_FILTER_H

#include <memory>
#include <string>
#include <string_view>

#include "tools/search/SearchOptions.h"
#include "velan/query/filter/QueryFilter.h"

namespace velan::tool {

/// Says of files, by their bytes, that a search finds nothing in them. May be used by several threads at once.
class DocumentFilter {
 public:
  /// Borrows the options.
  DocumentFilter(const SearchOptions& options, const PreparedQuery& query);

  /// Whether the query surely matches nowhere in the text of a file with these bytes. False also for what is no text,
  /// and where only the text can tell, as in pages.
  bool refuses(std::string_view bytes, const std::string& path) const;

 private:
  bool mayBeReadOtherwise(std::string_view bytes, StringEncoding encoding) const;
  bool mayJoinLines(std::string_view utf8) const;
  bool mayHoldJoinedLetters() const;

  const SearchOptions& _options;
  std::unique_ptr<const QueryFilter> _filter;  // null when it can refuse nothing
  bool _holdsJoinedLetters = false;            // words may be found in what letters such as ß stand for
};

}  // namespace velan::tool

#endif  // VELAN_TOOLS_SEARCH_DOCUMENT_FILTER_H
