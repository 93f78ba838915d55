// Checksums of bytes and of UTF-16 text, for cache keys and for spotting damaged blocks; no defence against a forger.
// Nothing here allocates except where it says so, and all of it may be called from any thread.
#ifndef VELAN_TEXT_DIGEST_CHECKSUMS_H
#define VELAN_TEXT_DIGEST_CHECKSUMS_H

#include <stddef.h>
#include <stdint.h>

#include "velan/base/CTypes.h"

#ifdef __cplusplus
namespace velan {
extern "C" {
#endif

/// `CRC32`: reflected CRC-32 (polynomial 0xEDB88320) of `bytes[0, length)`, `length` in bytes. The register starts at 0
/// and is not inverted at the end, unlike in zlib: values written to files depend on it, and leading zero bytes leave
/// the result unchanged. 0 if `bytes` is null or `length` is 0.
VELAN_EXPORT uint32_t CRC32(const void* bytes, size_t length);

/// `CRC32UniChars`: as `CRC32`, of `length` code units, each as two bytes, the high byte first on every machine. 0 if
/// `chars` is null.
VELAN_EXPORT uint32_t CRC32UniChars(const unichar* chars, size_t length);

/// `CRC32UniCharsUsingConversionTable`: as `CRC32UniChars`, of `table[c]` for each code unit `c`. `table` has 65,536
/// entries, is only borrowed, and may be null (no mapping). 0 if `chars` is null.
VELAN_EXPORT uint32_t CRC32UniCharsUsingConversionTable(const unichar* chars, size_t length, const unichar* table);

#ifdef __cplusplus
}  // extern "C"
}  // namespace velan

#include "velan/base/Data.h"
#include "velan/base/String.h"

namespace velan {

/// `crc32`: `CRC32` of the bytes of `data`; 0 when it is empty or absent.
VELAN_EXPORT uint32_t crc32(const Data& data);

/// `crc32`: `stringCRC32UsingConversionTable` without a table.
VELAN_EXPORT uint32_t crc32(const String& string);

/// `stringCRC32UsingConversionTable`: `CRC32UniCharsUsingConversionTable` of the string's code units. `table` may be
/// null. 0 for an absent or empty string.
VELAN_EXPORT uint32_t stringCRC32UsingConversionTable(const String& string, const unichar* table);

/// `crc32UsingConversionTable:`: the same as `stringCRC32UsingConversionTable`. With an upper-case or diacritic-folding
/// table strings that differ only so get one value.
VELAN_EXPORT uint32_t crc32UsingConversionTable(const String& string, const unichar* table);

/// `caseInsensitiveCrc32UsingCharactersPartOfCharacterSetRep:`: `CRC32UniChars` of the code units that are members of
/// the bitmap `set` (8,192 bytes), each mapped through the upper-case table. 0 for a null set and when no member is
/// left.
VELAN_EXPORT uint32_t caseInsensitiveCrc32UsingCharactersPartOfCharacterSetRep(const String& string,
                                                                               const uint8_t* set);

/// `caseInsensitiveCrc32ByRemovingNonAlphaCharacters`: the same with the letters, `alphaCharacterSetRep`.
VELAN_EXPORT uint32_t caseInsensitiveCrc32ByRemovingNonAlphaCharacters(const String& string);

/// `caseInsensitiveCrc32ByRemovingNonAlphaNumericCharacters`: the same with letters and digits,
/// `alphaNumCharacterSetRep`.
VELAN_EXPORT uint32_t caseInsensitiveCrc32ByRemovingNonAlphaNumericCharacters(const String& string);

}  // namespace velan
#endif  // __cplusplus

#endif  // VELAN_TEXT_DIGEST_CHECKSUMS_H
