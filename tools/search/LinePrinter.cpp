#include "tools/search/LinePrinter.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "velan/base/utf/UTF.h"

namespace velan::tool {
namespace {

constexpr std::string_view kPathColor = "\x1b[35m";
constexpr std::string_view kNumberColor = "\x1b[32m";
constexpr std::string_view kPrimaryColor = "\x1b[1;31m";
constexpr std::string_view kFurtherColor = "\x1b[31m";
constexpr std::string_view kPlain = "\x1b[0m";

std::string painted(std::string_view text, std::string_view color, bool useColor) {
  return useColor ? fmt::format("{}{}{}", color, text, kPlain) : std::string(text);
}

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

class Printer {
 public:
  Printer(const std::string& path, const String& text, const TextLines& lines, const DocumentHits& hits,
          const LineStyle& style)
      : _text(text.view()), _lines(lines), _style(style), _path(paintedPath(path, style.color)), _marks(marksOf(hits)) {
    if (style.withPath && style.heading) _out = _path + '\n';
    walkBlocks(
        hits.blocks, lines.count(), style.context,
        [this](const LineBlock& block) {
          for (size_t line = block.firstLine; line <= block.lastLine; ++line) printLine(line, ':');
        },
        [this](size_t line) { printLine(line, '-'); });
  }

  std::string takeText() { return std::move(_out); }

 private:
  void printLine(size_t line, char separator) {
    if (_style.context > 0 && _next > 0 && line > _next) _out += "--\n";
    _next = line + 1;
    if (_style.withPath && !_style.heading) _out.append(_path).push_back(separator);
    _out += painted(fmt::to_string(_lines.number(line)), kNumberColor, _style.color);
    _out += separator;
    appendLine(_lines.range(line));
    _out += '\n';
  }

  void appendLine(Range line) {
    if (!_style.color) return append(line.location, endOf(line));
    int64_t position = line.location;
    while (_mark < _marks.size() && endOf(_marks[_mark].range) <= position) ++_mark;
    for (size_t i = _mark; i < _marks.size() && _marks[i].range.location < endOf(line); ++i) {
      const int64_t start = std::max(_marks[i].range.location, position);
      append(position, start);
      _out += _marks[i].primary ? kPrimaryColor : kFurtherColor;
      position = std::min(endOf(_marks[i].range), endOf(line));
      append(start, position);
      _out += kPlain;
    }
    append(position, endOf(line));
  }

  void append(int64_t start, int64_t end) {
    appendUTF8Lossy(_text.substr(static_cast<size_t>(start), static_cast<size_t>(end - start)), _out);
  }

  std::u16string_view _text;
  const TextLines& _lines;
  const LineStyle& _style;
  const std::string _path;
  const std::vector<Mark> _marks;
  size_t _mark = 0;  // the first that may end after the line
  size_t _next = 0;  // the line after the last one printed
  std::string _out;
};

}  // namespace

std::string paintedPath(const std::string& path, bool color) { return painted(path, kPathColor, color); }

std::string printLines(const std::string& path, const String& text, const TextLines& lines, const DocumentHits& hits,
                       const LineStyle& style) {
  return Printer(path, text, lines, hits, style).takeText();
}

}  // namespace velan::tool
