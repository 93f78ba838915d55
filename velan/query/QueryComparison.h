// How the words of a query are compared with the words of a text.
#ifndef VELAN_QUERY_QUERY_COMPARISON_H
#define VELAN_QUERY_QUERY_COMPARISON_H

#include <cstdint>

namespace velan {

/// Flags to combine with `|`. A scoped type, because `comparison:` and `caseSensitive:` mean opposite things by 1.
enum class QueryComparison : uint32_t {
  Exact = 0,
  IgnoreCase = 1,
  IgnoreDiacritics = 2,
  /// A word without wildcards also matches words at least `minWildcardFuzzyAnalogy` similar to it.
  Fuzzy = 4,
};

constexpr QueryComparison operator|(QueryComparison a, QueryComparison b) {
  return static_cast<QueryComparison>(static_cast<uint32_t>(a) | static_cast<uint32_t>(b));
}
constexpr bool contains(QueryComparison comparison, QueryComparison flag) {
  return (static_cast<uint32_t>(comparison) & static_cast<uint32_t>(flag)) != 0;
}

}  // namespace velan

#endif  // VELAN_QUERY_QUERY_COMPARISON_H
