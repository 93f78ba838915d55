#include "tools/documents/PlainText.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <utility>

#include "velan/base/MutableString.h"
#include "velan/base/utf/UTF.h"
#include "velan/query/filter/ByteSearch.h"
#include "velan/text/editing/Ligatures.h"
#include "velan/text/editing/Normalization.h"

namespace velan::tool {
namespace {

constexpr unichar kSoftHyphen = 0xAD;
constexpr size_t kBlock = 64;
constexpr size_t kLongestCluster = 32;  // a letter and what is composed with it

struct UnitRange {
  unichar first;
  unichar last;
};

// What is composed with the unit before it where Unicode has the whole: diacritics, signs of vowels and their parts,
// voicing marks, vowels and finals of Hangul.
constexpr UnitRange kComposing[] = {
    {0x0300, 0x036F}, {0x0653, 0x0655}, {0x093C, 0x093C}, {0x09BE, 0x09BE}, {0x09D7, 0x09D7}, {0x0B3E, 0x0B3E},
    {0x0B56, 0x0B57}, {0x0BBE, 0x0BBE}, {0x0BD7, 0x0BD7}, {0x0C56, 0x0C56}, {0x0CC2, 0x0CC2}, {0x0CD5, 0x0CD6},
    {0x0D3E, 0x0D3E}, {0x0D57, 0x0D57}, {0x0DCA, 0x0DCA}, {0x0DCF, 0x0DCF}, {0x0DDF, 0x0DDF}, {0x102E, 0x102E},
    {0x1161, 0x1175}, {0x11A8, 0x11C2}, {0x1B35, 0x1B35}, {0x3099, 0x309A}};
constexpr UnitRange kFullWidth[] = {{0xFF10, 0xFF19}, {0xFF21, 0xFF3A}, {0xFF41, 0xFF5A}};
constexpr UnitRange kLigatures[] = {{0xFB00, 0xFB06}};
constexpr UnitRange kSoftHyphens[] = {{kSoftHyphen, kSoftHyphen}};
constexpr UnitRange kJoinedLetters[] = {{0xC6, 0xC6},   {0xDF, 0xDF},   {0xE6, 0xE6},
                                        {0x132, 0x133}, {0x152, 0x153}, {0x1E9E, 0x1E9E}};
constexpr UnitRange kHyphens[] = {{u'-', u'-'}, {kSoftHyphen, kSoftHyphen}, {0x2010, 0x2010}};
constexpr UnitRange kLineEnds[] = {{u'\n', u'\n'}, {u'\r', u'\r'}};
// All unusual units and more, in fewer ranges.
constexpr UnitRange kSuspicious[] = {{0xAD, 0xAD},     {0x300, 0x36F},   {0x653, 0x655},   {0x93C, 0x11C2},
                                     {0x1B35, 0x1B35}, {0x3099, 0x309A}, {0xFB00, 0xFB06}, {0xFF10, 0xFF5A}};

// Whether `c` is in one of the ranges. Without branches, so that loops over units become vector code.
template <const auto& kRanges>
constexpr uint16_t isIn(unichar c) {
  return [c]<size_t... kIndex>(std::index_sequence<kIndex...>) {
    return static_cast<uint16_t>(
        (static_cast<uint16_t>(static_cast<uint16_t>(c - kRanges[kIndex].first) <=
                               static_cast<uint16_t>(kRanges[kIndex].last - kRanges[kIndex].first)) |
         ...));
  }
  (std::make_index_sequence<std::size(kRanges)>());
}

uint16_t isUnusualUnit(unichar c) {
  return isIn<kComposing>(c) | isIn<kFullWidth>(c) | isIn<kLigatures>(c) | isIn<kSoftHyphens>(c);
}

// Whether `holds(unit, next unit)` for any unit of a block, behind which there is another one.
template <typename Holds>
bool anyIn(const unichar* block, Holds holds) {
  uint16_t any = 0;
  for (size_t i = 0; i < kBlock; ++i) any = static_cast<uint16_t>(any | holds(block[i], block[i + 1]));
  return any != 0;
}

bool holdsUnusual(const unichar* block) {
  return anyIn(block, [](unichar c, unichar) { return isIn<kSuspicious>(c); }) &&
         anyIn(block, [](unichar c, unichar) { return isUnusualUnit(c); });
}

bool isASCII(const unichar* block) {
  return !anyIn(block, [](unichar c, unichar) { return static_cast<uint16_t>(c & 0xFF80); });
}

void addSpellingOfBlock(const unichar* block, Spelling& spelling) {
  spelling.lineEndHyphens |=
      anyIn(block, [](unichar c, unichar next) { return isIn<kHyphens>(c) & isIn<kLineEnds>(next); });
  if (isASCII(block)) return;
  spelling.joinedLetters |= anyIn(block, [](unichar c, unichar) { return isIn<kJoinedLetters>(c); });
  spelling.unusual |= holdsUnusual(block);
}

// Alike prints are of one kind.
unsigned kindOfPrint(const BytePrint& print) {
  const auto begins = [&print](uint8_t first) { return print[0][first]; };
  if (begins('-') || begins(0xCC) || begins(0xCD)) return 0;
  if (begins(0xC2) || begins(0xC4)) return 1;
  if (begins(0xC3)) return 2;
  if (begins(0xC5) || begins(0xD9)) return 3;
  if (begins(0xE0) || begins(0xE1)) return 4;
  if (begins(0xE3)) return 5;
  const bool isWide = begins(0xEF) && (print[1][0xBC] || print[1][0xBD]);
  return isWide ? 6 : 7;
}

void addPrintOf(unichar c, PrintTable& prints) {
  char bytes[kMaxUTF8BytesPerUnit];
  const size_t length = convertUTF16ToUTF8({&c, 1}, bytes).written;
  BytePrint print;
  for (size_t i = 0; i < kPrintLength; ++i) i < length ? print[i].set(static_cast<uint8_t>(bytes[i])) : print[i].set();
  if (c == u'-') print[1].reset().set('\n').set('\r');
  prints.add(print, kindOfPrint(print));
}

template <const auto& kRanges>
void addPrintsOf(PrintTable& prints) {
  for (const UnitRange& range : kRanges) {
    for (uint32_t c = range.first; c <= range.last; ++c) addPrintOf(static_cast<unichar>(c), prints);
  }
}

PrintTable spellingPrints() {
  PrintTable prints;
  addPrintsOf<kComposing>(prints);
  addPrintsOf<kFullWidth>(prints);
  addPrintsOf<kLigatures>(prints);
  addPrintsOf<kJoinedLetters>(prints);
  addPrintsOf<kHyphens>(prints);
  return prints;
}

class PlainTextBuilder {
 public:
  explicit PlainTextBuilder(const String& text) : _source(text.view()) {}

  MappedText build() {
    for (size_t i = 0; i < _source.size();) {
      if (i % kBlock == 0 && _source.size() - i > kBlock && !holdsUnusual(_source.data() + i)) {
        i += kBlock;
      } else {
        i = isUnusualUnit(_source[i]) ? rewrite(i) : i + 1;
      }
    }
    copyUntil(_source.size());
    String text = _text.takeString();
    if (!text) throw std::bad_alloc();
    return {std::move(text), std::move(_map)};
  }

 private:
  // Returns where to go on.
  size_t rewrite(size_t index) {
    const unichar c = _source[index];
    if (isIn<kComposing>(c)) return compose(index);
    if (c == kSoftHyphen && isLineEndHyphen(_source, index)) return index + 1;
    copyUntil(index);
    if (isIn<kFullWidth>(c)) {
      const auto plain = static_cast<unichar>(c - 0xFEE0);
      write({&plain, 1}, index + 1);
    } else if (isIn<kLigatures>(c)) {
      MutableString letters(_source.substr(index, 1));
      if (!convertLigaturesToCharacters(letters)) throw std::bad_alloc();
      write(letters.view(), index + 1);
    }
    _copied = index + 1;
    return index + 1;
  }

  // The unit before `index` with all that follows and is composed with it. Clusters longer than any writing has are
  // left alone beyond that length.
  size_t compose(size_t index) {
    size_t end = index + 1;
    const size_t limit = index + std::min(_source.size() - index, kLongestCluster);
    while (end < limit && isIn<kComposing>(_source[end])) ++end;
    if (index == _copied) return end;  // nothing to be composed with
    const std::u16string_view cluster = _source.substr(index - 1, end - index + 1);
    MutableString composed(cluster);
    if (!normalizeString(composed, NormalizationForm::C)) throw std::bad_alloc();
    if (composed.view() != cluster) {
      copyUntil(index - 1);
      write(composed.view(), end);
    }
    return end;
  }

  void copyUntil(size_t end) {
    if (end > _copied) write(_source.substr(_copied, end - _copied), end);
  }

  // `units` stand for what is not written yet, up to `end`.
  void write(std::u16string_view units, size_t end) {
    _text.appendString(units);
    _map.add({static_cast<int64_t>(_copied), static_cast<int64_t>(end - _copied)}, static_cast<int64_t>(units.size()));
    _copied = end;
  }

  const std::u16string_view _source;
  size_t _copied = 0;  // what lies before it is written or left out
  MutableString _text;
  SourceMap _map;
};

}  // namespace

bool isUnusual(unichar c) { return isUnusualUnit(c) != 0; }

bool isComposing(unichar c) { return isIn<kComposing>(c) != 0; }

bool isJoinedLetter(unichar c) { return isIn<kJoinedLetters>(c) != 0; }

std::u16string withoutJoinedLetters(std::u16string_view text) {
  MutableString letters(text);
  if (!convertLigaturesToCharacters(letters)) throw std::bad_alloc();
  std::u16string result;
  for (const unichar c : letters.view()) {
    if (c == 0xDF || c == 0x1E9E) {
      result += c == 0xDF ? u"ss" : u"SS";
    } else {
      result += c;
    }
  }
  return result;
}

bool isLineEndHyphen(std::u16string_view text, size_t index) {
  return isIn<kHyphens>(text[index]) != 0 && index + 1 < text.size() && isIn<kLineEnds>(text[index + 1]) != 0;
}

size_t findOtherSpelling(std::u16string_view text, size_t index) {
  const auto isSuspicious = [](unichar c, unichar next) {
    return static_cast<uint16_t>(isIn<kJoinedLetters>(c) | (isIn<kHyphens>(c) & isIn<kLineEnds>(next)));
  };
  while (text.size() - index > kBlock && !anyIn(text.data() + index, isSuspicious)) index += kBlock;
  while (index < text.size() && !isJoinedLetter(text[index]) && !isLineEndHyphen(text, index)) ++index;
  return index;
}

Spelling spellingOf(std::u16string_view text) {
  Spelling spelling;
  for (; text.size() > kBlock; text.remove_prefix(kBlock)) addSpellingOfBlock(text.data(), spelling);
  unichar rest[kBlock + 1] = {};
  std::ranges::copy(text, rest);
  addSpellingOfBlock(rest, spelling);
  return spelling;
}

size_t findOtherSpellingInUTF8(std::string_view text, size_t from) {
  static const PrintTable kPrints = spellingPrints();
  return findPrint(text, from, kPrints);
}

Spelling spellingOfUTF8(std::string_view text, FunctionRef<bool(char before, char after)> join) {
  Spelling spelling;
  size_t at = findOtherSpellingInUTF8(text, 0);
  for (; at < text.size() && !spelling.isAnything(); at = findOtherSpellingInUTF8(text, at + 1)) {
    const auto [c, length] = unitInUTF8(text, at);
    spelling.joinedLetters |= isIn<kJoinedLetters>(c) != 0;
    spelling.unusual |= isUnusualUnit(c) != 0;
    if (at == 0 || isIn<kHyphens>(c) == 0 || spelling.lineEndHyphens) continue;
    const size_t next = startOfNextLine(text, at + length);
    spelling.lineEndHyphens = next < text.size() && join(text[at - 1], text[next]);
  }
  return spelling;
}

size_t startOfNextLine(std::string_view text, size_t end) {
  if (end >= text.size() || (text[end] != '\n' && text[end] != '\r')) return text.size();
  const bool isPair = text.substr(end).starts_with("\r\n");
  return std::min(text.find_first_not_of(" \t", end + (isPair ? 2 : 1)), text.size());
}

UnitInUTF8 unitInUTF8(std::string_view text, size_t at) {
  const auto byteAt = [&](size_t i) { return i < text.size() ? static_cast<uint8_t>(text[i]) : uint8_t{0}; };
  const auto follows = [&](size_t i) { return (byteAt(i) & 0xC0) == 0x80; };
  const unsigned first = byteAt(at);
  if (first < 0x80) return {static_cast<unichar>(first), 1};
  if (first >= 0xC2 && first < 0xE0 && follows(at + 1)) {
    return {static_cast<unichar>((first & 0x1F) << 6 | (byteAt(at + 1) & 0x3Fu)), 2};
  }
  if (first >= 0xE0 && first < 0xF0 && follows(at + 1) && follows(at + 2)) {
    return {static_cast<unichar>((first & 0xF) << 12 | (byteAt(at + 1) & 0x3Fu) << 6 | (byteAt(at + 2) & 0x3Fu)), 3};
  }
  return {0xFFFD, 1};
}

MappedText plainText(const String& text) {
  return spellingOf(text.view()).unusual ? PlainTextBuilder(text).build() : MappedText{text, {}};
}

}  // namespace velan::tool
