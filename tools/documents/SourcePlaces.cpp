#include "tools/documents/SourcePlaces.h"

namespace velan::tool {

SourcePlaces::SourcePlaces(const Document& document)
    : _document(document),
      _lines(document.source.view()),
      _offsets(document),
      _written(document.textIsSource() ? std::nullopt : std::make_optional<TextOffsets>(document.text)) {}

SourcePlace SourcePlaces::of(Range range) const {
  const Range units = _document.map.sourceOf(range);
  const size_t line = _lines.lineAt(units.location);
  const TextOffset lineStart = _offsets.at(_lines.fullRange(line).location);
  const TextOffset start = _offsets.at(units.location);
  const TextOffset end = _offsets.at(endOf(units));
  return {line + 1, start.characters - lineStart.characters + 1, units, {start.bytes, end.bytes - start.bytes}};
}

}  // namespace velan::tool
