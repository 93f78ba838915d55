#include "velan/keyed/KeyedWriting.h"

#include <cmath>
#include <functional>
#include <limits>
#include <new>

#include "velan/base/Log.h"
#include "velan/base/PropertyList.h"
#include "velan/base/ScratchBuffer.h"
#include "velan/base/UTF.h"
#include "velan/keyed/KeyedWalkInternal.h"

namespace velan {
namespace {

using keyed::findRecord;
using keyed::Record;
using keyed::RecordWalk;

constexpr size_t kValueOffset = 8;
constexpr size_t kInlineUTF8 = 512;

void writeHeader(uint8_t* header, uint32_t marker, uint32_t key) {
  storeBigEndian(header, marker);
  storeBigEndian(header + 4, key);
}

void storeValue(uint8_t* area, bool value) { *area = value; }
void storeValue(uint8_t* area, uint32_t value) { storeBigEndian(area, value); }
void storeValue(uint8_t* area, uint64_t value) { storeBigEndian(area, value); }
void storeValue(uint8_t* area, int32_t value) { storeValue(area, static_cast<uint32_t>(value)); }
void storeValue(uint8_t* area, int64_t value) { storeValue(area, static_cast<uint64_t>(value)); }
void storeValue(uint8_t* area, float value) { storeValue(area, std::bit_cast<uint32_t>(value)); }
void storeValue(uint8_t* area, double value) { storeValue(area, std::bit_cast<uint64_t>(value)); }

bool isFloat(const Value& value) {
  const double number = value.doubleValue();
  return value.isNumber() && !(std::isfinite(number) && std::abs(number) > std::numeric_limits<float>::max());
}

template <typename Number>
void addFixed(MutableData& data, uint32_t marker, Number value, uint32_t key) {
  uint8_t record[kKeyedHeaderSize] = {};
  writeHeader(record, marker, key);
  storeValue(record + kValueOffset, value);
  data.appendBytes(record, sizeof record);
}

// An integer that fits the type; others become another value on the way.
template <typename Number>
bool addInteger(MutableData& data, uint32_t marker, const Value& value, uint32_t key) {
  const auto number = static_cast<Number>(std::signed_integral<Number> ? value.int64Value()
                                                                       : static_cast<int64_t>(value.uint64Value()));
  if (!value.isInteger() || Value(number) != value) return false;
  addFixed(data, marker, number, key);
  return true;
}

template <typename Number>
bool setFixed(MutableData& data, uint32_t marker, Number value, uint32_t key) {
  if (const auto record = findRecord(data.span(), marker, key)) {
    storeValue(data.mutableBytes() + (record->start() - data.bytes()) + kValueOffset, value);
  } else {
    addFixed(data, marker, value, key);
  }
  return true;
}

// The one place where a length becomes the field of a record.
bool addVariable(MutableData& data, uint32_t marker, const void* bytes, size_t length, uint32_t key) {
  const auto* source = static_cast<const uint8_t*>(bytes);
  if (!source || length == 0 || length > UINT32_MAX) return false;
  const std::less<const uint8_t*> before;
  const bool isInside = !before(source, data.bytes()) && before(source, data.bytes() + data.length());
  const size_t inside = isInside ? static_cast<size_t>(source - data.bytes()) : 0;
  const size_t start = data.length();
  try {
    data.setLength(start + kKeyedHeaderSize + length);
  } catch (const std::bad_alloc&) {
    return false;
  }
  uint8_t* record = data.mutableBytes() + start;
  writeHeader(record, marker, key);
  storeBigEndian(record + kValueOffset, static_cast<uint32_t>(length));
  std::memcpy(record + kKeyedHeaderSize, isInside ? data.bytes() + inside : source, length);
  return true;
}

bool addStringToKeyedDataUsingEncoding(MutableData& data, const String& string, uint32_t key) {
  const std::u16string_view units = string.view();
  if (units.empty()) return false;
  ScratchBuffer<char, kInlineUTF8> utf8(units.size() * kMaxUTF8BytesPerUnit);
  if (!utf8) return false;
  const Transcoded converted = convertUTF16ToUTF8(units, utf8.data());
  return converted.consumed == units.size() && addVariable(data, VLst, utf8.data(), converted.written, key);
}

// Moves the records that stay together and cuts off the rest, a damaged end included.
template <typename Removes>
void removeRecords(MutableData& data, const Removes& removes) {
  uint8_t* write = data.mutableBytes();
  for (RecordWalk walk(data.span()); walk.atRecord() && walk.record().fits();) {
    const Record record = walk.record();
    const auto size = static_cast<size_t>(record.size());
    walk.advance();  // before its bytes are overwritten
    if (removes(record.marker(), record.key())) continue;
    if (write != record.start()) std::memmove(write, record.start(), size);
    write += size;
  }
  const auto kept = static_cast<size_t>(write - data.bytes());
  VELAN_DEBUG_ASSERT(kept <= data.length(), "removeKeyedData: kept <= length");
  data.setLength(kept);
}

void removeKeyedHeader(MutableData& data, uint32_t marker, uint32_t key, bool firstOnly) {
  bool active = true;
  removeRecords(data, [&](uint32_t foundMarker, uint32_t foundKey) {
    const bool matches = active && foundMarker == marker && foundKey == key;
    if (matches && firstOnly) active = false;
    return matches;
  });
}

}  // namespace

void addBool(MutableData& data, bool value, uint32_t key) { addFixed(data, VLbl, value, key); }

void addUnsigned(MutableData& data, uint32_t value, uint32_t key) { addFixed(data, VLun, value, key); }

void addSigned(MutableData& data, int32_t value, uint32_t key) { addFixed(data, VLsi, value, key); }

void addUnsignedLongLong(MutableData& data, uint64_t value, uint32_t key) { addFixed(data, VLul, value, key); }

void addSignedLongLong(MutableData& data, int64_t value, uint32_t key) { addFixed(data, VLsl, value, key); }

void addFloat(MutableData& data, float value, uint32_t key) { addFixed(data, VLfl, value, key); }

void addDouble(MutableData& data, double value, uint32_t key) { addFixed(data, VLdb, value, key); }

void addTimeIntervalSinceReferenceDate(MutableData& data, double seconds, uint32_t key) {
  addFixed(data, VLda, seconds, key);
}

void addDate(MutableData& data, Date date, uint32_t key) {
  addTimeIntervalSinceReferenceDate(data, date.timeIntervalSinceReferenceDate(), key);
}

bool addData(MutableData& data, const Data& contents, uint32_t key) {
  return addBytes(data, contents.bytes(), contents.length(), key);
}

bool addBytes(MutableData& data, const void* bytes, size_t length, uint32_t key) {
  return addVariable(data, VLdt, bytes, length, key);
}

bool addPlist(MutableData& data, const Value& plist, uint32_t key) {
  if (plist.isAbsent()) return false;
  const Data file = writePropertyList(plist, PropertyListFormat::Binary);
  if (file.isAbsent()) {
    logMessage("WARNING: Property list serializaiton failed: " + describe(plist));
    return false;
  }
  return addVariable(data, VLpl, file.bytes(), file.length(), key);
}

bool addString(MutableData& data, const String& string, uint32_t key) {
  return addStringToKeyedDataUsingEncoding(data, string, key);
}

void addStrings(MutableData& data, const std::vector<String>& strings, uint32_t key) {
  for (const String& string : strings) addString(data, string, key);
}

bool addURL(MutableData& data, const URL& url, uint32_t key) { return addString(data, url.absoluteString(), key); }

void addURLs(MutableData& data, const std::vector<URL>& urls, uint32_t key) {
  for (const URL& url : urls) addURL(data, url, key);
}

bool addRecord(MutableData& data, uint32_t marker, uint32_t key, const Value& value) {
  switch (marker) {
    case VLbl:
      return value.kind() == ValueKind::Boolean && (addBool(data, value.boolValue(), key), true);
    case VLun:
      return addInteger<uint32_t>(data, marker, value, key);
    case VLsi:
      return addInteger<int32_t>(data, marker, value, key);
    case VLul:
      return addInteger<uint64_t>(data, marker, value, key);
    case VLsl:
      return addInteger<int64_t>(data, marker, value, key);
    case VLfl:
      return isFloat(value) && (addFloat(data, static_cast<float>(value.doubleValue()), key), true);
    case VLdb:
      return value.isNumber() && (addDouble(data, value.doubleValue(), key), true);
    case VLda:
      return value.kind() == ValueKind::Date && (addDate(data, value.date(), key), true);
    case VLst:
      return addString(data, value.string(), key);
    case VLdt:
      return addData(data, value.data(), key);
    case VLpl:
      return addPlist(data, value, key);
    default:
      return false;
  }
}

bool setBool(MutableData& data, bool value, uint32_t key) { return setFixed(data, VLbl, value, key); }

bool setUnsigned(MutableData& data, uint32_t value, uint32_t key) { return setFixed(data, VLun, value, key); }

bool setSigned(MutableData& data, int32_t value, uint32_t key) { return setFixed(data, VLsi, value, key); }

bool setUnsignedLongLong(MutableData& data, uint64_t value, uint32_t key) { return setFixed(data, VLul, value, key); }

bool setSignedLongLong(MutableData& data, int64_t value, uint32_t key) { return setFixed(data, VLsl, value, key); }

bool setFloat(MutableData& data, float value, uint32_t key) { return setFixed(data, VLfl, value, key); }

bool setDouble(MutableData& data, double value, uint32_t key) { return setFixed(data, VLdb, value, key); }

bool setTimeIntervalSinceReferenceDate(MutableData& data, double seconds, uint32_t key) {
  return setFixed(data, VLda, seconds, key);
}

bool setDate(MutableData& data, Date date, uint32_t key) {
  return setTimeIntervalSinceReferenceDate(data, date.timeIntervalSinceReferenceDate(), key);
}

bool setData(MutableData& data, const Data& contents, uint32_t key) {
  removeDataForKey(data, key);
  return addData(data, contents, key);
}

bool setBytes(MutableData& data, const void* bytes, size_t length, uint32_t key) {
  removeDataForKey(data, key);
  return addBytes(data, bytes, length, key);
}

bool setPlist(MutableData& data, const Value& plist, uint32_t key) {
  removePlistForKey(data, key);
  return addPlist(data, plist, key);
}

bool setString(MutableData& data, const String& string, uint32_t key) {
  removeStringForKey(data, key);
  return addString(data, string, key);
}

bool setURL(MutableData& data, const URL& url, uint32_t key) {
  removeURLForKey(data, key);
  return addURL(data, url, key);
}

void removeBoolForKey(MutableData& data, uint32_t key) { removeKeyedHeader(data, VLbl, key, true); }

void removeUnsignedForKey(MutableData& data, uint32_t key) { removeKeyedHeader(data, VLun, key, true); }

void removeSignedForKey(MutableData& data, uint32_t key) { removeKeyedHeader(data, VLsi, key, true); }

void removeUnsignedLongLongForKey(MutableData& data, uint32_t key) { removeKeyedHeader(data, VLul, key, true); }

void removeSignedLongLongForKey(MutableData& data, uint32_t key) { removeKeyedHeader(data, VLsl, key, true); }

void removeFloatForKey(MutableData& data, uint32_t key) { removeKeyedHeader(data, VLfl, key, true); }

void removeDoubleForKey(MutableData& data, uint32_t key) { removeKeyedHeader(data, VLdb, key, true); }

void removeDateForKey(MutableData& data, uint32_t key) { removeKeyedHeader(data, VLda, key, true); }

void removeDataForKey(MutableData& data, uint32_t key) { removeKeyedHeader(data, VLdt, key, true); }

void removePlistForKey(MutableData& data, uint32_t key) { removeKeyedHeader(data, VLpl, key, true); }

void removeStringForKey(MutableData& data, uint32_t key) { removeKeyedHeader(data, VLst, key, true); }

void removeStringsForKey(MutableData& data, uint32_t key) { removeKeyedHeader(data, VLst, key, false); }

void removeURLForKey(MutableData& data, uint32_t key) { removeStringForKey(data, key); }

void removeURLsForKey(MutableData& data, uint32_t key) { removeStringsForKey(data, key); }

void removeKeyedDataUsingHandler(MutableData& data, FunctionRef<bool(uint32_t marker, uint32_t key)> handler) {
  if (handler) removeRecords(data, handler);
}

void removeKeyedDataUsingHandler(MutableData& data, KeyedRemovalHandler handler, void* context) {
  if (!handler) return;
  removeRecords(data, [=](uint32_t marker, uint32_t key) { return handler(marker, key, context); });
}

}  // namespace velan
