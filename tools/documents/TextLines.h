// The lines and paragraphs of a text.
#ifndef VELAN_TOOLS_DOCUMENTS_TEXT_LINES_H
#define VELAN_TOOLS_DOCUMENTS_TEXT_LINES_H

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "tools/documents/TextDecoding.h"
#include "velan/base/Range.h"

namespace velan::tool {

/// Lines end with LF or CR LF; in a text without any LF with CR. Borrows the text or the document. Positions are in
/// units, and a line is told by how many there are before it.
class TextLines {
 public:
  explicit TextLines(std::u16string_view text);
  /// Of the document's text.
  explicit TextLines(const Document& document);

  size_t count() const { return _starts.size(); }
  /// What people call the line: the number, from 1, of the line of the source where it begins.
  size_t number(size_t line) const;
  /// The line of the unit at `index`, of the last unit for an index beyond the end. There must be a line.
  size_t lineAt(int64_t index) const;
  /// All lines.
  Range wholeRange() const { return {0, static_cast<int64_t>(_text.size())}; }
  /// With what ends the line.
  Range fullRange(size_t line) const;
  /// Without it.
  Range range(size_t line) const;
  /// Longest runs of lines that are not blank.
  std::vector<Range> paragraphs() const;
  /// The first line in `range` that is not blank, the line where it begins if all are.
  size_t firstLineWithText(Range range) const;

 private:
  void addStartsAfter(unichar end);
  bool isBlank(size_t line) const;

  std::u16string_view _text;
  std::vector<int64_t> _starts;
  const SourceMap* _map = nullptr;
  std::shared_ptr<const TextLines> _source;  // null where the lines are those of the source
};

}  // namespace velan::tool

#endif  // VELAN_TOOLS_DOCUMENTS_TEXT_LINES_H
