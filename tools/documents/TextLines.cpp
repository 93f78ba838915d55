#include "tools/documents/TextLines.h"

#include <algorithm>
#include <bit>

namespace velan::tool {
namespace {

constexpr size_t kBlock = 64;

// A bit for each unit of a block. The first loop becomes vector code; the second gathers the lowest bits of eight bytes
// in the highest byte: each byte of the factor moves one of them there, and none meets another.
uint64_t unitsEqualTo(unichar c, const unichar* block) {
  uint8_t equal[kBlock];
  for (size_t i = 0; i < kBlock; ++i) equal[i] = block[i] == c ? 1 : 0;
  uint64_t marks = 0;
  for (size_t i = 0; i < kBlock; i += 8) {
    uint64_t bytes = 0;
    for (size_t j = 8; j-- > 0;) bytes = bytes << 8 | equal[i + j];
    marks |= (bytes * 0x0102040810204080 >> 56) << i;
  }
  return marks;
}

}  // namespace

TextLines::TextLines(std::u16string_view text) : _text(text) {
  if (text.empty()) return;
  _starts.push_back(0);
  addStartsAfter(u'\n');
  if (_starts.size() == 1) addStartsAfter(u'\r');
  if (_starts.back() == static_cast<int64_t>(text.size())) _starts.pop_back();
}

TextLines::TextLines(const Document& document) : TextLines(document.text.view()) {
  if (document.textIsSource()) return;
  _map = &document.map;
  _source = std::make_shared<const TextLines>(document.source.view());
}

// Compares some units at a time, and looks closely only where one of them ends a line.
void TextLines::addStartsAfter(unichar end) {
  size_t i = 0;
  for (; _text.size() - i >= kBlock; i += kBlock) {
    for (uint64_t marks = unitsEqualTo(end, _text.data() + i); marks != 0; marks &= marks - 1) {
      _starts.push_back(static_cast<int64_t>(i) + std::countr_zero(marks) + 1);
    }
  }
  for (; i < _text.size(); ++i) {
    if (_text[i] == end) _starts.push_back(static_cast<int64_t>(i) + 1);
  }
}

size_t TextLines::number(size_t line) const {
  return (_source ? _source->lineAt(_map->sourceOf({_starts[line], 1}).location) : line) + 1;
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
