#include "tools/search/PageFilter.h"

#include <algorithm>
#include <optional>
#include <string>

#include "tools/documents/PlainText.h"
#include "tools/markup/MarkupText.h"
#include "velan/base/ASCII.h"
#include "velan/base/utf/UTF.h"
#include "velan/markup/DeclaredEncoding.h"
#include "velan/markup/Entities.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/encoding/CharsetNames.h"

namespace velan::tool {
namespace {

constexpr char kEdge = QueryFilter::kEdge;
constexpr unichar kSoftHyphen = 0xAD;

bool isSpace(unichar c) { return isMemberOfCharacterSetRep(whiteCharacterSetRep(), c); }
bool isHyphen(unichar c) { return c == u'-' || c == 0x2010; }

// What an entity stands for.
struct Entity {
  unichar units[2];
  size_t count;
  size_t end;  // behind it

  std::string utf8() const {
    std::string bytes;
    appendUTF8Lossy({units, count}, bytes);
    return bytes;
  }
};

// The entity that begins at `start`, an ampersand.
std::optional<Entity> entityAt(std::string_view page, size_t start) {
  constexpr size_t kLongest = 40;  // more than any entity has
  unichar units[kLongest];
  unichar decoded[kLongest];
  std::string_view bytes = page.substr(start, kLongest);
  bytes = bytes.substr(0, bytes.find_first_of("&<", 1));
  std::ranges::transform(bytes, units, [](char c) { return (c & 0x80) ? u'\uFFFD' : static_cast<unichar>(c); });
  const size_t written = convertEntities2Characters(units, decoded, 0, bytes.size(), true, false, false);
  if (written == bytes.size()) return std::nullopt;
  const bool isPair = written > 1 && isHighSurrogate(decoded[0]) && isLowSurrogate(decoded[1]);
  const size_t length = 1 + bytes.size() - written + (isPair ? 1 : 0);
  return Entity{{decoded[0], isPair ? decoded[1] : u'\0'}, isPair ? 2u : 1u, start + length};
}

}  // namespace

// Reads one page here and there.
class PageFilter::Reader {
 public:
  Reader(const PageFilter& filter, std::string_view page)
      : _literals(filter._literals),
        _spelling(filter._spelling),
        _verbatim(filter._verbatim),
        _page(page),
        _patience(4 * page.size() + 65536) {}

  // Whether a literal may go over what begins at `at`, or begin with it, that does not stand in the bytes as it is.
  bool mayFindAt(size_t at) {
    const char before = at > 0 ? _page[at - 1] : kEdge;
    if (_page[at] == '&') {
      const auto entity = entityAt(_page, at);
      if (!entity) return false;
      if (!isDropped(entity->units[0])) return mayFindEntity(at, *entity);
    }
    if (!_spelling.mayLeadTo(_page, at)) return false;
    const auto [c, length] = unitInUTF8(_page, at);
    if (isHyphen(c)) return mayGoOnInNextLine(before, at + length);
    if (c == u'<' || c == u'&' || isDropped(c)) return mayGoOnBehindGap(before, at);
    return _page.substr(at).starts_with("]]>");
  }

 private:
  // A part of the page that leaves nothing in the text but, perhaps, the end of a line or a space.
  struct Gap {
    size_t end;
    bool mayEndLine = false;
    bool divides = false;               // surely
    std::optional<Entity> entity = {};  // what stands behind it
  };

  // A soft hyphen, or a part of a line end.
  static bool isDropped(unichar c) { return c == kSoftHyphen || c == u'\r'; }

  // Unknown things count as a gap to the end, and as impatience.
  Gap gapAt(size_t at, bool withSpace) {
    Gap gap{at};
    while (gap.end < _page.size()) {
      const auto [c, length] = unitInUTF8(_page, gap.end);
      if (c == u'<') {
        const size_t end = endOfTag(gap.end, gap);
        if (end == gap.end) break;
        gap.end = end;
      } else if (c == u'&') {
        gap.entity = entityAt(_page, gap.end);
        if (!gap.entity || !takesUnit(gap.entity->units[0], withSpace, gap)) break;
        gap.end = gap.entity->end;
        gap.entity.reset();
      } else if (takesUnit(c, withSpace, gap)) {
        gap.end += length;
      } else {
        break;
      }
    }
    return gap;
  }

  static bool takesUnit(unichar c, bool withSpace, Gap& gap) {
    if (c == u'\n' || c == u'\r') gap.mayEndLine = true;
    if (isDropped(c)) return true;
    gap.divides |= isSpace(c);
    return withSpace && isSpace(c);
  }

  // Behind the tag, comment or the like at `start`; `start` if it is none.
  size_t endOfTag(size_t start, Gap& gap) {
    const std::string_view rest = _page.substr(start);
    size_t end = std::string_view::npos;
    if (rest.starts_with("<![")) {
      _patience = 0;
    } else if (rest.starts_with("<!-")) {
      end = endOfComment(rest);
    } else {
      end = endOfPlainTag(rest);
      if (end != std::string_view::npos) addEffect(rest.substr(0, end), gap);
      if (gap.mayEndLine && mayHaveBody(rest.substr(0, std::min(end, rest.size())))) _patience = 0;
    }
    _patience -= std::min(_patience, std::min(end, rest.size()));
    return end == std::string_view::npos ? start : start + end;
  }

  static size_t endOfComment(std::string_view rest) {
    const bool singleDash = rest.size() < 4 || rest[3] != '-';
    for (size_t i = rest.find('>', 3); i != std::string_view::npos; i = rest.find('>', i + 1)) {
      if (rest[i - 1] == '-' && (singleDash || rest[i - 2] == '-')) return i + 1;
      if (rest[i - 1] == '!' && !singleDash && rest[i - 2] == '-' && rest[i - 3] == '-') return i + 1;
    }
    return std::string_view::npos;
  }

  static size_t endOfPlainTag(std::string_view rest) {
    bool afterEquals = false;
    for (size_t i = 1; i < rest.size(); ++i) {
      const char c = rest[i];
      if (c == '>') return i + 1;
      if (c == '=') {
        afterEquals = true;
      } else if (c == '"' || c == '\'') {
        if (afterEquals) i = std::min(rest.find(c, i + 1), rest.size());
        afterEquals = false;
      }
    }
    return std::string_view::npos;
  }

  // Whether the tag may be a script or a style, of which what follows is a part.
  static bool mayHaveBody(std::string_view tag) {
    const auto* const name = std::ranges::find_if(tag, [](char c) { return isASCIILetter(c); });
    const auto begins = [&](std::string_view letters) {
      const auto length = std::min(letters.size(), static_cast<size_t>(tag.end() - name));
      return std::equal(letters.begin(), letters.end(), name, name + static_cast<std::ptrdiff_t>(length),
                        [](char letter, char c) { return toASCIILower(c) == letter; });
    };
    return begins("script") || begins("style");
  }

  // Where the name cannot be told by ASCII alone the tag may be any.
  static void addEffect(std::string_view tag, Gap& gap) {
    const size_t start = tag[1] == '/' ? 2 : 1;
    size_t end = start;
    while (end < tag.size() && isASCIIAlphanumeric(tag[end])) ++end;
    const bool isName = end > start && isASCIILetter(tag[start]) && end < tag.size() &&
                        (isASCIIWhiteSpace(tag[end]) || tag[end] == '/' || tag[end] == '>');
    const bool staysInLine = isName && isInLine(tag.substr(start, end - start));
    gap.mayEndLine |= !staysInLine;
    gap.divides |= isName && !staysInLine;
  }

  bool mayGoOnBehindGap(char before, size_t at) {
    const Gap gap = gapAt(at, false);
    if (_patience == 0 || endsDeclarations(gap.end)) return true;
    return !gap.divides && mayFollow(before, gap);
  }

  // Behind the hyphen of a line end.
  bool mayGoOnInNextLine(char before, size_t at) {
    if (_verbatim) return false;
    const Gap gap = gapAt(at, true);
    return _patience == 0 || (gap.mayEndLine && mayFollow(before, gap));
  }

  bool mayFollow(char before, const Gap& gap) {
    if (gap.entity) {
      const unichar c = gap.entity->units[0];
      return isHyphen(c) || isUnusual(c) || isJoinedLetter(c) || _literals.mayJoin(before, gap.entity->utf8().front());
    }
    const auto [c, length] = unitInUTF8(_page, gap.end);
    if (c == u'<' || c == u'&') return false;  // this one stands for itself
    if (isHyphen(c)) return _literals.mayJoin(before, _page[gap.end]) || mayGoOnInNextLine(before, gap.end + length);
    return _spelling.mayGoOn(before, _page, gap.end);
  }

  // A document type's declarations end with "]>", which is no text.
  bool endsDeclarations(size_t at) const {
    const auto skipSpace = [&] {
      for (UnitInUTF8 unit = unitInUTF8(_page, at); at < _page.size() && isSpace(unit.unit);
           unit = unitInUTF8(_page, at)) {
        at += unit.length;
      }
    };
    skipSpace();
    if (at >= _page.size() || _page[at] != ']') return false;
    ++at;
    skipSpace();
    return at < _page.size() && _page[at] == '>';
  }

  bool mayFindEntity(size_t at, const Entity& entity) {
    const char before = at > 0 ? _page[at - 1] : kEdge;
    const bool isLedTo = _spelling.mayLeadTo(_page, at);
    const unichar c = entity.units[0];
    if (!_verbatim && (isUnusual(c) || isJoinedLetter(c))) return true;
    if (isHyphen(c) && isLedTo && mayGoOnInNextLine(before, entity.end)) return true;
    if (!_literals.mayHold(c)) return false;
    const std::string bytes = entity.utf8();
    if (!_literals.mayJoin(kEdge, bytes.front()) && !(isLedTo && _literals.mayJoin(before, bytes.front())))
      return false;
    return _literals.mayJoin(bytes.back(), kEdge) || _spelling.mayGoOn(bytes.back(), _page, entity.end);
  }

  const QueryFilter& _literals;
  const SpellingFilter& _spelling;
  const bool _verbatim;
  const std::string_view _page;
  size_t _patience;  // bytes that may still be looked at
};

PageFilter::PageFilter(const QueryFilter& literals, bool verbatim)
    : _literals(literals), _verbatim(verbatim), _spelling(literals, true) {
  for (uint32_t c = 0; c <= 0xFFFF; ++c) {
    const auto unit = static_cast<unichar>(c);
    _holdsMarkup |= literals.mayHold(unit) && (isSpace(unit) || unit == u'<' || unit == u'&');
  }
  std::bitset<256> any;
  any.set();
  std::bitset<256> before;
  for (size_t byte = 0; byte < 256; ++byte) before[byte] = _spelling.mayEndInside(static_cast<char>(byte));
  const auto bytes = [](std::string_view allowed) {
    std::bitset<256> set;
    for (const char c : allowed) set.set(static_cast<uint8_t>(c));
    return set;
  };
  _prints.add({before, bytes("<\r"), any}, 0);
  _prints.add({bytes("&"), any, any}, 1);
  _prints.add({before, bytes("]"), bytes("]")}, 2);
  _prints.add({before, bytes("\xC2"), bytes("\xAD")}, 3);
  _prints.add({before, bytes("-"), bytes("<& \t\r\n\f\v\xC2\xE1\xE2\xE3\xEF")}, 4);
  _prints.add({bytes("\xE2"), bytes("\x80"), bytes("\x90")}, 5);
}

bool PageFilter::mayFindIn(std::string_view page) const {
  if (_holdsMarkup) return true;
  Reader reader(*this, page);
  for (size_t at = findPrint(page, 0, _prints); at < page.size(); at = findPrint(page, at + 1, _prints)) {
    const bool begins = page[at] == '&' || page[at] == '\xE2';
    if (begins && reader.mayFindAt(at)) return true;
    if (at + 1 < page.size() && reader.mayFindAt(at + 1)) return true;
  }
  return !_verbatim && _spelling.mayFindIn(page);
}

bool isPageInUTF8(std::string_view page) {
  constexpr size_t kHead = 8192;
  if (page.starts_with("\xEF\xBB\xBF")) return true;
  const String head = String::fromUTF8Lossy(page.substr(0, kHead));
  MutableString charset;
  bool isToldEarly = page.size() <= kHead;
  parseXmlWithHandler(head, [&](const TagReport& tag) {
    // What is cut off at the end of the head may be read otherwise, and where a script ends is told by much.
    if (tag.kind == TagKind::End || tag.tagLocation + tag.tagLength == head.length()) return true;
    const auto name = tag.nameLength > 0 ? head.view().substr(static_cast<size_t>(tag.nameLocation),
                                                              static_cast<size_t>(tag.nameLength))
                                         : std::u16string_view();
    const auto isNamed = [name](std::u16string_view other) {
      return std::ranges::equal(name, other, {}, [](unichar c) { return toASCIILower(c); });
    };
    if (!isToldEarly && (isNamed(u"script") || isNamed(u"style"))) return true;
    if (!RetrieveEncodingHandler(head, tag, &charset)) return false;
    isToldEarly = true;
    return true;
  });
  if (!isToldEarly) return false;
  const StringEncoding declared = NSEncodingFromName(charset.string());
  switch (declared) {
    case StringEncoding::Invalid:
    case StringEncoding::UTF8:
      return true;
    case StringEncoding::ASCII:
    case StringEncoding::Latin1:
    case StringEncoding::WindowsLatin1:
      return std::ranges::none_of(page, [](char c) { return (c & 0x80) != 0; });
    default:
      return false;
  }
}

}  // namespace velan::tool
