// Where the units of a text lie in the file that it was decoded from, and in other counts.
#ifndef VELAN_TOOLS_DOCUMENTS_TEXT_OFFSETS_H
#define VELAN_TOOLS_DOCUMENTS_TEXT_OFFSETS_H

#include <cstdint>
#include <vector>

#include "tools/documents/TextDecoding.h"

namespace velan::tool {

/// How much lies before a position in a text.
struct TextOffset {
  int64_t bytes;       // of the file, the byte-order mark included
  int64_t utf8;        // bytes of the text written in UTF-8
  int64_t characters;  // code points of the text
};

/// Borrows the document. Goes through it once, then finds any position in a bounded number of steps. A document that is
/// neither UTF-8 nor UTF-16 is decoded again.
class TextOffsets {
 public:
  explicit TextOffsets(const Document& document);

  /// For `unit` from 0 to the length of the text. A position inside a surrogate pair counts as the one after it, except
  /// in UTF-16 files, whose units have their own bytes.
  TextOffset at(int64_t unit) const;

 private:
  bool isUTF8() const { return _document.encoding == StringEncoding::UTF8; }
  TextOffset after(TextOffset offset, int64_t unit) const;

  const Document& _document;
  std::vector<TextOffset> _checkpoints;  // every kStride units
  std::vector<int32_t> _sources;         // offsets in the file of all units; empty where their values tell them
};

}  // namespace velan::tool

#endif  // VELAN_TOOLS_DOCUMENTS_TEXT_OFFSETS_H
