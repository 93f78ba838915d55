// Conversion between buffers: UTF-8 and UTF-16, and any encoding to UTF-16. Nothing here keeps state between calls, and
// all of it may be called from any thread. Compiles as C11 and as C++20.
#ifndef VELAN_TEXT_ENCODING_UNICODE_CONVERTERS_H
#define VELAN_TEXT_ENCODING_UNICODE_CONVERTERS_H

#include "velan/base/CTypes.h"
#include "velan/base/TextEncoding.h"

#ifdef __cplusplus
namespace velan {
extern "C" {
#endif

/// What a conversion came to.
enum ConverterStatus {
  ConverterSuccess = 0,
  ConverterUnknownEncoding = -8738,
  ConverterMalformedInput = -8739,
  ConverterUnassignedCode = -8740,
  ConverterPartialCharacter = -8753,  // the input ends within a sequence
  ConverterOutputFull = -8785,
};

/// `initUnicodeConverters`: there is nothing to prepare; callers who do so are not disappointed.
VELAN_EXPORT void initUnicodeConverters(void);

/// `convertUTF8ToUnicode`: converts `byteLength` bytes of UTF-8 into at most `capacity` code units; returns a
/// `ConverterStatus`. Overlong forms, surrogates and values above U+10FFFF are malformed; a byte-order mark is kept as
/// U+FEFF. What precedes the trouble is written, whole characters only, and nothing beyond them. The number of units is
/// not told: clear the buffer before, or count with `convertEncodingToUnicode`. Null buffers count as empty.
VELAN_EXPORT int32_t convertUTF8ToUnicode(const void* bytes, size_t byteLength, unichar* chars, size_t capacity);

/// `convertUnicodeToUTF8`: converts `charLength` code units into at most `capacity` bytes of UTF-8, as above. A
/// surrogate without its partner is malformed, at the end a high one is a partial character.
VELAN_EXPORT int32_t convertUnicodeToUTF8(const unichar* chars, size_t charLength, void* bytes, size_t capacity);

/// `convertEncodingToUnicode`: converts `byteLength` bytes in `encoding` into at most `capacity` code units and stores
/// their number in `outLength` (where it is not null). Returns 1 when everything was converted; 0 when a malformed or
/// cut-off sequence or a full buffer stopped it, what precedes being written; and `ConverterUnknownEncoding`, not 0,
/// with the number 0, when there is no such converter. A well-formed code that stands for no character becomes U+FFFD.
/// A byte-order mark is kept as U+FEFF, except that UTF-16 and UTF-32 without a byte order use it up.
VELAN_EXPORT int32_t convertEncodingToUnicode(const void* bytes, size_t byteLength, TextEncoding encoding,
                                              unichar* chars, size_t capacity, size_t* outLength);

#ifdef __cplusplus
}  // extern "C"
}  // namespace velan
#endif

#endif  // VELAN_TEXT_ENCODING_UNICODE_CONVERTERS_H
