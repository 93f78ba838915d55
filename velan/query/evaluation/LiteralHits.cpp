#include <algorithm>

#include "velan/query/evaluation/LiteralHitsInternal.h"

namespace velan {

// The next places, from `_base` on, or none when there are none any more.
size_t LiteralHits::gather(int64_t from, unichar* found) {
  _location = std::max(_location, from);
  if (const auto known = _text.hitsOf(_literal, _location)) return take(*known, found);
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

// Of places that are known already.
size_t LiteralHits::take(std::span<const LiteralSet::Hit> known, unichar* found) {
  size_t count = 0;
  const size_t most = areShort() ? std::min(known.size(), kMost) : std::min<size_t>(known.size(), 1);
  if (most > 0) _base = known.front().position;
  while (count < most && known[count].position - _base <= 0xFFFF && known[count].position + _literal.length() <= _end) {
    found[count] = static_cast<unichar>(known[count].position - _base);
    ++count;
  }
  _location = count > 0 ? known[count - 1].position + int64_t{1} : _end;
  return count;
}

}  // namespace velan
