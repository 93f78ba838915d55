#include "tools/documents/SourceMap.h"

#include <algorithm>

namespace velan::tool {

void SourceMap::add(Range source, int64_t length) {
  const bool continues =
      !_runs.empty() && source.length == length && source.location == sourceEnd() && isCopied(_runs.size() - 1);
  if (continues) {
    _runs.back().source.length += length;
  } else {
    _runs.push_back({_length, source});
  }
  _length += length;
}

void SourceMap::truncate(int64_t length) {
  while (!_runs.empty() && _runs.back().start >= length) {
    _length = _runs.back().start;
    _runs.pop_back();
  }
  if (_length <= length) return;
  if (isCopied(_runs.size() - 1)) _runs.back().source.length -= _length - length;
  _length = length;
}

Range SourceMap::sourceOf(Range range) const {
  if (_runs.empty()) return range;
  if (range.location >= _length) return {sourceEnd(), 0};
  const size_t first = runAt(range.location);
  const Run& begin = _runs[first];
  const int64_t start = begin.source.location + (isCopied(first) ? range.location - begin.start : 0);
  if (range.length <= 0) return {start, 0};
  const int64_t last = std::min(endOf(range), _length) - 1;
  const size_t run = runAt(last);
  const Run& end = _runs[run];
  return {start, (isCopied(run) ? end.source.location + last - end.start + 1 : endOf(end.source)) - start};
}

int64_t SourceMap::positionOf(int64_t source) const {
  if (_runs.empty()) return source;
  const auto after = std::partition_point(_runs.begin(), _runs.end(),
                                          [source](const Run& run) { return run.source.location < source; });
  if (after == _runs.begin()) return 0;
  const auto run = static_cast<size_t>(after - _runs.begin()) - 1;
  const int64_t end = run + 1 < _runs.size() ? _runs[run + 1].start : _length;
  return isCopied(run) ? std::min(_runs[run].start + source - _runs[run].source.location, end) : end;
}

size_t SourceMap::runAt(int64_t unit) const {
  const auto after =
      std::upper_bound(_runs.begin(), _runs.end(), unit, [](int64_t at, const Run& run) { return at < run.start; });
  return static_cast<size_t>(after - _runs.begin()) - 1;
}

bool SourceMap::isCopied(size_t run) const {
  const int64_t end = run + 1 < _runs.size() ? _runs[run + 1].start : _length;
  return _runs[run].source.length == end - _runs[run].start;
}

}  // namespace velan::tool
