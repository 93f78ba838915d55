// Indexes a text once, so that word boundaries are known at every unit and walking from word to word never scans twice.
#ifndef VELAN_QUERY_WORDS_FAST_WORD_ENUMERATOR_H
#define VELAN_QUERY_WORDS_FAST_WORD_ENUMERATOR_H

#include <atomic>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <type_traits>
#include <utility>

#include "velan/base/FunctionRef.h"
#include "velan/base/String.h"

namespace velan {

class FastWordEnumerator;
class SearchedText;
class WordTokenizer;

/// A closure, as an object of its own type, that takes words as `FastWordEnumerator::WordBlock` does.
template <typename Block>
concept WordClosure = std::is_class_v<std::remove_cvref_t<Block>> &&
    std::is_invocable_r_v<bool, Block&, const FastWordEnumerator&, int64_t, int64_t> &&
    !std::same_as<std::remove_cvref_t<Block>, FunctionRef<bool(const FastWordEnumerator&, int64_t, int64_t)>>;

/// `FastWordEnumerator`: the units of a text with a type for each: separator, start of a word, end of a word.
///
/// A word is a longest run of units that are no word separators (`defaultWordSeparators`). Indexes and lengths are in
/// code units; an index outside the text, a negative one too, gives the neutral result, and ranges are clipped to the
/// text. The queries allocate nothing and may be called from several threads at once; creation, `setCharacters` and
/// `invalidate` need the enumerator for themselves.
class VELAN_EXPORT FastWordEnumerator {
 public:
  /// The bits of a type. Units inside a word have none; a word of one unit has both `kWordBeginning` and `kWordEnd`.
  enum Type : uint8_t { kSeparator = 1, kWordBeginning = 2, kWordEnd = 4 };

  /// Receives one word and returns true to stop.
  using WordHandler = bool (*)(const FastWordEnumerator& enumerator, int64_t start, int64_t length, void* context);
  using WordBlock = FunctionRef<bool(const FastWordEnumerator& enumerator, int64_t start, int64_t length)>;

  // Creation: null for an empty or absent text, or when memory for the index or for a copy cannot be had.

  /// `enumeratorWithString:`: over the units of `string`, which it keeps alive.
  static std::unique_ptr<FastWordEnumerator> enumeratorWithString(const String& string);
  /// `enumeratorWithString:caseInsensitive:wildcard:`: with `caseInsensitive` over a copy of the units, each replaced
  /// by its entry in the upper-case table; memory for the copy is had at once, and it is made at the first question for
  /// its units. With `wildcard` the text is a pattern: "*", "?", "[" and "]" are word units, and a set between brackets
  /// belongs to its word, separators included (their type is then 0).
  static std::unique_ptr<FastWordEnumerator> enumeratorWithString(const String& string, bool caseInsensitive,
                                                                  bool wildcard);
  /// Over the units of `string`, dividing runs with ideographs or kana whatever `splitAsianWords` says.
  static std::unique_ptr<FastWordEnumerator> enumeratorSplittingAsianWords(const String& string);
  /// With the words that `splitAsianWords` asks for, but the text is indexed, and runs are divided, only where a query
  /// comes to, by the separators there are then. For one thread at a time; queries may throw `std::bad_alloc`. With
  /// `caseInsensitive` over a copy in upper case.
  static std::unique_ptr<FastWordEnumerator> enumeratorDividingOnDemand(const String& string, bool caseInsensitive);
  /// `initWithString:`: like `enumeratorWithString:`.
  static std::unique_ptr<FastWordEnumerator> initWithString(const String& string);
  /// `initWithString:caseInsensitive:wildcard:`: like `enumeratorWithString:caseInsensitive:wildcard:`.
  static std::unique_ptr<FastWordEnumerator> initWithString(const String& string, bool caseInsensitive, bool wildcard);
  /// `initWithCharacters:length:caseInsensitive:`: over a copy of `length` units.
  static std::unique_ptr<FastWordEnumerator> initWithCharacters(const unichar* characters, int64_t length,
                                                                bool caseInsensitive);
  /// `initWithCharactersNoCopy:length:freeWhenDone:`: over `length` units in place, which must stay as they are while
  /// the enumerator uses them. With `freeWhenDone` it owns them and calls `free()`, at once when creation fails.
  static std::unique_ptr<FastWordEnumerator> initWithCharactersNoCopy(const unichar* characters, int64_t length,
                                                                      bool freeWhenDone);
  ~FastWordEnumerator();
  FastWordEnumerator(const FastWordEnumerator&) = delete;
  FastWordEnumerator& operator=(const FastWordEnumerator&) = delete;

  /// `setCharacters:length:freeWhenDone:`: goes over to other units, used in place and owned as above, with the
  /// separators it was created with; memory for the index is used again. The units it had go first, so `characters`
  /// must not be its own. False, and everything is as after `invalidate`, where creation would fail.
  bool setCharacters(const unichar* characters, int64_t length, bool freeWhenDone);
  /// `invalidate`: gives up the units, the index and the tokenizer; every query is neutral from now on.
  void invalidate();

  /// `splitAsianWords`: whether enumerators created from now on divide runs with ideographs or kana into words by
  /// dictionary, in the whole process; false at first. With `wildcard` a run that holds one of the four stays a word.
  static bool splitAsianWords();
  /// `setSplitAsianWords:`: see `splitAsianWords`. May be called from any thread.
  static void setSplitAsianWords(std::same_as<bool> auto split) { storeSplitAsianWords(split); }
  /// `locale`: the locale of the tokenizer. Always "root": the dictionaries are chosen by script.
  static String locale();

  /// Whether memory ran out during a query on it (`matchesString`, `containsString` and their like), whose answer was
  /// then none. Creation that fails for that gives a null pointer.
  bool ranOutOfMemory() const { return __atomic_load_n(&_ranOutOfMemory, __ATOMIC_RELAXED); }
  /// For those queries.
  void noteOutOfMemory() const { __atomic_store_n(&_ranOutOfMemory, true, __ATOMIC_RELAXED); }

  /// `string`: the string it was created with. If that were units: a copy of `characters`, made on each call. Absent
  /// after `invalidate`.
  String string() const;
  /// `characters`: the units that are indexed, in upper case if created to ignore case. Valid until the enumerator
  /// changes or goes; null after `invalidate`.
  const unichar* characters() const { return _upper ? charactersInUpperCase() : _characters; }
  /// Whether the units are those of a copy in upper case.
  bool isCaseInsensitive() const { return _upperCase; }
  /// `length`: the number of units.
  int64_t length() const { return static_cast<int64_t>(_length); }
  /// `numberOfWords`: counted when the text was indexed.
  int64_t numberOfWords() const {
    if (_onDemand) indexAll();
    if (_hasUndivided) divideAll();
    return static_cast<int64_t>(_numWords);
  }
  /// `numberOfWords:`: how many words have at least `minLen` units. Walks the index when `minLen` is above 1.
  int64_t numberOfWords(int64_t minLen) const;

  /// `typeAtIndex:`: the bits of `Type`; 0 beyond the end.
  uint8_t typeAtIndex(int64_t index) const {
    if (static_cast<uint64_t>(index) >= _length) return 0;
    if (_onDemand) indexAround(static_cast<size_t>(index));
    const uint8_t type = _index[static_cast<uint64_t>(index)];
    return (type & kUndivided) == 0 ? type : typeAfterDividing(static_cast<uint64_t>(index));
  }
  /// `isWordSeparatorAtIndex:`
  bool isWordSeparatorAtIndex(int64_t index) const { return (typeAtIndex(index) & kSeparator) != 0; }
  /// `isWordBeginningAtIndex:`
  bool isWordBeginningAtIndex(int64_t index) const { return (typeAtIndex(index) & kWordBeginning) != 0; }
  /// `isWordEndAtIndex:`: whether the unit is the last one of a word.
  bool isWordEndAtIndex(int64_t index) const { return (typeAtIndex(index) & kWordEnd) != 0; }
  /// `isWordAnchoredAtIndex:`: whether the unit is the first or the last one of a word.
  bool isWordAnchoredAtIndex(int64_t index) const { return (typeAtIndex(index) & (kWordBeginning | kWordEnd)) != 0; }
  /// `isWordEndBeforeIndex:`: whether the unit before `index` ends a word. False at 0; `index` may equal the length.
  bool isWordEndBeforeIndex(int64_t index) const { return index > 0 && isWordEndAtIndex(index - 1); }
  /// `containsSeparatorInRange:`: false for an empty range.
  bool containsSeparatorInRange(Range range) const;

  /// `locationOfPreviousWordFromIndex:start:`: the nearest word start at or before `index`, not before `start`;
  /// `NSNotFound` when there is none.
  int64_t locationOfPreviousWordFromIndex(int64_t index, int64_t start) const;
  /// `locationOfNextWordFromIndex:end:`: the nearest word start at or after `index`, before `end`; `NSNotFound` when
  /// there is none.
  int64_t locationOfNextWordFromIndex(int64_t index, int64_t end) const;
  /// `rangeOfWordAtIndex:`: the word that the unit belongs to; absent for a separator.
  Range rangeOfWordAtIndex(int64_t index) const;
  /// `rangeOfPreviousWordFromIndex:start:`: the whole word that `locationOfPreviousWordFromIndex:start:` finds, or
  /// absent.
  Range rangeOfPreviousWordFromIndex(int64_t index, int64_t start) const;
  /// `rangeOfNextWordFromIndex:end:`: the whole word that `locationOfNextWordFromIndex:end:` finds, even where it goes
  /// on beyond `end`, or absent.
  Range rangeOfNextWordFromIndex(int64_t index, int64_t end) const;
  /// `enumerateNextWordAtIndex:`: the next word that begins at or after `*index`, which moves to the unit after it.
  /// Absent, and `*index` is the length, when there is none. Begin with 0 and call until the result is absent.
  Range enumerateNextWordAtIndex(int64_t* index) const {
    if (index && static_cast<uint64_t>(*index) < _length && !_onDemand && !_hasUndivided) {
      const int start = nearestWith(kWordBeginning, *index), last = nearestWith(kWordEnd, *index);
      if (start <= last && last < kNearUnits) {
        const Range word = {*index + start, last - start + 1};
        *index += last + 1;
        return word;
      }
    }
    return enumerateFarWordAtIndex(index);
  }

  /// `substringWithRange:`: a copy of the units; absent after `invalidate`.
  String substringWithRange(Range range) const;
  /// `lowercaseSubstringWithRange:`: the same, unit by unit through the lower-case table.
  String lowercaseSubstringWithRange(Range range) const;
  /// `uppercaseSubstringWithRange:`: the same, unit by unit through the upper-case table.
  String uppercaseSubstringWithRange(Range range) const;

  /// `enumerateWordsInRange:handler:context:`: hands over the words of `range` in order and returns how many it handed
  /// over before `handler` asked to stop. A word is cut off where the range begins or ends inside it.
  int64_t enumerateWordsInRange(Range range, WordHandler handler, void* context) const;
  /// `enumerateWordsInRange:block:`: the same with a closure.
  int64_t enumerateWordsInRange(Range range, WordBlock block) const;
  /// The same with a closure that the compiler sees.
  template <WordClosure Block>
  int64_t enumerateWordsInRange(Range range, Block&& block) const {
    Range words[kWordsAtOnce];
    int64_t handed = 0;
    while (const size_t count = wordsInRange(&range, words, kWordsAtOnce)) {
      for (size_t i = 0; i < count; ++i, ++handed) {
        if (block(*this, words[i].location, words[i].length)) return handed;
      }
    }
    return handed;
  }
  /// Writes the words that `enumerateWordsInRange` hands over first to `words`, at most `most`, and returns how many
  /// they are; `*range` becomes what is behind the last one. 0 when there is none.
  size_t wordsInRange(Range* range, Range* words, size_t most) const;

  /// `addWordsTo:minLen:hyphenated:`: appends each word of at least `minLen` units to `list` (anything that inserts a
  /// `String` at its end) as a new string. Unless `hyphenated` is null, a word that ends at a hyphen directly followed
  /// by a line end is joined with the first word of the next line, and the flag tells whether that happened. The hyphen
  /// (U+002D, U+00AD or U+2010) falls away, the next line may be indented, and `minLen` counts the joined word.
  template <class List>
  void addWordsTo(List& list, int64_t minLen, bool* hyphenated) const {
    enumerateWords(minLen, hyphenated, [&list](std::u16string_view units) {
      String word(units);
      if (word.isAbsent()) throw std::bad_alloc();
      list.insert(list.end(), std::move(word));
    });
  }
  /// The words that `addWordsTo:minLen:hyphenated:` appends, one after the other; the units of each are valid during
  /// the call only. May throw `std::bad_alloc` when it joins words.
  void enumerateWords(int64_t minLen, bool* hyphenated, FunctionRef<void(std::u16string_view word)> handle) const;
  /// `stringBySeparatingWords`: all words with one space between them; empty when there is none, absent after
  /// `invalidate`.
  String stringBySeparatingWords() const;

 private:
  friend class SearchedText;
  enum class Division : uint8_t { Never, Now, OnDemand };
  static constexpr uint8_t kUndivided = 8;  // a type's bit: the run is one that a dictionary has yet to divide
  static constexpr size_t kBlock = 256;     // units that are indexed together
  static constexpr size_t kWordsAtOnce = 128;
  static constexpr int kNearUnits = 16;  // whose types can be read from any index within the text

  explicit FastWordEnumerator(bool wildcard);

  static Division divisionBySetting() { return splitAsianWords() ? Division::Now : Division::Never; }
  static std::unique_ptr<FastWordEnumerator> create(const String& string, bool caseInsensitive, bool wildcard,
                                                    Division division, bool onDemand);
  static void storeSplitAsianWords(bool split);
  const unichar* charactersInUpperCase() const;
  // The units in upper case where that has been made, else as they are: words are the same in both.
  const unichar* searchedCharacters() const {
    return _copy.load(std::memory_order_acquire) == Copy::Made ? _upper : _characters;
  }
  // Whether `units`, which are the searched ones, have been in the upper table.
  bool areInUpperCase(const unichar* units) const { return _upperCase && (!_upper || units == _upper); }
  bool initIndex(Division division, bool onDemand);
  bool makeRoomForIndex() const;
  void indexAround(size_t index) const {
    if (!_indexed || !_indexed[index / kBlock]) indexBlock(index / kBlock);
  }
  void indexBlock(size_t block) const;
  void indexAll() const;
  size_t findIndexed(size_t from, size_t end, uint8_t mask) const;
  size_t findIndexedBackwards(size_t start, size_t end, uint8_t mask) const;
  void releaseCharacters();
  void markAsianRuns(size_t from, size_t end) const;
  bool holdsWildcard(Range run) const;
  void divideAll() const;
  void divideRunAt(size_t index) const;
  uint8_t typeAfterDividing(size_t index) const;
  size_t findDivided(size_t from, size_t end, uint8_t mask) const;
  size_t findDividedBackwards(size_t start, size_t end, uint8_t mask) const;
  void initWordInRange(Range range) const;
  int64_t wordEndFromIndex(int64_t index) const;
  // How far behind `index` the first unit with the type is, or `kNearUnits`.
  int nearestWith(uint8_t type, int64_t index) const {
    for (int from = 0; from < kNearUnits; from += 8) {
      uint64_t types;
      std::memcpy(&types, _index.get() + index + from, sizeof types);
      types &= type * uint64_t{0x0101010101010101};
      constexpr bool kLittle = std::endian::native == std::endian::little;
      if (types != 0) return from + (kLittle ? std::countr_zero(types) : std::countl_zero(types)) / 8;
    }
    return kNearUnits;
  }
  Range enumerateFarWordAtIndex(int64_t* index) const;
  int64_t continuationAfterHyphen(int64_t wordEnd) const;
  void completeIndex(size_t from, size_t end, bool divides) const;
  template <bool kDivides>
  size_t takeWords(Range* range, Range* words, size_t most) const;
  // As far as it is known without a dictionary.
  struct Run {
    Range range;
    bool isWhole;      // not cut off by the range it was looked for in
    bool isUndivided;  // may be several words
  };
  void handRuns(Range range, FunctionRef<void(const Run& run)> hand) const;

  String _string;                        // absent when made from units
  const unichar* _characters = nullptr;  // into _string, the caller's, or owned
  bool _freeCharacters = false;          // _characters are owned
  bool _upperCase = false;               // _characters are a copy in upper case, unless there is room for one
  unichar* _upper = nullptr;             // room for _characters in upper case, or null; owned
  enum class Copy : uint8_t { None, BeingMade, Made };
  mutable std::atomic<Copy> _copy{Copy::None};  // what is in that room
  uint64_t _length = 0;                         // 0 while invalid: every query then fails its bounds check
  bool _onDemand = false;                       // the index is made where a query comes to
  // A type per unit with `kNearUnits` separators behind, and of each block whether it has types yet, which all have
  // unless made on demand.
  mutable std::unique_ptr<uint8_t[]> _index;
  mutable uint64_t _indexCapacity = 0;  // in units
  mutable std::unique_ptr<bool[]> _indexed;
  bool _marksRuns = false;  // those that a dictionary has to divide
  mutable uint64_t _numWords = 0;
  mutable std::unique_ptr<WordTokenizer> _tokenizer;  // made when first needed
  mutable bool _hasUndivided = false;                 // some types may have that bit
  bool _wildcard = false;
  mutable bool _ranOutOfMemory = false;
};

}  // namespace velan

#endif  // VELAN_QUERY_WORDS_FAST_WORD_ENUMERATOR_H
