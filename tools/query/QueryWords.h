// The words of a query, whatever stands between them.
#ifndef VELAN_TOOLS_QUERY_QUERY_WORDS_H
#define VELAN_TOOLS_QUERY_QUERY_WORDS_H

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

 private:
  explicit QueryWords(const PreparedQuery& query);
  void add(std::u16string_view pattern);
  std::u16string folded(std::u16string_view word) const;

  const unichar* const _table;  // what the query ignores; null for nothing
  bool _mayBeAnything;
  std::unordered_set<std::u16string> _words;
  std::vector<std::u16string> _beginnings;  // of patterns
  MutableString _text;                      // the words as a query
  std::unique_ptr<const PreparedQuery> _query;
};

}  // namespace velan::tool

#endif  // VELAN_TOOLS_QUERY_QUERY_WORDS_H
