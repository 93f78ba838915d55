// All operations that read or remove, for bytes of any kind.
#ifndef VELAN_TESTS_EVERY_OPERATION_H
#define VELAN_TESTS_EVERY_OPERATION_H

#include <string>

#include "velan/keyed/KeyedInspection.h"
#include "velan/keyed/KeyedReading.h"
#include "velan/keyed/KeyedValues.h"
#include "velan/keyed/KeyedWriting.h"

namespace velan {

/// `isValid` a second time, written as differently as it can be.
inline bool isTiledByRecords(std::string_view bytes) {
  const std::string_view kFixed = "VLbl VLun VLsi VLul VLsl VLfl VLdb VLda ";
  const std::string_view kVariable = "VLst VLdt VLpl ";
  while (!bytes.empty()) {
    if (bytes.size() < 16) return false;
    const std::string marker = std::string(bytes.substr(0, 4)) + " ";
    uint64_t payload = 0;
    for (size_t i = 8; i < 12; ++i) payload = payload * 256 + static_cast<uint8_t>(bytes[i]);
    const bool isFixed = kFixed.find(marker) != std::string_view::npos;
    if (isFixed) payload = 0;
    if (!isFixed && kVariable.find(marker) == std::string_view::npos) return false;
    if (payload > bytes.size() - 16) return false;
    bytes.remove_prefix(16 + payload);
  }
  return true;
}

inline void applyEveryRead(const Data& data, uint32_t key) {
  using Contains = bool (*)(KeyedBytes, uint32_t);
  for (const Contains contains :
       {Contains{containsBoolForKey}, containsUnsignedForKey, containsSignedForKey, containsUnsignedLongLongForKey,
        containsSignedLongLongForKey, containsFloatForKey, containsDoubleForKey, containsDateForKey, containsDataForKey,
        containsPlistForKey, containsStringForKey, containsURLForKey, boolForKey}) {
    contains(data, key);
  }
  unsignedForKey(data, key), signedForKey(data, key), unsignedLongLongForKey(data, key);
  signedLongLongForKey(data, key), floatForKey(data, key), doubleForKey(data, key), dateForKey(data, key);
  timeIntervalSinceReferenceDateForKey(data, key), descriptionWithCalendarFormat(data, u"%c", key);
  dataForKey(data, key), dataNoCopyForKey(data, key), plistForKey(data, key), stringDataForKey(data, key);
  stringForKey(data, key), stringNoCopyForKey(data, key), URLForKey(data, key), numberOfStringsForKey(data, key);
  numberOfURLsForKey(data, key), stringsForKey(data, key), stringsNoCopyForKey(data, key), URLsForKey(data, key);
  containsString(data, u"text", key), containsURL(data, URL::withString(u"a:b"), key);
}

inline void applyEveryRemoval(const Data& data, uint32_t key) {
  using Remove = void (*)(MutableData&, uint32_t);
  for (const Remove remove :
       {removeBoolForKey, removeUnsignedForKey, removeSignedForKey, removeUnsignedLongLongForKey,
        removeSignedLongLongForKey, removeFloatForKey, removeDoubleForKey, removeDateForKey, removeDataForKey,
        removePlistForKey, removeStringForKey, removeStringsForKey, removeURLForKey, removeURLsForKey}) {
    MutableData edited(data);
    remove(edited, key);
    if (!isValid(edited)) throw key;  // removing repairs
  }
}

/// Goes through everything with an exact copy on the heap; the answer of `isValid`.
inline bool applyEveryOperation(std::string_view bytes) {
  const Data data = Data::withBytes(bytes);
  for (const uint32_t key : {1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 9u, 10u, 11u, kKeyedPairKey, kKeyedPairValue}) {
    applyEveryRead(data, key);
    applyEveryRemoval(data, key);
  }
  for (const uint32_t marker : {0u, VLbl, VLst, VLdt}) {
    numberOfKeyedData(data, marker);
    isEqualToKeyedData(data, data, marker);
    handleKeyedDataUsingHandler(
        data, [](uint32_t, uint32_t, const void*) { return true; }, marker, true, true);
  }
  getKeyedValues(data), getKeys(data), getValues(data);
  for (const KeyedRecord& record : inspectKeyedData(data).records) valueOfRecord(data, record);
  for (const KeyedKeyBuffer key : {KeyedKeyBuffer{"pair", 4}, KeyedKeyBuffer{"k", 1}}) {
    containsValueForKeyBuffer(data, key), copyValueForKeyBuffer(data, key), boolValueForKeyBuffer(data, key);
    longLongValueForKeyBuffer(data, key), doubleValueForKeyBuffer(data, key);
  }
  MutableData edited(data);
  removeValueForKey(edited, u"pair");
  setUnsigned(edited, 1, 2);
  removeKeyedDataUsingHandler(edited, [](uint32_t marker, uint32_t) { return marker == VLst; });
  return isValid(data);
}

}  // namespace velan

#endif  // VELAN_TESTS_EVERY_OPERATION_H
