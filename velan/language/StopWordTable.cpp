#include <algorithm>
#include <bit>
#include <tuple>

#include "velan/language/StopWordTableInternal.h"

namespace velan {

namespace {

// Words are short: the multiplication per unit costs less than anything that would need fewer.
size_t hashOf(std::u16string_view word) {
  uint64_t hash = 0x9E3779B97F4A7C15;
  for (const char16_t unit : word) hash = (hash ^ unit) * 0x100000001B3;
  return static_cast<size_t>(hash ^ hash >> 32);
}

}  // namespace

StopWordTable::StopWordTable(std::vector<Entry> entries) {
  const auto order = [](const Entry& entry) { return std::tie(entry.word, entry.language); };
  std::sort(entries.begin(), entries.end(), [&](const Entry& a, const Entry& b) { return order(a) < order(b); });
  for (Entry& entry : entries) {
    if (_words.empty() || _words.back().text != entry.word) {
      _maxWordLen = std::max(_maxWordLen, entry.word.size());
      _words.push_back({std::move(entry.word), static_cast<uint32_t>(_languages.size())});
    } else if (_languages.back() == entry.language) {
      continue;
    }
    _languages.push_back(entry.language);
  }
  _slots.resize(std::bit_ceil(2 * _words.size() + 1));
  const size_t mask = _slots.size() - 1;
  for (uint32_t number = 0; number < _words.size(); ++number) {
    size_t slot = hashOf(_words[number].text) & mask;
    while (_slots[slot] != 0) slot = (slot + 1) & mask;
    _slots[slot] = number + 1;
  }
}

std::span<const uint32_t> StopWordTable::languagesOf(size_t number) const {
  const size_t first = _words[number].firstLanguage;
  const size_t end = number + 1 < _words.size() ? _words[number + 1].firstLanguage : _languages.size();
  return std::span(_languages).subspan(first, end - first);
}

StopWordTable::Match StopWordTable::find(std::u16string_view word) const {
  const size_t mask = _slots.size() - 1;
  for (size_t slot = hashOf(word) & mask; _slots[slot] != 0; slot = (slot + 1) & mask) {
    const uint32_t number = _slots[slot] - 1;
    if (_words[number].text == word) return {number, languagesOf(number)};
  }
  return {0, {}};
}

}  // namespace velan
