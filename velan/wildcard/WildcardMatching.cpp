#include "velan/wildcard/WildcardMatching.h"

#include <algorithm>

#include "velan/base/ScratchBuffer.h"
#include "velan/base/String.h"
#include "velan/text/ConversionTables.h"
#include "velan/wildcard/WildcardPattern.h"
#include "velan/wildcard/WildcardSetInternal.h"
#include "velan/wildcard/WildcardSimulationInternal.h"

namespace velan {
namespace {

template <bool kHasSets>
WildcardStep stepOver(const unichar* p, const unichar* end, unichar c) {
  if (kHasSets && *p == '[') return stepOverSet(p, end, c);
  return {*p == c || *p == '?' ? p + 1 : nullptr, false, 1};
}

template <bool kHasSets>
bool isLiteral(unichar unit) {
  return unit != '*' && unit != '?' && !(kHasSets && unit == '[');
}

// How many steps behind the same `*` are taken until the simulation pays.
ptrdiff_t mostSteps(const unichar* text, const unichar* textEnd, const unichar* pattern, const unichar* patternEnd) {
  constexpr ptrdiff_t kAlways = 512, kPatternUnits = 64;
  return kAlways + (textEnd - text) * ((patternEnd - pattern) / kPatternUnits + 1);
}

// Goes back only to the last `*`: as what stands between two of them always covers the same number of units, nothing is
// gained by letting an earlier one cover more. Where that does not hold, because a set behind a `*` ends elsewhere for
// another unit, the simulation takes over from that `*` on. It does so too where many attempts come far before they
// fail.
template <bool kHasSets, typename Map>
bool matches(const unichar* text, const unichar* textEnd, const unichar* pattern, const unichar* patternEnd, Map map,
             const unichar* table) {
  const unichar* t = text;
  const unichar* p = pattern;
  const unichar* star = nullptr;   // the last `*`
  const unichar* start = nullptr;  // where the text behind it began, at the last attempt
  const WildcardSyntax syntax = kHasSets ? WildcardSyntax::Unix : WildcardSyntax::Plain;
  ptrdiff_t stepsLeft = mostSteps(text, textEnd, pattern, patternEnd);
  for (;;) {
    if (p < patternEnd && *p == '*') {
      star = p++;
      start = t;
      if (p == patternEnd) return true;
    } else if (p < patternEnd && t < textEnd) {
      const WildcardStep step = stepOver<kHasSets>(p, patternEnd, map(*t));
      stepsLeft -= step.cost;
      if (stepsLeft < 0 && star) {
        if (const auto answer = simulateWildcard(start, textEnd, star, patternEnd, table, syntax)) return *answer;
        stepsLeft = PTRDIFF_MAX;
      }
      if (step.next) {
        if (kHasSets && step.dependsOnText && star) {
          return simulateWildcard(start, textEnd, star, patternEnd, table, syntax).value_or(false);
        }
        p = step.next;
        ++t;
        continue;
      }
      if (!star) return false;
      p = star + 1;
      ++start;
    } else if (t == textEnd) {
      return p == patternEnd;  // a later attempt would have still less text
    } else {
      if (!star) return false;
      p = star + 1;
      start = textEnd - (t - start);  // only the end of the text is left to try
    }
    if (isLiteral<kHasSets>(*p)) {
      while (start < textEnd && map(*start) != *p) ++start;
    }
    t = start;
  }
}

template <bool kHasSets>
bool matchesUsingTable(const unichar* text, const unichar* textEnd, const unichar* pattern, const unichar* patternEnd,
                       const unichar* table) {
  if (table) {
    return matches<kHasSets>(
        text, textEnd, pattern, patternEnd, [table](unichar c) { return table[c]; }, table);
  }
  return matches<kHasSets>(
      text, textEnd, pattern, patternEnd, [](unichar c) { return c; }, nullptr);
}

using Matcher = bool (*)(const unichar*, const unichar*, const unichar*, const unichar*, const unichar*);

bool isLike(const String& string, const String& pattern, const unichar* table, Matcher matcher) {
  const std::u16string_view units = pattern.view();
  if (string.isEmpty() || units.empty()) return false;
  if (units == u"*") return true;
  if (!table) return matcher(string.begin(), string.end(), pattern.begin(), pattern.end(), nullptr);
  ScratchBuffer<unichar, 256> prepared(units.size());
  if (!prepared) return false;
  unichar* const end = std::copy(units.begin(), units.end(), prepared.data());
  prepareWildcardUsingUnicharTable(prepared.data(), end, table);
  return matcher(string.begin(), string.end(), prepared.data(), end, table);
}

}  // namespace

bool stringMatchesWildcard(const unichar* text, const unichar* textEnd, const unichar* pattern,
                           const unichar* patternEnd) {
  return matchesUsingTable<false>(text, textEnd, pattern, patternEnd, nullptr);
}

bool stringMatchesWildcardUsingUnicharTable(const unichar* text, const unichar* textEnd, const unichar* pattern,
                                            const unichar* patternEnd, const unichar* table) {
  return matchesUsingTable<false>(text, textEnd, pattern, patternEnd, table);
}

bool stringMatchesUnixWildcard(const unichar* text, const unichar* textEnd, const unichar* pattern,
                               const unichar* patternEnd) {
  return matchesUsingTable<true>(text, textEnd, pattern, patternEnd, nullptr);
}

bool stringMatchesUnixWildcardUsingUnicharTable(const unichar* text, const unichar* textEnd, const unichar* pattern,
                                                const unichar* patternEnd, const unichar* table) {
  return matchesUsingTable<true>(text, textEnd, pattern, patternEnd, table);
}

bool isLikeWildcard(const String& string, const String& pattern) {
  return isLike(string, pattern, nullptr, stringMatchesWildcardUsingUnicharTable);
}

bool isCaseInsensitiveLikeWildcard(const String& string, const String& pattern) {
  return isLike(string, pattern, initUpperCharsTable(), stringMatchesWildcardUsingUnicharTable);
}

bool isLikeUnixWildcard(const String& string, const String& pattern) {
  return isLike(string, pattern, nullptr, stringMatchesUnixWildcardUsingUnicharTable);
}

bool isCaseInsensitiveLikeUnixWildcard(const String& string, const String& pattern) {
  return isLike(string, pattern, initUpperCharsTable(), stringMatchesUnixWildcardUsingUnicharTable);
}

}  // namespace velan
