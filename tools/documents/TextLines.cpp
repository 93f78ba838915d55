#include "tools/documents/TextLines.h"

#include <algorithm>

namespace velan::tool {

TextLines::TextLines(std::u16string_view text) : _text(text) {
  const unichar end = text.find(u'\n') != std::u16string_view::npos ? u'\n' : u'\r';
  for (size_t start = 0; start < text.size();) {
    _starts.push_back(static_cast<int64_t>(start));
    const size_t found = text.find(end, start);
    start = found == std::u16string_view::npos ? text.size() : found + 1;
  }
}

TextLines::TextLines(const Document& document) : TextLines(document.text.view()) {
  if (document.textIsSource()) return;
  const TextLines source(document.source.view());
  _numbers.reserve(count());
  for (const int64_t start : _starts) {
    _numbers.push_back(source.lineAt(document.map.sourceOf({start, 1}).location) + 1);
  }
}

size_t TextLines::lineAt(int64_t index) const {
  const auto after = std::upper_bound(_starts.begin(), _starts.end(), index);
  return static_cast<size_t>(after - _starts.begin()) - 1;
}

Range TextLines::fullRange(size_t line) const {
  const int64_t end = line + 1 < _starts.size() ? _starts[line + 1] : static_cast<int64_t>(_text.size());
  return {_starts[line], end - _starts[line]};
}

Range TextLines::range(size_t line) const {
  Range range = fullRange(line);
  const auto endsWith = [&](unichar c) {
    return range.length > 0 && _text[static_cast<size_t>(endOf(range) - 1)] == c;
  };
  if (endsWith(u'\n')) --range.length;
  if (endsWith(u'\r')) --range.length;
  return range;
}

bool TextLines::isBlank(size_t line) const {
  const Range range = fullRange(line);
  const auto units = _text.substr(static_cast<size_t>(range.location), static_cast<size_t>(range.length));
  return units.find_first_not_of(u" \t\r\n\v\f\u00A0\u3000") == std::u16string_view::npos;
}

std::vector<Range> TextLines::paragraphs() const {
  std::vector<Range> paragraphs;
  bool open = false;
  for (size_t line = 0; line < count(); ++line) {
    const bool blank = isBlank(line);
    const Range range = fullRange(line);
    if (!blank && open) paragraphs.back().length += range.length;
    if (!blank && !open) paragraphs.push_back(range);
    open = !blank;
  }
  return paragraphs;
}

size_t TextLines::firstLineWithText(Range range) const {
  const size_t first = lineAt(range.location);
  for (size_t line = first; line < count() && _starts[line] < endOf(range); ++line) {
    if (!isBlank(line)) return line;
  }
  return first;
}

}  // namespace velan::tool
