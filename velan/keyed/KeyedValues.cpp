#include "velan/keyed/KeyedValues.h"

#include <optional>

#include "velan/base/FunctionRef.h"
#include "velan/base/Log.h"
#include "velan/base/OutOfMemory.h"
#include "velan/base/ScratchBuffer.h"
#include "velan/base/TextNumbers.h"
#include "velan/base/utf/UTF.h"
#include "velan/keyed/KeyedAppendInternal.h"
#include "velan/keyed/KeyedWalkInternal.h"
#include "velan/keyed/KeyedWriting.h"

namespace velan {
namespace {

using keyed::allOrNothing;
using keyed::appendPlist;
using keyed::appendString;
using keyed::appendVariable;
using keyed::asText;
using keyed::Record;
using keyed::RecordWalk;
using keyed::valueWithHeaderAndLength;

constexpr size_t kInlineUTF8 = 512;
constexpr size_t kFirstCapacity = 16;

struct Pair {
  Record key;
  Record value;
  std::string_view keyText;
};

// Goes to the next pair. The walk then stands at the pair's value.
std::optional<Pair> nextPair(RecordWalk& walk) {
  while (walk.find(VLst, kKeyedPairKey)) {
    const Record key = walk.record();
    const auto text = key.payload();
    walk.advance();
    if (text && walk.atRecord() && walk.record().key() == kKeyedPairValue)
      return Pair{key, walk.record(), asText(*text)};
  }
  return std::nullopt;
}

// The first pair with this key: where its value begins, and whether that is whole only the record tells.
std::optional<Pair> getKeyedValueHeaderForKey(std::span<const uint8_t> bytes, std::string_view key) {
  RecordWalk walk(bytes);
  while (const auto pair = nextPair(walk)) {
    if (pair->keyText == key) return pair;
  }
  return std::nullopt;
}

// Hands over each pair whose value is whole, with its key (absent when it is not UTF-8) and its value where they are
// wanted.
void retrieveKeyValuePairs(KeyedBytes bytes, bool keys, bool values, FunctionRef<void(String, Value)> handle) {
  RecordWalk walk(bytes.span());
  while (const auto pair = nextPair(walk)) {
    if (!pair->value.fits()) return;
    handle(keys ? decodedUTF8(pair->keyText) : String(), values ? keyed::decodedValue(pair->value) : Value());
  }
}

// Logs `format` with what the values look like, which takes memory.
template <typename... Values>
void logAbout(const char* format, const Values&... values) {
  try {
    logFormat(format, describe(values).c_str()...);
  } catch (const std::bad_alloc&) {
    logMessage(format);
  }
}

// Calls `use` with the key in UTF-8, and returns what that returns; logs a key that has no UTF-8 form. Throws
// `std::bad_alloc`.
template <typename Use>
auto withKeyText(const String& key, const Use& use) -> decltype(use(std::string_view())) {
  const std::u16string_view units = key.view();
  ScratchBuffer<char, kInlineUTF8> utf8(units.size() * kMaxUTF8BytesPerUnit);
  if (!utf8) throw std::bad_alloc();
  if (!units.empty()) {
    const Transcoded converted = convertUTF16ToUTF8(units, utf8.data());
    if (converted.consumed == units.size()) return use({utf8.data(), converted.written});
  }
  logAbout("WARNING: Key encoding failed: %s", key);
  return decltype(use(std::string_view()))();
}

std::optional<Record> valueRecord(KeyedBytes bytes, std::string_view key) {
  const auto pair = getKeyedValueHeaderForKey(bytes.span(), key);
  return pair ? std::optional(pair->value) : std::nullopt;
}

std::optional<Record> valueRecord(KeyedBytes bytes, KeyedKeyBuffer key) {
  if (!key.bytes || key.length < 1) return std::nullopt;
  return valueRecord(bytes, std::string_view(static_cast<const char*>(key.bytes), static_cast<size_t>(key.length)));
}

std::string_view textOf(const Record& record) {
  const auto payload = record.payload();
  return payload ? asText(*payload) : std::string_view();
}

// As an integer, before its lowest byte is taken or not.
int64_t integerFromRecord(const Record& record) {
  switch (record.marker()) {
    case VLbl:
      return record.value<uint8_t>();
    case VLun:
    case VLsi:
      return record.value<uint32_t>();
    case VLul:
    case VLsl:
      return record.value<int64_t>();
    case VLfl:
      return saturatedInt64(static_cast<double>(record.value<float>()));
    case VLdb:
    case VLda:
      return saturatedInt64(record.value<double>());
    case VLst:
      return leadingInteger(textOf(record));
    default:
      return 0;
  }
}

double doubleFromRecord(const Record& record) {
  switch (record.marker()) {
    case VLbl:
      return record.value<uint8_t>();
    case VLun:
      return record.value<uint32_t>();
    case VLsi:
      return record.value<int32_t>();
    case VLul:
      return static_cast<double>(record.value<uint64_t>());
    case VLsl:
      return static_cast<double>(record.value<int64_t>());
    case VLfl:
      return static_cast<double>(record.value<float>());
    case VLdb:
    case VLda:
      return record.value<double>();
    case VLst:
      return leadingDouble(textOf(record));
    default:
      return 0;
  }
}

bool isCharacterOfBoolean(const Value& value) {
  const int64_t number = value.int64Value();
  return value.kind() == ValueKind::Boolean || number == 0 || number == 1;
}

// The value record of a pair whose key record is there already. False when none was appended. Throws `std::bad_alloc`.
bool addValueRecord(MutableData& data, const Value& value, const String& key) {
  constexpr uint32_t kKey = kKeyedPairValue;
  switch (value.kind()) {
    case ValueKind::String:
      return appendString(data, value.string(), kKey);
    case ValueKind::URL:
      return appendString(data, value.url().absoluteString(), kKey);
    case ValueKind::Float:
      return addFloat(data, static_cast<float>(value.doubleValue()), kKey), true;
    case ValueKind::Double:
      return addDouble(data, value.doubleValue(), kKey), true;
    case ValueKind::Boolean:
    case ValueKind::Character:
      if (isCharacterOfBoolean(value)) return addBool(data, value.boolValue(), kKey), true;
      return addSigned(data, static_cast<int32_t>(value.int64Value()), kKey), true;
    case ValueKind::UInt64:
      return addSignedLongLong(data, static_cast<int64_t>(value.uint64Value()), kKey), true;
    case ValueKind::Int32:
    case ValueKind::UInt32:
    case ValueKind::Int64:
      return addSignedLongLong(data, value.int64Value(), kKey), true;
    case ValueKind::Date:
      return addDate(data, value.date(), kKey), true;
    case ValueKind::Data:
      return appendVariable(data, VLdt, value.data().bytes(), value.data().length(), kKey);
    case ValueKind::Array:
    case ValueKind::Dictionary:
      return appendPlist(data, value, kKey);
    case ValueKind::Absent:
      break;
  }
  logAbout("WARNING: Unsupported keyed value <%s>: %s", key, value);
  return false;
}

// Where a pair lies in the buffer.
struct PairPlace {
  size_t start;
  size_t size;
};

std::optional<PairPlace> placeOfPair(const MutableData& data, const String& key) {
  const auto pair =
      withKeyText(key, [&data](std::string_view text) { return getKeyedValueHeaderForKey(data.span(), text); });
  if (!pair || !pair->value.fits()) return std::nullopt;
  return PairPlace{static_cast<size_t>(pair->key.start() - data.bytes()),
                   static_cast<size_t>(pair->key.size() + pair->value.size())};
}

void removePair(MutableData& data, const std::optional<PairPlace>& pair) {
  if (!pair) return;
  uint8_t* const start = data.mutableBytes() + pair->start;
  std::memmove(start, start + pair->size, data.length() - pair->start - pair->size);
  data.setLength(data.length() - pair->size);
}

}  // namespace

ValueDictionary getKeyedValues(KeyedBytes bytes) {
  std::vector<ValueDictionary::Entry> entries;
  entries.reserve(kFirstCapacity);
  retrieveKeyValuePairs(bytes, true, true, [&entries](String key, Value value) {
    if (key && !value.isAbsent()) entries.push_back({std::move(key), std::move(value)});
  });
  return ValueDictionary(std::move(entries));
}

std::vector<String> getKeys(KeyedBytes bytes) {
  std::vector<String> keys;
  keys.reserve(kFirstCapacity);
  retrieveKeyValuePairs(bytes, true, false, [&keys](String key, const Value&) {
    if (key) keys.push_back(std::move(key));
  });
  return keys;
}

std::vector<Value> getValues(KeyedBytes bytes) {
  std::vector<Value> values;
  values.reserve(kFirstCapacity);
  retrieveKeyValuePairs(bytes, false, true, [&values](const String&, Value value) {
    if (!value.isAbsent()) values.push_back(std::move(value));
  });
  return values;
}

bool containsValueForKey(KeyedBytes bytes, const String& key) {
  try {
    return withKeyText(key, [bytes](std::string_view text) { return valueRecord(bytes, text).has_value(); });
  } catch (const std::bad_alloc&) {
    return false;
  }
}

Value getValueForKey(KeyedBytes bytes, const String& key) {
  try {
    const auto record = withKeyText(key, [bytes](std::string_view text) { return valueRecord(bytes, text); });
    return record ? valueWithHeaderAndLength(*record) : Value();
  } catch (const std::bad_alloc&) {
    return Value();
  }
}

bool containsValueForKeyBuffer(KeyedBytes bytes, KeyedKeyBuffer key) { return valueRecord(bytes, key).has_value(); }

Value copyValueForKeyBuffer(KeyedBytes bytes, KeyedKeyBuffer key) {
  const auto record = valueRecord(bytes, key);
  return record ? valueWithHeaderAndLength(*record) : Value();
}

Value getValueForKeyBuffer(KeyedBytes bytes, KeyedKeyBuffer key) { return copyValueForKeyBuffer(bytes, key); }

bool boolValueForKeyBuffer(KeyedBytes bytes, KeyedKeyBuffer key) {
  const auto record = valueRecord(bytes, key);
  if (!record) return false;
  if (record->marker() == VLst) return booleanReading(textOf(*record));
  return static_cast<uint8_t>(integerFromRecord(*record)) != 0;
}

int64_t longLongValueForKeyBuffer(KeyedBytes bytes, KeyedKeyBuffer key) {
  const auto record = valueRecord(bytes, key);
  return record ? integerFromRecord(*record) : 0;
}

double doubleValueForKeyBuffer(KeyedBytes bytes, KeyedKeyBuffer key) {
  const auto record = valueRecord(bytes, key);
  return record ? doubleFromRecord(*record) : 0;
}

void addValue(MutableData& data, const Value& value, const String& key) {
  if (value.isAbsent()) return;
  allOrNothing(data, [&] {
    const size_t start = data.length();
    if (!appendString(data, key, kKeyedPairKey)) return;
    if (!addValueRecord(data, value, key) && value.kind() == ValueKind::String) data.setLength(start);
  });
}

void setValue(MutableData& data, const Value& value, const String& key) {
  const auto old = placeOfPair(data, key);
  addValue(data, value, key);
  removePair(data, old);
}

void addKeyedValues(MutableData& data, const ValueDictionary& values) {
  allOrNothing(data, [&] {
    for (const auto& entry : values) addValue(data, entry.value, entry.key);
  });
}

void setKeyedValues(MutableData& data, const ValueDictionary& values) {
  MutableData written;
  addKeyedValues(written, values);
  data = std::move(written);
}

void removeValueForKey(MutableData& data, const String& key) { removePair(data, placeOfPair(data, key)); }

}  // namespace velan
