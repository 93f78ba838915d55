#include "tools/search/SpellingFilter.h"

#include <algorithm>
#include <new>

#include "tools/documents/PlainText.h"
#include "velan/base/ASCII.h"
#include "velan/base/MutableString.h"
#include "velan/text/editing/Normalization.h"

namespace velan::tool {
namespace {

constexpr char kEdge = QueryFilter::kEdge;
constexpr unichar kSoftHyphen = 0xAD;
constexpr unichar kHyphen = 0x2010;

bool isWrittenInParts(unichar c) {
  if (isComposing(c)) return true;
  MutableString parts(std::u16string_view(&c, 1));
  if (!normalizeString(parts, NormalizationForm::D)) throw std::bad_alloc();
  return parts.length() > 1;
}

bool isLineEnd(std::string_view text, size_t at) { return at < text.size() && (text[at] == '\n' || text[at] == '\r'); }

// Whether what ends before `at` is surely one of the letters that stay as they are where nothing can be composed with
// them. Others have more than one form alone.
bool isAfterPlainLetter(std::string_view text, size_t at) {
  size_t lead = at;
  do {
    if (lead == 0) return true;
    --lead;
  } while ((text[lead] & 0xC0) == 0x80 && at - lead < 4);
  const auto byte = static_cast<uint8_t>(text[lead]);
  if (byte == 0xCD) return static_cast<uint8_t>(text[lead + 1]) < 0xB0;
  return byte < 0x80 || (byte >= 0xC3 && byte <= 0xCC) || (byte >= 0xD0 && byte <= 0xD4);
}

// What is read for a letter that stands for several, or is written in another width. Empty for all others.
std::string_view readingOf(unichar c) {
  constexpr std::string_view kLigatures[] = {"ff", "fi", "fl", "ffi", "ffl", "st", "st"};
  constexpr std::string_view kASCII = "0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_`abcdefghijklmnopqrstuvwxyz";
  if (c >= 0xFB00 && c <= 0xFB06) return kLigatures[c - 0xFB00];
  if (c >= 0xFF10 && c <= 0xFF5A) return kASCII.substr(c - 0xFF10u, 1);
  switch (c) {
    case 0xDF:
    case 0x1E9E:
      return "ss";
    case 0xC6:
    case 0xE6:
      return "ae";
    case 0x152:
    case 0x153:
      return "oe";
    case 0x132:
    case 0x133:
      return "ij";
    default:
      return {};
  }
}

}  // namespace

SpellingFilter::SpellingFilter(const QueryFilter& literals, bool inPages) : _literals(literals), _inPages(inPages) {
  for (size_t before = 1; before < 256; ++before) {
    for (size_t after = 1; after < 256 && !_insideEnds[before]; ++after) {
      _insideEnds[before] = literals.mayJoin(static_cast<char>(before), static_cast<char>(after));
    }
  }
  for (uint32_t c = 0x80; c <= 0xFFFF && !_holdsComposed; ++c) {
    _holdsComposed = literals.mayHold(static_cast<unichar>(c)) && isWrittenInParts(static_cast<unichar>(c));
  }
}

bool SpellingFilter::mayFindIn(std::string_view text) const {
  size_t at = findOtherSpellingInUTF8(text, 0);
  for (; at < text.size(); at = findOtherSpellingInUTF8(text, at + 1)) {
    if (mayFindAt(text, at)) return true;
  }
  return false;
}

bool SpellingFilter::mayFindAt(std::string_view text, size_t at) const {
  const char before = at > 0 ? text[at - 1] : kEdge;
  const auto [c, length] = unitInUTF8(text, at);
  const size_t behind = at + length;
  const bool isHyphen = c == u'-' || c == kHyphen || c == kSoftHyphen;
  if (isHyphen && !mayLeadTo(text, at)) return false;
  if (isHyphen && !_inPages && isLineEnd(text, behind)) return mayGoOn(before, text, startOfNextLine(text, behind));
  if (c == kSoftHyphen) return mayGoOn(before, text, behind);
  if (isComposing(c)) return _holdsComposed || !isAfterPlainLetter(text, at);
  const bool isOneOfSeveral = isUnusual(c) || isJoinedLetter(c);
  return isOneOfSeveral && mayHoldReading(readingOf(c), text, at, behind);
}

bool SpellingFilter::mayGoOn(char before, std::string_view text, size_t next) const {
  if (next >= text.size() || !mayEndInside(before)) return false;
  return _literals.mayJoin(before, text[next]) || isReadOtherwise(text, next);
}

bool SpellingFilter::isReadOtherwise(std::string_view text, size_t at) const {
  const auto [c, length] = unitInUTF8(text, at);
  if (isUnusual(c) || isJoinedLetter(c)) return true;
  if (c == u'-' || c == kHyphen) return _inPages || isLineEnd(text, at + length);
  return _inPages && (c == u'<' || c == u'&' || c == u'\r');
}

bool SpellingFilter::mayLeadTo(std::string_view text, size_t at) const {
  constexpr size_t kFar = 32;
  const size_t limit = at - std::min(at, kFar);
  for (size_t i = at; i > limit; --i) {
    const char c = text[i - 1];
    if (i == at && !mayEndInside(c)) return false;
    if ((c & 0x80) != 0 || _literals.mayJoin(kEdge, c)) return true;
    if (i == 1 || !_literals.mayJoin(text[i - 2], c)) return false;
  }
  return at > 0;
}

// Whether what is read as `reading`, ASCII in any case, from `start` to `next` may be in a literal or hold a part of
// one.
bool SpellingFilter::mayHoldReading(std::string_view reading, std::string_view text, size_t start, size_t next) const {
  const char before = start > 0 ? text[start - 1] : kEdge;
  const auto joins = [this](char one, char two) {
    const auto joinsAny = [&](char first) {
      return _literals.mayJoin(first, toASCIILower(two)) || _literals.mayJoin(first, toASCIIUpper(two));
    };
    return joinsAny(toASCIILower(one)) || joinsAny(toASCIIUpper(one));
  };
  for (size_t first = 0; first < reading.size(); ++first) {
    if (!joins(kEdge, reading[first]) && !(first == 0 && joins(before, reading[first]) && mayLeadTo(text, start)))
      continue;
    size_t last = first;
    while (!joins(reading[last], kEdge) && last + 1 < reading.size() && joins(reading[last], reading[last + 1])) ++last;
    if (joins(reading[last], kEdge)) return true;
    if (last + 1 < reading.size()) continue;
    if (mayGoOn(toASCIILower(reading[last]), text, next) || mayGoOn(toASCIIUpper(reading[last]), text, next))
      return true;
  }
  return false;
}

}  // namespace velan::tool
