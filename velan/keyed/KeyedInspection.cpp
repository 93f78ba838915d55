#include "velan/keyed/KeyedInspection.h"

#include <new>

#include "velan/base/OutOfMemory.h"
#include "velan/base/propertylist/PropertyListInternal.h"
#include "velan/keyed/KeyedWalkInternal.h"

namespace velan {
namespace keyed {
namespace {

Value valueWithPayload(uint32_t marker, std::span<const uint8_t> payload) {
  if (marker == VLst) return decodedUTF8(asText(payload));
  if (marker == VLdt) return present(Data::withBytes(payload.data(), payload.size()));
  return plist::readEither(payload);
}

}  // namespace

Value decodedValue(const Record& record) {
  const auto payload = record.payload();
  switch (record.marker()) {
    case VLbl:
      return record.value<uint8_t>() != 0;
    case VLun:
      return record.value<uint32_t>();
    case VLsi:
      return record.value<int32_t>();
    case VLul:
      return record.value<uint64_t>();
    case VLsl:
      return record.value<int64_t>();
    case VLfl:
      return record.value<float>();
    case VLdb:
      return record.value<double>();
    case VLda:
      return Date(record.value<double>());
    default:
      return payload ? valueWithPayload(record.marker(), *payload) : Value();
  }
}

Value valueWithHeaderAndLength(const Record& record) {
  try {
    return decodedValue(record);
  } catch (const std::bad_alloc&) {
    return Value();
  }
}

}  // namespace keyed

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

Value valueOfRecord(KeyedBytes bytes, const KeyedRecord& record) {
  const std::span<const uint8_t> all = bytes.span();
  if (record.offset > all.size() || all.size() - record.offset < kKeyedHeaderSize) return Value();
  const keyed::Record found(all.data() + record.offset, all.size() - record.offset);
  return keyed::isKnownMarker(found.marker()) ? keyed::valueWithHeaderAndLength(found) : Value();
}

}  // namespace velan
