#include <algorithm>

#include "velan/query/evaluation/LiteralHitsInternal.h"

namespace velan {

// Of places that are known already.
template <typename PositionOf>
size_t LiteralHits::take(size_t known, PositionOf positionOf, unichar* found) {
  size_t count = 0;
  const size_t most = areShort() ? std::min(known, kMost) : std::min<size_t>(known, 1);
  if (most > 0) _base = positionOf(0);
  while (count < most && positionOf(count) - _base <= 0xFFFF && positionOf(count) + _literal.length() <= _end) {
    found[count] = static_cast<unichar>(positionOf(count) - _base);
    ++count;
  }
  _location = count > 0 ? positionOf(count - 1) + int64_t{1} : _end;
  return count;
}

size_t LiteralHits::gatherOfFew(unichar* found) {
  std::span<const uint32_t> places;
  while ((places = _text.placesOf(_literal, _number)).size() > _number && places[_number] < _location) ++_number;
  if (_number == places.size()) return 0;
  const size_t first = _number;
  const size_t count = take(
      places.size() - first, [&](size_t i) { return places[first + i]; }, found);
  _number += count;
  return count;
}

// The next places, from `_base` on, or none when there are none any more.
size_t LiteralHits::gather(int64_t from, unichar* found) {
  _location = std::max(_location, from);
  if (_text.isOneOfFew(_literal)) {
    if (const size_t count = gatherOfFew(found)) return count;
    _location = std::max(_location, _text.knownUpTo(_literal));
  }
  if (const auto known = _text.hitsOf(_literal, _location)) {
    return take(
        known->size(), [&](size_t i) { return (*known)[i].position; }, found);
  }
  if (!areShort()) {
    _base = _location < _end ? _text.find(_literal, _location, _end) : -1;
    _location = _base < 0 ? _end : _base + 1;
    found[0] = 0;
    return _base < 0 ? 0 : 1;
  }
  for (int64_t positions; (positions = _end - _location - _literal.length() + 1) > 0;) {
    const auto stretch = static_cast<size_t>(std::min(positions, _stretch));
    const NeedlePositions gathered = _literal.gather(_text.units() + _location, stretch, found, kMost);
    _base = _location;
    _location += static_cast<int64_t>(gathered.end);
    _stretch = std::min(2 * _stretch, kLongestStretch);
    if (gathered.count > 0) return gathered.count;
  }
  return 0;
}

}  // namespace velan
