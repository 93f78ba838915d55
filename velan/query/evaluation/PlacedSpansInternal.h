// The places of the terms that proximity operators stand before, and what lies around them.
#ifndef VELAN_QUERY_EVALUATION_PLACED_SPANS_INTERNAL_H
#define VELAN_QUERY_EVALUATION_PLACED_SPANS_INTERNAL_H

#include <vector>

#include "velan/query/evaluation/QueryEvaluatorInternal.h"
#include "velan/query/evaluation/RangeColumnsInternal.h"

namespace velan {

/// Spans that were clipped to ranges. On the lists of the ranges those whose ends are cut, on one more list others:
/// that has the ends of all places' spans, by the numbers of the places.
struct ClippedSpans {
  RangeColumns whole;  // those with their own beginnings
  RangeColumns cut;    // those that begin where the range does
};

/// The places of a leaf with a relation, from left to right, each with its span in the whole text. They are numbered
/// from the first one that is not skipped.
class PlacedSpans {
 public:
  struct Placed {
    Range place;
    Range span;
  };

  explicit PlacedSpans(size_t skipped = 0) : _skipped(skipped) {}

  /// Finds those that end at or before `last`.
  void find(const SearchedText& text, LeafSearch& search, const Relation& relation, int64_t last);
  size_t size() const { return _placed.size(); }
  const Placed& operator[](size_t number) const { return _placed[number]; }

  /// The number of the first place that begins at or after `start`, and how many end at or before `end`.
  size_t firstPlaceFrom(int64_t start) const;
  size_t countEndingBy(int64_t end) const;
  /// The number of the first span that begins at or after `start`, and of the first that ends at or after `end`.
  size_t firstSpanFrom(int64_t start) const;
  size_t firstSpanReaching(int64_t end) const;

  /// The spans of the places in each of the ranges, clipped to it.
  ClippedSpans spans(const RangeColumns& ranges) const;
  /// The numbers of the places whose spans, clipped to any of the ranges, are among `chosen` of these spans.
  std::vector<size_t> placesOf(const ClippedSpans& chosen) const;
  /// The pieces of each of the ranges outside the spans of the places in it.
  RangeColumns pieces(const RangeColumns& ranges) const;

 private:
  // The first place behind `number` that ends behind the span before it.
  size_t firstPlaceApartFrom(size_t number) const;

  const size_t _skipped;
  std::vector<Placed> _placed;
  std::vector<size_t> _apart;  // the places that end behind the span of the place before
};

}  // namespace velan

#endif  // VELAN_QUERY_EVALUATION_PLACED_SPANS_INTERNAL_H
