// The places of one leaf of a query in a text, each found once.
#ifndef VELAN_QUERY_EVALUATION_LEAF_SEARCH_INTERNAL_H
#define VELAN_QUERY_EVALUATION_LEAF_SEARCH_INTERNAL_H

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

#include "velan/query/QueryExplanation.h"
#include "velan/query/QueryTerms.h"
#include "velan/query/evaluation/ManyTermsInternal.h"
#include "velan/query/evaluation/PhraseSearchInternal.h"
#include "velan/query/evaluation/WordSearchInternal.h"

namespace velan {

/// What the leaves of a query are.
enum class LeafKind : uint8_t {
  Plain,     // words and phrases, found unit by unit
  Tolerant,  // the same, but any separators may lie between the words of a phrase
  Wildcard   // wildcard patterns
};

constexpr LeafKind leafKind(bool wildcard) { return wildcard ? LeafKind::Wildcard : LeafKind::Plain; }

/// What a leaf looks for, prepared for a comparison. Never changes, so any number of searches may use it at once.
class LeafPattern {
 public:
  LeafPattern(const QueryTerms& leaf, LeafKind kind, QueryComparison comparison);

  /// `Words` for every leaf that is found by a pattern of words.
  LeafMeaning meaning() const { return _meaning; }
  /// Whether the leaf is a lone `*`: found as the whole of any range that is not empty, and nowhere else.
  bool isWholeRange() const { return _pattern.isWholeRange(); }
  /// The units of a leaf that is found by them; null for any other.
  const Literal* literal() const { return _literal ? &*_literal : nullptr; }
  /// Whether a literal begins and ends where words do.
  bool isWhole() const { return _whole; }
  /// The pattern of any other leaf.
  const WordPattern& pattern() const { return _pattern; }
  /// Units without which it is found nowhere, and by which it is looked for; null where none are known.
  Literal* requiredLiteral() { return _literal ? &*_literal : _pattern.anchorLiteral(); }

 private:
  bool _whole;
  LeafMeaning _meaning;
  std::optional<Literal> _literal;  // of a leaf that is found by its units
  WordPattern _pattern;             // of any other
};

/// The patterns of all leaves of a tree.
class LeafPatterns {
 public:
  LeafPatterns(const QueryTerms& root, LeafKind kind, QueryComparison comparison);
  /// Null for a leaf of another tree.
  const LeafPattern* find(const QueryTerms& leaf) const;
  const ManyTerms& manyTerms() const { return _manyTerms; }
  /// What is looked for together in a text.
  LiteralsTogether literalsTogether() const {
    return {_manyTerms.literals(), _fewLiterals.size() > 1 ? &_fewLiterals : nullptr};
  }
  /// The leaf of a tree that is nothing but one, which is not negated; null for any other tree.
  const QueryTerms* onlyLeaf() const { return _onlyLeaf; }

 private:
  static std::unordered_map<const QueryTerms*, LeafPattern> patternsOf(const QueryTerms& root, LeafKind kind,
                                                                       QueryComparison comparison);

  std::unordered_map<const QueryTerms*, LeafPattern> _patterns;
  const ManyTerms _manyTerms;
  const QueryTerms* const _onlyLeaf;
  FewLiterals _fewLiterals;  // of all leaves, unless there are many terms
};

/// The pieces of a leaf that is a wildcard pattern.
std::vector<ExplainedPiece> explainedPieces(const QueryTerms& leaf, QueryComparison comparison);

/// Searches only as far as it is asked to and remembers what it found, in the order of the text. Both the beginnings
/// and the ends of the places grow, so the first place at or after a location is the only one to look at when one that
/// lies wholly in a range is wanted.
class LeafSearch {
 public:
  /// Borrows a pattern that was prepared for the units of `text`.
  LeafSearch(const SearchedText& text, const LeafPattern& pattern);
  /// With a pattern of its own.
  LeafSearch(const SearchedText& text, std::unique_ptr<const LeafPattern> pattern) : LeafSearch(text, *pattern) {
    _own = std::move(pattern);
  }

  /// This, begun anew if `text` has gone over to another one since.
  LeafSearch& inText() {
    if (_textNumber != _text.number()) begin();
    return *this;
  }

  bool isWholeRange() const { return _pattern.isWholeRange(); }
  /// Whether its places begin and end where words do.
  bool findsWholeWords() const { return !isWholeRange() && (!_pattern.literal() || _pattern.isWhole()); }
  /// Whether each of them is one word where separators alone tell what words are.
  bool findsOneWord() const { return _pattern.pattern().isOneWord(); }
  /// The first place that lies wholly in `range`; absent if there is none.
  Range firstIn(Range range);
  /// All places that lie wholly in `range`; valid until the search goes on.
  std::span<const Range> placesIn(Range range);
  /// The place with this number, or null when there are not so many.
  const Range* at(size_t number);
  /// The number of the first place that begins at or after `location`.
  size_t numberFrom(int64_t location);

 private:
  void begin();
  bool searchOn();
  void searchLiteralAt(int64_t hit);

  const SearchedText& _text;
  const LeafPattern& _pattern;
  std::unique_ptr<const LeafPattern> _own;
  // How it is searched; nothing for a leaf that is found nowhere.
  std::variant<std::monostate, PhraseSearch, WordSearch, LiteralHits> _search;
  std::vector<Range> _found;
  int64_t _location = 0;  // where the next hit of a long literal may begin
  bool _isDone = false;
  uint64_t _textNumber;
};

}  // namespace velan

#endif  // VELAN_QUERY_EVALUATION_LEAF_SEARCH_INTERNAL_H
