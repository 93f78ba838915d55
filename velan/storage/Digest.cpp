#include "velan/storage/Digest.h"

#include "velan/text/digest/Hexadecimal.h"
#include "velan/text/digest/MD5.h"
#include "velan/text/digest/SHA1.h"

namespace velan {

Data MD5Digest(const Data& data) {
  isc_md5_t context;
  uint8_t digest[ISC_MD5_DIGESTLENGTH];
  isc_md5_init(&context);
  isc_md5_update(&context, data.bytes(), data.length());
  isc_md5_final(&context, digest);
  return Data::withBytes(digest, sizeof digest);
}

Data SHA1Digest(const Data& data) {
  isc_sha1_t context;
  uint8_t digest[ISC_SHA1_DIGESTLENGTH];
  isc_sha1_init(&context);
  isc_sha1_update(&context, data.bytes(), data.length());
  isc_sha1_final(&context, digest);
  return Data::withBytes(digest, sizeof digest);
}

String MD5DigestStringValue(const Data& data) { return hexadecimalString(MD5Digest(data).span()); }

String SHA1DigestStringValue(const Data& data) { return hexadecimalString(SHA1Digest(data).span()); }

}  // namespace velan
