// A text as the finders see it: its words, and its units as they are compared.
#ifndef VELAN_QUERY_EVALUATION_SEARCHED_TEXT_INTERNAL_H
#define VELAN_QUERY_EVALUATION_SEARCHED_TEXT_INTERNAL_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "velan/base/Range.h"
#include "velan/query/QueryComparison.h"
#include "velan/query/words/FastWordEnumerator.h"

namespace velan {

/// The comparison of a text that is indexed like this: one in upper case can only be searched ignoring case.
QueryComparison comparisonOn(const FastWordEnumerator& enumerator, QueryComparison comparison);

/// The index of `text` that suits the comparison best; null for an empty or absent text, or when memory runs out. Units
/// in upper case save mapping them later, but not on the way to units without diacritics.
std::unique_ptr<FastWordEnumerator> enumeratorForComparison(const String& text, QueryComparison comparison);

/// What both sides are mapped through; null for nothing.
const unichar* comparisonTable(QueryComparison comparison);
std::u16string mappedUnits(std::u16string_view units, const unichar* table);

/// Borrows the enumerator. Positions and lengths are in code units of its text.
class SearchedText {
 public:
  /// How the units are mapped for a comparison.
  enum class Mapping : uint8_t {
    OnTheFly,  // for one search: nothing is prepared
    InAdvance  // for many searches: one mapped copy, unless the enumerator's units are so already
  };

  SearchedText(const FastWordEnumerator& enumerator, QueryComparison comparison, Mapping mapping);

  int64_t length() const { return _length; }
  /// The units to compare with; still to be mapped through `table()` unless that is null.
  const unichar* units() const { return _units; }
  const unichar* table() const { return _table; }
  /// What patterns are to be mapped through; may be null.
  const unichar* patternTable() const { return _patternTable; }
  const FastWordEnumerator& words() const { return _words; }

  bool wordBeginsAt(int64_t index) const { return _words.isWordBeginningAtIndex(index); }
  bool wordEndsAt(int64_t index) const { return _words.isWordEndAtIndex(index); }
  /// The first word that begins at or after `location` and ends at or before `end`; absent if there is none.
  Range firstWordIn(int64_t location, int64_t end) const;
  /// Whether the units of `range` are those of `literal`.
  bool hasUnitsAt(int64_t location, std::u16string_view literal) const;
  /// The first place of `literal` (not empty) that begins at or after `location` and ends at or before `end`; -1 if
  /// there is none.
  int64_t find(std::u16string_view literal, int64_t location, int64_t end) const;

  /// The first place of `literal` in `range`; with `whole` it begins where a word does and ends where a word does.
  /// Absent for an empty literal.
  Range findWord(std::u16string_view literal, Range range, bool whole) const;

  /// The position `count` (at least 1) word starts before `location`, not before `start`.
  int64_t wordStartBefore(int64_t location, int64_t count, int64_t start) const;
  /// The position after `count` (at least 1) word ends from `location` on, not after `end`.
  int64_t wordEndAfter(int64_t location, int64_t count, int64_t end) const;

 private:
  void indexWords() const;

  const FastWordEnumerator& _words;
  const int64_t _length;
  const unichar* _patternTable;
  const unichar* _table;  // what the units still have to be mapped through
  const unichar* _units;
  std::u16string _mapped;
  // Where words start and end (one past the last unit), for counting words from any place; made when first needed.
  mutable std::vector<int64_t> _wordStarts;
  mutable std::vector<int64_t> _wordEnds;
};

}  // namespace velan

#endif  // VELAN_QUERY_EVALUATION_SEARCHED_TEXT_INTERNAL_H
