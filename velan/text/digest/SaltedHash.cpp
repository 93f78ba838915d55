#include "velan/text/digest/SaltedHash.h"

#include <string>

#include "velan/base/Data.h"
#include "velan/text/digest/Hexadecimal.h"
#include "velan/text/digest/SHA1.h"
#include "velan/text/encoding/StringConversion.h"

namespace velan {
namespace {

constexpr std::u16string_view kSalt = u"q7V!mR2x#Lf9zT4w&Kd8";
static_assert(kSalt.size() == 20);

}  // namespace

String saltedHash(const String& string, const String& salt, StringEncoding encoding, uint64_t times) {
  if (string.isEmpty()) return String();
  String hash = string;
  do {
    std::u16string salted(hash.view());
    salted.append(salt.view());
    const Data bytes = dataUsingEncoding(salted, encoding);
    isc_sha1_t context;
    uint8_t digest[ISC_SHA1_DIGESTLENGTH];
    isc_sha1_init(&context);
    isc_sha1_update(&context, bytes.bytes(), bytes.length());
    isc_sha1_final(&context, digest);
    hash = hexadecimalString(digest);
  } while (times-- > 1);
  return hash;
}

String saltedHash(const String& string, const String& salt, StringEncoding encoding) {
  return saltedHash(string, salt, encoding, 1);
}

String saltedHash(const String& string, const String& salt) { return saltedHash(string, salt, StringEncoding::UTF8); }

String saltedHash(const String& string) { return saltedHash(string, String(kSalt)); }

}  // namespace velan
