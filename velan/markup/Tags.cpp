#include "velan/markup/Tags.h"

#include <algorithm>

#include "velan/base/ScratchBuffer.h"
#include "velan/markup/TagsInternal.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/search/UnitBlocksInternal.h"

namespace velan {
namespace {

constexpr size_t kNone = std::u16string_view::npos;

// The position at or after `from` that holds `c`, or the length.
size_t nextUnit(std::u16string_view text, size_t from, unichar c) {
  return from >= text.size() ? text.size() : from + positionOfUnit(text.data() + from, text.size() - from, c);
}

// `letters` are ASCII letters in lower case.
bool equalsLetters(std::u16string_view units, std::u16string_view letters) {
  return std::ranges::equal(units, letters, [](unichar unit, unichar letter) { return (unit | 0x20) == letter; });
}

// Finds one literal over and over, each time from the same position or a later one. It remembers what it found, and
// that there is nothing more: all its searches together read the text once.
class LiteralCursor {
 public:
  // In upper case; the text is compared through the upper table.
  LiteralCursor(std::u16string_view text, std::u16string_view literal) : _text(text), _literal(literal) {}

  size_t next(size_t from) {
    if (!_searched || (_found != kNone && _found < from)) {
      _found = search(from);
      _searched = true;
    }
    return _found;
  }

  size_t length() const { return _literal.size(); }
  size_t unitsSearched() const { return _unitsSearched; }

 private:
  size_t search(size_t from) {
    const size_t begin = from;
    for (from = nextUnit(_text, from, _literal[0]); from < _text.size();
         from = nextUnit(_text, from + 1, _literal[0])) {
      if (isAt(from)) break;
    }
    _unitsSearched += from - std::min(begin, from) + 1;
    return from < _text.size() ? from : kNone;
  }

  bool isAt(size_t position) const {
    if (_text.size() - position < _literal.size()) return false;
    const unichar* const upper = initUpperCharsTable();
    return std::ranges::equal(_text.substr(position, _literal.size()), _literal,
                              [upper](unichar unit, unichar wanted) { return upper[unit] == wanted; });
  }

  const std::u16string_view _text;
  const std::u16string_view _literal;
  size_t _found = kNone;
  bool _searched = false;
  size_t _unitsSearched = 0;
};

// A closing literal is searched for from two places that both move forward, but not together.
struct ClosingLiteral {
  LiteralCursor afterTag;
  LiteralCursor afterComment;
  ClosingLiteral(std::u16string_view text, std::u16string_view literal)
      : afterTag(text, literal), afterComment(text, literal) {}
  size_t unitsSearched() const { return afterTag.unitsSearched() + afterComment.unitsSearched(); }
};

// Finds names with the sets at hand.
class NameFinder {
 public:
  // Where the name of the ordinary tag `[tag, end]` stands, `text[end]` being its ">"; absent when it has none.
  Range nameOf(std::u16string_view text, size_t tag, size_t end) const {
    size_t begin = tag + 1;
    while (begin < end && !isMemberOfCharacterSetRep(_alpha, text[begin])) ++begin;
    if (begin >= end) return kAbsentRange;
    size_t behind = begin + 1;
    while (text[behind] != u'/' && text[behind] != u'>' && !isMemberOfCharacterSetRep(_white, text[behind])) ++behind;
    return {static_cast<int64_t>(begin), static_cast<int64_t>(behind - begin)};
  }

 private:
  const uint8_t* const _alpha = alphaCharacterSetRep();
  const uint8_t* const _white = whiteCharacterSetRep();
};

class TagScanner {
 public:
  TagScanner(std::u16string_view text, FunctionRef<bool(const TagReport&)> report)
      : _text(text),
        _report(report),
        _script(text, u"</SCRIPT"),
        _style(text, u"</STYLE"),
        _commentOpen(text, u"<!-"),
        _commentClose(text, u"-->") {}

  void scan() {
    for (size_t tag = nextUnit(_text, 0, u'<'); tag < _text.size(); tag = nextUnit(_text, _behindTag, u'<')) {
      const TagKind kind = kindOf(tag);
      const size_t end = kind == TagKind::Tag       ? endOfTag(_text, tag)
                         : kind == TagKind::Comment ? endOfComment(tag)
                                                    : endOfSection(tag);
      if (end == _text.size()) {
        if (kind != TagKind::Tag) report(tag, end, kAbsentRange, kind);
        break;
      }
      const Range name = kind == TagKind::Tag ? _names.nameOf(_text, tag, end) : kAbsentRange;
      if (report(tag, kind == TagKind::Tag ? endOfElement(tag, end, name) : end + 1, name, kind)) return;
    }
    report(_text.size(), _text.size(), kAbsentRange, TagKind::End);
  }

  size_t unitsSearched() const {
    return _script.unitsSearched() + _style.unitsSearched() + _commentOpen.unitsSearched() +
           _commentClose.unitsSearched();
  }

 private:
  bool report(size_t tag, size_t end, Range name, TagKind kind) {
    const TagReport report{_text.data(),
                           name.location,
                           name.length,
                           static_cast<int64_t>(tag),
                           static_cast<int64_t>(end - tag),
                           static_cast<int64_t>(_behindTag),
                           kind};
    _behindTag = end;
    return _report(report);
  }

  TagKind kindOf(size_t tag) const {
    if (_text.size() - tag < 3 || _text[tag + 1] != u'!') return TagKind::Tag;
    return _text[tag + 2] == u'-' ? TagKind::Comment : _text[tag + 2] == u'[' ? TagKind::Section : TagKind::Tag;
  }

  // The ">" of a comment; the dashes that open it may close it too, and one suffices where one opened it.
  size_t endOfComment(size_t tag) const {
    const bool singleDash = _text.size() - tag < 4 || _text[tag + 3] != u'-';
    for (size_t i = nextUnit(_text, tag + 3, u'>'); i < _text.size(); i = nextUnit(_text, i + 1, u'>')) {
      const unichar before = _text[i - 1];
      if (before == u'-' && (singleDash || _text[i - 2] == u'-')) return i;
      if (before == u'!' && !singleDash && _text[i - 2] == u'-' && _text[i - 3] == u'-') return i;
    }
    return _text.size();
  }

  size_t endOfSection(size_t tag) const {
    for (size_t i = nextUnit(_text, tag + 3, u'>'); i < _text.size(); i = nextUnit(_text, i + 1, u'>')) {
      if (_text[i - 1] == u']' || _text.substr(i - 3, 3) == u"]--") return i;
    }
    return _text.size();
  }

  // Behind the tag that ends at `end`, or behind the element if its body is script or style.
  size_t endOfElement(size_t tag, size_t end, Range name) {
    if (name.length != 5 && name.length != 6) return end + 1;
    const std::u16string_view letters =
        _text.substr(static_cast<size_t>(name.location), static_cast<size_t>(name.length));
    const bool isScript = equalsLetters(letters, u"script");
    if (!isScript && !equalsLetters(letters, u"style")) return end + 1;
    if (!isOpeningTag(_text.substr(tag, end + 1 - tag))) return end + 1;
    ClosingLiteral& literal = isScript ? _script : _style;
    const size_t close = closingLiteral(tag, end, literal);
    if (close == kNone) return end + 1;
    return std::min(nextUnit(_text, close + literal.afterTag.length(), u'>') + 1, _text.size());
  }

  // A comment in the body may hold the literal: then the one behind the comment counts, if there is one.
  size_t closingLiteral(size_t tag, size_t end, ClosingLiteral& literal) {
    const size_t close = literal.afterTag.next(end + 1);
    if (close == kNone) return kNone;
    const size_t opener = _commentOpen.next(tag);
    if (opener == kNone || opener >= close) return close;
    const size_t closer = _commentClose.next(opener + _commentOpen.length());
    if (closer == kNone) return close;
    const size_t behind = literal.afterComment.next(closer + _commentClose.length());
    return behind == kNone ? close : behind;
  }

  const std::u16string_view _text;
  const FunctionRef<bool(const TagReport&)> _report;
  const NameFinder _names;
  size_t _behindTag = 0;
  ClosingLiteral _script;
  ClosingLiteral _style;
  LiteralCursor _commentOpen;
  LiteralCursor _commentClose;
};

std::u16string_view clipped(const String& string, Range range) {
  const Range inside = clippedRange(range, string.length());
  return string.view().substr(static_cast<size_t>(inside.location), static_cast<size_t>(inside.length));
}

std::u16string_view unitsInRange(const unichar* characters, Range range) {
  if (!characters || !isPresent(range) || range.location < 0 || range.length < 0) return {};
  return {characters + range.location, static_cast<size_t>(range.length)};
}

}  // namespace

size_t scanTags(std::u16string_view text, FunctionRef<bool(const TagReport&)> report) {
  TagScanner scanner(text, report);
  scanner.scan();
  return scanner.unitsSearched();
}

size_t endOfTag(std::u16string_view text, size_t tag) {
  bool afterEquals = false;
  for (size_t i = tag + 1; i < text.size(); ++i) {
    const unichar c = text[i];
    if (c > u'>') continue;
    if (c == u'>') return i;
    if (c == u'=') {
      afterEquals = true;
    } else if (c == u'"' || c == u'\'') {
      if (afterEquals) i = nextUnit(text, i + 1, c);
      afterEquals = false;
    }
  }
  return text.size();
}

bool hasName(const TagReport& tag, std::u16string_view name) { return equalsLetters(nameOf(tag), name); }

bool GetTagsOfString(const String& string, TagHandler handler, void* context, TagBlock block, bool privateCopy) {
  if (string.isEmpty()) return false;
  const String kept = string;  // the handler may assign to the caller's
  const auto report = [&](const TagReport& tag) {
    return handler ? handler(kept, tag, context) : block ? block(tag) : true;
  };
  if (!privateCopy) {
    scanTags(kept.view(), report);
    return true;
  }
  ScratchBuffer<unichar, 256> copy(kept.view().size());
  if (!copy) return false;
  std::ranges::copy(kept.view(), copy.data());
  scanTags({copy.data(), kept.view().size()}, report);
  return true;
}

bool isTagOpenCharacters(const unichar* characters, Range range) {
  return isOpeningTag(unitsInRange(characters, range));
}
bool isTagClosedCharacters(const unichar* characters, Range range) {
  return isClosingTag(unitsInRange(characters, range));
}
bool isTagOpenInRange(const String& string, Range range) { return isOpeningTag(clipped(string, range)); }
bool isTagClosedInRange(const String& string, Range range) { return isClosingTag(clipped(string, range)); }

bool isMetaTagInRange(const String& string, Range range) {
  const std::u16string_view tag = clipped(string, range);
  const size_t end = tag.starts_with(u'<') && !tag.starts_with(u"</") ? endOfTag(tag, 0) : tag.size();
  if (end == tag.size()) return false;
  const Range name = NameFinder().nameOf(tag, 0, end);
  return name.length == 4 && equalsLetters(tag.substr(static_cast<size_t>(name.location), 4), u"meta");
}

bool isRemarkTagInRange(const String& string, Range range) { return clipped(string, range).starts_with(u"<!--"); }

}  // namespace velan
