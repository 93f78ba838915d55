#include "tools/documents/TextOffsets.h"

#include <algorithm>
#include <string_view>

#include "velan/base/utf/UTF.h"

namespace velan::tool {
namespace {

constexpr int64_t kStride = 1024;

constexpr int64_t kReplacementLength = 3;  // U+FFFD in UTF-8

// How many bytes the decoder replaced by one U+FFFD: the most, up to three, that still give only one unit.
int64_t malformedLength(std::string_view bytes) {
  int64_t length = 1;
  unichar units[kReplacementLength];
  for (size_t count = 2; count <= std::min(bytes.size(), std::size(units)); ++count) {
    if (convertUTF8ToUTF16Lossy(bytes.substr(0, count), units) == 1) length = static_cast<int64_t>(count);
  }
  return length;
}

}  // namespace

TextOffsets::TextOffsets(const Document& document) : _document(document) {
  if (!isUTF8() && !isUTF16(document.encoding)) _sources = sourceOffsets(document);
  TextOffset offset{static_cast<int64_t>(document.markLength), 0, 0};
  for (int64_t unit = 0; unit < document.text.length(); ++unit) {
    if (unit % kStride == 0) _checkpoints.push_back(offset);
    offset = after(offset, unit);
  }
  if (document.text.length() % kStride == 0) _checkpoints.push_back(offset);
}

TextOffset TextOffsets::at(int64_t unit) const {
  int64_t position = unit / kStride * kStride;
  TextOffset offset = _checkpoints[static_cast<size_t>(unit / kStride)];
  for (; position < unit; ++position) offset = after(offset, position);
  if (!_sources.empty()) offset.bytes = _sources[static_cast<size_t>(unit)];
  return offset;
}

// A pair counts with its first unit. `offset` is that of `unit`.
TextOffset TextOffsets::after(TextOffset offset, int64_t unit) const {
  const String& text = _document.text;
  const unichar c = text[unit];
  const bool pairBegins = isHighSurrogate(c) && unit + 1 < text.length() && isLowSurrogate(text[unit + 1]);
  const bool pairEnds = isLowSurrogate(c) && unit > 0 && isHighSurrogate(text[unit - 1]);
  const int64_t utf8 = pairBegins ? 4 : pairEnds ? 0 : c < 0x80 ? 1 : c < 0x800 ? 2 : 3;
  int64_t bytes = utf8;
  if (!isUTF8()) {
    bytes = 2;
  } else if (c == 0xFFFD) {
    const std::string_view rest = std::string_view(_document.bytes).substr(static_cast<size_t>(offset.bytes));
    bytes = rest.starts_with("\xEF\xBF\xBD") ? kReplacementLength : malformedLength(rest);
  }
  const auto end = static_cast<int64_t>(_document.bytes.size());  // a last byte of UTF-16 may lack its partner
  return {std::min(offset.bytes + bytes, end), offset.utf8 + utf8, offset.characters + (pairEnds ? 0 : 1)};
}

}  // namespace velan::tool
