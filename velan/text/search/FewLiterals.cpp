#include <algorithm>
#include <cstring>

#include "velan/base/GrowthInternal.h"
#include "velan/text/PreimagesInternal.h"
#include "velan/text/search/FewLiteralsInternal.h"

namespace velan {
namespace {

constexpr size_t kProbes = NeedleClasses::kProbes;
// What looking at a place costs beyond what it costs one literal alone, in units that each other literal's own pass
// over the text would look at in that time.
constexpr size_t kUnitsPerPlace = 64;

// Where the rarest units in a row are.
size_t chosenOffset(std::u16string_view literal, const unichar* table) {
  const Preimages* preimages = table ? preimagesOfTable(table) : nullptr;
  size_t chosen = 0;
  unsigned least = ~0u;
  for (size_t offset = 0; offset + std::min(kProbes, literal.size()) <= literal.size(); ++offset) {
    unsigned cost = 0;
    for (const unichar c : literal.substr(offset, kProbes)) {
      cost += preimages ? preimages->costOf(c) : c < kRankedUnits ? kUnitCosts[c] : 0u;
    }
    if (cost >= least) continue;
    least = cost;
    chosen = offset;
  }
  return chosen;
}

// Of the same number of units, two at least; in steps that are compiled to comparisons of numbers.
bool areSame(const unichar* a, const unichar* b, size_t length) {
  constexpr size_t kStep = 4;
  const auto same = [&](size_t i, size_t count) { return std::memcmp(a + i, b + i, count * sizeof(unichar)) == 0; };
  if (length < kStep) return same(0, 2) && same(length - 2, 2);
  for (size_t i = 0; length - i >= kStep; i += kStep) {
    if (!same(i, kStep)) return false;
  }
  return same(length - kStep, kStep);
}

bool areSame(const unichar* literal, const unichar* text, size_t length, const unichar* table) {
  size_t i = 0;
  while (i < length && literal[i] == table[text[i]]) ++i;
  return i == length;
}

}  // namespace

std::optional<uint32_t> FewLiterals::add(std::u16string_view literal) {
  if (literal.size() < kShortest || literal.size() > kLongest) return std::nullopt;
  const auto known = std::ranges::find(_literals, literal, &Entry::units);
  const auto number = static_cast<uint32_t>(known - _literals.begin());
  if (known != _literals.end()) return number;
  if (_literals.size() == kMost) return std::nullopt;
  _literals.push_back({std::u16string(literal), chosenOffset(literal, _table)});
  for (size_t probe = 0; probe < kProbes; ++probe) {
    const size_t position = _literals.back().offset + probe;
    const auto add = [&](unichar c) { _classes.add(probe, c, number); };
    if (position >= literal.size()) {
      for (unichar c = 0; c <= NeedleClasses::kLowBits; ++c) add(c);
    } else if (_table) {
      forEachPreimage(literal[position], _table, add);
    } else {
      add(literal[position]);
    }
  }
  return number;
}

bool FewLiterals::find(const unichar* text, size_t length, size_t from, size_t end, Places& places) const {
  constexpr size_t kLongestStretch = 1 << 15;
  Gathered gathered;
  size_t looked = 0, gatheredCount = 0;
  const size_t past = std::min(end, length < kProbes ? 0 : length - kProbes + 1);
  while (from < past) {
    const size_t stretch = std::min(past - from, kLongestStretch);
    const auto [count, next] =
        unitKernels().gatherAny(text + from, stretch, _classes, gathered.positions, Gathered::kMost);
    for (size_t i = 0; i < count; ++i) {
      gathered.numbers[i] = static_cast<uint8_t>(_classes.at(text + from + gathered.positions[i]));
    }
    gathered.count = count;
    addPlaces(gathered, text, length, from, places);
    gatheredCount += count;
    looked += next;
    from += next;
  }
  gathered.count = 0;
  for (size_t i = from; i < std::min(end, length); ++i) {  // behind it the text has fewer units than are looked for
    gathered.positions[gathered.count] = static_cast<unichar>(i - from);
    gathered.numbers[gathered.count++] = 0xFF;
  }
  addPlaces(gathered, text, length, from, places);
  return kUnitsPerPlace * gatheredCount <= looked * (_literals.size() - 1);
}

// One literal after the other, so that in texts that hold them often little is mispredicted.
void FewLiterals::addPlaces(Gathered& gathered, const unichar* text, size_t length, size_t base, Places& places) const {
  for (size_t number = 0; number < _literals.size(); ++number) {
    const auto& [units, offset] = _literals[number];
    unichar positions[Gathered::kRoom];
    size_t count = 0;
    for (size_t i = 0; i < gathered.count; ++i) {
      positions[count] = gathered.positions[i];
      count += gathered.numbers[i] >> number & 1u;
    }
    if (count == 0) continue;
    makeRoom(places[number], count);
    const auto isAt = [this, literal = std::u16string_view(units)](const unichar* at) {
      return _table ? areSame(literal.data(), at, literal.size(), _table) : areSame(literal.data(), at, literal.size());
    };
    for (size_t i = 0; i < count; ++i) {
      const size_t chosen = base + positions[i];
      if (chosen < offset || units.size() > length - (chosen - offset)) continue;
      const size_t start = chosen - offset;
      if (isAt(text + start)) places[number].push_back(static_cast<uint32_t>(start));
    }
  }
}

}  // namespace velan
