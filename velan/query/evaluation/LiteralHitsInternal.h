// Where units lie in a text, some at a time.
#ifndef VELAN_QUERY_EVALUATION_LITERAL_HITS_INTERNAL_H
#define VELAN_QUERY_EVALUATION_LITERAL_HITS_INTERNAL_H

#include "velan/base/GrowthInternal.h"
#include "velan/query/evaluation/SearchedTextInternal.h"

namespace velan {

/// Appends `range` by its parts: as a whole it would be stored in two steps and then loaded in one, which stalls.
inline void appendRange(std::vector<Range>& ranges, const Range& range) {
  Range& appended = ranges.emplace_back();
  appended.location = range.location;
  appended.length = range.length;
}

/// All places of a literal in a range, from left to right; they may overlap. Looks only as far as it is asked to: near
/// at first, then further and further.
class LiteralHits {
 public:
  /// Longer ones come one by one: in a text that repeats their units each costs so much that the caller had better skip
  /// what it can.
  static constexpr int64_t kShort = 32;

  /// Borrows both.
  LiteralHits(const Literal& literal, const SearchedText& text, Range range) : _literal(literal), _text(text) {
    begin(range);
  }
  /// Begins anew, in a text that `text` may have gone over to.
  void begin(Range range) {
    _location = range.location;
    _end = endOf(range);
    _stretch = kFirstStretch;
    _number = 0;
  }

  bool areShort() const { return _literal.length() <= kShort; }
  /// Calls `visit(location)` for the next places, most of which begin at or after `from`; it appends at most one range
  /// to `ranges`, where there is room for it. False when there are no more.
  template <typename Visit>
  bool visitNext(int64_t from, std::vector<Range>& ranges, Visit visit) {
    unichar found[kMost + UnitKernels::kGatherSlack];
    const size_t count = gather(from, found);
    if (count == 0) return false;
    makeRoom(ranges, count);
    for (size_t i = 0; i < count; ++i) visit(_base + found[i]);
    return _end - _location >= _literal.length();
  }

 private:
  static constexpr size_t kMost = 128;
  static constexpr int64_t kFirstStretch = 512, kLongestStretch = 1 << 15;

  size_t gather(int64_t from, unichar* found);
  size_t gatherOfFew(unichar* found);
  template <typename PositionOf>
  size_t take(size_t known, PositionOf positionOf, unichar* found);

  const Literal& _literal;
  const SearchedText& _text;
  int64_t _location;  // what begins before was looked at
  int64_t _end;
  int64_t _base = 0;  // of the positions gathered last
  int64_t _stretch;   // how far to look next
  size_t _number;     // of the next place that is found together with others
};

}  // namespace velan

#endif  // VELAN_QUERY_EVALUATION_LITERAL_HITS_INTERNAL_H
