// A text as the finders see it: its words, and its units as they are compared.
#ifndef VELAN_QUERY_EVALUATION_SEARCHED_TEXT_INTERNAL_H
#define VELAN_QUERY_EVALUATION_SEARCHED_TEXT_INTERNAL_H

#include <cstring>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "velan/base/Range.h"
#include "velan/query/QueryComparison.h"
#include "velan/query/words/FastWordEnumerator.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/search/FewLiteralsInternal.h"
#include "velan/text/search/LiteralSetInternal.h"
#include "velan/text/search/UnitSearchInternal.h"

namespace velan {

/// The comparison of a text that is indexed like this: one in upper case can only be searched ignoring case.
QueryComparison comparisonOn(const FastWordEnumerator& enumerator, QueryComparison comparison);

/// What both sides are mapped through; null for nothing.
const unichar* comparisonTable(QueryComparison comparison);
std::u16string mappedUnits(std::u16string_view units, const unichar* table);

/// Units to look for in any number of texts.
class Literal {
 public:
  /// The units have gone through `table`, which those of texts are to go through; null for none.
  Literal(std::u16string_view units, const unichar* table)
      : _length(static_cast<int64_t>(units.size())), _search(Owned{std::u16string(units)}, units.size(), table) {}

  /// Some of so many units, to be gathered only.
  explicit Literal(const NeedleHead& head) : _length(static_cast<int64_t>(head.length)), _search(head) {}
  /// To be gathered only, by what its probes say: the other units are for whoever looks at the places.
  Literal byProbes() const {
    NeedleHead head = _search.head();
    head.tellsAll = true;
    return Literal(head);
  }
  /// Becomes one of the set's literals, if that takes it; returns its number there.
  std::optional<uint32_t> join(auto& set) { return _number = set.add(units()); }
  /// Its number, if it has joined a set.
  std::optional<uint32_t> number() const { return _number; }

  int64_t length() const { return _length; }
  std::u16string_view units() const { return _search.needle().units; }
  /// The first position in `text`, or `length` if there is none, as for no units.
  size_t find(const unichar* text, size_t length) const { return _search.find(text, length); }
  /// See `UnitSearch::gather`.
  NeedlePositions gather(const unichar* text, size_t positions, unichar* found, size_t most) const {
    return _search.gather(text, positions, found, most);
  }

 private:
  struct Owned {
    std::u16string units;
    unichar operator()(size_t i) const { return units[i]; }
  };

  int64_t _length;
  UnitSearch<Owned> _search;
  std::optional<uint32_t> _number;
};

/// The literals that are looked for together; null for none.
struct LiteralsTogether {
  const LiteralSet* many = nullptr;
  const FewLiterals* few = nullptr;
};

/// Positions and lengths are in code units.
class SearchedText {
 public:
  /// The text of an enumerator, which it borrows, as the literals.
  SearchedText(const FastWordEnumerator& enumerator, QueryComparison comparison, LiteralsTogether literals = {});
  /// Any number of texts, one after the other; an empty one at first.
  explicit SearchedText(QueryComparison comparison, LiteralsTogether literals = {});
  /// Goes over to `text`, which it borrows. Not for one with an enumerator.
  void setText(std::u16string_view text);

  int64_t length() const { return _length; }
  /// Another one for each text that this has gone over to.
  uint64_t number() const { return _number; }
  /// The units to compare with; still to be mapped through `table()` unless that is null.
  const unichar* units() const { return _units; }
  const unichar* table() const { return _table; }
  /// What patterns are to be mapped through; may be null.
  const unichar* patternTable() const { return _patternTable; }
  /// The unit at `index` as it is compared.
  unichar mappedUnit(int64_t index) const { return _table ? _table[_units[index]] : _units[index]; }
  /// The enumerator, which a text without one gets here.
  const FastWordEnumerator& words() const { return _words ? *_words : makeWords(); }

  bool wordBeginsAt(int64_t index) const {
    return knowsByUnits(index, index - 1) ? isBoundary(index, index - 1) : words().isWordBeginningAtIndex(index);
  }
  bool wordEndsAt(int64_t index) const {
    return knowsByUnits(index, index + 1) ? isBoundary(index, index + 1) : words().isWordEndAtIndex(index);
  }
  /// The word of the unit at `index`; absent for a separator.
  Range wordAt(int64_t index) const;
  /// The word that begins at `start`, where there are no separators before `known`.
  Range wordFrom(int64_t start, int64_t known) const {
    const Range run{start, (_separators ? separatorFrom(known) : known) - start};
    return _separators && !isDivided(run) ? run : words().rangeOfWordAtIndex(start);
  }
  /// `start`, or the first place behind it, up to `end`, that no separator stands behind.
  int64_t skipped(int64_t start, int64_t end) const {
    while (start < end && isSeparator(start)) ++start;
    return start;
  }
  /// `end`, or the last place before it, down to `start`, that no separator stands before.
  int64_t skippedBack(int64_t end, int64_t start) const {
    while (end > start && isSeparator(end - 1)) --end;
    return end;
  }
  /// Whether a dictionary may divide what lies between separators: without, words never touch.
  bool mayBeDivided() const { return _mayBeDivided; }
  /// Whether the words are all that lies between separators, and found without an index.
  bool isDividedBySeparators() const { return _separators && !_mayBeDivided; }
  /// In such a text: whether there is no unit of a word at `index`.
  bool isBetweenWords(int64_t index) const { return !isInText(index) || separates(index); }
  /// In such a text: where the word begins, or ends, that the units from `start` to `end` belong to.
  int64_t startOfWord(int64_t start) const {
    while (start > 0 && !separates(start - 1)) --start;
    return start;
  }
  int64_t endOfWord(int64_t end) const { return separatorFrom(end); }
  /// The word that begins last at or before `index`, but not before `start`; absent if there is none.
  Range wordBefore(int64_t index, int64_t start) const;
  /// What `firstWordIn` gives, for a word that is near.
  Range wordAfter(int64_t location, int64_t end) const;
  /// The first word that begins at or after `location` and ends at or before `end`; absent if there is none.
  Range firstWordIn(int64_t location, int64_t end) const;
  /// Where the first word begins at or after `location`; the text's length if there is none.
  int64_t wordStartFrom(int64_t location) const {
    return std::min(words().locationOfNextWordFromIndex(location, _length), _length);
  }
  using Run = FastWordEnumerator::Run;
  /// Calls `hand` with each word or run of words in `range`, which may cut the first and the last one off.
  void handRuns(Range range, FunctionRef<void(const Run& run)> hand) const { words().handRuns(range, hand); }
  /// Whether a dictionary may divide `run`, which holds no separators.
  bool isDivided(Range run) const { return _mayBeDivided && holdsEastAsian(run); }
  /// Whether the units of `range` are those of `literal`.
  bool hasUnitsAt(int64_t location, std::u16string_view literal) const {
    return _table ? hasMappedUnits(_units + location, literal) : hasSameUnits(_units + location, literal);
  }
  /// The first place of `literal` that begins at or after `location` and ends at or before `end`; -1 if there is none.
  int64_t find(const Literal& literal, int64_t location, int64_t end) const;
  /// All places of all of many literals that are looked for together; null when these had better be looked for one by
  /// one.
  const std::vector<LiteralSet::Hit>* allHits() const;
  /// Those of one of them from `location` on, if it is known together with others.
  std::optional<std::span<const LiteralSet::Hit>> hitsOf(const Literal& literal, int64_t location) const;
  /// To be called when all literals will be looked for, in all of the text: few of them take one pass together. Where
  /// the first one may decide it had better be looked for alone.
  void lookForAll() const {
    if (_few && isWorthLookingTogether() && !findings().few) findings().few.emplace(_length);
  }
  /// Whether a literal is looked for together with few others, at least where the text begins.
  bool isOneOfFew(const Literal& literal) const { return literal.number() && _findings && _findings->few; }
  /// The places of such a literal that are known by now: more than `known`, or all there are. Valid until more are
  /// found.
  std::span<const uint32_t> placesOf(const Literal& literal, size_t known) const;
  /// When these are all, the places before this one are known; others are to be looked for one literal at a time.
  int64_t knownUpTo(const Literal& literal) const;
  /// Whether `literal` (not empty) lies in the `range`, which is short.
  bool holdsUnits(Range range, std::u16string_view literal) const;

  /// The first place of `literal` in `range`; with `whole` it begins where a word does and ends where a word does.
  /// Absent for an empty literal.
  Range findWord(const Literal& literal, Range range, bool whole) const;

  /// The position `count` (at least 1) word starts before `location`, not before `start`.
  int64_t wordStartBefore(int64_t location, int64_t count, int64_t start) const;
  /// The position after `count` (at least 1) word ends from `location` on, not after `end`.
  int64_t wordEndAfter(int64_t location, int64_t count, int64_t end) const;
  /// Whether separators alone tell where all words begin and end.
  bool knowsAllByUnits() const;
  /// How many words begin in `[from, end)`, where separators tell; `most` + 1 when there are more than `most`.
  int64_t countWordStarts(int64_t from, int64_t end, int64_t most) const;

 private:
  bool isSeparator(int64_t index) const {
    return _separators ? separates(index) : words().isWordSeparatorAtIndex(index);
  }
  bool separates(int64_t index) const { return isMemberOfCharacterSetRep(_separators, _units[index]); }
  // The next one at or behind `index`, or the text's length.
  int64_t separatorFrom(int64_t index) const {
    while (index < _length && !separates(index)) ++index;
    return index;
  }
  bool isInText(int64_t index) const { return static_cast<uint64_t>(index) < static_cast<uint64_t>(_length); }
  bool isBoundary(int64_t index, int64_t neighbour) const {
    return isInText(index) && !separates(index) && (!isInText(neighbour) || separates(neighbour));
  }
  // Whether the unit at `index` and its neighbour tell if a word begins or ends between them.
  bool knowsByUnits(int64_t index, int64_t neighbour) const {
    return _separators && (!_mayBeDivided || isBoundary(index, neighbour) || !isInDividedRun(index));
  }
  // In steps of several units, because where words differ nobody could predict.
  static bool hasSameUnits(const unichar* units, std::u16string_view literal) {
    const unichar* wanted = literal.data();
    const size_t length = literal.size();
    if (length < 2) return length == 0 || *units == *wanted;
    const auto differ = [&]<typename Step>(Step, size_t at) {
      Step a, b;
      std::memcpy(&a, units + at, sizeof a);
      std::memcpy(&b, wanted + at, sizeof b);
      return a ^ b;
    };
    if (length < 4) return (differ(uint32_t(), 0) | differ(uint32_t(), length - 2)) == 0;
    for (size_t i = 0; i + 4 < length; i += 4) {
      if (differ(uint64_t(), i) != 0) return false;
    }
    return differ(uint64_t(), length - 4) == 0;
  }
  bool hasMappedUnits(const unichar* units, std::u16string_view literal) const;
  bool isInDividedRun(int64_t index) const;
  bool holdsEastAsian(Range range) const;
  Range runAt(int64_t index) const;
  size_t edgesIn(int64_t from, int64_t end, uint8_t type, unichar* edges) const;
  void indexWords() const;
  const FastWordEnumerator& makeWords() const;
  // Few literals are no longer looked for together from `end` on.
  struct PlacesOfFew {
    explicit PlacesOfFew(int64_t length) : end(length) {}

    FewLiterals::Places places;  // up to here:
    int64_t looked = 0;
    int64_t end;
  };
  // In shorter texts few literals are found as soon one by one.
  bool isWorthLookingTogether() const {
    return _length >= 2048 && _length <= static_cast<int64_t>(FewLiterals::kLongestText);
  }
  // What is found out about a text when it is first needed.
  struct Findings {
    std::unique_ptr<const FastWordEnumerator> words;  // of a text that came without
    std::optional<bool> holdsEastAsian;
    SetHints hints;            // of the separators in it
    bool wasSearched = false;  // for all literals, whose places are
    std::optional<std::vector<LiteralSet::Hit>> hits;
    std::optional<PlacesOfFew> few;
    // Where words start and end (one past the last unit), for counting words from any place.
    std::vector<int64_t> wordStarts, wordEnds;
  };
  Findings& findings() const {
    if (!_findings) _findings = std::make_unique<Findings>();
    return *_findings;
  }

  uint64_t _number = 0;
  mutable const FastWordEnumerator* _words;
  int64_t _length;
  const unichar* const _patternTable;
  const unichar* _units;
  const unichar* const _table;  // what the units still have to be mapped through
  // Unless the index is made already the words around a place are found without it: by the separators, where no
  // dictionary may divide what lies between them. Null where it is made.
  const uint8_t* const _separators;
  bool _mayBeDivided;
  const LiteralSet* const _many;
  const FewLiterals* const _few;
  mutable std::unique_ptr<Findings> _findings;  // made when first needed
};

}  // namespace velan

#endif  // VELAN_QUERY_EVALUATION_SEARCHED_TEXT_INTERNAL_H
