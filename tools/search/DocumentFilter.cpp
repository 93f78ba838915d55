#include "tools/search/DocumentFilter.h"

#include <algorithm>
#include <utility>

#include "tools/documents/PlainText.h"
#include "velan/base/ASCII.h"

namespace velan::tool {

DocumentFilter::DocumentFilter(const SearchOptions& options, const PreparedQuery& query) : _options(options) {
  if (options.scope.invert) return;  // what does not match is wanted, too
  auto filter = QueryFilter::filterWithQuery(query);
  if (!filter || !filter->isSelective()) return;
  _filter = std::move(filter);
  _holdsJoinedLetters = mayHoldJoinedLetters();
}

bool DocumentFilter::refuses(std::string_view bytes, const std::string& path) const {
  if (!_filter) return false;
  const StringEncoding encoding = likelyEncoding(bytes, _options.decoding);
  return !_filter->canMatch(bytes, encoding) && isPlainText(bytes, path, _options.decoding) &&
         !mayBeReadOtherwise(bytes, encoding);
}

// See `WordReadings`.
bool DocumentFilter::mayBeReadOtherwise(std::string_view bytes, StringEncoding encoding) const {
  if (_options.query.verbatim) return false;
  if (encoding != StringEncoding::UTF8) return true;
  const Spelling spelling = spellingOfUTF8(bytes);
  return spelling.unusual || (spelling.joinedLetters && _holdsJoinedLetters) ||
         (spelling.lineEndHyphens && mayJoinLines(bytes));
}

// Whether a literal may go on over a hyphen, the line end behind it, and the indentation of the next line.
bool DocumentFilter::mayJoinLines(std::string_view utf8) const {
  constexpr std::string_view kHyphen = "\xE2\x80\x90";
  for (const char lineEnd : {'\n', '\r'}) {
    for (size_t at = 0; (at = utf8.find(lineEnd, at)) != std::string_view::npos; ++at) {
      const std::string_view line = utf8.substr(0, at);
      const size_t length = line.ends_with('-') ? 1 : line.ends_with(kHyphen) ? kHyphen.size() : 0;
      if (length == 0 || length == at) continue;
      const size_t next = utf8.find_first_not_of(" \t", at + (utf8.substr(at).starts_with("\r\n") ? 2 : 1));
      if (next != std::string_view::npos && _filter->mayJoin(utf8[at - length - 1], utf8[next])) return true;
    }
  }
  return false;
}

// Whether a literal may hold both of two letters that are written as one, or begin or end between them.
bool DocumentFilter::mayHoldJoinedLetters() const {
  constexpr char kLetters[][2] = {{'s', 's'}, {'a', 'e'}, {'o', 'e'}, {'i', 'j'}};
  const auto mayJoin = [this](char before, char after) {
    for (const char one : {before, toASCIIUpper(before)}) {
      for (const char two : {after, toASCIIUpper(after)}) {
        if (_filter->mayJoin(one, two)) return true;
      }
    }
    return false;
  };
  return std::any_of(std::begin(kLetters), std::end(kLetters), [&](const auto& pair) {
    return mayJoin(pair[0], pair[1]) || mayJoin(QueryFilter::kEdge, pair[1]) || mayJoin(pair[0], QueryFilter::kEdge);
  });
}

}  // namespace velan::tool
