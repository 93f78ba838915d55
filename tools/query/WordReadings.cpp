#include "tools/query/WordReadings.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>
#include <vector>

#include "tools/query/Query.h"
#include "velan/base/MutableString.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/Separators.h"

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

// Finds the words that may be read in another way.
class ReadingFinder {
 public:
  ReadingFinder(std::u16string_view text, const QueryWords& words) : _text(text), _words(words) {}

  // Those that may be words of the query, by position; of those that overlap the longer ones first.
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
    if (!whole.empty()) addIfWanted({start, end, whole});
    if (std::ranges::any_of(units, isJoinedLetter)) addIfWanted({start, end, withoutJoinedLetters(units)});
  }

  void addIfWanted(Reading reading) {
    if (_words.mayBe(reading.units)) _readings.push_back(std::move(reading));
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
  const QueryWords& _words;
  size_t _done = 0;  // words before it are dealt with
  std::vector<Reading> _readings;
};

// Those that are words of the query, without overlaps.
std::vector<Reading> readingsIn(const String& source, const QueryWords& words) {
  std::vector<Reading> readings = ReadingFinder(source.view(), words).find();
  if (readings.empty()) return {};
  MutableString list;
  std::vector<int64_t> ends;
  for (const Reading& reading : readings) {
    list.appendString(std::u16string_view(reading.units));
    list.appendCharacter(u'\n');
    ends.push_back(list.length());
  }
  const String text = list.string();
  const auto index = indexOf(text, words.anyOfThem());
  QueryMatcher matcher(words.anyOfThem(), *index);
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

}  // namespace

Range SearchedText::rangeFrom(Range range) const {
  const auto position = [this](int64_t source) {
    return std::min(_read.positionOf(_plain.positionOf(source)), _text.length());  // a text may have vanished
  };
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

WordReadings::WordReadings(const PreparedQuery& query, bool verbatim)
    : _verbatim(verbatim), _words(verbatim ? nullptr : QueryWords::wordsOf(query)) {}

SearchedText WordReadings::read(const String& text) const {
  return _verbatim ? SearchedText(text) : read(text, spellingOf(text.view()));
}

SearchedText WordReadings::read(const Document& document) const {
  const bool isInBytes = document.textIsSource() && document.encoding == StringEncoding::UTF8;
  if (_verbatim || !isInBytes) return read(document.text);
  const auto join = [this](char before, char after) { return _words && _words->mayJoin(before, after); };
  return read(document.text, spellingOfUTF8(document.bytes, join));
}

SearchedText WordReadings::read(const String& text, const Spelling& spelling) const {
  SearchedText searched(text);
  if (spelling.unusual) {
    MappedText plain = plainText(text);
    searched._text = std::move(plain.text);
    searched._plain = std::move(plain.map);
  }
  if (!_words || !(spelling.joinedLetters || spelling.lineEndHyphens)) return searched;
  const std::vector<Reading> readings = readingsIn(searched._text, *_words);
  if (readings.empty()) return searched;
  MappedText read = withReadings(searched._text, readings);
  searched._text = std::move(read.text);
  searched._read = std::move(read.map);
  return searched;
}

}  // namespace velan::tool
