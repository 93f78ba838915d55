// All places of a pattern of one word, one after the other.
#ifndef VELAN_QUERY_EVALUATION_WORD_SEARCH_INTERNAL_H
#define VELAN_QUERY_EVALUATION_WORD_SEARCH_INTERNAL_H

#include <optional>
#include <string_view>
#include <vector>

#include "velan/query/evaluation/LiteralHitsInternal.h"
#include "velan/query/evaluation/WordPatternInternal.h"
#include "velan/wildcard/PreparedSimilarity.h"

namespace velan {

/// Where words touch, a dictionary has divided a run of East Asian units, and where it does so nobody can see. There a
/// pattern with wildcards also stands for several words: for the fewest in a row that it matches, so that `*本*` and
/// `日本*` find 日本語 whether that is one word or two.
class WordSearch {
 public:
  /// Borrows both. `pattern` has one piece.
  WordSearch(const WordPattern& pattern, const SearchedText& text, Range range);

  /// Begins anew, in a text that `text` may have gone over to.
  void begin(Range range);
  /// Searches on and appends the places that it finds, if any. False when all was searched. Both beginnings and ends
  /// grow.
  bool searchOn(std::vector<Range>& found);

 private:
  // One unit of the text, or any number of them.
  struct Element {
    std::u16string_view pattern;
    bool isStar() const { return pattern == u"*"; }
    bool matches(unichar unit) const;
  };

  bool searchSimilar(std::vector<Range>& found);
  void searchInOneWordAt(int64_t hit, std::vector<Range>& found);
  void searchAt(int64_t hit, std::vector<Range>& found);
  void searchWord(Range word, bool matches, std::vector<Range>& found);
  Range runAround(Range word) const;
  void searchRun(Range run, std::vector<Range>& found);
  void splitPattern();
  void read(unichar unit);
  void passStars();

  const WordPattern& _pattern;
  const WordPattern::Piece& _piece;
  const SearchedText& _text;
  int64_t _location;  // what begins before was searched
  int64_t _end;
  const WordPattern::Anchor* const _anchor;  // looks at words only where it stands; null for none
  std::optional<LiteralHits> _hits;          // of the anchor
  bool _isInOneWord;                         // the anchor in this text, whatever a dictionary says
  bool _mayStandForSeveral;
  std::unique_ptr<const PreparedSimilarity> _similarity;  // to the word; null where words are to match
  double _leastSimilarity = 0;
  PreparedSimilarity::Lengths _similarLengths{0, 0};
  int64_t _stretch;  // units in which similar words are looked for at once

  std::vector<Element> _elements;
  // Of the stretches that the elements up to here match and that go on where reading has come to, the last one's start;
  // -1 for none.
  std::vector<int64_t> _starts;
};

}  // namespace velan

#endif  // VELAN_QUERY_EVALUATION_WORD_SEARCH_INTERNAL_H
