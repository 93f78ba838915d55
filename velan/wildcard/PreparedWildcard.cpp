#include "velan/wildcard/PreparedWildcard.h"

#include <algorithm>
#include <new>

#include "velan/wildcard/WildcardMatching.h"
#include "velan/wildcard/WildcardPattern.h"
#include "velan/wildcard/WordKernelsInternal.h"

namespace velan {
namespace {

// Reads a pattern in which every set ends at its first `]`.
class Compiler {
 public:
  Compiler(std::u16string_view pattern, bool hasSets) : _pattern(pattern), _hasSets(hasSets) {}

  // False when the pattern has more than a program has room for.
  bool compile(WordProgram& program) {
    bool hasStar = false;
    WordProgram::Piece piece;
    while (_read < _pattern.size()) {
      if (_pattern[_read] == u'*') {
        ++_read;
        endPiece(program, piece, hasStar);
        hasStar = true;
      } else {
        if (!readElement(program)) return false;
        ++piece.length;
      }
    }
    (hasStar ? program.tail : program.head) = piece;
    const bool headIsRanges = readRanges(program, program.head, program.headRanges);
    program.endsAreRanges = readRanges(program, program.tail, program.tailRanges) && headIsRanges;
    program.minLength = program.elementCount;
    program.maxLength = hasStar ? SIZE_MAX : program.minLength;
    return true;
  }

 private:
  static void endPiece(WordProgram& program, WordProgram::Piece& piece, bool hasStar) {
    if (!hasStar) {
      program.head = piece;
    } else if (piece.length > 0) {
      program.middles[program.middleCount++] = piece;
    }
    piece = {program.elementCount, 0};
  }

  // Whether the ranges say all about the piece.
  static bool readRanges(const WordProgram& program, WordProgram::Piece piece, UnitRanges& ranges) {
    constexpr size_t kInAnyVector = 8;
    bool isComplete = piece.length <= kInAnyVector;
    for (; ranges.length < piece.length; ++ranges.length) {
      const uint8_t element = program.elements[piece.first + ranges.length];
      if (element == WordProgram::kAnyUnit) continue;
      const UnitClass& units = program.classes[element];
      const bool isRange = units.count == 1 && !(units.isNegated && units.span[0] == UnitRanges::kAll);
      isComplete = isComplete && isRange;
      if (!isRange) continue;
      // What is not in a range is in the one from its end round to its beginning.
      const auto end = static_cast<unichar>(units.low[0] + units.span[0] + 1);
      ranges.low[ranges.length] = units.isNegated ? end : units.low[0];
      ranges.span[ranges.length] = units.isNegated ? static_cast<unichar>(units.low[0] - end - 1) : units.span[0];
    }
    return isComplete;
  }

  bool readElement(WordProgram& program) {
    if (program.elementCount == WordProgram::kMostElements) return false;
    const unichar unit = _pattern[_read];
    uint8_t element = WordProgram::kAnyUnit;
    if (unit == u'?') {
      ++_read;
    } else {
      UnitClass units;
      if (_hasSets && unit == u'[') {
        if (!readSet(units)) return false;
      } else {
        ++_read;
        add(units, unit, unit);
        units.kind = UnitClass::Kind::OneUnit;
      }
      UnitClass* const end = program.classes + program.classCount;
      const UnitClass* const found = std::find(program.classes, end, units);
      if (found == end && program.classCount == WordProgram::kMostClasses) return false;
      if (found == end) program.classes[program.classCount++] = units;
      element = static_cast<uint8_t>(found - program.classes);
    }
    program.elements[program.elementCount++] = element;
    return true;
  }

  // A `[` at the end matches nothing.
  bool readSet(UnitClass& units) {
    if (++_read == _pattern.size()) return true;
    units.isNegated = _pattern[_read] == u'^';
    if (units.isNegated) ++_read;
    bool fits = true;
    while (_read < _pattern.size()) {
      const unichar member = _pattern[_read++];
      if (member == u']') break;
      if (member != u'-') {
        if (member != u'|') fits = add(units, member, member) && fits;
      } else if (_read < _pattern.size()) {
        fits = add(units, _pattern[_read - 2], _pattern[_read]) && fits;
        ++_read;
      }
    }
    return fits;
  }

  // Ranges that touch become one.
  static bool add(UnitClass& units, unichar low, unichar high) {
    if (low > high) return true;
    for (size_t i = 0; i < units.count;) {
      const unichar first = units.low[i];
      const auto last = static_cast<unichar>(first + units.span[i]);
      if (first > high + 1 || low > last + 1) {
        ++i;
        continue;
      }
      low = std::min(low, first);
      high = std::max(high, last);
      units.low[i] = units.low[--units.count];
      units.span[i] = units.span[units.count];
    }
    if (units.count == UnitClass::kMost) return false;
    units.low[units.count] = low;
    units.span[units.count++] = static_cast<unichar>(high - low);
    return true;
  }

  const std::u16string_view _pattern;
  const bool _hasSets;
  size_t _read = 0;
};

// Null for a pattern that is none. Where a range may end with the `]`, the set's end depends on the text.
std::unique_ptr<const WordProgram> compiled(std::u16string_view pattern, bool hasSets) {
  if (hasSets && pattern.find(u"-]") != pattern.npos) return nullptr;
  auto program = std::make_unique<WordProgram>();
  return Compiler(pattern, hasSets).compile(*program) ? std::move(program) : nullptr;
}

}  // namespace

PreparedWildcard::PreparedWildcard(std::u16string_view pattern, const unichar* table, bool hasSets)
    : _pattern(pattern), _table(table), _hasSets(hasSets) {
  prepareWildcardUsingUnicharTable(_pattern.data(), _pattern.data() + _pattern.size(), table);
  _program = compiled(_pattern, hasSets);
}

PreparedWildcard::~PreparedWildcard() = default;

std::unique_ptr<const PreparedWildcard> PreparedWildcard::prepared(std::u16string_view pattern, const unichar* table,
                                                                   bool hasSets) {
  try {
    return std::unique_ptr<const PreparedWildcard>(new PreparedWildcard(pattern, table, hasSets));
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

std::unique_ptr<const PreparedWildcard> PreparedWildcard::preparedWildcard(std::u16string_view pattern,
                                                                           const unichar* table) {
  return prepared(pattern, table, false);
}

std::unique_ptr<const PreparedWildcard> PreparedWildcard::preparedUnixWildcard(std::u16string_view pattern,
                                                                               const unichar* table) {
  return prepared(pattern, table, true);
}

bool PreparedWildcard::matchesPlainly(std::u16string_view word) const {
  const unichar* const end = word.data() + word.size();
  const unichar* const patternEnd = _pattern.data() + _pattern.size();
  const auto matcher = _hasSets ? stringMatchesUnixWildcardUsingUnicharTable : stringMatchesWildcardUsingUnicharTable;
  return matcher(word.data(), end, _pattern.data(), patternEnd, _table);
}

bool PreparedWildcard::matches(std::u16string_view word) const {
  unichar mapped[kMostShortUnits];
  if (!_program || word.size() > kMostShortUnits) return matchesPlainly(word);
  if (_table) {
    std::ranges::transform(word, mapped, [this](unichar c) { return _table[c]; });
    word = {mapped, word.size()};
  }
  bool result = false;
  wordKernels().match(*_program, &word, 1, &result);
  return result;
}

void PreparedWildcard::matchWords(std::span<const std::u16string_view> words, bool* matches) const {
  const bool isDirect = _program && !_table;
  if (isDirect && wordKernels().match(*_program, words.data(), words.size(), matches)) return;
  for (size_t i = 0; i < words.size(); ++i) {
    if (!isDirect || words[i].size() > kMostShortUnits) matches[i] = this->matches(words[i]);
  }
}

}  // namespace velan
