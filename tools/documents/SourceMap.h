// Where a text that was made of another one has its units from.
#ifndef VELAN_TOOLS_DOCUMENTS_SOURCE_MAP_H
#define VELAN_TOOLS_DOCUMENTS_SOURCE_MAP_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "velan/base/Range.h"

namespace velan::tool {

/// The way from positions in a text to those in its source, in units of either. Both run in the same direction; parts
/// of the source may be missing from the text, and parts of the text may stand for parts of another length. Without any
/// part the text is its source.
class SourceMap {
 public:
  /// The next `length` units, at least one, stand for `source`, which begins at or after `sourceEnd()`. Where the
  /// lengths agree the units do so one by one, otherwise together.
  void add(Range source, int64_t length);
  /// Keeps the first `length` units.
  void truncate(int64_t length);
  /// Where in the source the last unit ends.
  int64_t sourceEnd() const { return _runs.empty() ? 0 : endOf(_runs.back().source); }

  /// What a range of the text stands for: from the beginning of its first unit to the end of its last one.
  Range sourceOf(Range range) const;
  /// How many units of the text stand for what begins before the position `source`.
  int64_t positionOf(int64_t source) const;

 private:
  struct Run {
    int64_t start;  // in the text
    Range source;
  };

  // The number of the run with this unit, which must exist.
  size_t runAt(int64_t unit) const;
  bool isCopied(size_t run) const;

  std::vector<Run> _runs;  // by position, none empty
  int64_t _length = 0;     // of the text
};

}  // namespace velan::tool

#endif  // VELAN_TOOLS_DOCUMENTS_SOURCE_MAP_H
