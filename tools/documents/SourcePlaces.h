// Where parts of a document's text stand in its file.
#ifndef VELAN_TOOLS_DOCUMENTS_SOURCE_PLACES_H
#define VELAN_TOOLS_DOCUMENTS_SOURCE_PLACES_H

#include <optional>

#include "tools/documents/TextDecoding.h"
#include "tools/documents/TextLines.h"
#include "tools/documents/TextOffsets.h"

namespace velan::tool {

struct SourcePlace {
  size_t line;     // of the source, from 1
  int64_t column;  // from 1, in characters
  Range units;     // of the source
  Range bytes;     // of the file, the byte-order mark included
};

/// Borrows the document.
class SourcePlaces {
 public:
  explicit SourcePlaces(const Document& document);

  /// Of a range of the text, from the beginning of its first to the end of its last unit.
  SourcePlace of(Range range) const;
  /// How many bytes of the text, written in UTF-8, lie before its unit `unit`.
  int64_t utf8Offset(int64_t unit) const { return (_written ? *_written : _offsets).at(unit).utf8; }

 private:
  const Document& _document;
  const TextLines _lines;                     // of the source
  const TextOffsets _offsets;                 // of the source
  const std::optional<TextOffsets> _written;  // of a text that is not the source
};

}  // namespace velan::tool

#endif  // VELAN_TOOLS_DOCUMENTS_SOURCE_PLACES_H
