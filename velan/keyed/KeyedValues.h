// Values under string keys in keyed data: each pair is a string record with the key `_key` that holds the key string,
// and directly behind it a record of any type with the key `_val`. Pairs may stand among other records; a `_key` record
// without its `_val` record is no pair. Lookups take the first pair with the key.
//
// Writing and removing throw `std::bad_alloc` when memory runs out, and leave the buffer as it was before.
#ifndef VELAN_KEYED_KEYED_VALUES_H
#define VELAN_KEYED_KEYED_VALUES_H

#include <string_view>
#include <vector>

#include "velan/base/MutableData.h"
#include "velan/base/String.h"
#include "velan/base/Value.h"
#include "velan/keyed/KeyedRecords.h"

namespace velan {

/// The UTF-8 bytes of a key, which are compared as they are, and their number.
struct KeyedKeyBuffer {
  const void* bytes;
  int64_t length;
};

/// `getKeyedValues`: the values of all pairs by their keys; of pairs with the same key the last one that has a value.
/// Pairs with a key that is not UTF-8 are left out. Like `getKeys` and `getValues` it ends at the first damaged record.
VELAN_EXPORT ValueDictionary getKeyedValues(KeyedBytes bytes);
/// `getKeys`: the key strings of all pairs in the order of the buffer, without those that are not UTF-8.
VELAN_EXPORT std::vector<String> getKeys(KeyedBytes bytes);
/// `getValues`: the values of all pairs in the order of the buffer, without those that cannot be decoded.
VELAN_EXPORT std::vector<Value> getValues(KeyedBytes bytes);

/// `containsValueForKey`: whether there is a pair with `key`, even if its value is longer than the buffer. NO for an
/// absent or empty key or one with a lone surrogate, which is logged.
VELAN_EXPORT bool containsValueForKey(KeyedBytes bytes, const String& key);
/// `getValueForKey`: the value of the first pair with `key`. Absent as well when it cannot be decoded. Logs bad keys
/// like `containsValueForKey`.
VELAN_EXPORT Value getValueForKey(KeyedBytes bytes, const String& key);
/// `containsValueForKeyBuffer`: as `containsValueForKey`, without a conversion of the key. NO for a null pointer or a
/// length below 1.
VELAN_EXPORT bool containsValueForKeyBuffer(KeyedBytes bytes, KeyedKeyBuffer key);
/// `copyValueForKeyBuffer`: as `getValueForKey`, without a conversion of the key.
VELAN_EXPORT Value copyValueForKeyBuffer(KeyedBytes bytes, KeyedKeyBuffer key);
/// `getValueForKeyBuffer`: the same as `copyValueForKeyBuffer`.
VELAN_EXPORT Value getValueForKeyBuffer(KeyedBytes bytes, KeyedKeyBuffer key);
/// `boolValueForKeyBuffer`: whether the lowest byte of the value is not 0: 256 is NO. Floats, doubles and dates are cut
/// to integers first. A string is YES when, after white space, a sign and zeros, it goes on with one of "YyTt" or 1
/// to 9. NO for data, property lists, and a missing value.
VELAN_EXPORT bool boolValueForKeyBuffer(KeyedBytes bytes, KeyedKeyBuffer key);
/// `longLongValueForKeyBuffer`: the value as an integer. A `VLsi` value is taken as unsigned: -1 gives 4294967295.
/// Floats, doubles and dates are cut (out of range: the nearest integer; not a number: 0), a string is read as a
/// decimal integer up to the first other character, after white space. 0 for data, property lists, and a missing value.
VELAN_EXPORT int64_t longLongValueForKeyBuffer(KeyedBytes bytes, KeyedKeyBuffer key);
/// `doubleValueForKeyBuffer`: the value as a double, signed as it was stored. A string is read as a decimal number,
/// with fraction and exponent, up to the first other character, after white space. 0 for data, property lists, and a
/// missing value.
VELAN_EXPORT double doubleValueForKeyBuffer(KeyedBytes bytes, KeyedKeyBuffer key);

/// `addValue:forKey`: appends a pair. A string becomes `VLst`, a URL `VLst` with its absolute string, a float `VLfl`, a
/// double `VLdb`, a boolean or a one-byte character of 0 or 1 `VLbl`, another character `VLsi`, any other number `VLsl`
/// (its 64 bits, signed), a date `VLda`, data `VLdt`, an array or a dictionary `VLpl`.
///
/// Appends nothing when the value is absent or an empty string, the key is absent or empty, or either has a lone
/// surrogate. When data is empty or a property list cannot be written, the key stays behind without a value, which is
/// no pair.
VELAN_EXPORT void addValue(MutableData& data, const Value& value, const String& key);
/// `setValue:forKey`: `removeValueForKey`, then `addValue`. Behind a damaged record the new pair is never found.
VELAN_EXPORT void setValue(MutableData& data, const Value& value, const String& key);
/// `addKeyedValues`: `addValue` for each entry, in the order of the dictionary.
VELAN_EXPORT void addKeyedValues(MutableData& data, const ValueDictionary& values);
/// `setKeyedValues`: empties the buffer, then `addKeyedValues`.
VELAN_EXPORT void setKeyedValues(MutableData& data, const ValueDictionary& values);
/// `removeValueForKey`: removes both records of the first pair with `key`. Everything else stays as it is, a damaged
/// end too, and so does a pair whose value is longer than the buffer. Logs bad keys like `containsValueForKey`.
VELAN_EXPORT void removeValueForKey(MutableData& data, const String& key);

}  // namespace velan

#endif  // VELAN_KEYED_KEYED_VALUES_H
