#include "velan/keyed/KeyedWriting.h"

#include <cmath>
#include <functional>
#include <limits>
#include <new>

#include "velan/base/Log.h"
#include "velan/base/ScratchBuffer.h"
#include "velan/base/propertylist/PropertyListInternal.h"
#include "velan/base/utf/UTF.h"
#include "velan/keyed/KeyedAppendInternal.h"
#include "velan/keyed/KeyedWalkInternal.h"

namespace velan {
namespace {

using keyed::allOrNothing;
using keyed::appendPlist;
using keyed::appendString;
using keyed::appendVariable;
using keyed::findRecord;
using keyed::Record;
using keyed::RecordWalk;

constexpr size_t kValueOffset = 8;
constexpr size_t kInlineUTF8 = 512;

// What `edit` answers; false when memory runs out in it.
template <typename Edit>
bool falseWithoutMemory(const Edit& edit) {
  try {
    return edit();
  } catch (const std::bad_alloc&) {
    return false;
  }
}

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
    return true;
  }
  return falseWithoutMemory([&] { return addFixed(data, marker, value, key), true; });
}

bool appendRecord(MutableData& data, uint32_t marker, uint32_t key, const Value& value) {
  switch (marker) {
    case VLbl:
      return value.kind() == ValueKind::Boolean && (addFixed(data, marker, value.boolValue(), key), true);
    case VLun:
      return addInteger<uint32_t>(data, marker, value, key);
    case VLsi:
      return addInteger<int32_t>(data, marker, value, key);
    case VLul:
      return addInteger<uint64_t>(data, marker, value, key);
    case VLsl:
      return addInteger<int64_t>(data, marker, value, key);
    case VLfl:
      return isFloat(value) && (addFixed(data, marker, static_cast<float>(value.doubleValue()), key), true);
    case VLdb:
      return value.isNumber() && (addFixed(data, marker, value.doubleValue(), key), true);
    case VLda:
      return value.kind() == ValueKind::Date &&
             (addFixed(data, marker, value.date().timeIntervalSinceReferenceDate(), key), true);
    case VLst:
      return appendString(data, value.string(), key);
    case VLdt:
      return appendVariable(data, VLdt, value.data().bytes(), value.data().length(), key);
    case VLpl:
      return appendPlist(data, value, key);
    default:
      return false;
  }
}

// Moves together those of the records in the first `end` bytes that stay, and what lies behind `end`. The rest of the
// first `end` bytes goes, a damaged end included.
template <typename Removes>
void removeRecords(MutableData& data, size_t end, const Removes& removes) {
  uint8_t* write = data.mutableBytes();
  for (RecordWalk walk(data.span().first(end)); walk.atRecord() && walk.record().fits();) {
    const Record record = walk.record();
    const auto size = static_cast<size_t>(record.size());
    walk.advance();  // before its bytes are overwritten
    if (removes(record.marker(), record.key())) continue;
    if (write != record.start()) std::memmove(write, record.start(), size);
    write += size;
  }
  const auto kept = static_cast<size_t>(write - data.bytes());
  VELAN_DEBUG_ASSERT(kept <= end, "removeKeyedData: kept <= length");
  const size_t behind = data.length() - end;
  if (behind > 0) std::memmove(write, data.bytes() + end, behind);
  data.setLength(kept + behind);
}

void removeFirst(MutableData& data, size_t end, uint32_t marker, uint32_t key) {
  bool active = true;
  removeRecords(data, end, [&](uint32_t foundMarker, uint32_t foundKey) {
    const bool matches = active && foundMarker == marker && foundKey == key;
    if (matches) active = false;
    return matches;
  });
}

void removeKeyedHeader(MutableData& data, uint32_t marker, uint32_t key) {
  removeFirst(data, data.length(), marker, key);
}

// The old record goes only when the new one is there: without the memory for that nothing changes.
template <typename Append>
bool setVariable(MutableData& data, uint32_t marker, uint32_t key, const Append& append) {
  return falseWithoutMemory([&] {
    const size_t end = data.length();
    const bool appended = append();
    removeFirst(data, end, marker, key);
    return appended;
  });
}

}  // namespace

// The one place where a length becomes the field of a record.
bool keyed::appendVariable(MutableData& data, uint32_t marker, const void* bytes, size_t length, uint32_t key) {
  const auto* source = static_cast<const uint8_t*>(bytes);
  if (!source || length == 0 || length > UINT32_MAX) return false;
  const std::less<const uint8_t*> before;
  const bool isInside = !before(source, data.bytes()) && before(source, data.bytes() + data.length());
  const size_t inside = isInside ? static_cast<size_t>(source - data.bytes()) : 0;
  const size_t start = data.length();
  data.setLength(start + kKeyedHeaderSize + length);
  uint8_t* record = data.mutableBytes() + start;
  writeHeader(record, marker, key);
  storeBigEndian(record + kValueOffset, static_cast<uint32_t>(length));
  std::memcpy(record + kKeyedHeaderSize, isInside ? data.bytes() + inside : source, length);
  return true;
}

bool keyed::appendString(MutableData& data, const String& string, uint32_t key) {
  const std::u16string_view units = string.view();
  if (units.empty()) return false;
  ScratchBuffer<char, kInlineUTF8> utf8(units.size() * kMaxUTF8BytesPerUnit);
  if (!utf8) throw std::bad_alloc();
  const Transcoded converted = convertUTF16ToUTF8(units, utf8.data());
  return converted.consumed == units.size() && appendVariable(data, VLst, utf8.data(), converted.written, key);
}

bool keyed::appendPlist(MutableData& data, const Value& plist, uint32_t key) {
  if (plist.isAbsent()) return false;
  MutableData file;
  if (!plist::writeBinary(plist, file)) {
    logMessage("WARNING: Property list serializaiton failed: " + describe(plist));
    return false;
  }
  return appendVariable(data, VLpl, file.bytes(), file.length(), key);
}

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
  return falseWithoutMemory([&] { return appendVariable(data, VLdt, bytes, length, key); });
}

bool addPlist(MutableData& data, const Value& plist, uint32_t key) {
  return falseWithoutMemory([&] { return appendPlist(data, plist, key); });
}

bool addString(MutableData& data, const String& string, uint32_t key) {
  return falseWithoutMemory([&] { return appendString(data, string, key); });
}

void addStrings(MutableData& data, const std::vector<String>& strings, uint32_t key) {
  allOrNothing(data, [&] {
    for (const String& string : strings) appendString(data, string, key);
  });
}

bool addURL(MutableData& data, const URL& url, uint32_t key) { return addString(data, url.absoluteString(), key); }

void addURLs(MutableData& data, const std::vector<URL>& urls, uint32_t key) {
  allOrNothing(data, [&] {
    for (const URL& url : urls) appendString(data, url.absoluteString(), key);
  });
}

bool addRecord(MutableData& data, uint32_t marker, uint32_t key, const Value& value) {
  return falseWithoutMemory([&] { return appendRecord(data, marker, key, value); });
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
  return setBytes(data, contents.bytes(), contents.length(), key);
}

bool setBytes(MutableData& data, const void* bytes, size_t length, uint32_t key) {
  return setVariable(data, VLdt, key, [&] { return appendVariable(data, VLdt, bytes, length, key); });
}

bool setPlist(MutableData& data, const Value& plist, uint32_t key) {
  return setVariable(data, VLpl, key, [&] { return appendPlist(data, plist, key); });
}

bool setString(MutableData& data, const String& string, uint32_t key) {
  return setVariable(data, VLst, key, [&] { return appendString(data, string, key); });
}

bool setURL(MutableData& data, const URL& url, uint32_t key) { return setString(data, url.absoluteString(), key); }

void removeBoolForKey(MutableData& data, uint32_t key) { removeKeyedHeader(data, VLbl, key); }

void removeUnsignedForKey(MutableData& data, uint32_t key) { removeKeyedHeader(data, VLun, key); }

void removeSignedForKey(MutableData& data, uint32_t key) { removeKeyedHeader(data, VLsi, key); }

void removeUnsignedLongLongForKey(MutableData& data, uint32_t key) { removeKeyedHeader(data, VLul, key); }

void removeSignedLongLongForKey(MutableData& data, uint32_t key) { removeKeyedHeader(data, VLsl, key); }

void removeFloatForKey(MutableData& data, uint32_t key) { removeKeyedHeader(data, VLfl, key); }

void removeDoubleForKey(MutableData& data, uint32_t key) { removeKeyedHeader(data, VLdb, key); }

void removeDateForKey(MutableData& data, uint32_t key) { removeKeyedHeader(data, VLda, key); }

void removeDataForKey(MutableData& data, uint32_t key) { removeKeyedHeader(data, VLdt, key); }

void removePlistForKey(MutableData& data, uint32_t key) { removeKeyedHeader(data, VLpl, key); }

void removeStringForKey(MutableData& data, uint32_t key) { removeKeyedHeader(data, VLst, key); }

void removeStringsForKey(MutableData& data, uint32_t key) {
  removeRecords(data, data.length(), [key](uint32_t marker, uint32_t found) { return marker == VLst && found == key; });
}

void removeURLForKey(MutableData& data, uint32_t key) { removeStringForKey(data, key); }

void removeURLsForKey(MutableData& data, uint32_t key) { removeStringsForKey(data, key); }

void removeKeyedDataUsingHandler(MutableData& data, FunctionRef<bool(uint32_t marker, uint32_t key)> handler) {
  if (handler) removeRecords(data, data.length(), handler);
}

void removeKeyedDataUsingHandler(MutableData& data, KeyedRemovalHandler handler, void* context) {
  if (!handler) return;
  removeRecords(data, data.length(), [=](uint32_t marker, uint32_t key) { return handler(marker, key, context); });
}

}  // namespace velan
