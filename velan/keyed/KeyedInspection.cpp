#include "velan/keyed/KeyedInspection.h"

#include "velan/keyed/KeyedWalkInternal.h"

namespace velan {

KeyedInspection inspectKeyedData(KeyedBytes bytes) {
  KeyedInspection result;
  keyed::RecordWalk walk(bytes.span());
  for (; walk.atRecord() && walk.record().fits(); walk.advance()) {
    const keyed::Record record = walk.record();
    const auto length = static_cast<size_t>(record.size());
    result.records.push_back({result.damageOffset, length, record.marker(), record.key()});
    result.damageOffset += length;
  }
  if (walk.atRecord()) {
    result.damage = KeyedDamage::RecordTooLong;
  } else if (walk.record().available() >= kKeyedHeaderSize) {
    result.damage = KeyedDamage::UnknownMarker;
  } else if (walk.record().available() > 0) {
    result.damage = KeyedDamage::Fragment;
  }
  return result;
}

}  // namespace velan
