// Which places of two leaves are near enough to each other.
#ifndef VELAN_QUERY_EVALUATION_NEAR_PLACES_INTERNAL_H
#define VELAN_QUERY_EVALUATION_NEAR_PLACES_INTERNAL_H

#include <span>
#include <vector>

#include "velan/query/evaluation/QueryEvaluatorInternal.h"

namespace velan {

/// The places of a leaf and those of its partner, by the number of words before them. The words are counted from place
/// to place, and only as far as a relation reaches: behind a long gap all numbers are greater by no more than tells
/// that nothing is near. All places begin and end where words do, and separators alone tell where that is.
class NearPlaces {
 public:
  /// Borrows the places of both in `range`.
  NearPlaces(const SearchedText& text, const Relation& relation, LeafSearch& leaf, LeafSearch& partner, Range range);

  /// Calls `visit(place, first, past)` for each place whose span holds partners, with the numbers of these; neither
  /// `first` nor `past` shrinks.
  template <typename Visit>
  void forEach(Visit visit) const {
    size_t first = 0, past = 0;
    for (size_t place = 0; place < _places.size(); ++place) {
      while (first < _partners.size() && beginsBefore(first, place)) ++first;
      while (past < _partners.size() && endsWithin(past, place)) ++past;
      if (first < past) visit(place, first, past);
    }
  }

 private:
  // Of each place, how many words begin before it, and before its end.
  struct Words {
    int64_t before, beforeEnd;
  };

  static std::vector<Words> wordsInEach(const SearchedText& text, const LeafSearch& search,
                                        std::span<const Range> places);
  void countWords(const SearchedText& text);
  // Whether a partner begins before the span of a place, and whether it ends in or before it.
  bool beginsBefore(size_t partner, size_t place) const {
    return _partners[partner].location < _places[place].location &&
           (!_reachesBack || _wordsOfPlaces[place].before - _wordsOfPartners[partner].before > _distance);
  }
  bool endsWithin(size_t partner, size_t place) const {
    return endOf(_partners[partner]) <= endOf(_places[place]) ||
           (_reachesOn && _wordsOfPartners[partner].beforeEnd - _wordsOfPlaces[place].beforeEnd <= _distance);
  }

  const std::span<const Range> _places, _partners;
  const bool _reachesBack, _reachesOn;
  const int64_t _distance;
  std::vector<Words> _wordsOfPlaces, _wordsOfPartners;
};

}  // namespace velan

#endif  // VELAN_QUERY_EVALUATION_NEAR_PLACES_INTERNAL_H
