// The words of a query, whatever stands between them.
#ifndef VELAN_TOOLS_QUERY_QUERY_WORDS_H
#define VELAN_TOOLS_QUERY_QUERY_WORDS_H

#include <bitset>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "velan/query/PreparedQuery.h"

namespace velan::tool {

/// May be used by several threads at once.
class QueryWords {
 public:
  /// Null for a query that looks for no certain word. Throws `std::bad_alloc`.
  static std::unique_ptr<const QueryWords> wordsOf(const PreparedQuery& query);

  /// Finds any of the words.
  const PreparedQuery& anyOfThem() const { return *_query; }
  /// A quick test: false only for what is none of the words and holds none.
  bool mayBe(std::u16string_view word) const;
  /// Whether one of the words may have a character that ends in the byte `before` in UTF-8, and the next one begins
  /// with `after`; always true for what is no ASCII.
  bool mayJoin(char before, char after) const;

 private:
  explicit QueryWords(const PreparedQuery& query);
  void add(std::u16string_view pattern);
  std::u16string folded(std::u16string_view word) const;

  const unichar* const _table;  // what the query ignores; null for nothing
  bool _mayBeAnything;
  std::unordered_set<std::u16string> _words;
  std::vector<std::u16string> _beginnings;  // of patterns
  std::bitset<1 << 14> _joins;              // by two units of ASCII in a row
  MutableString _text;                      // the words as a query
  std::unique_ptr<const PreparedQuery> _query;
};

}  // namespace velan::tool

#endif  // VELAN_TOOLS_QUERY_QUERY_WORDS_H
