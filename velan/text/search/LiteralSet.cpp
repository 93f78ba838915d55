#include <algorithm>
#include <bit>

#include "velan/text/UnitFrequenciesInternal.h"
#include "velan/text/UnitMappingInternal.h"
#include "velan/text/search/LiteralSetInternal.h"

namespace velan {
namespace {

// As many positions as are hashed before any is looked at.
constexpr size_t kStretch = 1024;
constexpr size_t kMostHashedUnits = 3;
constexpr size_t kMostChoices = 32;  // of what is hashed of a literal
// With so many times more hashes than literals few units have one of theirs by chance; more take too much of the
// first-level cache.
constexpr unsigned kSpareHashBits = 5;
constexpr unsigned kFewestHashBits = 10, kMostHashBits = 15;

// How frequent a unit is in ordinary text, with its small letter, which mostly stands 32 places behind.
unsigned frequencyOf(unichar c, bool ignoringCase) {
  const auto rank = [](size_t unit) { return unit < kRankedUnits ? kUnitCosts[unit] >> 8 : 0u; };
  return ignoringCase ? std::max(rank(c), rank(c + size_t{0x20})) : rank(c);
}

// In numbers of 16 bits, so that compilers make vectors of it.
template <size_t count>
void hashEach(const unichar* units, size_t positions, uint16_t mask, uint16_t* hashes) {
  for (size_t i = 0; i < positions; ++i) {
    const unsigned pair = units[i] * 0x9E35u + units[i + 1] * 0x85EBu;
    hashes[i] = static_cast<uint16_t>(count == 2 ? pair : pair + units[i + 2] * 0xC2B3u) & mask;
  }
}

// What of the unit behind those that are hashed is looked at, too.
constexpr unsigned kindOf(unichar c) { return c % 8; }

}  // namespace

uint32_t LiteralSet::add(std::u16string_view literal) {
  const auto number = static_cast<uint32_t>(_literals.size());
  const auto [entry, isNew] = _numbers.try_emplace(std::u16string(literal), number);
  if (isNew) _literals.emplace_back(literal);
  return entry->second;
}

void LiteralSet::prepare() {
  for (uint32_t number = 0; number < _literals.size(); ++number) {
    _groups[_literals[number].size() > 2].entries.push_back({0, number, 0});
  }
  for (Group& group : _groups) prepare(group);
}

void LiteralSet::prepare(Group& group) const {
  if (group.entries.empty()) return;
  const auto wanted = static_cast<unsigned>(std::bit_width(group.entries.size())) + kSpareHashBits;
  const size_t hashes = size_t{1} << std::clamp(wanted, kFewestHashBits, kMostHashBits);
  group.hashMask = static_cast<uint16_t>(hashes - 1);
  group.starts.assign(hashes + 1, 0);
  for (Entry& entry : group.entries) {
    chooseUnits(group, entry);
    ++group.starts[entry.hash + 1u];
  }
  for (size_t i = 1; i < group.starts.size(); ++i) group.starts[i] += group.starts[i - 1];
  group.next.resize(hashes);
  for (const Entry& entry : group.entries) {
    const std::u16string_view rest = std::u16string_view(_literals[entry.literal]).substr(entry.offset);
    const unsigned kinds = rest.size() == group.hashedUnits ? 0xFF : 1u << kindOf(rest[group.hashedUnits]);
    group.next[entry.hash] = static_cast<uint8_t>(group.next[entry.hash] | kinds);
  }
  std::ranges::sort(group.entries, {}, &Entry::hash);
}

// Rare ones, whose hash not many other literals have.
void LiteralSet::chooseUnits(const Group& group, Entry& entry) const {
  constexpr unsigned kOther = 32;  // counts as much as this difference in how rare units are
  const std::u16string& literal = _literals[entry.literal];
  const size_t positions = std::min(literal.size() - group.hashedUnits + 1, kMostChoices);
  uint16_t hashes[kMostChoices];
  hashEach(group, literal.data(), positions, hashes);
  unsigned least = ~0u;
  for (size_t offset = 0; offset < positions; ++offset) {
    unsigned frequency = kOther * group.starts[hashes[offset] + 1u];
    for (size_t i = 0; i < group.hashedUnits; ++i) frequency += frequencyOf(literal[offset + i], _table != nullptr);
    if (frequency >= least) continue;
    least = frequency;
    entry.offset = static_cast<uint32_t>(offset);
    entry.hash = hashes[offset];
  }
}

void LiteralSet::hashEach(const Group& group, const unichar* units, size_t positions, uint16_t* hashes) {
  if (group.hashedUnits == 2) {
    velan::hashEach<2>(units, positions, group.hashMask, hashes);
  } else {
    velan::hashEach<3>(units, positions, group.hashMask, hashes);
  }
}

// One pass over a text.
class LiteralSet::Pass {
 public:
  Pass(const LiteralSet& set, const unichar* text, size_t length, std::vector<Hit>& hits)
      : _set(set), _text(text), _length(length), _hits(hits), _mostHits(length / 2 + 4096) {}

  // False when it gives up.
  bool run(const Group& group) {
    if (group.entries.empty() || _length < group.hashedUnits) return true;
    const size_t positions = _length - group.hashedUnits + 1;
    _compared = 0;
    for (size_t from = 0; from < positions; from += kStretch) {
      if (!search(group, from, std::min(kStretch, positions - from))) return false;
    }
    return true;
  }

 private:
  bool search(const Group& group, size_t from, size_t count) {
    unichar copy[kStretch + kMostHashedUnits];
    const unichar* units = _text + from;
    const size_t unitCount = count + group.hashedUnits - 1;
    if (_set._table) {
      mapUnits(units, unitCount, _set._table, copy);
      copy[unitCount] = from + unitCount < _length ? mapped(units[unitCount]) : 0;
      units = copy;
    } else if (from + unitCount == _length) {  // the text has no unit that follows
      std::copy_n(units, unitCount, copy);
      copy[unitCount] = 0;
      units = copy;
    }
    uint16_t hashes[kStretch], used[kStretch];
    hashEach(group, units, count, hashes);
    const uint8_t* next = group.next.data();
    const unichar* following = units + group.hashedUnits;
    size_t usedCount = 0;
    for (size_t i = 0; i < count; ++i) {  // without a branch that nobody could predict
      used[usedCount] = static_cast<uint16_t>(i);
      usedCount += next[hashes[i]] >> kindOf(following[i]) & 1u;
    }
    for (size_t i = 0; i < usedCount; ++i) lookUp(group, hashes[used[i]], from + used[i]);
    // A scan for each literal compares each unit about once.
    return _hits.size() <= _mostHits && _compared / 16 <= from + kStretch + 4096;
  }

  void lookUp(const Group& group, uint16_t hash, size_t position) {
    for (size_t i = group.starts[hash]; i < group.starts[hash + 1u]; ++i) {
      const Entry& entry = group.entries[i];
      if (entry.offset > position) continue;
      const size_t start = position - entry.offset;
      if (isAt(_set._literals[entry.literal], start)) _hits.push_back({entry.literal, static_cast<uint32_t>(start)});
    }
  }

  bool isAt(std::u16string_view literal, size_t start) {
    if (literal.size() > _length - start) return false;
    size_t same = 0;
    while (same < literal.size() && mapped(_text[start + same]) == literal[same]) ++same;
    _compared += same + 1;
    return same == literal.size();
  }

  unichar mapped(unichar c) const { return _set._table ? _set._table[c] : c; }

  const LiteralSet& _set;
  const unichar* const _text;
  const size_t _length;
  std::vector<Hit>& _hits;
  const size_t _mostHits;
  size_t _compared = 0;
};

std::optional<std::vector<LiteralSet::Hit>> LiteralSet::find(const unichar* text, size_t length) const {
  std::vector<Hit> hits;
  if (length > UINT32_MAX) return std::nullopt;
  Pass pass(*this, text, length, hits);
  for (const Group& group : _groups) {
    if (!pass.run(group)) return std::nullopt;
  }
  std::ranges::sort(hits);
  return hits;
}

}  // namespace velan
