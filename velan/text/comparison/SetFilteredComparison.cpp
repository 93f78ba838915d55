#include "velan/text/comparison/SetFilteredComparison.h"

#include <algorithm>

#include "velan/base/String.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/ConversionTablesInternal.h"

namespace velan {
namespace {

enum class Mode : bool { Equal, Prefix };

// The members of a text, some at a time.
class MemberReader {
 public:
  MemberReader(std::u16string_view text, const uint8_t* rep) : _text(text), _rep(rep) {}

  // The members that come next; empty only at the end.
  std::u16string_view next() {
    while (_members.empty() && !_text.empty()) {
      const size_t count = std::min(_text.size(), _step);
      _members = {_buffer, unitKernels().copyMembers(_text.data(), count, _rep, _hints, _buffer)};
      _text.remove_prefix(count);
      _step = kMost;
    }
    return _members;
  }
  void skip(size_t count) { _members.remove_prefix(count); }

 private:
  static constexpr size_t kMost = 512;

  std::u16string_view _text;
  const uint8_t* _rep;
  SetHints _hints;
  size_t _step = 64;  // most texts that differ do so soon
  std::u16string_view _members;
  unichar _buffer[kMost + UnitKernels::kCopySlack];
};

struct MemberComparison {
  const uint8_t* rep;
  UnitMapping mapping;
  Mode mode;

  // Whatever lies between the members.
  bool match(std::u16string_view a, std::u16string_view b) const {
    MemberReader readerA(a, rep), readerB(b, rep);
    for (;;) {
      const std::u16string_view inA = readerA.next(), inB = readerB.next();
      if (inA.empty()) return inB.empty();
      if (inB.empty()) return mode == Mode::Prefix;
      const size_t shorter = std::min(inA.size(), inB.size());
      if (unitKernels().mismatch(inA.data(), inB.data(), shorter, mapping) < shorter) return false;
      readerA.skip(shorter);
      readerB.skip(shorter);
    }
  }

  // Texts that mostly have their members at the same places, or so far apart for a long time, are compared in place.
  bool matchInPlace(std::u16string_view a, std::u16string_view b) const {
    constexpr size_t kLong = 256, kFew = 2;
    MemberHints hints;
    for (size_t compared = 0, shifts = 0; shifts < kFew + compared / kLong; ++shifts) {
      const size_t shorter = std::min(a.size(), b.size());
      const size_t same = unitKernels().mismatchOfMembers(a.data(), b.data(), shorter, rep, mapping, hints);
      compared += same;
      a = fromMember(a.substr(same));
      b = fromMember(b.substr(same));
      if (a.empty()) return b.empty();
      if (b.empty()) return mode == Mode::Prefix;
      if (mapped(a[0]) != mapped(b[0])) return false;
    }
    return match(a, b);
  }

  unichar mapped(unichar c) const { return mapping.table ? mapping.table[c] : c; }
  std::u16string_view fromMember(std::u16string_view text) const {
    constexpr size_t kNear = 4;
    for (size_t i = 0; i < std::min(kNear, text.size()); ++i) {
      if (isMemberOfCharacterSetRep(rep, text[i])) return text.substr(i);
    }
    return text.substr(unitKernels().findMember(text.data(), text.size(), rep, true));
  }
};

// `table` is null for an exact comparison.
bool membersMatch(std::u16string_view a, std::u16string_view b, const uint8_t* rep, const unichar* table, Mode mode) {
  if (a.empty() && b.empty()) return true;
  return rep && MemberComparison{rep, mappingOf(table), mode}.matchInPlace(a, b);
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
