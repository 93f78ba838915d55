#include "tools/search/LinePrinter.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "velan/base/utf/UTF.h"

namespace velan::tool {
namespace {

// A part of the text to highlight.
struct Mark {
  Range range;
  bool primary;
};

// Where occurrences overlap the one that begins first covers the others, so that marks follow each other.
std::vector<Mark> marksOf(const DocumentHits& hits) {
  std::vector<Mark> marks;
  int64_t reached = 0;
  for (const QueryOccurrence& each : hits.occurrences) {
    const int64_t start = std::max(each.range.location, reached);
    if (start >= endOf(each.range)) continue;
    reached = endOf(each.range);
    marks.push_back({{start, reached - start}, each.primary});
  }
  return marks;
}

Range intersection(Range a, Range b) {
  const int64_t start = std::max(a.location, b.location);
  return {start, std::max(std::min(endOf(a), endOf(b)) - start, int64_t{0})};
}

std::u16string_view unitsOf(const String& text, int64_t start, int64_t end) {
  return text.view().substr(static_cast<size_t>(start), static_cast<size_t>(end - start));
}

// The part of a line to show: at most `columns` units, with `occurrence` in their middle or, where it is longer, its
// beginning.
Range shownPart(Range line, Range occurrence, int64_t columns) {
  if (line.length <= columns) return line;
  const int64_t room = std::max(columns - occurrence.length, int64_t{0});
  const int64_t start = std::clamp(occurrence.location - room / 2, line.location, endOf(line) - columns);
  return {start, columns};
}

class Printer {
 public:
  Printer(const std::string& path, const Document& document, const TextLines& lines, const DocumentHits& hits,
          const LineStyle& style)
      : _document(document),
        _text(document.text.view()),
        _lines(lines),
        _hits(hits),
        _style(style),
        _path(path),
        _marks(marksOf(hits)) {
    if (style.withPath && style.heading) _out = pathPrefix(path, style, '\n');
    const bool whole = style.form == LineForm::Lines;
    walkBlocks(
        hits.blocks, lines.count(), whole ? style.before : 0, whole ? style.after : 0,
        [this](const LineBlock& block) { printBlock(block); }, [this](size_t line) { printLine(line, '-'); });
  }

  std::string takeText() { return std::move(_out); }

 private:
  void printBlock(const LineBlock& block) {
    if (_style.form == LineForm::Lines || block.firstOccurrence == block.endOccurrence) {
      for (size_t line = block.firstLine; line <= block.lastLine; ++line) printLine(line, ':');
      return;
    }
    for (size_t i = block.firstOccurrence; i < block.endOccurrence; ++i) {
      _style.form == LineForm::Columns ? printWithColumn(_hits.occurrences[i]) : printAlone(_hits.occurrences[i]);
    }
  }

  void printLine(size_t line, char separator) {
    if (_style.before + _style.after > 0 && _next > 0 && line > _next) _out += "--\n";
    _next = line + 1;
    appendPrefix(_lines.number(line), separator);
    if (_style.form == LineForm::Columns) _out += "1:";
    appendLine(_lines.range(line));
  }

  void printWithColumn(const QueryOccurrence& occurrence) {
    const Range line = _lines.range(_lines.lineAt(occurrence.range.location));
    const int64_t position = _document.map.sourceOf(occurrence.range).location;
    if (!_sourceLines) _sourceLines.emplace(_document.source.view());
    const size_t sourceLine = _sourceLines->lineAt(position);
    appendPrefix(sourceLine + 1, ':');
    _out += fmt::format("{}:", columnOf(position, _sourceLines->range(sourceLine).location));
    appendPart(line, occurrence.range);
  }

  // Of a unit of the source, whose line begins at `start`. Goes on from the occurrence before in the same line.
  size_t columnOf(int64_t position, int64_t start) {
    if (_measured < start || _measured > position) {
      _measured = start;
      _bytes = 0;
    }
    std::string between;
    appendUTF8Lossy(unitsOf(_document.source, _measured, position), between);
    _measured = position;
    _bytes += between.size();
    return _bytes + 1;
  }

  void printAlone(const QueryOccurrence& occurrence) {
    const size_t last = _lines.lineAt(endOf(occurrence.range) - 1);
    for (size_t line = _lines.lineAt(occurrence.range.location); line <= last; ++line) {
      const Range part = intersection(occurrence.range, _lines.range(line));
      if (part.length == 0) continue;
      appendPrefix(_lines.number(line), ':');
      appendLine(part);
    }
  }

  void appendPrefix(size_t number, char separator) {
    if (_style.withPath && !_style.heading) _out += pathPrefix(_path, _style, separator);
    if (!_style.withNumber) return;
    _out += painted(fmt::to_string(number), kNumberColor, _style.color);
    _out += separator;
  }

  // A line without its number, or a part of one.
  void appendLine(Range line) {
    moveTo(line.location);
    const bool isMarked = _mark < _marks.size() && _marks[_mark].range.location < endOf(line);
    appendPart(line, isMarked ? intersection(_marks[_mark].range, line) : Range{line.location, 0});
  }

  // Around `occurrence` if the line is too long.
  void appendPart(Range line, Range occurrence) {
    const auto columns = static_cast<int64_t>(_style.maxColumns);
    const Range part = columns == 0 ? line : wholeCharacters(shownPart(line, occurrence, columns));
    if (part.location > line.location) _out += "…";
    appendMarked(part);
    if (endOf(part) < endOf(line)) _out += "…";
    _out += '\n';
  }

  Range wholeCharacters(Range part) const {
    const auto isSecondHalf = [this](int64_t index) {
      return index > 0 && index < static_cast<int64_t>(_text.size()) &&
             isLowSurrogate(_text[static_cast<size_t>(index)]) &&
             isHighSurrogate(_text[static_cast<size_t>(index - 1)]);
    };
    const int64_t start = part.location + (isSecondHalf(part.location) ? 1 : 0);
    const int64_t end = endOf(part) - (isSecondHalf(endOf(part)) ? 1 : 0);
    return {start, std::max(end - start, int64_t{0})};
  }

  // Lines are printed in their order, but several times where they show several occurrences.
  void moveTo(int64_t position) {
    while (_mark > 0 && endOf(_marks[_mark - 1].range) > position) --_mark;
    while (_mark < _marks.size() && endOf(_marks[_mark].range) <= position) ++_mark;
  }

  void appendMarked(Range part) {
    if (!_style.color) return appendUnits(part.location, endOf(part), _out);
    moveTo(part.location);
    int64_t position = part.location;
    for (size_t i = _mark; i < _marks.size() && _marks[i].range.location < endOf(part); ++i) {
      const Range mark = intersection(_marks[i].range, part);
      if (mark.length == 0) continue;
      appendUnits(position, mark.location, _out);
      _out += _marks[i].primary ? kPrimaryColor : kFurtherColor;
      position = endOf(mark);
      appendUnits(mark.location, position, _out);
      _out += kPlain;
    }
    appendUnits(position, endOf(part), _out);
  }

  void appendUnits(int64_t start, int64_t end, std::string& out) const {
    appendUTF8Lossy(unitsOf(_document.text, start, end), out);
  }

  const Document& _document;
  const std::u16string_view _text;
  const TextLines& _lines;
  const DocumentHits& _hits;
  const LineStyle& _style;
  const std::string& _path;
  const std::vector<Mark> _marks;
  size_t _mark = 0;  // the first that ends after the line
  size_t _next = 0;  // the line after the last one printed
  std::optional<TextLines> _sourceLines;
  int64_t _measured = 0;  // a unit of the source
  size_t _bytes = 0;      // from the start of its line to it
  std::string _out;
};

}  // namespace

std::string printLines(const std::string& path, const Document& document, const TextLines& lines,
                       const DocumentHits& hits, const LineStyle& style) {
  return Printer(path, document, lines, hits, style).takeText();
}

}  // namespace velan::tool
