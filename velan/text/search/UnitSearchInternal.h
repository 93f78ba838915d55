// The search behind the containment functions, for other folders that search units.
#ifndef VELAN_TEXT_SEARCH_UNIT_SEARCH_INTERNAL_H
#define VELAN_TEXT_SEARCH_UNIT_SEARCH_INTERNAL_H

#include <algorithm>

#include "velan/text/kernels/UnitKernelsInternal.h"
#include "velan/text/search/TwoWaySearchInternal.h"

namespace velan {

/// Chooses which units of the head are looked for: rare ones. The caller has set `units`, `length` and `table`.
void chooseProbes(NeedleHead& head);

/// The units of a needle, through `table` if there is one.
struct NeedleUnits {
  const unichar* units;
  const unichar* table = nullptr;

  unichar operator()(size_t i) const { return table ? table[units[i]] : units[i]; }
};

/// A needle made ready to be searched many times. It is borrowed, and `needle(i)` gives its units. The search takes
/// time linear in both lengths, whatever the units.
template <typename Needle>
class UnitSearch {
 public:
  /// The units of text go through `table` before they are compared, if there is one; those of the needle do not.
  UnitSearch(Needle needle, size_t length, const unichar* table) : _needle(needle), _length(length) {
    if (length == 0) return;
    _head.length = std::min(length, NeedleHead::kMost);
    _head.table = table;
    for (size_t i = 0; i < _head.length; ++i) _head.units[i] = needle(i);
    chooseProbes(_head);
  }

  /// A needle of which only the probes of `head` are known, to be gathered.
  explicit UnitSearch(const NeedleHead& head) : _needle(), _length(head.length), _head(head) {}

  /// The first position in `text`, or `length` if there is none; an empty needle is never found.
  size_t find(const unichar* text, size_t length, const UnitKernels& kernels = unitKernels()) const {
    if (_length == 0 || _length > length) return length;
    const size_t positions = length - _length + 1;
    for (size_t from = 0, compared = 0;; ++from) {
      const NeedlePosition head = kernels.findHead(text + from, positions - from, _head);
      from += head.position;
      if (from == positions) return length;
      bool isTooSlow = head.gaveUp;
      if (!isTooSlow) {
        const size_t same = sameFrom(text + from, _head.length);
        if (same == _length) return from;
        isTooSlow = (compared += same) / 4 > from + 1024;
      }
      if (isTooSlow) {
        return from + findTwoWay([this, rest = text + from](size_t i) { return mapped(rest[i]); }, length - from,
                                 _needle, _length);
      }
    }
  }

  /// How often it lies in `text`, each time looked for behind the time before.
  size_t count(const unichar* text, size_t length, const UnitKernels& kernels = unitKernels()) const {
    if (_length == 0 || _length > length) return 0;
    size_t count = 0, from = 0;
    if (_length == _head.length) {
      const NeedleCount counted = kernels.countHead(text, length - _length + 1, _head);
      count = counted.count;
      if (!counted.end.gaveUp) return count;
      from = counted.end.position;
    }
    while ((from += find(text + from, length - from, kernels)) < length) {
      from += _length;
      ++count;
    }
    return count;
  }

  /// `UnitKernels::gatherHead` of a needle that is not empty and has at most `NeedleHead::kMost` units.
  NeedlePositions gather(const unichar* text, size_t positions, unichar* found, size_t most) const {
    return unitKernels().gatherHead(text, positions, _head, found, most);
  }

  const Needle& needle() const { return _needle; }
  const NeedleHead& head() const { return _head; }

 private:
  unichar mapped(unichar c) const { return _head.table ? _head.table[c] : c; }

  size_t sameFrom(const unichar* text, size_t i) const {
    while (i < _length && mapped(text[i]) == _needle(i)) ++i;
    return i;
  }

  Needle _needle;
  size_t _length;
  NeedleHead _head;
};

/// The first position of `needle` in `haystack`, or `length` if there is none, as for null pointers.
size_t findUnits(const unichar* haystack, size_t length, const unichar* needle, size_t needleLength);

/// The same in `table[unit]` of the haystack; the needle has gone through the table already.
size_t findMappedUnits(const unichar* haystack, size_t length, const unichar* needle, size_t needleLength,
                       const unichar* table);

}  // namespace velan

#endif  // VELAN_TEXT_SEARCH_UNIT_SEARCH_INTERNAL_H
