#include "velan/query/words/Links.h"

#include <algorithm>
#include <iterator>

#include "velan/base/ASCII.h"
#include "velan/query/words/SeparationInternal.h"

namespace velan {

namespace {

constexpr size_t kNone = std::u16string_view::npos;

bool isLetterOrNumber(unichar c) { return isMemberOfCharacterSetRep(alphaNumCharacterSetRep(), c); }
bool isSchemeUnit(unichar c) { return isASCIIAlphanumeric(c) || c == u'+' || c == u'-' || c == u'.'; }
bool isHostUnit(unichar c) { return isLetterOrNumber(c) || c == u'-' || c == u'.'; }
bool isMailNameUnit(unichar c) { return isHostUnit(c) || c == u'_' || c == u'+' || c == u'%'; }

bool isAnyOf(unichar c, std::u16string_view units) { return units.find(c) != kNone; }

// Whether no address goes on beyond `c`.
bool endsAddress(unichar c) {
  if (c < 0x80) return c <= u' ' || c == 0x7F || isAnyOf(c, u"<>\"`");
  return isMemberOfCharacterSetRep(whiteCharacterSetRep(), c) || (c >= 0x2018 && c <= 0x201F) ||
         isAnyOf(c, u"\u00AB\u00BB\u2039\u203A") || (c >= 0x3000 && c <= 0x3003) || (c >= 0x3008 && c <= 0x301F) ||
         isAnyOf(c, u"\uFF01\uFF08\uFF09\uFF0C\uFF1A\uFF1B\uFF1F\uFF3B\uFF3D\uFF5B\uFF5D\uFF61\uFF62\uFF63\uFF64");
}

// A scheme that needs no "//" after it.
bool isOpaqueScheme(std::u16string_view name) {
  static constexpr std::u16string_view kSchemes[] = {u"mailto", u"tel", u"sms",    u"sip",  u"sips",
                                                     u"xmpp",   u"urn", u"magnet", u"news", u"geo"};
  return std::any_of(std::begin(kSchemes), std::end(kSchemes),
                     [name](std::u16string_view scheme) { return equalsIgnoringASCIICase(name, scheme); });
}

// Where an address begins, and where that begins which makes it one: the unit after "://", "mailto:" or "www.".
struct Start {
  size_t location = kNone;
  size_t content = kNone;
};

// The scheme whose ":" is at `colon`, not before `from`.
Start schemeBefore(std::u16string_view text, size_t from, size_t colon) {
  size_t location = colon;
  while (location > from && isSchemeUnit(text[location - 1])) --location;
  while (location < colon && !isASCIILetter(text[location])) ++location;
  const std::u16string_view rest = text.substr(colon + 1);
  if (location == colon || rest.empty()) return {};
  if (rest.starts_with(u"//")) {
    const bool hasHost = rest.size() > 2 && (isLetterOrNumber(rest[2]) || isAnyOf(rest[2], u"[/"));
    return hasHost ? Start{location, colon + 3} : Start{};
  }
  const bool opaque = isOpaqueScheme(text.substr(location, colon - location)) &&
                      (isLetterOrNumber(rest[0]) || rest[0] == u'+' || rest[0] == u'?');
  return opaque ? Start{location, colon + 1} : Start{};
}

bool isWorldWideWeb(std::u16string_view text, size_t at, size_t from) {
  constexpr std::u16string_view kName = u"www.";
  if (text.size() - at <= kName.size() || !equalsIgnoringASCIICase(text.substr(at, kName.size()), kName)) return false;
  const bool beginsHost = at == from || !(isHostUnit(text[at - 1]) || isAnyOf(text[at - 1], u"@/_"));
  return beginsHost && isLetterOrNumber(text[at + kName.size()]);
}

// The first start at or after `from`.
Start nextStart(std::u16string_view text, size_t from) {
  for (size_t i = from; i < text.size(); ++i) {
    if (text[i] == u':') {
      if (const Start start = schemeBefore(text, from, i); start.location != kNone) return start;
    } else if (toASCIILower(text[i]) == u'w' && isWorldWideWeb(text, i, from)) {
      return {i, i + 4};
    }
  }
  return {};
}

// Finds the closing bracket that nothing opened, in pieces of one address.
class BracketScan {
 public:
  // Its position in `[from, limit)`, else `limit`.
  size_t unmatched(std::u16string_view text, size_t from, size_t limit) {
    for (size_t i = from; i < limit; ++i) {
      if (const size_t kind = std::u16string_view(u"([{").find(text[i]); kind != kNone) ++_open[kind];
      if (const size_t kind = std::u16string_view(u")]}").find(text[i]); kind != kNone && --_open[kind] < 0) return i;
    }
    return limit;
  }

 private:
  int64_t _open[3] = {};
};

// Where the address ends that begins with `start`: before a bracket that closes what it did not open, or before the
// next address in a list, else with the text. Looks no further than to the next start after that.
size_t endOfAddress(std::u16string_view text, Start start) {
  BracketScan brackets;
  size_t scanned = start.location;
  for (Start next = nextStart(text, start.content);; next = nextStart(text, next.content)) {
    const bool isLast = next.location == kNone;
    const bool isListed = !isLast && next.location > start.content && isAnyOf(text[next.location - 1], u",;|");
    const size_t limit = isLast ? text.size() : isListed ? next.location - 1 : next.location;
    const size_t end = brackets.unmatched(text, scanned, limit);
    if (end < limit || isListed || isLast) return end;
    scanned = limit;
  }
}

size_t withoutClosingPunctuation(std::u16string_view text, size_t start, size_t end) {
  while (end > start && isAnyOf(text[end - 1], u".,;:!?'*|([{\u2026")) --end;
  return end;
}

Range addressWithScheme(std::u16string_view text, size_t index) {
  for (Start start = nextStart(text, 0); start.location != kNone && start.location <= index;) {
    const size_t end = withoutClosingPunctuation(text, start.location, endOfAddress(text, start));
    if (index < end && end > start.content) {
      return {static_cast<int64_t>(start.location), static_cast<int64_t>(end - start.location)};
    }
    start = nextStart(text, std::max(end, start.content));
  }
  return kAbsentRange;
}

// The host after "@": one with a dot, and two units at least behind the last dot. `at` when there is none.
size_t endOfMailHost(std::u16string_view text, size_t at) {
  size_t end = at + 1;
  while (end < text.size() && isHostUnit(text[end])) ++end;
  while (end > at + 1 && isAnyOf(text[end - 1], u".-")) --end;
  const std::u16string_view host = text.substr(at + 1, end - at - 1);
  const size_t dot = host.rfind(u'.');
  const bool isHost = dot != kNone && dot > 0 && host.size() - dot > 2 && isLetterOrNumber(host[0]);
  return isHost ? end : at;
}

Range mailAddress(std::u16string_view text, size_t index) {
  for (size_t at = text.find(u'@'); at != kNone; at = text.find(u'@', at + 1)) {
    size_t start = at;
    while (start > 0 && isMailNameUnit(text[start - 1])) --start;
    while (start < at && !isLetterOrNumber(text[start])) ++start;
    const size_t end = endOfMailHost(text, at);
    if (start < at && end > at && start <= index && index < end) {
      return {static_cast<int64_t>(start), static_cast<int64_t>(end - start)};
    }
  }
  return kAbsentRange;
}

}  // namespace

Range getLinkRangeAtIndex(const String& string, int64_t index) {
  if (index < 0 || index >= string.length() || endsAddress(string[index])) return kAbsentRange;
  const std::u16string_view units = string.view();
  auto first = static_cast<size_t>(index);
  size_t end = first;
  while (first > 0 && !endsAddress(units[first - 1])) --first;
  while (end < units.size() && !endsAddress(units[end])) ++end;
  const std::u16string_view token = units.substr(first, end - first);
  const size_t indexInToken = static_cast<size_t>(index) - first;
  Range link = addressWithScheme(token, indexInToken);
  if (!isPresent(link)) link = mailAddress(token, indexInToken);
  if (isPresent(link)) link.location += static_cast<int64_t>(first);
  return link;
}

}  // namespace velan
