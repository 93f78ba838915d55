// Digests of byte buffers.
#ifndef VELAN_STORAGE_DIGEST_H
#define VELAN_STORAGE_DIGEST_H

#include "velan/base/Data.h"
#include "velan/base/String.h"

namespace velan {

/// `MD5Digest`: the 16 bytes of the MD5 digest; an absent buffer counts as empty, here and below.
VELAN_EXPORT Data MD5Digest(const Data& data);
/// `SHA1Digest`: the 20 bytes of the SHA-1 digest.
VELAN_EXPORT Data SHA1Digest(const Data& data);
/// `MD5DigestStringValue`: the MD5 digest in 32 lower-case hexadecimal digits.
VELAN_EXPORT String MD5DigestStringValue(const Data& data);
/// `SHA1DigestStringValue`: the SHA-1 digest in 40 lower-case hexadecimal digits.
VELAN_EXPORT String SHA1DigestStringValue(const Data& data);

}  // namespace velan

#endif  // VELAN_STORAGE_DIGEST_H
