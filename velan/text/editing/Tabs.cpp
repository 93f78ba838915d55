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

// Calls `handler(position, spaces)` for each TAB.
template <typename Handler>
void forEachTab(std::u16string_view text, int64_t width, Handler handler) {
  Column column(width);
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == u'\t') {
      handler(i, column.unitsToNextStop());
      column.reset();
    } else if (isLineEnd(text[i])) {
      column.reset();
    } else {
      column.advance();
    }
  }
}

}  // namespace

bool decodeTabs(MutableString& text, int64_t width) {
  VELAN_DEBUG_ASSERT(width >= 1, "width >= 1");
  if (width < 1) return true;
  const std::u16string_view units = text.view();
  int64_t length = text.length();
  forEachTab(units, width, [&length](size_t, int64_t spaces) {
    length = spaces - 1 > INT64_MAX - length ? INT64_MAX : length + spaces - 1;
  });
  if (units.find(u'\t') == units.npos) return true;
  return rebuild(text, length, [&](MutableString& result) {
    size_t copied = 0;
    forEachTab(units, width, [&](size_t position, int64_t spaces) {
      result.appendString(units.substr(copied, position - copied));
      result.appendCharacter(u' ', spaces);
      copied = position + 1;
    });
    result.appendString(units.substr(copied));
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
