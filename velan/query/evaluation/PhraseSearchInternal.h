// All places of a pattern of several words, one after the other.
#ifndef VELAN_QUERY_EVALUATION_PHRASE_SEARCH_INTERNAL_H
#define VELAN_QUERY_EVALUATION_PHRASE_SEARCH_INTERNAL_H

#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "velan/query/evaluation/LiteralHitsInternal.h"
#include "velan/query/evaluation/WordPatternInternal.h"

namespace velan {

/// Of a short pattern whose units are known in part, only the words around these are looked at.
///
/// Otherwise reads each word once and follows all places that may have begun before it, as bits of one row: bit i says
/// that the last words match the pieces up to i. While few places are open, the word is compared with the pieces that
/// they are at. Otherwise what pieces match a word is remembered for all words of the same units, and found out once
/// for all equal pieces; then a word takes a step for 64 pieces.
class PhraseSearch {
 public:
  /// Borrows both. `pattern` has at least two pieces.
  PhraseSearch(const WordPattern& pattern, const SearchedText& text, Range range);

  /// Begins anew, in a text that `text` may have gone over to.
  void begin(Range range);
  /// Searches on and appends the places that it finds, if any, from the first word's start to the last word's end.
  /// False when all was searched. Both beginnings and ends grow.
  bool searchOn(std::vector<Range>& found);

 private:
  // Bits of the positions of pieces.
  using Row = std::vector<uint64_t>;
  struct WordClass {
    Row known, matching;
  };

  void searchInOneWordAt(int64_t hit, std::vector<Range>& found);
  void searchAt(int64_t hit, std::vector<Range>& found);
  Range placeAround(Range word) const;
  Range nextReadingAll();
  void keepMatching(Range word);
  WordClass& classOf(Range word);
  void learn(WordClass& words, size_t position, Range word) const;
  void groupPieces();

  const WordPattern& _pattern;
  const std::vector<WordPattern::Piece>& _pieces;
  const WordPattern::Anchor* const _anchor;  // null to read every word
  const SearchedText& _text;
  int64_t _start;
  int64_t _location;  // what begins before was read
  int64_t _end;
  std::optional<LiteralHits> _hits;  // of the anchor
  bool _isInOneWord;                 // the anchor in this text, whatever a dictionary says
  bool _isByProbes;                  // then the hits are those of its probes
  std::vector<int64_t> _starts;      // of the last words, each at its number modulo the number of pieces
  size_t _wordCount = 0;
  Row _reached;

  std::vector<size_t> _groups;                       // of a piece, the number of the group of pieces equal to it
  std::vector<std::vector<size_t>> _groupPositions;  // the positions of a group that has few
  std::vector<Row> _groupRows;                       // and of one that has many
  std::unordered_map<std::u16string_view, WordClass> _classes;
};

}  // namespace velan

#endif  // VELAN_QUERY_EVALUATION_PHRASE_SEARCH_INTERNAL_H
