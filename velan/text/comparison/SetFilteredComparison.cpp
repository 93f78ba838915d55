#include "velan/text/comparison/SetFilteredComparison.h"

#include "velan/base/String.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/ConversionTables.h"

namespace velan {
namespace {

enum class Mode : bool { Equal, Prefix };

// The next member at or after `p`, or `end`.
const unichar* nextMember(const unichar* p, const unichar* end, const uint8_t* rep) {
  while (p < end && !isMemberOfCharacterSetRep(rep, *p)) ++p;
  return p;
}

// `table` is null for an exact comparison.
bool membersMatch(std::u16string_view a, std::u16string_view b, const uint8_t* rep, const unichar* table, Mode mode) {
  if (a.empty() && b.empty()) return true;
  if (!rep) return false;
  const unichar *p = a.data(), *endA = p + a.size();
  const unichar *q = b.data(), *endB = q + b.size();
  while ((p = nextMember(p, endA, rep)) < endA) {
    q = nextMember(q, endB, rep);
    if (q == endB) return mode == Mode::Prefix;
    if (*p != *q && (!table || table[*p] != table[*q])) return false;
    ++p;
    ++q;
  }
  return nextMember(q, endB, rep) == endB;
}

std::u16string_view viewOf(const unichar* units, size_t length) { return {units, units ? length : 0}; }

bool _equalStringsUsingCharacterSetRep(const String& a, const String& b, const uint8_t* rep, bool noCase, Mode mode) {
  return membersMatch(a.view(), b.view(), rep, noCase ? initUpperCharsTable() : nullptr, mode);
}

}  // namespace

bool equalCharsOfCharacterSetRep(const unichar* a, size_t lengthA, const unichar* b, size_t lengthB,
                                 const uint8_t* rep) {
  return membersMatch(viewOf(a, lengthA), viewOf(b, lengthB), rep, nullptr, Mode::Equal);
}

bool equalCharsNoCaseOfCharacterSetRep(const unichar* a, size_t lengthA, const unichar* b, size_t lengthB,
                                       const uint8_t* rep) {
  return membersMatch(viewOf(a, lengthA), viewOf(b, lengthB), rep, initUpperCharsTable(), Mode::Equal);
}

bool hasPrefixCharsOfCharacterSetRep(const unichar* a, size_t lengthA, const unichar* b, size_t lengthB,
                                     const uint8_t* rep) {
  return membersMatch(viewOf(a, lengthA), viewOf(b, lengthB), rep, nullptr, Mode::Prefix);
}

bool hasPrefixCharsNoCaseOfCharacterSetRep(const unichar* a, size_t lengthA, const unichar* b, size_t lengthB,
                                           const uint8_t* rep) {
  return membersMatch(viewOf(a, lengthA), viewOf(b, lengthB), rep, initUpperCharsTable(), Mode::Prefix);
}

bool equalStringsUsingCharacterSetRep(const String& a, const String& b, const uint8_t* rep) {
  return _equalStringsUsingCharacterSetRep(a, b, rep, false, Mode::Equal);
}

bool equalStringsNoCaseUsingCharacterSetRep(const String& a, const String& b, const uint8_t* rep) {
  return _equalStringsUsingCharacterSetRep(a, b, rep, true, Mode::Equal);
}

bool hasPrefixUsingCharacterSetRep(const String& a, const String& b, const uint8_t* rep) {
  return _equalStringsUsingCharacterSetRep(a, b, rep, false, Mode::Prefix);
}

bool hasPrefixNoCaseUsingCharacterSetRep(const String& a, const String& b, const uint8_t* rep) {
  return _equalStringsUsingCharacterSetRep(a, b, rep, true, Mode::Prefix);
}

}  // namespace velan
