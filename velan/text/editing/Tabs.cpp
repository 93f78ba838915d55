#include "velan/text/editing/Tabs.h"

#include "velan/base/Log.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/editing/RebuildingInternal.h"
#include "velan/text/inspection/LineEndsInternal.h"

namespace velan {
namespace {

// How far behind a tab stop the next unit stands: from 0 to the width - 1.
class Column {
 public:
  explicit Column(int64_t width) : _width(width) {}
  void reset() { _column = 0; }
  void advance() { _column = _column + 1 == _width ? 0 : _column + 1; }
  bool isTabStop() const { return _column == 0; }
  int64_t unitsToNextStop() const { return _width - _column; }

 private:
  int64_t _width;
  int64_t _column = 0;
};

}  // namespace

bool decodeTabs(MutableString& text, int64_t width) {
  VELAN_DEBUG_ASSERT(width >= 1, "width >= 1");
  if (width < 1 || text.view().find(u'\t') == std::u16string_view::npos) return true;
  return rebuild(text, text.length(), [&](MutableString& result) {
    Column column(width);
    for (const unichar c : text.view()) {
      if (c == u'\t') {
        result.appendCharacter(u' ', column.unitsToNextStop());
        column.reset();
      } else {
        result.appendCharacter(c);
        isLineEnd(c) ? column.reset() : column.advance();
      }
    }
  });
}

void encodeTabs(MutableString& text, int64_t width) {
  VELAN_DEBUG_ASSERT(width >= 1, "width >= 1");
  if (width < 1) return;
  const uint8_t* spaces = spaceCharacterSetRep();
  unichar* units = text.mutableCharacters();
  Column column(width);
  int64_t kept = 0;
  int64_t runStart = 0;  // of the run of spaces that ends at `kept`; empty when they are equal
  for (const unichar c : text.view()) {
    units[kept++] = c;
    if (isLineEnd(c)) {
      column.reset();
      runStart = kept;
    } else if (!isMemberOfCharacterSetRep(spaces, c)) {
      column.advance();
      runStart = kept;
    } else {
      c == u'\t' ? column.reset() : column.advance();
      if (!column.isTabStop()) continue;
      units[runStart++] = u'\t';
      kept = runStart;
    }
  }
  text.truncate(kept);
}

}  // namespace velan
