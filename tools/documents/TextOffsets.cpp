#include "tools/documents/TextOffsets.h"

#include <algorithm>
#include <string_view>

#include "velan/base/utf/UTF.h"

namespace velan::tool {
namespace {

constexpr int64_t kStride = 64;

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

TextOffsets::TextOffsets(const Document& document) : _text(document.source), _document(&document) {
  if (document.encoding != StringEncoding::UTF8 && !isUTF16(document.encoding)) _sources = sourceOffsets(document);
  addCheckpoints({static_cast<int64_t>(document.markLength), 0, 0});
}

TextOffsets::TextOffsets(const String& text) : _text(text), _document(nullptr) { addCheckpoints({0, 0, 0}); }

void TextOffsets::addCheckpoints(TextOffset offset) {
  for (int64_t unit = 0; unit < _text.length(); ++unit) {
    if (unit % kStride == 0) _checkpoints.push_back(offset);
    offset = after(offset, unit);
  }
  if (_text.length() % kStride == 0) _checkpoints.push_back(offset);
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
  const unichar c = _text[unit];
  const bool pairBegins = isHighSurrogate(c) && unit + 1 < _text.length() && isLowSurrogate(_text[unit + 1]);
  const bool pairEnds = isLowSurrogate(c) && unit > 0 && isHighSurrogate(_text[unit - 1]);
  const int64_t utf8 = pairBegins ? 4 : pairEnds ? 0 : c < 0x80 ? 1 : c < 0x800 ? 2 : 3;
  const int64_t bytes = _document ? lengthInFile(offset, c, utf8) : utf8;
  return {offset.bytes + bytes, offset.utf8 + utf8, offset.characters + (pairEnds ? 0 : 1)};
}

int64_t TextOffsets::lengthInFile(TextOffset offset, unichar c, int64_t utf8) const {
  const std::string_view bytes = _document->bytes;
  const auto rest = static_cast<int64_t>(bytes.size()) - offset.bytes;
  if (_document->encoding != StringEncoding::UTF8) {
    return std::min<int64_t>(2, rest);  // a last byte of UTF-16 may lack its partner
  }
  if (c != 0xFFFD) return std::min(utf8, rest);
  const std::string_view replaced = bytes.substr(static_cast<size_t>(offset.bytes));
  return replaced.starts_with("\xEF\xBF\xBD") ? kReplacementLength : malformedLength(replaced);
}

}  // namespace velan::tool
