#include "tools/markup/MarkupText.h"

#include <algorithm>
#include <string_view>

#include "velan/base/ASCII.h"
#include "velan/markup/Entities.h"
#include "velan/markup/Tags.h"
#include "velan/text/CharacterSets.h"

namespace velan::tool {
namespace {

// What a tag does to the line that it stands in.
enum class Effect : uint8_t { Nothing, EndsCell, EndsLine, EndsParagraph };

bool isWord(std::u16string_view word, std::u16string_view list) {
  for (size_t at = list.find(word); at != std::u16string_view::npos; at = list.find(word, at + 1)) {
    const size_t end = at + word.size();
    if ((at == 0 || list[at - 1] == u' ') && (end == list.size() || list[end] == u' ')) return true;
  }
  return false;
}

Effect effectOf(std::u16string_view name) {
  if (isWord(name,
             u"a abbr acronym b bdi bdo big cite code data del dfn em font i img ins kbd label mark nobr q rb rp rt "
             u"ruby s samp small span strike strong sub sup time tt u var wbr")) {
    return Effect::Nothing;
  }
  if (isWord(name, u"td th")) return Effect::EndsCell;
  const bool paragraph = isWord(name, u"blockquote dl h1 h2 h3 h4 h5 h6 hr ol p pre table title ul");
  return paragraph ? Effect::EndsParagraph : Effect::EndsLine;
}

class TextBuilder {
 public:
  explicit TextBuilder(const String& markup) : _markup(markup) {}

  std::u16string build() {
    parseXmlWithHandler(_markup, [this](const TagReport& tag) {
      addText(_markup.substring({tag.textLocation, tag.tagLocation - tag.textLocation}));
      addTag(tag);
      return false;
    });
    while (!_text.empty() && isSpace(_text.back())) _text.pop_back();
    if (!_text.empty()) _text.push_back(u'\n');
    return std::move(_text);
  }

 private:
  static bool isSpace(unichar c) { return isMemberOfCharacterSetRep(whiteCharacterSetRep(), c); }

  void addTag(const TagReport& tag) {
    if (tag.kind == TagKind::Section) addSection(_markup.view().substr(at(tag.tagLocation), at(tag.tagLength)));
    if (tag.kind != TagKind::Tag || tag.nameLength == 0) return;
    std::u16string name(_markup.view().substr(at(tag.nameLocation), at(tag.nameLength)));
    for (unichar& c : name) c = toASCIILower(c);
    const bool closes = _markup[tag.tagLocation + 1] == u'/';
    const Effect effect = effectOf(name);
    if (name == u"pre") _preformatted = !closes;
    if (effect == Effect::EndsCell && closes) _break = std::max(_break, Effect::EndsCell);
    if (effect != Effect::EndsCell) _break = std::max(_break, effect);
  }

  void addSection(std::u16string_view section) {
    if (!section.starts_with(u"<![CDATA[")) return;
    section.remove_prefix(9);
    if (section.ends_with(u"]]>")) section.remove_suffix(3);
    addUnits(section);
  }

  void addText(const String& run) {
    if (!run.isEmpty()) addUnits(stringByConvertingEntitiesToCharacters(run).view());
  }

  void addUnits(std::u16string_view units) {
    if (_preformatted && _break == Effect::EndsParagraph && units.starts_with(u'\n')) units.remove_prefix(1);
    for (const unichar c : units) {
      if (c == 0xAD) continue;  // a soft hyphen
      if (isSpace(c) && !_preformatted) {
        _space = true;
      } else if (c != u'\r') {
        beginWord();
        _text.push_back(c);
      }
    }
  }

  // Writes what lies between the last word and the next.
  void beginWord() {
    static constexpr std::u16string_view kBreaks[] = {u" ", u"\t", u"\n", u"\n\n"};
    const bool isFirst = _text.empty();
    if (_break >= Effect::EndsLine) {
      while (!_text.empty() && isSpace(_text.back())) _text.pop_back();
    }
    if (!isFirst && (_space || _break != Effect::Nothing)) _text += kBreaks[static_cast<size_t>(_break)];
    _space = false;
    _break = Effect::Nothing;
  }

  static size_t at(int64_t position) { return static_cast<size_t>(position); }

  const String& _markup;
  std::u16string _text;
  Effect _break = Effect::Nothing;
  bool _space = false;
  bool _preformatted = false;
};

}  // namespace

std::u16string textOfMarkup(const String& markup) { return TextBuilder(markup).build(); }

DecodedMarkup decodePage(const std::string& path, const Data& contents) {
  const bool isUTF8 = !String::fromUTF8(contents.view()).isAbsent();
  const String name = path == "-" ? String() : String::fromUTF8Lossy(path);
  return decodedMarkupOfFile(name, contents, isUTF8 ? StringEncoding::UTF8 : StringEncoding::WindowsLatin1);
}

}  // namespace velan::tool
