// Which texts a query can match at all, asked of their bytes before anything is decoded or indexed.
//
//   const auto filter = QueryFilter::filterWithQuery(*query);
//   if (filter && !filter->canMatch(bytes, StringEncoding::UTF8)) return;  // nothing will be found
#ifndef VELAN_QUERY_FILTER_QUERY_FILTER_H
#define VELAN_QUERY_FILTER_QUERY_FILTER_H

#include <memory>
#include <string_view>
#include <vector>

#include "velan/base/StringEncoding.h"
#include "velan/query/PreparedQuery.h"

namespace velan {

class LiteralGroup;

/// Knows what `PreparedQuery::requiredLiterals` look like in bytes. Never changes, so any number of threads may use it
/// at once; it does not need the query any more.
class VELAN_EXPORT QueryFilter {
 public:
  /// Null when there is too little memory.
  static std::unique_ptr<const QueryFilter> filterWithQuery(const PreparedQuery& query);
  ~QueryFilter();
  QueryFilter(const QueryFilter&) = delete;
  QueryFilter& operator=(const QueryFilter&) = delete;

  /// Whether it can refuse any text.
  bool isSelective() const { return !_groups.empty(); }
  /// False when the query surely matches nowhere in the text of these bytes, strictly decoded or with U+FFFD for what
  /// is malformed. UTF-8 and the forms of UTF-16 are looked at; in UTF-16 without a byte order a byte-order mark at the
  /// beginning decides. True for all others.
  bool canMatch(std::string_view bytes, StringEncoding encoding) const;

  /// Stands for the place before or behind a literal.
  static constexpr char kEdge = '\0';
  /// For callers whose texts join what bytes lie between: whether some literal has a character that may end in the byte
  /// `before` in UTF-8 and the next one may begin with `after`.
  bool mayJoin(char before, char after) const {
    return _joins[static_cast<size_t>(static_cast<uint8_t>(before)) << 8 | static_cast<uint8_t>(after)];
  }
  /// Whether some literal may have the unit `c` in a text.
  bool mayHold(unichar c) const { return _units[c]; }

 private:
  explicit QueryFilter(const PreparedQuery& query);

  std::vector<LiteralGroup> _groups;
  std::vector<bool> _joins;  // by the two bytes
  std::vector<bool> _units;
};

}  // namespace velan

#endif  // VELAN_QUERY_FILTER_QUERY_FILTER_H
