// MD5 (RFC 1321), for content keys of old formats; no defence against a forger.
#ifndef VELAN_TEXT_DIGEST_MD5_H
#define VELAN_TEXT_DIGEST_MD5_H

#include "velan/base/CTypes.h"

#ifdef __cplusplus
namespace velan {
extern "C" {
#endif

enum { ISC_MD5_DIGESTLENGTH = 16, ISC_MD5_BLOCK_LENGTH = 64 };

/// A digest under way. One context belongs to one thread at a time; it owns nothing and may be copied.
typedef struct isc_md5_t {
  uint32_t state[4];
  uint64_t length;
  uint8_t block[64];
} isc_md5_t;

/// `isc_md5_init`: begins a new digest. Does nothing for a null context, like the three below.
VELAN_EXPORT void isc_md5_init(isc_md5_t* context);
/// `isc_md5_update`: feeds `length` bytes; null bytes count as none.
VELAN_EXPORT void isc_md5_update(isc_md5_t* context, const void* bytes, size_t length);
/// `isc_md5_final`: writes the 16-byte digest of all bytes fed, and clears the context.
VELAN_EXPORT void isc_md5_final(isc_md5_t* context, uint8_t* digest);
/// `isc_md5_invalidate`: clears the context without producing a digest.
VELAN_EXPORT void isc_md5_invalidate(isc_md5_t* context);

#ifdef __cplusplus
}  // extern "C"
}  // namespace velan
#endif

#endif  // VELAN_TEXT_DIGEST_MD5_H
