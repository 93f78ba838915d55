// Reading keyed data. Every operation looks at the records from the beginning on and takes the first one whose marker
// and key both match; a key means nothing across types. For many look-ups in the same bytes see KeyedIndex.h.
//
// Nothing here fails on damaged bytes. A walk ends before an unknown marker, and behind a record that is longer than
// the buffer; such a record still counts as present and is counted, but it has no value. All operations may be called
// from several threads while nobody changes the bytes. Only those that say so and those that return strings, data or
// lists take memory.
#ifndef VELAN_KEYED_KEYED_READING_H
#define VELAN_KEYED_KEYED_READING_H

#include <optional>
#include <vector>

#include "velan/base/Data.h"
#include "velan/base/FunctionRef.h"
#include "velan/base/String.h"
#include "velan/base/URL.h"
#include "velan/base/Value.h"
#include "velan/base/dates/Date.h"
#include "velan/keyed/KeyedRecords.h"

namespace velan {

/// `isValid`: whether the buffer is a sequence of whole records of known types and nothing else. YES for an empty
/// buffer, NO for an absent one. Payloads are not looked into.
VELAN_EXPORT bool isValid(KeyedBytes bytes);

/// `containsBoolForKey`: whether there is a `VLbl` record with `key`, even if it is longer than the buffer.
VELAN_EXPORT bool containsBoolForKey(KeyedBytes bytes, uint32_t key);
/// `containsUnsignedForKey`: whether there is a `VLun` record with `key`, even if it is longer than the buffer.
VELAN_EXPORT bool containsUnsignedForKey(KeyedBytes bytes, uint32_t key);
/// `containsSignedForKey`: whether there is a `VLsi` record with `key`, even if it is longer than the buffer.
VELAN_EXPORT bool containsSignedForKey(KeyedBytes bytes, uint32_t key);
/// `containsUnsignedLongLongForKey`: whether there is a `VLul` record with `key`, even if it is longer than the buffer.
VELAN_EXPORT bool containsUnsignedLongLongForKey(KeyedBytes bytes, uint32_t key);
/// `containsSignedLongLongForKey`: whether there is a `VLsl` record with `key`, even if it is longer than the buffer.
VELAN_EXPORT bool containsSignedLongLongForKey(KeyedBytes bytes, uint32_t key);
/// `containsFloatForKey`: whether there is a `VLfl` record with `key`, even if it is longer than the buffer.
VELAN_EXPORT bool containsFloatForKey(KeyedBytes bytes, uint32_t key);
/// `containsDoubleForKey`: whether there is a `VLdb` record with `key`, even if it is longer than the buffer.
VELAN_EXPORT bool containsDoubleForKey(KeyedBytes bytes, uint32_t key);
/// `containsDateForKey`: whether there is a `VLda` record with `key`, even if it is longer than the buffer.
VELAN_EXPORT bool containsDateForKey(KeyedBytes bytes, uint32_t key);
/// `containsDataForKey`: whether there is a `VLdt` record with `key`, even if it is longer than the buffer.
VELAN_EXPORT bool containsDataForKey(KeyedBytes bytes, uint32_t key);
/// `containsPlistForKey`: whether there is a `VLpl` record with `key`, even if it is longer than the buffer.
VELAN_EXPORT bool containsPlistForKey(KeyedBytes bytes, uint32_t key);
/// `containsStringForKey`: whether there is a `VLst` record with `key`, even if it is longer than the buffer.
VELAN_EXPORT bool containsStringForKey(KeyedBytes bytes, uint32_t key);
/// `containsURLForKey`: whether there is a `VLst` record with `key`, even if it is longer than the buffer.
VELAN_EXPORT bool containsURLForKey(KeyedBytes bytes, uint32_t key);

/// `containsString:forKey`: whether any `VLst` record with `key` holds exactly the UTF-8 form of `string`; no normal
/// form is applied. NO for an absent or empty string and one with a lone surrogate.
VELAN_EXPORT bool containsString(KeyedBytes bytes, const String& string, uint32_t key);
/// `containsURL:forKey`: `containsString` with the absolute string.
VELAN_EXPORT bool containsURL(KeyedBytes bytes, const URL& url, uint32_t key);

/// `boolForKey`: the value of the first `VLbl` record with `key` (a byte other than 0 is YES), or NO.
VELAN_EXPORT bool boolForKey(KeyedBytes bytes, uint32_t key);
/// `unsignedForKey`: the value of the first `VLun` record with `key`, or 0.
VELAN_EXPORT uint32_t unsignedForKey(KeyedBytes bytes, uint32_t key);
/// `signedForKey`: the value of the first `VLsi` record with `key`, or 0.
VELAN_EXPORT int32_t signedForKey(KeyedBytes bytes, uint32_t key);
/// `unsignedLongLongForKey`: the value of the first `VLul` record with `key`, or 0.
VELAN_EXPORT uint64_t unsignedLongLongForKey(KeyedBytes bytes, uint32_t key);
/// `signedLongLongForKey`: the value of the first `VLsl` record with `key`, or 0.
VELAN_EXPORT int64_t signedLongLongForKey(KeyedBytes bytes, uint32_t key);
/// `floatForKey`: the value of the first `VLfl` record with `key`, or 0.
VELAN_EXPORT float floatForKey(KeyedBytes bytes, uint32_t key);
/// `doubleForKey`: the value of the first `VLdb` record with `key`, or 0.
VELAN_EXPORT double doubleForKey(KeyedBytes bytes, uint32_t key);
/// `timeIntervalSinceReferenceDateForKey`: the seconds since 2001-01-01 00:00:00 UTC of the first `VLda` record with
/// `key`, or 0.
VELAN_EXPORT double timeIntervalSinceReferenceDateForKey(KeyedBytes bytes, uint32_t key);
/// `dateForKey`: the first `VLda` record with `key` as a date, or nothing.
VELAN_EXPORT std::optional<Date> dateForKey(KeyedBytes bytes, uint32_t key);
/// `descriptionWithCalendarFormat:forKey`: the same date as text, in universal time and in English, by the directives
/// that `formatDate` lists. Absent without such a record, and for dates and formats that `formatDate` refuses.
VELAN_EXPORT String descriptionWithCalendarFormat(KeyedBytes bytes, const String& format, uint32_t key);

/// `dataForKey`: a copy of the payload of the first `VLdt` record with `key`, or absent.
VELAN_EXPORT Data dataForKey(KeyedBytes bytes, uint32_t key);
/// `dataNoCopyForKey`: the same payload without a copy. The result keeps the bytes of `data` alive; bytes that `data`
/// itself only refers to must outlive the result and stay as they are.
VELAN_EXPORT Data dataNoCopyForKey(const Data& data, uint32_t key);
/// `plistForKey`: the property list in the first `VLpl` record with `key`. Absent also when it cannot be decoded.
VELAN_EXPORT Value plistForKey(KeyedBytes bytes, uint32_t key);
/// `stringForKey`: the first `VLst` record with `key`. Absent also when it is not UTF-8.
VELAN_EXPORT String stringForKey(KeyedBytes bytes, uint32_t key);
/// `stringNoCopyForKey`: the same as `stringForKey`. Strings are UTF-16, so UTF-8 is always converted; the result
/// refers to nothing.
VELAN_EXPORT String stringNoCopyForKey(KeyedBytes bytes, uint32_t key);
/// `stringDataForKey`: a copy of the UTF-8 bytes of the first `VLst` record with `key`, whether they are well-formed or
/// not.
VELAN_EXPORT Data stringDataForKey(KeyedBytes bytes, uint32_t key);
/// `URLForKey`: the first `VLst` record with `key` as a URL: as a file URL when it begins with "/", otherwise as it is.
/// Absent also when it is no URL.
VELAN_EXPORT URL URLForKey(KeyedBytes bytes, uint32_t key);

/// `numberOfStringsForKey`: how many `VLst` records with `key` there are.
VELAN_EXPORT size_t numberOfStringsForKey(KeyedBytes bytes, uint32_t key);
/// `numberOfURLsForKey`: the same count.
VELAN_EXPORT size_t numberOfURLsForKey(KeyedBytes bytes, uint32_t key);

/// `stringsForKey`: all strings with `key` in the order of the buffer, without those that are not UTF-8. Nothing,
/// rather than an empty list, when there is none.
VELAN_EXPORT std::optional<std::vector<String>> stringsForKey(KeyedBytes bytes, uint32_t key);
/// `stringsNoCopyForKey`: the same as `stringsForKey`; see `stringNoCopyForKey`.
VELAN_EXPORT std::optional<std::vector<String>> stringsNoCopyForKey(KeyedBytes bytes, uint32_t key);
/// `URLsForKey`: all strings with `key` as URLs, made as by `URLForKey`; those that are no URLs are left out.
VELAN_EXPORT std::optional<std::vector<URL>> URLsForKey(KeyedBytes bytes, uint32_t key);
/// `addStringsForKey:to`: appends what `stringsForKey` gives to `list`; returns how many.
VELAN_EXPORT size_t addStringsForKey(KeyedBytes bytes, uint32_t key, std::vector<String>& list);
/// `addURLsForKey:to`: appends what `URLsForKey` gives to `list`; returns how many.
VELAN_EXPORT size_t addURLsForKey(KeyedBytes bytes, uint32_t key, std::vector<URL>& list);

/// Gets a string and the caller's context.
using KeyedStringHandler = bool (*)(const String& string, void* context);
/// Gets a URL and the caller's context.
using KeyedURLHandler = bool (*)(const URL& url, void* context);

/// `handleStringsForKey:handler:context`: calls `handler` with each string that `stringsForKey` gives; returns how many
/// calls answered true. No answer stops it. 0 without a handler.
VELAN_EXPORT size_t handleStringsForKey(KeyedBytes bytes, uint32_t key, KeyedStringHandler handler, void* context);
VELAN_EXPORT size_t handleStringsForKey(KeyedBytes bytes, uint32_t key, FunctionRef<bool(const String&)> handler);
/// `handleStringsNoCopyForKey:handler:context`: the same as `handleStringsForKey`; see `stringNoCopyForKey`.
VELAN_EXPORT size_t handleStringsNoCopyForKey(KeyedBytes bytes, uint32_t key, KeyedStringHandler handler,
                                              void* context);
VELAN_EXPORT size_t handleStringsNoCopyForKey(KeyedBytes bytes, uint32_t key, FunctionRef<bool(const String&)> handler);
/// `handleURLsForKey:handler:context`: calls `handler` with each URL that `URLsForKey` gives; returns how many calls
/// answered true.
VELAN_EXPORT size_t handleURLsForKey(KeyedBytes bytes, uint32_t key, KeyedURLHandler handler, void* context);
VELAN_EXPORT size_t handleURLsForKey(KeyedBytes bytes, uint32_t key, FunctionRef<bool(const URL&)> handler);

/// `numberOfKeyedData`: how many records have this marker, or how many there are for 0. Unlike all other operations it
/// goes on behind an unknown marker, as if it were a record of 16 bytes, and counts it; a record that is longer than
/// the buffer is the last one counted.
VELAN_EXPORT size_t numberOfKeyedData(KeyedBytes bytes, uint32_t marker);
/// `numberOfStrings`: `numberOfKeyedData` for `VLst`.
VELAN_EXPORT size_t numberOfStrings(KeyedBytes bytes);

/// Gets a record: its marker, its key, a pointer to its decoded value and the caller's context. The value is one byte
/// for `VLbl`; a `uint32_t`, `int32_t` or `float` for `VLun`, `VLsi` and `VLfl`; a `uint64_t`, `int64_t` or `double`
/// for `VLul`, `VLsl`, `VLdb` and `VLda`; a `String` for `VLst`. It is valid during the call.
using KeyedDataHandler = bool (*)(uint32_t marker, uint32_t key, const void* value, void* context);
using KeyedDataClosure = FunctionRef<bool(uint32_t marker, uint32_t key, const void* value)>;

/// `handleKeyedDataUsingHandler:marker:strings:noCopy:context`: calls `handler` with each record of fixed size that has
/// this marker, or with all of fixed size for 0; returns how many calls answered true. No answer stops it.
///
/// With `strings` every `VLst` record that is UTF-8 is handed over too, whatever the marker is; without it none is.
/// Data and property lists never are: for the markers `VLdt` and `VLpl`, and for `VLst` without `strings`, it returns 0
/// at once, as it does without a handler. `noCopy` makes no difference; see `stringNoCopyForKey`.
VELAN_EXPORT size_t handleKeyedDataUsingHandler(KeyedBytes bytes, KeyedDataHandler handler, uint32_t marker,
                                                bool strings, bool noCopy, void* context);
VELAN_EXPORT size_t handleKeyedDataUsingHandler(KeyedBytes bytes, KeyedDataClosure handler, uint32_t marker,
                                                bool strings, bool noCopy);
/// `handleKeyedDataUsingHandler:context`: all records of fixed size, no strings.
VELAN_EXPORT size_t handleKeyedDataUsingHandler(KeyedBytes bytes, KeyedDataHandler handler, void* context);
VELAN_EXPORT size_t handleKeyedDataUsingHandler(KeyedBytes bytes, KeyedDataClosure handler);

/// `isEqualToKeyedData:marker`: whether both buffers have the same number of records with this marker (all for 0,
/// counted by `numberOfKeyedData`), and each such record of `bytes` has its equal somewhere in `other`: same marker,
/// same key, and the same value, all bytes of it. Order does not matter. One equal may serve several records, so the
/// answer can change when the buffers change places. A record that is longer than its buffer has no equal. When either
/// buffer is empty: whether both are. Takes time and memory for sorting one side; false when memory runs
/// out.
VELAN_EXPORT bool isEqualToKeyedData(KeyedBytes bytes, KeyedBytes other, uint32_t marker);

}  // namespace velan

#endif  // VELAN_KEYED_KEYED_READING_H
