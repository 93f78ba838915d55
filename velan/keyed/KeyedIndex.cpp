#include "velan/keyed/KeyedIndex.h"

#include <algorithm>
#include <new>
#include <utility>

#include "velan/keyed/KeyedWalkInternal.h"

namespace velan {

KeyedIndex::KeyedIndex(KeyedBytes bytes) : _bytes(bytes) {
  std::vector<std::pair<uint64_t, size_t>> records;
  for (keyed::RecordWalk walk(bytes.span()); walk.atRecord(); walk.advance()) {
    const keyed::Record record = walk.record();
    records.emplace_back(record.identity(), static_cast<size_t>(record.start() - bytes.span().data()));
  }
  std::ranges::sort(records);
  const auto isSame = [](const auto& a, const auto& b) { return a.first == b.first; };
  records.erase(std::unique(records.begin(), records.end(), isSame), records.end());
  _identities.reserve(records.size());
  _locations.reserve(records.size());
  for (const auto& [identity, location] : records) {
    _identities.push_back(identity);
    _locations.push_back(location);
  }
}

std::unique_ptr<const KeyedIndex> KeyedIndex::keyedIndex(KeyedBytes bytes) {
  try {
    return std::unique_ptr<const KeyedIndex>(new KeyedIndex(bytes));
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

// Each step halves what is left, without a branch that depends on the keys.
KeyedBytes KeyedIndex::bytesFrom(uint32_t marker, uint32_t key) const {
  const uint64_t sought = keyed::identity(marker, key);
  size_t first = 0;
  for (size_t left = _identities.size(); left > 1;) {
    const size_t half = left / 2;
    first += _identities[first + half] <= sought ? half : 0;
    left -= half;
  }
  const bool isFound = !_identities.empty() && _identities[first] == sought;
  return _bytes.span().subspan(isFound ? _locations[first] : _bytes.length());
}

}  // namespace velan
