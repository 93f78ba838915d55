// Words of a query that are divided by markup in the bytes of a page.
#ifndef VELAN_TOOLS_SEARCH_PAGE_FILTER_H
#define VELAN_TOOLS_SEARCH_PAGE_FILTER_H

#include <string_view>

#include "tools/search/SpellingFilter.h"
#include "velan/query/filter/ByteSearch.h"

namespace velan::tool {

/// Tells whether the text of a page, see `textOfMarkup`, may have a literal of a query that the page's bytes do not
/// hold, because tags, comments or other things without a text lie between its letters, or because some are written as
/// entities. May be used by several threads at once.
///
/// As in `SpellingFilter` only the first such place of a literal is looked for. From there tags are read as the tag
/// scanner reads them; that needs no knowledge of what comes before.
class PageFilter {
 public:
  /// Borrows the literals. If `verbatim` the text is not read otherwise than it is.
  PageFilter(const QueryFilter& literals, bool verbatim);

  /// False when no literal may be in the text of the page, UTF-8, save where its bytes hold it.
  bool mayFindIn(std::string_view page) const;

 private:
  class Reader;

  const QueryFilter& _literals;
  const bool _verbatim;
  const SpellingFilter _spelling;
  bool _holdsMarkup = false;  // literals with white space, of which one may stand for much, or with "<" or "&"
  PrintTable _prints;         // of what may divide a literal
};

/// Whether a page of well-formed UTF-8 of which neither a byte-order mark nor a name says anything is surely read as
/// such, or as if it were: that is by what it declares itself.
bool isPageInUTF8(std::string_view page);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_SEARCH_PAGE_FILTER_H
