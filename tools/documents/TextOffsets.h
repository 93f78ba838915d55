// Where the units of a text lie in the file whose source it is, and in other counts.
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

/// Goes through the text once, then finds any position in a bounded number of steps. A source that is neither UTF-8 nor
/// UTF-16 is decoded again.
class TextOffsets {
 public:
  /// Of the document's source. Borrows the document.
  explicit TextOffsets(const Document& document);
  /// Of a text that is not in a file; its bytes are those of its UTF-8 form.
  explicit TextOffsets(const String& text);

  /// For `unit` from 0 to the length of the text. A position inside a surrogate pair counts as the one after it, except
  /// in UTF-16 files, whose units have their own bytes.
  TextOffset at(int64_t unit) const;

 private:
  void addCheckpoints(TextOffset offset);
  TextOffset after(TextOffset offset, int64_t unit) const;
  int64_t lengthInFile(TextOffset offset, unichar c, int64_t utf8) const;

  const String _text;
  const Document* const _document;       // null for a text without a file
  std::vector<TextOffset> _checkpoints;  // every kStride units
  std::vector<int32_t> _sources;         // offsets in the file of all units; empty where their values tell them
};

}  // namespace velan::tool

#endif  // VELAN_TOOLS_DOCUMENTS_TEXT_OFFSETS_H
