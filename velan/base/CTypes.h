// The types that every C header of the library shares. Compiles as C11 and as C++20.
#ifndef VELAN_BASE_CTYPES_H
#define VELAN_BASE_CTYPES_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <uchar.h>

/// Marks what the shared library exports; everything else is hidden.
#define VELAN_EXPORT __attribute__((visibility("default")))

#ifdef __cplusplus
namespace velan {
extern "C" {
#endif

/// `unichar`: one UTF-16 code unit.
typedef char16_t unichar;

/// `NSNotFound`: the location of every absent result.
#define VELAN_NOT_FOUND INT64_MAX
#ifndef __cplusplus
enum { VelanTableLength = 65536, CharacterSetRepLength = 8192 };
#define NSNotFound VELAN_NOT_FOUND
#else
inline constexpr int64_t NSNotFound = VELAN_NOT_FOUND;
inline constexpr size_t VelanTableLength = 65536;
inline constexpr size_t CharacterSetRepLength = 8192;
#endif

/// A location and a length, in code units or in bytes. An absent range is `{NSNotFound, 0}`.
typedef struct Range {
  int64_t location;
  int64_t length;
} Range;

/// `CharacterSetRep`: a character-class bitmap of the Basic Multilingual Plane. Code unit `c` is a member when bit
/// `c & 7` of byte `c >> 3` is set. Operations take a pointer to its first byte, which may be null where they say so.
typedef uint8_t CharacterSetRep[8192];

#ifdef __cplusplus
}  // extern "C"
}  // namespace velan
#endif

#endif  // VELAN_BASE_CTYPES_H
