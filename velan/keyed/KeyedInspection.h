// Looking at keyed data record by record, for tools that show, check and repair it.
#ifndef VELAN_KEYED_KEYED_INSPECTION_H
#define VELAN_KEYED_KEYED_INSPECTION_H

#include <vector>

#include "velan/base/Value.h"
#include "velan/keyed/KeyedRecords.h"

namespace velan {

/// A whole record, by where it lies; in bytes.
struct KeyedRecord {
  size_t offset;
  size_t length;
  uint32_t marker;
  uint32_t key;
};

/// Why a buffer is not valid.
enum class KeyedDamage {
  None,
  UnknownMarker,
  RecordTooLong,  // it reaches beyond the buffer
  Fragment,       // fewer bytes than a header
};

/// The whole records of a buffer up to the first damage, and where that is: at the end when there is none.
struct KeyedInspection {
  std::vector<KeyedRecord> records;
  KeyedDamage damage = KeyedDamage::None;
  size_t damageOffset = 0;
};

VELAN_EXPORT KeyedInspection inspectKeyedData(KeyedBytes bytes);

/// The value of a record of `bytes`, of the kind that belongs to its marker: what `addRecord` appends it from. Absent
/// when the record does not lie in `bytes`, its text is not UTF-8 or its property list is malformed.
VELAN_EXPORT Value valueOfRecord(KeyedBytes bytes, const KeyedRecord& record);

}  // namespace velan

#endif  // VELAN_KEYED_KEYED_INSPECTION_H
