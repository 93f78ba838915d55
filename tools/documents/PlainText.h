// Texts whose words are not written as people type them, and the same words plainly.
#ifndef VELAN_TOOLS_DOCUMENTS_PLAIN_TEXT_H
#define VELAN_TOOLS_DOCUMENTS_PLAIN_TEXT_H

#include <cstdint>
#include <string>
#include <string_view>

#include "tools/documents/SourceMap.h"
#include "velan/base/FunctionRef.h"
#include "velan/base/String.h"

namespace velan::tool {

/// What makes words of a text differ from those that people type.
struct Spelling {
  /// Letters with separate diacritics, syllables in parts, soft hyphens, ligatures of print, full-width letters.
  bool unusual = false;
  /// Letters that many write as two: ß, æ, œ and ĳ.
  bool joinedLetters = false;
  /// Hyphens directly before a line end.
  bool lineEndHyphens = false;

  bool isPlain() const { return !unusual && !joinedLetters && !lineEndHyphens; }
  bool isAnything() const { return unusual && joinedLetters && lineEndHyphens; }
};

/// Goes through the text once, some units at a time.
Spelling spellingOf(std::u16string_view text);
/// The same of the text that well-formed UTF-8 stands for, without hyphens at line ends whose neighbours do not
/// `join`: the bytes in which the character before them ends and the one on the next line begins.
Spelling spellingOfUTF8(std::string_view text, FunctionRef<bool(char before, char after)> join);

/// Whether `c` is one of the units that make a spelling unusual.
bool isUnusual(unichar c);
/// Whether it is one of those that are composed with the unit before it.
bool isComposing(unichar c);
/// Whether `c` is one of the letters that many write as two.
bool isJoinedLetter(unichar c);
/// The text with each of these as two: ß as ss. Throws `std::bad_alloc`.
std::u16string withoutJoinedLetters(std::u16string_view text);
/// Whether a hyphen stands at `index`, which lies in the text, and directly behind it a line end.
bool isLineEndHyphen(std::u16string_view text, size_t index);
/// The first place at or after `index` with one or the other; the length of the text if there is none.
size_t findOtherSpelling(std::u16string_view text, size_t index);
/// A place in UTF-8 that is not behind the first one at or after `from` where an unusual unit, a joined letter or a
/// hyphen before a line end begins; one of the last two bytes or the length of the text where there is none.
size_t findOtherSpellingInUTF8(std::string_view text, size_t from);

/// Where in UTF-8 the line behind the one that ends at `end` begins, without its indentation; the length of the text
/// when there is none, or no line ends there.
size_t startOfNextLine(std::string_view text, size_t end);

/// One unit of UTF-8, and of how many bytes it is. U+FFFD and one byte for what is malformed or a pair.
struct UnitInUTF8 {
  unichar unit;
  size_t length;
};
UnitInUTF8 unitInUTF8(std::string_view text, size_t at);

/// A text, and where its units stand in another one.
struct MappedText {
  String text;
  SourceMap map;
};

/// The text with its unusual units as plain ones: diacritics are composed with their letters as far as there is such a
/// letter, soft hyphens go unless a line ends behind them, ligatures of print are letters, full-width letters and
/// digits those of ASCII. `text` itself where nothing changes. Throws `std::bad_alloc`.
MappedText plainText(const String& text);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_DOCUMENTS_PLAIN_TEXT_H
