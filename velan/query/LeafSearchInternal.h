// The places of one leaf of a query in a text, each found once.
#ifndef VELAN_QUERY_LEAF_SEARCH_INTERNAL_H
#define VELAN_QUERY_LEAF_SEARCH_INTERNAL_H

#include <string>
#include <vector>

#include "velan/query/QueryTerms.h"
#include "velan/query/WordPatternInternal.h"

namespace velan {

/// What the leaves of a query are.
enum class LeafKind : uint8_t {
  Plain,     // words and phrases, found unit by unit
  Tolerant,  // the same, but any separators may lie between the words of a phrase
  Wildcard   // wildcard patterns
};

/// Searches only as far as it is asked to and remembers what it found, in the order of the text. Both the beginnings
/// and the ends of the places grow, so the first place at or after a location is the only one to look at when one that
/// lies wholly in a range is wanted.
class LeafSearch {
 public:
  LeafSearch(const SearchedText& text, const QueryTerms& leaf, LeafKind kind, bool fuzzy);

  /// Whether the leaf is a lone `*`: found as the whole of any range that is not empty, and nowhere else.
  bool isWholeRange() const { return _pattern.isWholeRange(); }
  /// The first place that lies wholly in `range`; absent if there is none.
  Range firstIn(Range range);
  /// The place with this number, or null when there are not so many.
  const Range* at(size_t number);
  /// The number of the first place that begins at or after `location`.
  size_t numberFrom(int64_t location);

 private:
  const SearchedText& _text;
  const bool _literal;  // found by its units rather than by a pattern
  const bool _whole;
  std::u16string _word;  // of a literal leaf, mapped like the text
  WordPattern _pattern;  // of any other
  std::vector<Range> _found;
  int64_t _frontier = 0;  // everything that begins before is found
};

}  // namespace velan

#endif  // VELAN_QUERY_LEAF_SEARCH_INTERNAL_H
