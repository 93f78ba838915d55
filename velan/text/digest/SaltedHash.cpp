#include "velan/text/digest/SaltedHash.h"

#include <new>
#include <string>

#include "velan/base/MutableString.h"
#include "velan/text/digest/Hexadecimal.h"
#include "velan/text/digest/SHA1.h"
#include "velan/text/encoding/EncodingTableInternal.h"

namespace velan {
namespace {

constexpr std::u16string_view kSalt = u"q7V!mR2x#Lf9zT4w&Kd8";
static_assert(kSalt.size() == 20);

// The bytes that `encoder` makes are what is hashed, none when it cannot express the text.
String hashedOnce(std::u16string_view text, const String& salt, Encoder* encoder) {
  MutableString salted(text);
  salted.appendString(salt);
  std::string bytes;
  if (!encoder || !encoder->encode(salted.view(), bytes)) bytes.clear();
  isc_sha1_t context;
  uint8_t digest[ISC_SHA1_DIGESTLENGTH];
  isc_sha1_init(&context);
  isc_sha1_update(&context, bytes.data(), bytes.size());
  isc_sha1_final(&context, digest);
  return hexadecimalString(digest);
}

}  // namespace

String detail::saltedHashRepeated(const String& string, const String& salt, StringEncoding encoding, uint64_t times) {
  if (string.isEmpty()) return String();
  try {
    const bool known = !asksForDetection(encoding) && encodingEntry(textEncoding(encoding));
    const auto encoder = known ? encoderFor(textEncoding(encoding)) : nullptr;
    if (known && !encoder) return String();  // too little memory, which must not give the hash of nothing
    String hash = string;
    do {
      hash = hashedOnce(hash.view(), salt, encoder.get());
    } while (times-- > 1 && hash);
    return hash;
  } catch (const std::bad_alloc&) {
    return String();
  }
}

String saltedHash(const String& string, const String& salt, StringEncoding encoding) {
  return saltedHash(string, salt, encoding, 1u);
}

String saltedHash(const String& string, const String& salt) { return saltedHash(string, salt, StringEncoding::UTF8); }

String saltedHash(const String& string) { return saltedHash(string, String(kSalt)); }

}  // namespace velan
