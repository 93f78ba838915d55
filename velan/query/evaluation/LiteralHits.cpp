#include <algorithm>

#include "velan/query/evaluation/LiteralHitsInternal.h"

namespace velan {

// The next places, from `_base` on, or none when there are none any more.
size_t LiteralHits::gather(int64_t from, unichar* found) {
  _location = std::max(_location, from);
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
