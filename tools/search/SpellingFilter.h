// Words of a query that are spelled otherwise in the bytes of a text.
#ifndef VELAN_TOOLS_SEARCH_SPELLING_FILTER_H
#define VELAN_TOOLS_SEARCH_SPELLING_FILTER_H

#include <bitset>
#include <string_view>

#include "velan/query/filter/QueryFilter.h"

namespace velan::tool {

/// Tells whether a text may have a literal of a query that its bytes do not hold, because it is not read as it is
/// written: see `plainText` and `WordReadings`. Where literals go over several such places, it is enough to recognise
/// the first one: what stands directly before that is as it is written. May be used by several threads at once.
class SpellingFilter {
 public:
  /// Borrows the literals. In pages tags and entities lie between letters, too, and what ends a line is not told here.
  SpellingFilter(const QueryFilter& literals, bool inPages);

  /// False when no literal may be in the UTF-8 text, save where its bytes hold it.
  bool mayFindIn(std::string_view text) const;

  /// Whether some literal may have the character that ends in the byte `before` and then what begins at `next`, which
  /// perhaps is not what is read.
  bool mayGoOn(char before, std::string_view text, size_t next) const;
  /// Whether a literal may begin before `at`, as it is written there, and go on.
  bool mayLeadTo(std::string_view text, size_t at) const;
  /// Whether a character may end in this byte that is not the last one of a literal.
  bool mayEndInside(char before) const { return _insideEnds[static_cast<uint8_t>(before)]; }

 private:
  bool mayHoldReading(std::string_view reading, std::string_view text, size_t start, size_t next) const;
  bool mayFindAt(std::string_view text, size_t at) const;
  bool isReadOtherwise(std::string_view text, size_t at) const;

  const QueryFilter& _literals;
  const bool _inPages;
  std::bitset<256> _insideEnds;
  bool _holdsComposed = false;  // letters that can be written in parts, or such parts
};

}  // namespace velan::tool

#endif  // VELAN_TOOLS_SEARCH_SPELLING_FILTER_H
