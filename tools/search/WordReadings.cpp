#include "tools/search/WordReadings.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>
#include <vector>

#include "tools/search/Query.h"
#include "velan/base/MutableString.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/Separators.h"
#include "velan/text/editing/Ligatures.h"

namespace velan::tool {
namespace {

bool isInWord(unichar c) { return !isMemberOfCharacterSetRep(defaultWordSeparators(), c); }

// East Asian scripts end lines anywhere.
bool isDividedByHyphens(unichar c) { return c < 0x2E80; }

// A part of a text, and how it may be read.
struct Reading {
  size_t start;
  size_t end;
  std::u16string units;
};

std::u16string withoutJoinedLetters(std::u16string_view word) {
  MutableString letters(word);
  if (!convertLigaturesToCharacters(letters)) throw std::bad_alloc();
  std::u16string result;
  for (const unichar c : letters.view()) {
    if (c == 0xDF || c == 0x1E9E) {
      result += c == 0xDF ? u"ss" : u"SS";
    } else {
      result += c;
    }
  }
  return result;
}

// Finds the words that may be read in another way.
class ReadingFinder {
 public:
  explicit ReadingFinder(std::u16string_view text) : _text(text) {}

  // By position; of those that overlap the longer ones first.
  std::vector<Reading> find() {
    for (size_t i = findOtherSpelling(_text, 0); i < _text.size(); i = findOtherSpelling(_text, i)) {
      size_t start = i;
      while (start > _done && isInWord(_text[start - 1])) --start;
      if (start < i || isInWord(_text[i])) addWord(start);
      i = std::max(i + 1, _done);
    }
    return std::move(_readings);
  }

 private:
  // The word that begins at `start` with what it goes on with behind line ends.
  void addWord(size_t start) {
    std::vector<std::pair<size_t, size_t>> parts;
    std::u16string whole;
    for (size_t part = start; part != kNone;) {
      const size_t end = endOfWord(part);
      parts.emplace_back(part, end);
      whole += _text.substr(part, end - part);
      part = continuationAfter(end);
    }
    _done = parts.back().second;
    if (parts.size() > 1) add(start, _done, whole);
    for (const auto& [first, last] : parts) add(first, last, {});
  }

  // `whole` is empty for what stands undivided in the text.
  void add(size_t start, size_t end, const std::u16string& whole) {
    const std::u16string_view units = whole.empty() ? _text.substr(start, end - start) : std::u16string_view(whole);
    if (!whole.empty()) _readings.push_back({start, end, whole});
    if (std::ranges::any_of(units, isJoinedLetter)) _readings.push_back({start, end, withoutJoinedLetters(units)});
  }

  size_t endOfWord(size_t index) const {
    while (index < _text.size() && isInWord(_text[index])) ++index;
    return index;
  }

  // Where the word goes on that ends before `end`.
  size_t continuationAfter(size_t end) const {
    if (end == _text.size() || !isLineEndHyphen(_text, end) || !isDividedByHyphens(_text[end - 1])) return kNone;
    const size_t lineEnd = end + 1;
    const bool isPair = _text.substr(lineEnd).starts_with(u"\r\n");
    const size_t next = _text.find_first_not_of(u" \t", lineEnd + (isPair ? 2 : 1));
    const bool goesOn = next != std::u16string_view::npos && isInWord(_text[next]) && isDividedByHyphens(_text[next]);
    return goesOn ? next : kNone;
  }

  static constexpr size_t kNone = std::numeric_limits<size_t>::max();

  const std::u16string_view _text;
  size_t _done = 0;  // words before it are dealt with
  std::vector<Reading> _readings;
};

// Those readings that hold a word of the query, without overlaps.
std::vector<Reading> readingsWith(const PreparedQuery& words, std::vector<Reading> readings) {
  MutableString list;
  std::vector<int64_t> ends;
  for (const Reading& reading : readings) {
    list.appendString(std::u16string_view(reading.units));
    list.appendCharacter(u'\n');
    ends.push_back(list.length());
  }
  const String text = list.string();
  const auto index = indexOf(text, words);
  if (!index) return {};
  QueryMatcher matcher(words, *index);
  std::vector<Reading> chosen;
  size_t taken = 0;  // readings before it were looked at
  size_t done = 0;
  for (const QueryOccurrence& each : matcher.occurrences({0, text.length()})) {
    const auto end = std::ranges::upper_bound(ends, each.range.location);
    const auto number = static_cast<size_t>(end - ends.begin());
    if (number < taken || readings[number].start < done) continue;
    taken = number + 1;
    done = readings[number].end;
    chosen.push_back(std::move(readings[number]));
  }
  if (matcher.ranOutOfMemory()) throw std::bad_alloc();
  return chosen;
}

MappedText withReadings(const String& text, const std::vector<Reading>& readings) {
  MappedText result;
  MutableString units;
  const auto add = [&](size_t start, size_t end, std::u16string_view as) {
    if (start == end) return;
    units.appendString(as);
    result.map.add({static_cast<int64_t>(start), static_cast<int64_t>(end - start)}, static_cast<int64_t>(as.size()));
  };
  size_t done = 0;
  for (const Reading& reading : readings) {
    add(done, reading.start, text.view().substr(done, reading.start - done));
    add(reading.start, reading.end, reading.units);
    done = reading.end;
  }
  add(done, text.view().size(), text.view().substr(done));
  result.text = units.takeString();
  if (!result.text) throw std::bad_alloc();
  return result;
}

void addQuoted(std::u16string_view word, MutableString& query) {
  if (!query.isEmpty()) query.appendString(u" OR "_s);
  query.appendCharacter(u'"');
  query.appendString(word);
  query.appendCharacter(u'"');
}

// A query for any of the words that another one looks for; empty where it has none.
String anyWordOf(const PreparedQuery& query) {
  MutableString words;
  for (const ExplainedTerm& term : query.explanation(std::numeric_limits<uint32_t>::max())) {
    if (term.meaning == LeafMeaning::Literal) {
      if (const auto index = FastWordEnumerator::enumeratorWithString(term.term->word())) {
        index->enumerateWords(1, nullptr, [&](std::u16string_view word) { addQuoted(word, words); });
      }
    }
    for (const ExplainedPiece& piece : term.pieces) {
      if (!piece.standsForAnyWord && piece.normalForm) addQuoted(piece.pattern.view(), words);
    }
  }
  return words.string();
}

}  // namespace

Range SearchedText::rangeFrom(Range range) const {
  const auto position = [this](int64_t source) { return _read.positionOf(_plain.positionOf(source)); };
  const int64_t start = position(range.location);
  return {start, position(endOf(range)) - start};
}

std::vector<ExplainedTerm> explanationIn(const PreparedQuery& query, const SearchedText& text, size_t deepest) {
  const auto index = indexOf(text.text(), query);
  std::vector<ExplainedTerm> terms =
      index ? QueryMatcher(query, *index).explanation(deepest) : query.explanation(deepest);
  for (ExplainedTerm& term : terms) {
    if (!index) term.holds = false;
    for (Range& place : term.places) place = text.sourceOf(place);
  }
  return terms;
}

WordReadings::WordReadings(const PreparedQuery& query, bool verbatim) : _verbatim(verbatim) {
  if (verbatim) return;
  const String any = anyWordOf(query);
  if (any.isEmpty()) return;
  std::shared_ptr<const QueryTerms> terms =
      query.wildcard() ? QueryTerms::initWithWildcard(any) : QueryTerms::initWithString(any);
  _words = PreparedQuery::queryWithTerms(std::move(terms), query.comparison(), query.wildcard());
  if (!_words) throw std::bad_alloc();
}

SearchedText WordReadings::read(const String& text) const {
  SearchedText searched(text);
  if (_verbatim) return searched;
  const Spelling spelling = spellingOf(text.view());
  if (spelling.unusual) {
    MappedText plain = plainText(text);
    searched._text = std::move(plain.text);
    searched._plain = std::move(plain.map);
  }
  if (!_words || !(spelling.joinedLetters || spelling.lineEndHyphens)) return searched;
  const std::vector<Reading> readings = readingsWith(*_words, ReadingFinder(searched._text.view()).find());
  if (readings.empty()) return searched;
  MappedText read = withReadings(searched._text, readings);
  searched._text = std::move(read.text);
  searched._read = std::move(read.map);
  return searched;
}

}  // namespace velan::tool
