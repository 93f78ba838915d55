// Patterns for one word or for several words in a row, prepared for many comparisons.
#ifndef VELAN_QUERY_EVALUATION_WORD_PATTERN_INTERNAL_H
#define VELAN_QUERY_EVALUATION_WORD_PATTERN_INTERNAL_H

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "velan/base/Range.h"
#include "velan/query/QueryExplanation.h"
#include "velan/query/evaluation/LiteralHitsInternal.h"
#include "velan/query/evaluation/PatternProbesInternal.h"
#include "velan/wildcard/PreparedSimilarity.h"
#include "velan/wildcard/WildcardPattern.h"

namespace velan {

/// A wildcard pattern, split at the separators outside its sets into one piece for each of several consecutive words;
/// or the words of a phrase. Pieces are kept in normal form, mapped like the texts that they are searched in.
class WordPattern {
 public:
  /// The pieces of a wildcard pattern; one that holds separators is never found without `split`. Where it does, and in
  /// a `phrase`, a piece without a literal stands for any word of fitting length. With `fuzzy` pieces without wildcards
  /// accept similar words. `table` maps the units of the texts; null for none.
  static WordPattern withWildcard(std::u16string_view pattern, bool split, bool phrase, bool fuzzy,
                                  const unichar* table);
  /// The words of a phrase as they are, by the word separators.
  static WordPattern withPhrase(std::u16string_view phrase, const unichar* table);

  /// What a wildcard pattern that may be split is split into.
  static std::vector<ExplainedPiece> explained(std::u16string_view pattern, bool phrase, bool fuzzy);

  /// False for a pattern that is found nowhere.
  bool isFound() const { return _wholeRange || !_pieces.empty(); }
  /// Whether the pattern is a lone `*`, which stands for whatever range is searched.
  bool isWholeRange() const { return _wholeRange; }
  /// Whether the pattern has one piece, or several.
  bool isOneWord() const { return _pieces.size() == 1; }
  bool isPhrase() const { return _pieces.size() > 1; }
  /// The units that places are looked for by; null where none are known.
  Literal* anchorLiteral() { return _anchor ? &_anchor->literal : nullptr; }
  /// Of each piece that has one, the longest run of units that all words it matches hold. Views into the pattern.
  std::vector<std::u16string_view> requiredLiterals() const;
  /// The first place in `range` where the pieces match consecutive words, from the first word's start to the last one's
  /// end; words that `range` cuts do not count. Absent if there is none.
  Range firstIn(const SearchedText& text, Range range) const;

 private:
  static constexpr int64_t kShortWord = 64;

  friend class PhraseSearch;
  friend class WordSearch;

  struct Piece {
    std::u16string units;
    uint32_t type;
    Range literal;  // of the literal units, for types 0 and 2 to 4
    int64_t minLength;
    int64_t maxLength;
    bool fuzzy;
    bool standsForAnyWord;  // of fitting length: it has no literal
  };

  enum class Verdict : uint8_t { No, Perhaps, Yes };

  // Units with any others before each of them.
  struct Rest {
    std::vector<std::u16string> parts;
    bool isOpen;  // any units may follow the last one
  };

  // The longest units that one of the pieces holds for certain, or those that tell most, and what is known of the units
  // around them, so that few of the places where they stand need a look at the word.
  struct Anchor {
    struct Element {
      uint64_t ascii[2] = {~uint64_t{0}, ~uint64_t{0}};  // which units it may be; any others may be
      bool exists = false;
      bool mayBe(unichar c) const { return c >= 128 || (ascii[c / 64] >> (c % 64) & 1) != 0; }
    };

    Literal literal;
    size_t piece;
    int64_t before, after;  // how many units the word has before and after it; -1 where that is open
    Element previous, next;
    bool isAll;                       // the literal is the whole piece but for `*`
    std::vector<Element> elements;    // of a literal of which only the probes are known
    std::optional<Literal> byProbes;  // the literal so, if that is worth it for the sake of the word before it
    std::optional<Rest> rest;         // of the piece, of whose word it is the beginning
    bool isInOneWord = false;         // no unit that it may stand on separates words

    /// Whether the word around it may match where it stands at `location`.
    bool mayMatchAt(const SearchedText& text, int64_t location) const {
      const int64_t end = location + literal.length();
      if (previous.exists && (location == 0 || !previous.mayBe(text.mappedUnit(location - 1)))) return false;
      if (next.exists && (end == text.length() || !next.mayBe(text.mappedUnit(end)))) return false;
      int64_t i = location;
      for (const Element& element : elements) {
        if (!element.mayBe(text.mappedUnit(i++))) return false;
      }
      return (before < 0 || (location >= before && text.wordBeginsAt(location - before))) &&
             (after < 0 || (after <= text.length() - end && text.wordEndsAt(end + after - 1)));
    }
    // What follows is for one in one word, in a text that is divided by separators.

    /// Whether its word matches where it stands at `location`, as far as that can be seen without looking for the
    /// word's ends; but for the rest.
    Verdict verdictAt(const SearchedText& text, int64_t location) const {
      const int64_t end = location + literal.length();
      if (before == 0 && !text.isBetweenWords(location - 1)) return Verdict::No;
      if (after == 0 && !text.isBetweenWords(end)) return Verdict::No;
      if (previous.exists && (location == 0 || !previous.mayBe(text.mappedUnit(location - 1)))) return Verdict::No;
      if (next.exists && (end == text.length() || !next.mayBe(text.mappedUnit(end)))) return Verdict::No;
      Verdict verdict = isAll || rest ? Verdict::Yes : Verdict::Perhaps;
      int64_t i = location;
      for (const Element& element : elements) {
        const unichar c = text.mappedUnit(i);
        if (c >= 128) verdict = text.isBetweenWords(i) ? Verdict::No : std::min(verdict, Verdict::Perhaps);
        if (verdict == Verdict::No || !element.mayBe(c)) return Verdict::No;
        ++i;
      }
      return verdict;
    }
    /// Its word there.
    Range wordAround(const SearchedText& text, int64_t location) const {
      const int64_t literalEnd = location + literal.length();
      const int64_t start = before == 0 ? location : text.startOfWord(location);
      return {start, (after == 0 ? literalEnd : text.endOfWord(literalEnd)) - start};
    }
    /// The word that it begins in where it stands at `location` and may match; absent for a separator.
    Range wordAt(const SearchedText& text, int64_t location) const {
      if (before != 0 || literal.length() > LiteralHits::kShort) return text.wordAt(location);
      // The word begins here. Through a table a separator may be among the units of a literal, or as an element.
      const bool isOneRun = isAll && elements.empty() && !text.table();
      return text.wordFrom(location, location + (isOneRun ? literal.length() : 1));
    }
    /// Whether it is known that `word` matches, as the anchor stands at `location` and may match.
    bool decides(const SearchedText& text, Range word, int64_t location) const {
      for (size_t i = 0; i < elements.size(); ++i) {
        if (text.mappedUnit(location + static_cast<int64_t>(i)) >= 128) return false;
      }
      const int64_t wordBefore = location - word.location;
      const int64_t wordAfter = endOf(word) - (location + literal.length());
      return isAll && (before < 0 ? wordBefore >= 0 : wordBefore == 0) && (after < 0 ? wordAfter >= 0 : wordAfter == 0);
    }
  };

  static Piece wildcardPiece(std::u16string pattern, bool anyWord, bool fuzzy);
  static Piece literalPiece(std::u16string word);
  static bool matches(const Piece& piece, const SearchedText& text, Range word);
  // The same for the piece of the anchor, about whose word something is known.
  bool matchesAtAnchor(const SearchedText& text, Range word, Verdict verdict) const {
    if (verdict == Verdict::Yes && _anchor->isAll) return true;
    if (verdict == Verdict::Yes && word.length <= kShortWord) return matchesRest(text, word);
    return matches(_pieces[_anchor->piece], text, word);
  }
  bool matchesRest(const SearchedText& text, Range word) const;
  static std::optional<Rest> restOf(std::u16string_view pattern);
  static bool isSimilar(const Piece& piece, const SearchedText& text, Range word);
  // To words of the text. Throws `std::bad_alloc`.
  static std::unique_ptr<const PreparedSimilarity> preparedSimilarity(const Piece& piece, const SearchedText& text);
  static std::u16string_view literalOf(const Piece& piece) {
    return std::u16string_view(piece.units)
        .substr(static_cast<size_t>(piece.literal.location), static_cast<size_t>(piece.literal.length));
  }
  // Whether the word that ends next before `end`, which is not before `start`, may match, as far as the units at its
  // end tell.
  static bool mayEndBefore(const Piece& piece, const SearchedText& text, int64_t end, int64_t start) {
    if ((piece.type != WildcardTypeExact && piece.type != WildcardTypeSuffix) || piece.fuzzy) return true;
    const int64_t first = text.skippedBack(end, start) - piece.literal.length;
    return first >= start && text.hasUnitsAt(first, literalOf(piece));
  }
  // The same of the word that begins next at or behind `start`, by the units at its start.
  static bool mayBeginAfter(const Piece& piece, const SearchedText& text, int64_t start, int64_t end) {
    if ((piece.type != WildcardTypeExact && piece.type != WildcardTypePrefix) || piece.fuzzy) return true;
    const int64_t first = text.skipped(start, end);
    return piece.literal.length <= end - first && text.hasUnitsAt(first, literalOf(piece));
  }
  static std::u16string_view longestRunOf(const Piece& piece);
  static Anchor anchorAt(const Piece& piece, std::u16string_view run, Literal literal);
  static ProbedRun probedRunOf(const Piece& piece, const unichar* table);
  void chooseAnchor(const unichar* table);
  bool isKnownByWordBefore() const;
  static bool keepToOneWord(Anchor& anchor, const unichar* table);
  bool anchorAtProbes(std::u16string_view longest, const unichar* table);

  std::vector<Piece> _pieces;
  std::optional<Anchor> _anchor;  // where one of the pieces holds any units for certain
  bool _wholeRange = false;
};

}  // namespace velan

#endif  // VELAN_QUERY_EVALUATION_WORD_PATTERN_INTERNAL_H
