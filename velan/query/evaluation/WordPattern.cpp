#include <algorithm>
#include <new>
#include <optional>
#include <utility>

#include "velan/query/evaluation/PhraseSearchInternal.h"
#include "velan/query/evaluation/WordPatternInternal.h"
#include "velan/query/evaluation/WordSearchInternal.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/PreimagesInternal.h"
#include "velan/text/Separators.h"
#include "velan/wildcard/WildcardMatching.h"
#include "velan/wildcard/WildcardPattern.h"

namespace velan {
namespace {

std::vector<std::u16string> wordsOf(std::u16string_view text, bool wildcard) {
  std::vector<std::u16string> words;
  if (text.empty()) return words;
  const auto enumerator = FastWordEnumerator::enumeratorWithString(String(text), false, wildcard);
  if (!enumerator) throw std::bad_alloc();
  enumerator->enumerateWordsInRange({0, enumerator->length()},
                                    [&words](const FastWordEnumerator& each, int64_t start, int64_t length) {
                                      words.emplace_back(each.characters() + start, static_cast<size_t>(length));
                                      return false;
                                    });
  return words;
}

// The normal form of a pattern that would be usable if it had a literal: with one at its end it is. Nothing for a
// malformed pattern.
std::optional<std::u16string> normalFormWithoutLiteral(std::u16string_view pattern) {
  std::u16string units(pattern);
  units.push_back(u'a');
  Range range{};
  const uint32_t type = optimizeWildcard(units.data(), units.data() + units.size(), &range, 1);
  if (type == WildcardTypeUnusable) return std::nullopt;
  units.resize(static_cast<size_t>(normalWildcardLen(type, range) - 1));
  return units;
}

struct SplitPattern {
  std::vector<std::u16string> pieces;
  bool holdsSeparators;
  bool anyWord;  // a piece without a literal stands for any word
};

SplitPattern splitPattern(std::u16string_view pattern, bool phrase) {
  SplitPattern parts{wordsOf(pattern, true), false, false};
  parts.holdsSeparators = parts.pieces.size() != 1 || parts.pieces.front().size() != pattern.size();
  parts.anyWord = parts.holdsSeparators || phrase;
  return parts;
}

// Longer units are rarer, and so are those with any but the most frequent letters.
size_t rareness(std::u16string_view units) {
  constexpr std::u16string_view kFrequent = u"etaoinshrETAOINSHR";
  return 2 * units.size() + (units.find_first_not_of(kFrequent) != units.npos ? 1 : 0);
}

// Of so many units in a row each is looked for.
constexpr size_t kTellingLength = NeedleHead::kProbes;

struct SeparatorsAmong {
  bool any, all;
};

// Of the units that `table`, or none, turns into `c`.
SeparatorsAmong separatorsAmong(unichar c, const unichar* table) {
  SeparatorsAmong among{false, true};
  const auto add = [&among](unichar unit) {
    const bool separates = isMemberOfCharacterSetRep(defaultWordSeparators(), unit);
    among.any |= separates;
    among.all &= separates;
  };
  if (!table) {
    add(c);
  } else if (table[c] == c) {
    forEachPreimage(c, table, add);
  }
  return among;
}

template <typename Element>
Element elementOf(std::u16string_view set) {
  Element element;
  element.exists = true;
  for (unichar c = 0; c < 128; ++c) {
    if (stringMatchesUnixWildcard(&c, &c + 1, set.data(), set.data() + set.size())) continue;
    element.ascii[c / 64] &= ~(uint64_t{1} << (c % 64));
  }
  return element;
}

}  // namespace

WordPattern::Piece WordPattern::wildcardPiece(std::u16string pattern, bool anyWord, bool fuzzy) {
  const auto withoutLiteral = anyWord ? normalFormWithoutLiteral(pattern) : std::nullopt;
  Piece piece{std::move(pattern), WildcardTypeUnusable, {0, 0}, 0, 0, fuzzy, false};
  unichar* start = piece.units.data();
  piece.type = optimizeWildcard(start, start + piece.units.size(), &piece.literal, 1);
  if (piece.type != WildcardTypeUnusable) {
    piece.units.resize(static_cast<size_t>(normalWildcardLen(piece.type, piece.literal)));
  } else if (withoutLiteral) {
    piece.units = *withoutLiteral;
    piece.type = WildcardTypeGeneral;
    piece.standsForAnyWord = true;
  } else {
    return piece;
  }
  start = piece.units.data();
  piece.minLength = minWildcardLen(start, start + piece.units.size());
  piece.maxLength = maxWildcardLen(start, start + piece.units.size());
  return piece;
}

WordPattern::Piece WordPattern::literalPiece(std::u16string word) {
  const auto length = static_cast<int64_t>(word.size());
  return {std::move(word), WildcardTypeExact, {0, length}, length, length, false, false};
}

WordPattern WordPattern::withWildcard(std::u16string_view pattern, bool split, bool phrase, bool fuzzy,
                                      const unichar* table) {
  WordPattern result;
  if (normalFormWithoutLiteral(pattern) == u"*") {
    result._wholeRange = true;
    return result;
  }
  const SplitPattern parts = splitPattern(pattern, phrase);
  if (parts.holdsSeparators && !split) return result;
  for (const std::u16string& piece : parts.pieces) {
    result._pieces.push_back(wildcardPiece(mappedUnits(piece, table), parts.anyWord, fuzzy));
    if (result._pieces.back().type == WildcardTypeUnusable) {
      result._pieces.clear();
      break;
    }
  }
  result.chooseAnchor(table);
  return result;
}

std::vector<ExplainedPiece> WordPattern::explained(std::u16string_view pattern, bool phrase, bool fuzzy) {
  std::vector<ExplainedPiece> explained;
  const SplitPattern parts = splitPattern(pattern, phrase);
  for (const std::u16string& units : parts.pieces) {
    const Piece piece = wildcardPiece(units, parts.anyWord, fuzzy);
    const bool isUsable = piece.type != WildcardTypeUnusable;
    const uint32_t type = wildcardType(units);
    explained.push_back({units, type, isUsable ? String(piece.units) : String(), piece.standsForAnyWord,
                         fuzzy && type == WildcardTypeExact});
  }
  return explained;
}

WordPattern WordPattern::withPhrase(std::u16string_view phrase, const unichar* table) {
  WordPattern result;
  for (const std::u16string& word : wordsOf(phrase, false)) {
    result._pieces.push_back(literalPiece(mappedUnits(word, table)));
  }
  result.chooseAnchor(table);
  return result;
}

// Where a range of a set ends with its `]`, what follows may belong to the set.
std::u16string_view WordPattern::longestRunOf(const Piece& piece) {
  const std::u16string_view units = piece.units;
  if ((piece.type == WildcardTypeExact && piece.fuzzy) || units.find(u"-]") != units.npos) return {};
  std::u16string_view longest;
  for (size_t i = 0; i < units.size(); ++i) {
    const size_t end = std::min(units.find_first_of(u"*?[", i), units.size());
    if (end - i > longest.size()) longest = units.substr(i, end - i);
    i = end < units.size() && units[end] == u'[' ? std::min(units.find(u']', end), units.size()) : end;
  }
  return longest;
}

ProbedRun WordPattern::probedRunOf(const Piece& piece, const unichar* table) {
  if ((piece.type == WildcardTypeExact && piece.fuzzy) || piece.units.find(u"-]") != piece.units.npos) return {};
  return mostTellingRun(piece.units, piece.type >= WildcardTypeSetGeneral, table);
}

WordPattern::Anchor WordPattern::anchorAt(const Piece& piece, std::u16string_view run, Literal literal) {
  const std::u16string_view units = piece.units;
  const auto first = static_cast<size_t>(run.data() - units.data());
  const bool isAll = piece.type == WildcardTypeExact || piece.type == WildcardTypePrefix ||
                     piece.type == WildcardTypeSuffix || piece.type == WildcardTypeContains;
  Anchor anchor{std::move(literal), 0, 0, 0, {}, {}, isAll, {}, {}, {}, false};
  int64_t* count = &anchor.before;
  for (size_t i = 0; i < units.size();) {
    size_t length = 1;
    if (units[i] == u'[') {
      const bool isSet = piece.type != WildcardTypeAnyOne && piece.type != WildcardTypeGeneral;
      length = std::min(units.find(u']', i), units.size() - 1) + 1 - i;
      if (i + length == first) anchor.previous = elementOf<Anchor::Element>(units.substr(i, length));
      if (i == first + run.size()) anchor.next = elementOf<Anchor::Element>(units.substr(i, length));
      if (!isSet || units[i + length - 1] != u']') anchor.before = anchor.after = -1;
    }
    if (i == first) {
      count = &anchor.after;
      length = run.size();
    } else if (units[i] == u'*' || *count < 0) {
      *count = -1;
    } else {
      ++*count;
    }
    i += length;
  }
  if (anchor.before == 0 && anchor.after < 0) anchor.rest = restOf(units.substr(run.size()));
  if (piece.type == WildcardTypeAnyOne || piece.type == WildcardTypeGeneral) anchor.previous = anchor.next = {};
  return anchor;
}

std::optional<WordPattern::Rest> WordPattern::restOf(std::u16string_view pattern) {
  if (!pattern.starts_with(u'*') || pattern.find_first_of(u"?[]") != pattern.npos) return std::nullopt;
  Rest rest{{}, pattern.ends_with(u'*')};
  while (pattern.size() > 1) {
    const size_t end = std::min(pattern.find(u'*', 1), pattern.size());
    rest.parts.emplace_back(pattern.substr(1, end - 1));
    pattern.remove_prefix(end);
  }
  return rest;
}

// Each part where it comes first is as good as any later place, but for one that has to stand at the end.
bool WordPattern::matchesRest(const SearchedText& text, Range word) const {
  const Rest& rest = *_anchor->rest;
  int64_t from = word.location + _anchor->literal.length();
  for (size_t i = 0; i < rest.parts.size(); ++i) {
    const std::u16string& part = rest.parts[i];
    const int64_t last = endOf(word) - static_cast<int64_t>(part.size());
    if (i + 1 == rest.parts.size() && !rest.isOpen) return last >= from && text.hasUnitsAt(last, part);
    while (from <= last && !text.hasUnitsAt(from, part)) ++from;
    if (from > last) return false;
    from += static_cast<int64_t>(part.size());
  }
  return true;
}

// Whether a short one that does not have to stand at a distance from the ends of its word stands in one word only;
// units that separate words go from its elements, as a word has none.
bool WordPattern::keepToOneWord(Anchor& anchor, const unichar* table) {
  if (anchor.literal.length() > LiteralHits::kShort || std::max(anchor.before, anchor.after) > 0) return false;
  if (anchor.elements.empty()) {
    return std::ranges::none_of(anchor.literal.units(), [&](unichar c) { return separatorsAmong(c, table).any; });
  }
  for (unichar c = 0; c < 128; ++c) {
    const SeparatorsAmong separators = separatorsAmong(c, table);
    if (separators.any && !separators.all) return false;
    if (!separators.any) continue;
    for (Anchor::Element& element : anchor.elements) element.ascii[c / 64] &= ~(uint64_t{1} << (c % 64));
  }
  return true;
}

// Whether the word before the anchor's can be looked at before its own.
bool WordPattern::isKnownByWordBefore() const {
  if (!_anchor->isInOneWord || _anchor->before != 0 || _anchor->piece == 0 || !_anchor->elements.empty()) return false;
  const Piece& before = _pieces[_anchor->piece - 1];
  return (before.type == WildcardTypeExact || before.type == WildcardTypeSuffix) && !before.fuzzy;
}

void WordPattern::chooseAnchor(const unichar* table) {
  std::u16string_view longest;
  size_t chosen = 0;
  for (size_t i = 0; i < _pieces.size(); ++i) {
    const std::u16string_view run = longestRunOf(_pieces[i]);
    if (run.size() < longest.size() || rareness(run) <= rareness(longest)) continue;
    longest = run;
    chosen = i;
  }
  const bool isAtProbes = longest.size() < kTellingLength && anchorAtProbes(longest, table);
  if (!isAtProbes && longest.empty()) return;
  if (!isAtProbes) {
    _anchor.emplace(anchorAt(_pieces[chosen], longest, Literal(longest, table)));
    _anchor->piece = chosen;
  }
  _anchor->isInOneWord = keepToOneWord(*_anchor, table);
  if (isKnownByWordBefore()) _anchor->byProbes = _anchor->literal.byProbes();
}

// Where the units with the sets beside them tell more than `longest`, the longest ones without.
bool WordPattern::anchorAtProbes(std::u16string_view longest, const unichar* table) {
  unsigned tells = mostTellingRun(longest, false, table).tells;
  for (size_t i = 0; i < _pieces.size(); ++i) {
    const ProbedRun run = probedRunOf(_pieces[i], table);
    if (run.tells <= tells) continue;
    tells = run.tells;
    _anchor.emplace(anchorAt(_pieces[i], run.units, Literal(run.head)));
    _anchor->piece = i;
    _anchor->isAll = run.isAll;
    forEachElement(run.units, [this](std::u16string_view element) {
      _anchor->elements.push_back(elementOf<Anchor::Element>(element));
    });
  }
  return _anchor.has_value();
}

std::vector<std::u16string_view> WordPattern::requiredLiterals() const {
  std::vector<std::u16string_view> literals;
  for (const Piece& piece : _pieces) {
    const std::u16string_view run = longestRunOf(piece);
    if (!run.empty()) literals.push_back(run);
  }
  return literals;
}

// Comparisons with the threshold are written so that a similarity that is not a number is never enough.
bool WordPattern::isSimilar(const Piece& piece, const SearchedText& text, Range word) {
  const double threshold = minWildcardFuzzyAnalogy();
  const auto wordLength = static_cast<size_t>(word.length);
  const auto [shorter, longer] = std::minmax({piece.units.size(), wordLength});
  if (!(static_cast<double>(shorter) / static_cast<double>(longer) >= threshold)) return false;
  const unichar* units = text.units() + word.location;
  // The pattern is mapped already; mapping it again changes nothing, because the tables' results map to themselves.
  const double similarity =
      text.table() ? stringMatchesUnixWildcardFuzzyUsingUnicharTable(piece.units.data(), piece.units.size(), units,
                                                                     wordLength, text.table())
                   : stringMatchesUnixWildcardFuzzy(piece.units.data(), piece.units.size(), units, wordLength);
  return similarity >= threshold;
}

std::unique_ptr<const PreparedSimilarity> WordPattern::preparedSimilarity(const Piece& piece,
                                                                          const SearchedText& text) {
  auto prepared = PreparedSimilarity::preparedSimilarity(piece.units, text.table());
  if (!prepared) throw std::bad_alloc();
  return prepared;
}

bool WordPattern::matches(const Piece& piece, const SearchedText& text, Range word) {
  if (piece.type == WildcardTypeExact && piece.fuzzy) return isSimilar(piece, text, word);
  if (word.length < piece.minLength || word.length > piece.maxLength) return false;
  const unichar* start = text.units() + word.location;
  const unichar* end = start + word.length;
  const unichar* pattern = piece.units.data();
  const unichar* patternEnd = pattern + piece.units.size();
  switch (piece.type) {
    case WildcardTypeExact:
    case WildcardTypePrefix:
      return text.hasUnitsAt(word.location, literalOf(piece));
    case WildcardTypeSuffix:
      return text.hasUnitsAt(endOf(word) - piece.literal.length, literalOf(piece));
    case WildcardTypeContains:
      return text.holdsUnits(word, literalOf(piece));
    case WildcardTypeAnyOne:
    case WildcardTypeGeneral:
      return stringMatchesWildcardUsingUnicharTable(start, end, pattern, patternEnd, text.table());
    default:
      return stringMatchesUnixWildcardUsingUnicharTable(start, end, pattern, patternEnd, text.table());
  }
}

Range WordPattern::firstIn(const SearchedText& text, Range range) const {
  if (_wholeRange) return range.length > 0 ? range : kAbsentRange;
  if (_pieces.empty()) return kAbsentRange;
  std::vector<Range> found;
  const auto search = [&found](auto&& places) {
    while (found.empty() && places.searchOn(found)) {
    }
  };
  if (isPhrase()) {
    search(PhraseSearch(*this, text, range));
  } else {
    search(WordSearch(*this, text, range));
  }
  return found.empty() ? kAbsentRange : found.front();
}

}  // namespace velan
