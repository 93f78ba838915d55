// An index of keyed data, for many look-ups in the same bytes.
#ifndef VELAN_KEYED_KEYED_INDEX_H
#define VELAN_KEYED_KEYED_INDEX_H

#include <memory>
#include <vector>

#include "velan/keyed/KeyedRecords.h"

namespace velan {

/// Knows where the first record of each marker and key lies. Every operation that looks for a marker and a key finds
/// the same in the bytes from there on as in all bytes, but at once:
///
///     const auto index = KeyedIndex::keyedIndex(data);
///     const uint32_t value = unsignedForKey(index->bytesFrom(VLun, key), key);
///
/// Borrows the bytes, which must stay where and as they are. Never changes, so it may be used in several threads.
class KeyedIndex {
 public:
  /// Walks over all records, and sorts them: needs 16 bytes for each. Null when memory runs out.
  VELAN_EXPORT static std::unique_ptr<const KeyedIndex> keyedIndex(KeyedBytes bytes);

  /// The bytes from the first record with `marker` and `key` on; empty if there is none. In as many steps as the number
  /// of records has binary digits.
  VELAN_EXPORT KeyedBytes bytesFrom(uint32_t marker, uint32_t key) const;

 private:
  explicit KeyedIndex(KeyedBytes bytes);

  const KeyedBytes _bytes;
  std::vector<uint64_t> _identities;  // in order, each once
  std::vector<size_t> _locations;     // of their first records
};

}  // namespace velan

#endif  // VELAN_KEYED_KEYED_INDEX_H
