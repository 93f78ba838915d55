// Writing and editing keyed data.
//
// Adding appends a record and looks at nothing. Setting overwrites the value of the first record with the same marker
// and key where it stands, or appends one. Removing closes the gap; it also cuts off what lies behind the last whole
// record, so that it repairs damaged buffers. Behind a damaged record lookups find nothing: what is added or set there
// is lost to them until something is removed, or `isValid` is asked first.
//
// When memory runs out, what answers YES or NO answers NO, everything else throws `std::bad_alloc`, and the buffer is
// as it was before. Removing takes no memory.
#ifndef VELAN_KEYED_KEYED_WRITING_H
#define VELAN_KEYED_KEYED_WRITING_H

#include <concepts>
#include <vector>

#include "velan/base/Data.h"
#include "velan/base/FunctionRef.h"
#include "velan/base/MutableData.h"
#include "velan/base/String.h"
#include "velan/base/URL.h"
#include "velan/base/Value.h"
#include "velan/base/dates/Date.h"
#include "velan/keyed/KeyedRecords.h"

namespace velan {

/// `addBool:forKey`: appends a `VLbl` record.
VELAN_EXPORT void addBool(MutableData& data, bool value, uint32_t key);
template <typename T>
requires(!std::same_as<T, bool>) void addBool(MutableData& data, T value, uint32_t key) = delete;
/// `addUnsigned:forKey`: appends a `VLun` record.
VELAN_EXPORT void addUnsigned(MutableData& data, uint32_t value, uint32_t key);
/// `addSigned:forKey`: appends a `VLsi` record.
VELAN_EXPORT void addSigned(MutableData& data, int32_t value, uint32_t key);
/// `addUnsignedLongLong:forKey`: appends a `VLul` record.
VELAN_EXPORT void addUnsignedLongLong(MutableData& data, uint64_t value, uint32_t key);
/// `addSignedLongLong:forKey`: appends a `VLsl` record.
VELAN_EXPORT void addSignedLongLong(MutableData& data, int64_t value, uint32_t key);
/// `addFloat:forKey`: appends a `VLfl` record.
VELAN_EXPORT void addFloat(MutableData& data, float value, uint32_t key);
/// `addDouble:forKey`: appends a `VLdb` record.
VELAN_EXPORT void addDouble(MutableData& data, double value, uint32_t key);
/// `addTimeIntervalSinceReferenceDate:forKey`: appends a `VLda` record, `seconds` since 2001-01-01 00:00:00 UTC.
VELAN_EXPORT void addTimeIntervalSinceReferenceDate(MutableData& data, double seconds, uint32_t key);
/// `addDate:forKey`: appends a `VLda` record.
VELAN_EXPORT void addDate(MutableData& data, Date date, uint32_t key);
/// `addData:forKey`: appends a `VLdt` record with a copy of `contents`. NO, and nothing appended, when that is absent,
/// empty, or 4 GiB or more.
VELAN_EXPORT bool addData(MutableData& data, const Data& contents, uint32_t key);
/// `addBytes:length:forKey`: as `addData` with `length` bytes, which may lie in `data` itself. NO also when `bytes` is
/// null.
VELAN_EXPORT bool addBytes(MutableData& data, const void* bytes, size_t length, uint32_t key);
/// `addPlist:forKey`: appends a `VLpl` record with `plist` as a binary property list. NO, and nothing appended, when it
/// is absent, cannot be written as one (which is logged), or takes 4 GiB or more.
VELAN_EXPORT bool addPlist(MutableData& data, const Value& plist, uint32_t key);
/// `addString:forKey`: appends a `VLst` record with `string` in UTF-8. NO, and nothing appended, when it is absent,
/// empty, holds a lone surrogate, or takes 4 GiB or more.
VELAN_EXPORT bool addString(MutableData& data, const String& string, uint32_t key);
/// `addStrings:forKey`: `addString` for each string of the list in its order, or none when memory runs out.
VELAN_EXPORT void addStrings(MutableData& data, const std::vector<String>& strings, uint32_t key);
/// `addURL:forKey`: `addString` with the absolute string.
VELAN_EXPORT bool addURL(MutableData& data, const URL& url, uint32_t key);
/// `addURLs:forKey`: `addURL` for each URL of the list in its order, or none when memory runs out.
VELAN_EXPORT void addURLs(MutableData& data, const std::vector<URL>& urls, uint32_t key);

/// Appends a record with any of the eleven markers and a value of the kind that belongs to it: a boolean for `VLbl`, an
/// integer that fits for `VLun` to `VLsl`, a number for `VLfl` (not a finite one beyond the greatest float) and `VLdb`,
/// a date, a string, data, or a property list. NO, and nothing appended, for any other value or marker and where
/// `addString`, `addData` and `addPlist` answer so. The way back is `valueOfRecord`.
VELAN_EXPORT bool addRecord(MutableData& data, uint32_t marker, uint32_t key, const Value& value);

/// `setBool:forKey`: overwrites the value of the first `VLbl` record with `key`, or appends one. NO only when memory
/// runs out.
VELAN_EXPORT bool setBool(MutableData& data, bool value, uint32_t key);
template <typename T>
requires(!std::same_as<T, bool>) bool setBool(MutableData& data, T value, uint32_t key) = delete;
/// `setUnsigned:forKey`: overwrites the value of the first `VLun` record with `key`, or appends one. NO only when
/// memory runs out.
VELAN_EXPORT bool setUnsigned(MutableData& data, uint32_t value, uint32_t key);
/// `setSigned:forKey`: overwrites the value of the first `VLsi` record with `key`, or appends one. NO only when memory
/// runs out.
VELAN_EXPORT bool setSigned(MutableData& data, int32_t value, uint32_t key);
/// `setUnsignedLongLong:forKey`: overwrites the value of the first `VLul` record with `key`, or appends one. NO only
/// when memory runs out.
VELAN_EXPORT bool setUnsignedLongLong(MutableData& data, uint64_t value, uint32_t key);
/// `setSignedLongLong:forKey`: overwrites the value of the first `VLsl` record with `key`, or appends one. NO only when
/// memory runs out.
VELAN_EXPORT bool setSignedLongLong(MutableData& data, int64_t value, uint32_t key);
/// `setFloat:forKey`: overwrites the value of the first `VLfl` record with `key`, or appends one. NO only when memory
/// runs out.
VELAN_EXPORT bool setFloat(MutableData& data, float value, uint32_t key);
/// `setDouble:forKey`: overwrites the value of the first `VLdb` record with `key`, or appends one. NO only when memory
/// runs out.
VELAN_EXPORT bool setDouble(MutableData& data, double value, uint32_t key);
/// `setTimeIntervalSinceReferenceDate:forKey`: overwrites the value of the first `VLda` record with `key`, or appends
/// one. NO only when memory runs out.
VELAN_EXPORT bool setTimeIntervalSinceReferenceDate(MutableData& data, double seconds, uint32_t key);
/// `setDate:forKey`: `setTimeIntervalSinceReferenceDate` with the date's seconds.
VELAN_EXPORT bool setDate(MutableData& data, Date date, uint32_t key);
/// `setData:forKey`: `removeDataForKey`, then `addData`, whose answer it gives. `contents` must not refer to `data`.
VELAN_EXPORT bool setData(MutableData& data, const Data& contents, uint32_t key);
/// `setBytes:length:forKey`: `removeDataForKey`, then `addBytes`, whose answer it gives. The bytes must not lie in
/// `data`.
VELAN_EXPORT bool setBytes(MutableData& data, const void* bytes, size_t length, uint32_t key);
/// `setPlist:forKey`: `removePlistForKey`, then `addPlist`, whose answer it gives.
VELAN_EXPORT bool setPlist(MutableData& data, const Value& plist, uint32_t key);
/// `setString:forKey`: `removeStringForKey`, then `addString`, whose answer it gives. Of several strings with `key` the
/// first goes and the new one becomes the last; an empty string only removes.
VELAN_EXPORT bool setString(MutableData& data, const String& string, uint32_t key);
/// `setURL:forKey`: `removeURLForKey`, then `addURL`, whose answer it gives.
VELAN_EXPORT bool setURL(MutableData& data, const URL& url, uint32_t key);

/// `removeBoolForKey`: removes the first `VLbl` record with `key`, and a damaged end.
VELAN_EXPORT void removeBoolForKey(MutableData& data, uint32_t key);
/// `removeUnsignedForKey`: removes the first `VLun` record with `key`, and a damaged end.
VELAN_EXPORT void removeUnsignedForKey(MutableData& data, uint32_t key);
/// `removeSignedForKey`: removes the first `VLsi` record with `key`, and a damaged end.
VELAN_EXPORT void removeSignedForKey(MutableData& data, uint32_t key);
/// `removeUnsignedLongLongForKey`: removes the first `VLul` record with `key`, and a damaged end.
VELAN_EXPORT void removeUnsignedLongLongForKey(MutableData& data, uint32_t key);
/// `removeSignedLongLongForKey`: removes the first `VLsl` record with `key`, and a damaged end.
VELAN_EXPORT void removeSignedLongLongForKey(MutableData& data, uint32_t key);
/// `removeFloatForKey`: removes the first `VLfl` record with `key`, and a damaged end.
VELAN_EXPORT void removeFloatForKey(MutableData& data, uint32_t key);
/// `removeDoubleForKey`: removes the first `VLdb` record with `key`, and a damaged end.
VELAN_EXPORT void removeDoubleForKey(MutableData& data, uint32_t key);
/// `removeDateForKey`: removes the first `VLda` record with `key`, and a damaged end.
VELAN_EXPORT void removeDateForKey(MutableData& data, uint32_t key);
/// `removeDataForKey`: removes the first `VLdt` record with `key`, and a damaged end.
VELAN_EXPORT void removeDataForKey(MutableData& data, uint32_t key);
/// `removePlistForKey`: removes the first `VLpl` record with `key`, and a damaged end.
VELAN_EXPORT void removePlistForKey(MutableData& data, uint32_t key);
/// `removeStringForKey`: removes the first `VLst` record with `key`, and a damaged end.
VELAN_EXPORT void removeStringForKey(MutableData& data, uint32_t key);
/// `removeStringsForKey`: removes every `VLst` record with `key`, and a damaged end.
VELAN_EXPORT void removeStringsForKey(MutableData& data, uint32_t key);
/// `removeURLForKey`: the same as `removeStringForKey`.
VELAN_EXPORT void removeURLForKey(MutableData& data, uint32_t key);
/// `removeURLsForKey`: the same as `removeStringsForKey`.
VELAN_EXPORT void removeURLsForKey(MutableData& data, uint32_t key);

/// Gets a record's marker and key and the caller's context.
using KeyedRemovalHandler = bool (*)(uint32_t marker, uint32_t key, void* context);

/// `removeKeyedDataUsingHandler:context`: removes every record for which `handler` answers true, and a damaged end. The
/// handler is called once per whole record, in their order, and must leave `data` alone. Does nothing without a
/// handler.
VELAN_EXPORT void removeKeyedDataUsingHandler(MutableData& data, KeyedRemovalHandler handler, void* context);
VELAN_EXPORT void removeKeyedDataUsingHandler(MutableData& data,
                                              FunctionRef<bool(uint32_t marker, uint32_t key)> handler);

}  // namespace velan

#endif  // VELAN_KEYED_KEYED_WRITING_H
