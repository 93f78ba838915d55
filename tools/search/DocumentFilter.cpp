#include "tools/search/DocumentFilter.h"

#include <utility>

namespace velan::tool {

DocumentFilter::DocumentFilter(const SearchOptions& options, const PreparedQuery& query) : _options(options) {
  if (options.scope.invert) return;  // what does not match is wanted, too
  auto literals = QueryFilter::filterWithQuery(query);
  if (!literals || !literals->isSelective()) return;
  _literals = std::move(literals);
  _spelling.emplace(*_literals, false);
  _pages.emplace(*_literals, options.query.verbatim);
}

bool DocumentFilter::refuses(std::string_view bytes, const FileOrigin& file) const {
  if (!_literals) return false;
  const StringEncoding encoding = likelyEncoding(bytes, _options.decoding);
  if (_literals->canMatch(bytes, encoding)) return false;
  const bool isPage = textDiffersFromSource(file.path, bytes, _options.decoding);
  if (isPage && _options.decoding.attributes) return false;
  if (encoding != StringEncoding::UTF8 && (isPage || !_options.query.verbatim)) return false;
  return !mayFindElsewhere(bytes, isPage) && isPlainText(bytes, file, _options.decoding) &&
         (!isPage || _options.decoding.encoding == StringEncoding::UTF8 || isPageInUTF8(bytes));
}

// Whether a literal that the bytes do not hold may be in the text.
bool DocumentFilter::mayFindElsewhere(std::string_view bytes, bool isPage) const {
  if (isPage) return _pages->mayFindIn(bytes);
  return !_options.query.verbatim && _spelling->mayFindIn(bytes);
}

}  // namespace velan::tool
