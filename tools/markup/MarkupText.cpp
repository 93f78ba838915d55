#include "tools/markup/MarkupText.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <new>
#include <string_view>
#include <utility>

#include "velan/base/ASCII.h"
#include "velan/base/MutableString.h"
#include "velan/base/utf/UTF.h"
#include "velan/markup/Attributes.h"
#include "velan/markup/Entities.h"
#include "velan/markup/Tags.h"
#include "velan/text/CharacterSets.h"

namespace velan::tool {
namespace {

// What a tag does to the line that it stands in.
enum class Effect : uint8_t { Nothing, EndsCell, EndsLine, EndsParagraph };

struct Element {
  std::u16string_view name;
  Effect effect;
};

// By name. All others end a line.
constexpr Element kElements[] = {
    {u"a", Effect::Nothing},           {u"abbr", Effect::Nothing},
    {u"acronym", Effect::Nothing},     {u"b", Effect::Nothing},
    {u"bdi", Effect::Nothing},         {u"bdo", Effect::Nothing},
    {u"big", Effect::Nothing},         {u"blockquote", Effect::EndsParagraph},
    {u"cite", Effect::Nothing},        {u"code", Effect::Nothing},
    {u"data", Effect::Nothing},        {u"del", Effect::Nothing},
    {u"dfn", Effect::Nothing},         {u"dl", Effect::EndsParagraph},
    {u"em", Effect::Nothing},          {u"font", Effect::Nothing},
    {u"h1", Effect::EndsParagraph},    {u"h2", Effect::EndsParagraph},
    {u"h3", Effect::EndsParagraph},    {u"h4", Effect::EndsParagraph},
    {u"h5", Effect::EndsParagraph},    {u"h6", Effect::EndsParagraph},
    {u"hr", Effect::EndsParagraph},    {u"i", Effect::Nothing},
    {u"img", Effect::Nothing},         {u"ins", Effect::Nothing},
    {u"kbd", Effect::Nothing},         {u"label", Effect::Nothing},
    {u"mark", Effect::Nothing},        {u"nobr", Effect::Nothing},
    {u"ol", Effect::EndsParagraph},    {u"p", Effect::EndsParagraph},
    {u"pre", Effect::EndsParagraph},   {u"q", Effect::Nothing},
    {u"rb", Effect::Nothing},          {u"rp", Effect::Nothing},
    {u"rt", Effect::Nothing},          {u"ruby", Effect::Nothing},
    {u"s", Effect::Nothing},           {u"samp", Effect::Nothing},
    {u"small", Effect::Nothing},       {u"span", Effect::Nothing},
    {u"strike", Effect::Nothing},      {u"strong", Effect::Nothing},
    {u"sub", Effect::Nothing},         {u"sup", Effect::Nothing},
    {u"table", Effect::EndsParagraph}, {u"td", Effect::EndsCell},
    {u"th", Effect::EndsCell},         {u"time", Effect::Nothing},
    {u"title", Effect::EndsParagraph}, {u"tt", Effect::Nothing},
    {u"u", Effect::Nothing},           {u"ul", Effect::EndsParagraph},
    {u"var", Effect::Nothing},         {u"wbr", Effect::Nothing},
};
constexpr size_t kLongestName = 10;
static_assert(std::ranges::is_sorted(kElements, {}, &Element::name));

// Where the elements with each first letter begin, and where the last ones end.
constexpr auto kFirstElements = [] {
  std::array<size_t, 27> first{};
  for (size_t letter = 0; letter < first.size(); ++letter) {
    while (first[letter] < std::size(kElements) && kElements[first[letter]].name[0] < u'a' + letter) ++first[letter];
  }
  return first;
}();

Effect effectOf(std::u16string_view name) {
  const size_t letter = name.empty() ? SIZE_MAX : static_cast<unichar>(name[0] - u'a');
  if (letter >= kFirstElements.size() - 1) return Effect::EndsLine;
  for (size_t i = kFirstElements[letter]; i < kFirstElements[letter + 1]; ++i) {
    if (kElements[i].name == name) return kElements[i].effect;
  }
  return Effect::EndsLine;
}

// A text that is built from left to right out of parts of the markup.
class TextBuilder {
 public:
  TextBuilder(const String& markup, bool attributes)
      : _markup(markup), _source(markup.view()), _attributes(attributes) {}

  MarkupText build() {
    parseXmlWithHandler(_markup, [this](const TagReport& tag) {
      addText(at(tag.textLocation), at(tag.tagLocation));
      addTag(tag);
      return false;
    });
    removeSpaceAtEnd();
    if (!_text.isEmpty()) write(u"\n", {_map.sourceEnd(), 0});
    String text = _text.takeString();
    if (!text) throw std::bad_alloc();
    return {std::move(text), std::move(_map)};
  }

 private:
  bool isSpace(unichar c) const { return isMemberOfCharacterSetRep(_white, c); }
  // A soft hyphen, or a part of a line end.
  static bool isDropped(unichar c) { return c == 0xAD || c == u'\r'; }
  bool divides(unichar c) const { return !_preformatted && isSpace(c); }
  bool isCopied(unichar c) const { return (c > u' ' && c < 0x7F) || (!isDropped(c) && !divides(c)); }

  void addTag(const TagReport& tag) {
    if (tag.kind == TagKind::Section) addSection(at(tag.tagLocation), at(tag.tagLocation + tag.tagLength));
    if (tag.kind != TagKind::Tag || tag.nameLength == 0) return;
    noteDeclarations(tag);
    unichar lower[kLongestName + 1];
    const size_t length = std::min(at(tag.nameLength), std::size(lower));
    std::ranges::transform(_source.substr(at(tag.nameLocation), length), lower,
                           [](unichar c) { return toASCIILower(c); });
    const std::u16string_view name(lower, length);
    if (name == u"pre") _preformatted = _markup[tag.tagLocation + 1] != u'/';
    _break = std::max(_break, effectOf(name));
    if (_attributes && _markup[tag.tagLocation + 1] != u'/') addAttributes(tag, name);
  }

  void addAttributes(const TagReport& tag, std::u16string_view element) {
    const auto valueOf = [&](const char* attribute) {
      return rangeOfAttributeOfTagCharacters(_source.data(), {tag.tagLocation, tag.tagLength}, attribute);
    };
    const auto isDescription = [&] {
      const Range value = element == u"meta" ? valueOf("name") : kAbsentRange;
      return isPresent(value) && equalsIgnoringASCIICase(_source.substr(at(value.location), at(value.length)),
                                                         std::u16string_view(u"description"));
    };
    std::pair<Range, Effect> values[] = {{valueOf("alt"), Effect::Nothing},
                                         {valueOf("title"), Effect::EndsLine},
                                         {isDescription() ? valueOf("content") : kAbsentRange, Effect::EndsLine}};
    std::ranges::sort(values, {}, [](const auto& each) { return each.first.location; });
    for (const auto& [value, effect] : values) {
      if (isPresent(value) && value.location >= _map.sourceEnd()) addValue(value, effect);
    }
  }

  // Apart from what stands around it.
  void addValue(Range value, Effect effect) {
    _space = true;
    _break = std::max(_break, effect);
    addText(at(value.location), at(endOf(value)));
    _space = true;
    _break = std::max(_break, effect);
  }

  void addSection(size_t start, size_t end) {
    constexpr std::u16string_view kOpening = u"<![CDATA[";
    constexpr std::u16string_view kClosing = u"]]>";
    const std::u16string_view section = _source.substr(start, end - start);
    if (!section.starts_with(kOpening)) return;
    if (section.size() >= kOpening.size() + kClosing.size() && section.ends_with(kClosing)) end -= kClosing.size();
    addUnits(start + kOpening.size(), end);
  }

  // A document type may hold declarations in brackets; the first of them ends its tag.
  void noteDeclarations(const TagReport& tag) {
    const std::u16string_view units = _source.substr(at(tag.tagLocation), at(tag.tagLength));
    const bool isDeclaration = units.starts_with(u"<!");
    if (isDeclaration && units.find(u'[') != std::u16string_view::npos) _inDeclarations = true;
    if (!isDeclaration && !units.starts_with(u"<?")) _inDeclarations = false;
  }

  // What ends them, "]>", is no text.
  size_t afterDeclarations(size_t start, size_t end) {
    const auto skipSpace = [&](size_t index) {
      while (index < end && isSpace(_source[index])) ++index;
      return index;
    };
    const size_t bracket = skipSpace(start);
    if (bracket == end || _source[bracket] != u']') return start;
    const size_t close = skipSpace(bracket + 1);
    if (close == end || _source[close] != u'>') return start;
    _inDeclarations = false;
    return close + 1;
  }

  void addText(size_t start, size_t end) {
    if (_inDeclarations) start = afterDeclarations(start, end);
    const bool beginsPreformatted = _preformatted && _break == Effect::EndsParagraph;
    if (beginsPreformatted && start < end && _source[start] == u'\r') ++start;
    if (beginsPreformatted && start < end && _source[start] == u'\n') ++start;
    while (start < end) start = _source[start] == u'&' ? addEntity(start, end) : addRun(start, end);
  }

  // `start` is the place of an ampersand. Returns where what begins there ends.
  size_t addEntity(size_t start, size_t end) {
    constexpr size_t kLongest = 40;  // more than any entity has
    unichar decoded[kLongest];
    std::u16string_view rest = _source.substr(start + 1, std::min(end - start, kLongest) - 1);
    rest = rest.substr(0, rest.find(u'&'));
    const size_t length = rest.size() + 1;
    const size_t written = convertEntities2Characters(_source.data(), decoded, start, length, true, false, false);
    const size_t entityEnd = start + 1 + (length - written);
    if (written == length) {
      addUnits(start, entityEnd);
      return entityEnd;
    }
    const bool isPair = written > 1 && isHighSurrogate(decoded[0]) && isLowSurrogate(decoded[1]);
    const size_t stop = entityEnd + (isPair ? 1 : 0);
    if (divides(decoded[0])) {
      _space = true;
    } else if (!isDropped(decoded[0])) {
      beginWord(start);
      write({decoded, isPair ? 2u : 1u}, rangeOf(start, stop));
    }
    return stop;
  }

  void addUnits(size_t start, size_t end) {
    while (start < end) start = addRun(start, end);
  }

  // Units that are copied together, or one that is not. Returns where they end.
  size_t addRun(size_t start, size_t end) {
    const size_t stop = endOfCopied(start, end);
    if (stop > start) {
      beginWord(start);
      write(_source.substr(start, stop - start), rangeOf(start, stop));
      return stop;
    }
    if (divides(_source[start])) _space = true;
    return start + 1;
  }

  // Where the units end that are copied from `start` on, single spaces between them included. What may be an entity
  // begins a run of its own.
  size_t endOfCopied(size_t start, size_t end) const {
    const auto goesOn = [&](size_t i) { return i < end && _source[i] != u'&' && isCopied(_source[i]); };
    if (start == end || !isCopied(_source[start])) return start;
    size_t stop = start + 1;
    while (goesOn(stop) || (stop < end && _source[stop] == u' ' && goesOn(stop + 1))) ++stop;
    return stop;
  }

  // Writes what lies between the last word and the next.
  void beginWord(size_t start) {
    static constexpr std::u16string_view kBreaks[] = {u" ", u"\t", u"\n", u"\n\n"};
    if (_break >= Effect::EndsLine) removeSpaceAtEnd();
    const bool divided = _space || _break != Effect::Nothing;
    if (divided && !_text.isEmpty()) write(kBreaks[static_cast<size_t>(_break)], rangeOf(at(_map.sourceEnd()), start));
    _space = false;
    _break = Effect::Nothing;
  }

  void removeSpaceAtEnd() {
    int64_t length = _text.length();
    while (length > 0 && isSpace(_text.characters()[length - 1])) --length;
    _text.truncate(length);
    _map.truncate(length);
  }

  void write(std::u16string_view units, Range source) {
    _text.appendString(units);
    _map.add(source, static_cast<int64_t>(units.size()));
  }

  static size_t at(int64_t position) { return static_cast<size_t>(position); }
  static Range rangeOf(size_t start, size_t end) {
    return {static_cast<int64_t>(start), static_cast<int64_t>(end - start)};
  }

  const String& _markup;
  const std::u16string_view _source;
  const bool _attributes;
  MutableString _text;
  SourceMap _map;
  const uint8_t* const _white = whiteCharacterSetRep();
  Effect _break = Effect::Nothing;
  bool _inDeclarations = false;
  bool _space = false;
  bool _preformatted = false;
};

}  // namespace

bool isInLine(std::string_view name) {
  unichar lower[kLongestName + 1];
  const size_t length = std::min(name.size(), std::size(lower));
  std::ranges::transform(name.substr(0, length), lower,
                         [](char c) { return static_cast<unichar>(toASCIILower(static_cast<unsigned char>(c))); });
  return effectOf({lower, length}) == Effect::Nothing;
}

MarkupText textOfMarkup(const String& markup, bool attributes) { return TextBuilder(markup, attributes).build(); }

DecodedMarkup decodePage(const std::string& path, const Data& contents) {
  const bool isUTF8 = !String::fromUTF8(contents.view()).isAbsent();
  const String name = path == "-" ? String() : String::fromUTF8Lossy(path);
  return decodedMarkupOfFile(name, contents, isUTF8 ? StringEncoding::UTF8 : StringEncoding::WindowsLatin1);
}

}  // namespace velan::tool
