#include "velan/keyed/KeyedReading.h"

#include <algorithm>

#include "velan/base/OutOfMemory.h"
#include "velan/base/dates/CivilTime.h"
#include "velan/base/propertylist/PropertyList.h"
#include "velan/base/utf/UTF.h"
#include "velan/keyed/KeyedWalkInternal.h"

namespace velan {
namespace {

using keyed::asText;
using keyed::findRecord;
using keyed::forEachRecord;
using keyed::Record;
using keyed::RecordWalk;
using Payload = std::optional<std::span<const uint8_t>>;

bool contains(KeyedBytes bytes, uint32_t marker, uint32_t key) {
  return findRecord(bytes.span(), marker, key).has_value();
}

template <typename Number>
Number numberForKey(KeyedBytes bytes, uint32_t marker, uint32_t key) {
  const auto record = findRecord(bytes.span(), marker, key);
  return record ? record->value<Number>() : Number();
}

Payload payloadForKey(KeyedBytes bytes, uint32_t marker, uint32_t key) {
  const auto record = findRecord(bytes.span(), marker, key);
  return record ? record->payload() : std::nullopt;
}

String stringFromPayload(const Payload& payload) { return payload ? String::fromUTF8(asText(*payload)) : String(); }

Data copyOfPayload(const Payload& payload) {
  return payload ? Data::withBytes(payload->data(), payload->size()) : Data();
}

URL urlFromString(const String& string) {
  return string.view().starts_with(u'/') ? URL::fileURLWithPath(string) : URL::withString(string);
}

template <typename Item, typename Enumerate>
std::optional<std::vector<Item>> listOf(const Enumerate& enumerate) {
  constexpr size_t kFirstCapacity = 32;
  std::vector<Item> list;
  enumerate([&list](const Item& item) {
    if (list.empty()) list.reserve(kFirstCapacity);
    list.push_back(item);
    return true;
  });
  if (list.empty()) return std::nullopt;
  return list;
}

bool handOver(const Record& record, KeyedDataClosure handler) {
  const uint32_t marker = record.marker();
  const auto hand = [&](auto value) { return handler(marker, record.key(), &value); };
  switch (marker) {
    case VLbl:
      return hand(record.value<uint8_t>());
    case VLun:
    case VLsi:
    case VLfl:
      return hand(record.value<uint32_t>());
    default:
      return hand(record.value<uint64_t>());
  }
}

bool handOverString(const Record& record, KeyedDataClosure handler) {
  const String string = stringFromPayload(record.payload());
  return string && handler(record.marker(), record.key(), &string);
}

// Two records are equal when these bytes are: all 16 of a fixed size; marker, key, length and payload of a variable
// one, without the four bytes that nothing uses.
std::strong_ordering compareRecords(const Record& a, const Record& b) {
  const bool variable = keyed::isVariableSize(a.marker());
  const size_t shared = variable ? 12 : kKeyedHeaderSize;
  const int order = std::memcmp(a.start(), b.start(), shared);
  if (order != 0 || !variable) return order <=> 0;
  return asText(*a.payload()) <=> asText(*b.payload());
}

// The whole records with this marker; nothing when one is longer than its buffer.
std::optional<std::vector<Record>> recordsWithMarker(KeyedBytes bytes, uint32_t marker) {
  std::vector<Record> records;
  for (RecordWalk walk(bytes.span()); walk.atRecord(); walk.advance()) {
    const Record record = walk.record();
    if (marker != 0 && record.marker() != marker) continue;
    if (!record.fits()) return std::nullopt;
    records.push_back(record);
  }
  return records;
}

}  // namespace

bool isValid(KeyedBytes bytes) {
  if (bytes.isAbsent()) return false;
  RecordWalk walk(bytes.span());
  for (; walk.atRecord(); walk.advance()) {
    if (!walk.record().fits()) return false;
  }
  return walk.record().available() == 0;
}

bool containsBoolForKey(KeyedBytes bytes, uint32_t key) { return contains(bytes, VLbl, key); }

bool containsUnsignedForKey(KeyedBytes bytes, uint32_t key) { return contains(bytes, VLun, key); }

bool containsSignedForKey(KeyedBytes bytes, uint32_t key) { return contains(bytes, VLsi, key); }

bool containsUnsignedLongLongForKey(KeyedBytes bytes, uint32_t key) { return contains(bytes, VLul, key); }

bool containsSignedLongLongForKey(KeyedBytes bytes, uint32_t key) { return contains(bytes, VLsl, key); }

bool containsFloatForKey(KeyedBytes bytes, uint32_t key) { return contains(bytes, VLfl, key); }

bool containsDoubleForKey(KeyedBytes bytes, uint32_t key) { return contains(bytes, VLdb, key); }

bool containsDateForKey(KeyedBytes bytes, uint32_t key) { return contains(bytes, VLda, key); }

bool containsDataForKey(KeyedBytes bytes, uint32_t key) { return contains(bytes, VLdt, key); }

bool containsPlistForKey(KeyedBytes bytes, uint32_t key) { return contains(bytes, VLpl, key); }

bool containsStringForKey(KeyedBytes bytes, uint32_t key) { return contains(bytes, VLst, key); }

bool containsURLForKey(KeyedBytes bytes, uint32_t key) { return contains(bytes, VLst, key); }

bool containsString(KeyedBytes bytes, const String& string, uint32_t key) {
  const auto utf8 = utf8FromUTF16(string.view());
  if (!utf8 || utf8->empty()) return false;
  RecordWalk walk(bytes.span());
  for (; walk.find(VLst, key); walk.advance()) {
    const Payload payload = walk.record().payload();
    if (payload && asText(*payload) == *utf8) return true;
  }
  return false;
}

bool containsURL(KeyedBytes bytes, const URL& url, uint32_t key) {
  return containsString(bytes, url.absoluteString(), key);
}

bool boolForKey(KeyedBytes bytes, uint32_t key) { return numberForKey<uint8_t>(bytes, VLbl, key) != 0; }

uint32_t unsignedForKey(KeyedBytes bytes, uint32_t key) { return numberForKey<uint32_t>(bytes, VLun, key); }

int32_t signedForKey(KeyedBytes bytes, uint32_t key) { return numberForKey<int32_t>(bytes, VLsi, key); }

uint64_t unsignedLongLongForKey(KeyedBytes bytes, uint32_t key) { return numberForKey<uint64_t>(bytes, VLul, key); }

int64_t signedLongLongForKey(KeyedBytes bytes, uint32_t key) { return numberForKey<int64_t>(bytes, VLsl, key); }

float floatForKey(KeyedBytes bytes, uint32_t key) { return numberForKey<float>(bytes, VLfl, key); }

double doubleForKey(KeyedBytes bytes, uint32_t key) { return numberForKey<double>(bytes, VLdb, key); }

double timeIntervalSinceReferenceDateForKey(KeyedBytes bytes, uint32_t key) {
  return numberForKey<double>(bytes, VLda, key);
}

std::optional<Date> dateForKey(KeyedBytes bytes, uint32_t key) {
  const auto record = findRecord(bytes.span(), VLda, key);
  if (!record) return std::nullopt;
  return Date(record->value<double>());
}

String descriptionWithCalendarFormat(KeyedBytes bytes, const String& format, uint32_t key) {
  const auto date = dateForKey(bytes, key);
  return date ? formatDate(*date, format) : String();
}

Data dataForKey(KeyedBytes bytes, uint32_t key) { return copyOfPayload(payloadForKey(bytes, VLdt, key)); }

Data dataNoCopyForKey(const Data& data, uint32_t key) {
  const Payload payload = payloadForKey(data, VLdt, key);
  if (!payload) return Data();
  return data.subdata({payload->data() - data.bytes(), static_cast<int64_t>(payload->size())});
}

Value plistForKey(KeyedBytes bytes, uint32_t key) {
  const Payload payload = payloadForKey(bytes, VLpl, key);
  return payload ? readPropertyList(*payload) : Value();
}

String stringForKey(KeyedBytes bytes, uint32_t key) { return stringFromPayload(payloadForKey(bytes, VLst, key)); }

String stringNoCopyForKey(KeyedBytes bytes, uint32_t key) { return stringForKey(bytes, key); }

Data stringDataForKey(KeyedBytes bytes, uint32_t key) { return copyOfPayload(payloadForKey(bytes, VLst, key)); }

URL URLForKey(KeyedBytes bytes, uint32_t key) { return urlFromString(stringForKey(bytes, key)); }

size_t numberOfStringsForKey(KeyedBytes bytes, uint32_t key) {
  size_t count = 0;
  forEachRecord(bytes.span(), VLst, key, [&count](const Record&) { ++count; });
  return count;
}

size_t numberOfURLsForKey(KeyedBytes bytes, uint32_t key) { return numberOfStringsForKey(bytes, key); }

std::optional<std::vector<String>> stringsForKey(KeyedBytes bytes, uint32_t key) {
  return listOf<String>([&](const auto& add) { handleStringsForKey(bytes, key, add); });
}

std::optional<std::vector<String>> stringsNoCopyForKey(KeyedBytes bytes, uint32_t key) {
  return stringsForKey(bytes, key);
}

std::optional<std::vector<URL>> URLsForKey(KeyedBytes bytes, uint32_t key) {
  return listOf<URL>([&](const auto& add) { handleURLsForKey(bytes, key, add); });
}

size_t addStringsForKey(KeyedBytes bytes, uint32_t key, std::vector<String>& list) {
  return handleStringsForKey(bytes, key, [&list](const String& string) {
    list.push_back(string);
    return true;
  });
}

size_t addURLsForKey(KeyedBytes bytes, uint32_t key, std::vector<URL>& list) {
  return handleURLsForKey(bytes, key, [&list](const URL& url) {
    list.push_back(url);
    return true;
  });
}

size_t handleStringsForKey(KeyedBytes bytes, uint32_t key, FunctionRef<bool(const String&)> handler) {
  size_t count = 0;
  if (!handler) return count;
  forEachRecord(bytes.span(), VLst, key, [&](const Record& record) {
    const auto payload = record.payload();
    const String string = payload ? decodedUTF8(asText(*payload)) : String();
    if (string && handler(string)) ++count;
  });
  return count;
}

size_t handleStringsForKey(KeyedBytes bytes, uint32_t key, KeyedStringHandler handler, void* context) {
  if (!handler) return 0;
  return handleStringsForKey(bytes, key, [=](const String& string) { return handler(string, context); });
}

size_t handleStringsNoCopyForKey(KeyedBytes bytes, uint32_t key, KeyedStringHandler handler, void* context) {
  return handleStringsForKey(bytes, key, handler, context);
}

size_t handleStringsNoCopyForKey(KeyedBytes bytes, uint32_t key, FunctionRef<bool(const String&)> handler) {
  return handleStringsForKey(bytes, key, handler);
}

size_t handleURLsForKey(KeyedBytes bytes, uint32_t key, FunctionRef<bool(const URL&)> handler) {
  if (!handler) return 0;
  return handleStringsForKey(bytes, key, [handler](const String& string) {
    const URL url = urlFromString(string);
    return url && handler(url);
  });
}

size_t handleURLsForKey(KeyedBytes bytes, uint32_t key, KeyedURLHandler handler, void* context) {
  if (!handler) return 0;
  return handleURLsForKey(bytes, key, [=](const URL& url) { return handler(url, context); });
}

size_t numberOfKeyedData(KeyedBytes bytes, uint32_t marker) {
  size_t count = 0;
  std::span<const uint8_t> rest = bytes.span();
  while (rest.size() >= kKeyedHeaderSize) {
    const Record record(rest.data(), rest.size());
    if (marker == 0 || record.marker() == marker) ++count;
    if (record.size() >= rest.size()) break;
    rest = rest.subspan(static_cast<size_t>(record.size()));
  }
  return count;
}

size_t numberOfStrings(KeyedBytes bytes) { return numberOfKeyedData(bytes, VLst); }

size_t handleKeyedDataUsingHandler(KeyedBytes bytes, KeyedDataClosure handler, uint32_t marker, bool strings,
                                   [[maybe_unused]] bool noCopy) {
  if (!handler || marker == VLdt || marker == VLpl || (marker == VLst && !strings)) return 0;
  size_t count = 0;
  for (RecordWalk walk(bytes.span()); walk.atRecord(); walk.advance()) {
    const Record record = walk.record();
    const uint32_t found = record.marker();
    const bool answer = keyed::isVariableSize(found) ? found == VLst && strings && handOverString(record, handler)
                                                     : (marker == 0 || found == marker) && handOver(record, handler);
    count += answer;
  }
  return count;
}

size_t handleKeyedDataUsingHandler(KeyedBytes bytes, KeyedDataHandler handler, uint32_t marker, bool strings,
                                   bool noCopy, void* context) {
  if (!handler) return 0;
  const auto closure = [=](uint32_t found, uint32_t key, const void* value) {
    return handler(found, key, value, context);
  };
  return handleKeyedDataUsingHandler(bytes, KeyedDataClosure(closure), marker, strings, noCopy);
}

size_t handleKeyedDataUsingHandler(KeyedBytes bytes, KeyedDataHandler handler, void* context) {
  return handleKeyedDataUsingHandler(bytes, handler, 0, false, false, context);
}

size_t handleKeyedDataUsingHandler(KeyedBytes bytes, KeyedDataClosure handler) {
  return handleKeyedDataUsingHandler(bytes, handler, 0, false, false);
}

bool isEqualToKeyedData(KeyedBytes bytes, KeyedBytes other, uint32_t marker) {
  if (bytes.length() == 0 || other.length() == 0) return bytes.length() == other.length();
  if (numberOfKeyedData(bytes, marker) != numberOfKeyedData(other, marker)) return false;
  try {
    const auto wanted = recordsWithMarker(bytes, marker);
    if (!wanted) return false;
    std::vector<Record> index;
    for (RecordWalk walk(other.span()); walk.atRecord(); walk.advance()) {
      if (walk.record().fits()) index.push_back(walk.record());
    }
    const auto before = [](const Record& a, const Record& b) { return std::is_lt(compareRecords(a, b)); };
    std::ranges::sort(index, before);
    return std::ranges::all_of(*wanted,
                               [&](const Record& record) { return std::ranges::binary_search(index, record, before); });
  } catch (const std::bad_alloc&) {
    return false;
  }
}

}  // namespace velan
