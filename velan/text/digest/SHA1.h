// SHA-1 (FIPS 180-4), for content keys and salted hashes; collisions can be made, so no proof of origin.
#ifndef VELAN_TEXT_DIGEST_SHA1_H
#define VELAN_TEXT_DIGEST_SHA1_H

#include "velan/base/CTypes.h"

#ifdef __cplusplus
namespace velan {
extern "C" {
#endif

enum { ISC_SHA1_DIGESTLENGTH = 20, ISC_SHA1_BLOCK_LENGTH = 64 };

/// A digest under way. One context belongs to one thread at a time; it owns nothing and may be copied.
typedef struct isc_sha1_t {
  uint32_t state[5];
  uint64_t length;
  uint8_t block[64];
} isc_sha1_t;

/// `isc_sha1_init`: begins a new digest. Does nothing for a null context, like the three below.
VELAN_EXPORT void isc_sha1_init(isc_sha1_t* context);
/// `isc_sha1_update`: feeds `length` bytes; null bytes count as none.
VELAN_EXPORT void isc_sha1_update(isc_sha1_t* context, const void* bytes, size_t length);
/// `isc_sha1_final`: writes the 20-byte digest of all bytes fed, and clears the context.
VELAN_EXPORT void isc_sha1_final(isc_sha1_t* context, uint8_t* digest);
/// `isc_sha1_invalidate`: clears the context without producing a digest.
VELAN_EXPORT void isc_sha1_invalidate(isc_sha1_t* context);

#ifdef __cplusplus
}  // extern "C"
}  // namespace velan
#endif

#endif  // VELAN_TEXT_DIGEST_SHA1_H
