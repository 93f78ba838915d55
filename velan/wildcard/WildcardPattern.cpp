#include "velan/wildcard/WildcardPattern.h"

#include <algorithm>
#include <cstdint>

#include "velan/base/ScratchBuffer.h"
#include "velan/base/String.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/UnitMappingInternal.h"

namespace velan {

extern "C" {
double MinWildcardFuzzyAnalogy = 0.75;
}

namespace {

// Reads a pattern and writes its normal form over it.
class Normalizer {
 public:
  Normalizer(unichar* start, unichar* end) : _start(start), _read(start), _end(end), _written(start) {}

  // False when the syntax is broken; what was written until then remains.
  bool run() {
    for (unichar previous = 0; _read < _end;) {
      const unichar c = *_read++;
      if (c == ']') return false;
      if (c == '[') {
        if (!readSet()) return false;
        previous = ']';  // also after a set that was dropped: stars on both sides of it stay two
        continue;
      }
      if (c == '*' && previous == '*') continue;
      (c == '*' ? _stars : c == '?' ? _anyOnes : _literals) += 1;
      *_written++ = previous = c;
    }
    return true;
  }

  uint32_t type(uint64_t minCharacters) const {
    if (_literals == 0 || (_stars > 0 && _literals < minCharacters)) return WildcardTypeUnusable;
    const bool first = *_start == '*', last = _written[-1] == '*';
    if (_sets > 0) {
      if (_stars == 0) return WildcardTypeSetFixed;
      if (_stars > 1 || (!first && !last)) return WildcardTypeSetGeneral;
      return first ? WildcardTypeSetSuffix : WildcardTypeSetPrefix;
    }
    if (_stars == 0) return _anyOnes > 0 ? WildcardTypeAnyOne : WildcardTypeExact;
    if (_anyOnes > 0) return WildcardTypeGeneral;
    if (_stars == 2) return first && last ? WildcardTypeContains : WildcardTypeGeneral;
    if (_stars > 2 || (!first && !last)) return WildcardTypeGeneral;
    return first ? WildcardTypeSuffix : WildcardTypePrefix;
  }

  int64_t length() const { return _written - _start; }

 private:
  // After `[`: copies the set up to its `]`, or drops it when it has no member. False when it is malformed.
  bool readSet() {
    unichar* const set = _written;
    *_written++ = '[';
    for (bool hasMember = false; _read < _end;) {
      const unichar c = *_read++;
      if (c == '[') return false;
      if (c == '|') continue;
      *_written++ = c;
      if (c == ']') {
        if (hasMember) {
          ++_literals;
          ++_sets;
        } else {
          _written = set;
        }
        return true;
      }
      if (c != '^' && c != '-') hasMember = true;
    }
    return false;
  }

  unichar* const _start;
  const unichar* _read;
  const unichar* const _end;
  unichar* _written;  // never overtakes _read
  uint64_t _literals = 0, _anyOnes = 0, _stars = 0, _sets = 0;
};

Range fixedPart(uint32_t type, int64_t length) {
  switch (type) {
    case WildcardTypePrefix:
    case WildcardTypeSetPrefix:
      return {0, length - 1};
    case WildcardTypeSuffix:
    case WildcardTypeSetSuffix:
      return {1, length - 1};
    case WildcardTypeContains:
      return {1, length - 2};
    default:
      return {0, length};
  }
}

// Counts what matches one unit each; `hasStar` tells whether there is also a `*`.
int64_t countElements(const unichar* p, const unichar* end, bool& hasStar) {
  int64_t count = 0;
  for (; p < end; ++p) {
    if (*p == '*') {
      hasStar = true;
      continue;
    }
    ++count;
    if (*p == '[' && (p = std::find(p, end, u']')) == end) break;
  }
  return count;
}

}  // namespace

uint32_t optimizeWildcard(unichar* start, unichar* end, Range* range, uint64_t minCharacters) {
  uint32_t type = WildcardTypeUnusable;
  int64_t length = 0;
  if (start && start < end) {
    Normalizer normalizer(start, end);
    if (normalizer.run()) type = normalizer.type(minCharacters);
    length = normalizer.length();
  }
  if (range) *range = fixedPart(type, length);
  return type;
}

int64_t normalWildcardLen(uint32_t type, Range range) {
  const bool endsWithStar = type == WildcardTypePrefix || type == WildcardTypeContains || type == WildcardTypeSetPrefix;
  return endOf(range) + (endsWithStar ? 1 : 0);
}

int64_t minWildcardLen(const unichar* start, const unichar* end) {
  bool hasStar = false;
  return countElements(start, end, hasStar);
}

int64_t maxWildcardLen(const unichar* start, const unichar* end) {
  bool hasStar = false;
  const int64_t count = countElements(start, end, hasStar);
  return hasStar ? INT64_MAX : count;
}

const unichar* unicharTableForWildcardComparison(uint32_t flags) {
  switch (flags & 3) {
    case 1:
      return initUpperCharsTable();
    case 2:
      return initUmlautsCharsTable();
    case 3:
      return initUpperUmlautsCharsTable();
    default:
      return nullptr;
  }
}

void prepareWildcardUsingUnicharTable(unichar* start, unichar* end, const unichar* table) {
  if (table && start < end) mapUnits(start, static_cast<size_t>(end - start), table, start);
}

double minWildcardFuzzyAnalogy() {
  double analogy;
  __atomic_load(&MinWildcardFuzzyAnalogy, &analogy, __ATOMIC_RELAXED);
  return analogy;
}

void setMinWildcardFuzzyAnalogy(double analogy) {
  __atomic_store(&MinWildcardFuzzyAnalogy, &analogy, __ATOMIC_RELAXED);
}

uint32_t wildcardType(const String& pattern) {
  const std::u16string_view units = pattern.view();
  if (units.empty()) return WildcardTypeExact;
  ScratchBuffer<unichar, 256> copy(units.size());
  if (!copy) return WildcardTypeExact;
  std::copy(units.begin(), units.end(), copy.data());
  return optimizeWildcard(copy.data(), copy.data() + units.size(), nullptr, 1);
}

String normalWildcard(const String& pattern) {
  if (pattern.isEmpty()) return String();
  return String::filled(pattern.length(), [&pattern](unichar* units) {
    std::copy(pattern.begin(), pattern.end(), units);
    Range range{};
    const uint32_t type = optimizeWildcard(units, units + pattern.length(), &range, 1);
    return type == WildcardTypeUnusable ? -1 : normalWildcardLen(type, range);
  });
}

int64_t wildcardLength(const String& pattern) { return minWildcardLen(pattern.begin(), pattern.end()); }

}  // namespace velan
