#include <algorithm>

#include "velan/query/evaluation/NearPlacesInternal.h"

namespace velan {

NearPlaces::NearPlaces(const SearchedText& text, const Relation& relation, LeafSearch& leaf, LeafSearch& partner,
                       Range range)
    : _places(leaf.placesIn(range)),
      _partners(partner.placesIn(range)),
      _reachesBack(reachesBack(relation)),
      _reachesOn(reachesOn(relation)),
      _distance(std::min(relation.distance, text.length())) {
  if (_places.empty() || _partners.empty()) return;
  _wordsOfPlaces = wordsInEach(text, leaf, _places);
  _wordsOfPartners = wordsInEach(text, partner, _partners);
  countWords(text);
}

std::vector<NearPlaces::Words> NearPlaces::wordsInEach(const SearchedText& text, const LeafSearch& search,
                                                       std::span<const Range> places) {
  std::vector<Words> words(places.size(), {0, 1});
  if (search.findsOneWord()) return words;
  for (size_t i = 0; i < places.size(); ++i) {
    words[i].beforeEnd = text.countWordStarts(places[i].location, endOf(places[i]), places[i].length);
  }
  return words;
}

void NearPlaces::countWords(const SearchedText& text) {
  int64_t mostWords = 0;
  for (const Words& words : _wordsOfPlaces) mostWords = std::max(mostWords, words.beforeEnd);
  for (const Words& words : _wordsOfPartners) mostWords = std::max(mostWords, words.beforeEnd);
  // Farther than this from each other, two places are too far even if one of them holds the most words.
  const int64_t most = _distance + mostWords;
  int64_t location = std::min(_places.front().location, _partners.front().location), before = 0;
  for (size_t place = 0, partner = 0; place < _places.size() || partner < _partners.size();) {
    const bool isPlace = partner == _partners.size() ||
                         (place < _places.size() && _places[place].location <= _partners[partner].location);
    const int64_t next = isPlace ? _places[place].location : _partners[partner].location;
    before += text.countWordStarts(location, next, most);
    location = next;
    Words& words = isPlace ? _wordsOfPlaces[place++] : _wordsOfPartners[partner++];
    words.before = before;
    words.beforeEnd += before;
  }
}

}  // namespace velan
