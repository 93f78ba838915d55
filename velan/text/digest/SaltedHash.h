// One-way hashes of strings: SHA-1 over the text and a salt, as often as wanted. Fit for comparing stored values, not
// for guarding passwords against somebody who holds the hashes: SHA-1 is too fast for that.
#ifndef VELAN_TEXT_DIGEST_SALTED_HASH_H
#define VELAN_TEXT_DIGEST_SALTED_HASH_H

#include <concepts>

#include "velan/base/String.h"
#include "velan/base/StringEncoding.h"

namespace velan {

namespace detail {
VELAN_EXPORT String saltedHashRepeated(const String& string, const String& salt, StringEncoding encoding,
                                       uint64_t times);
}

/// `saltedHash:encoding:times:`: appends `salt` (may be absent), takes the bytes in `encoding`, and replaces the text
/// by their SHA-1 digest in 40 lower-case hexadecimal digits; `times` times, at least once. Text that `encoding` cannot
/// express counts as no bytes. Absent for an absent or empty string, and when memory runs out. Only unsigned counts are
/// taken: -1 would mean 2^64.
String saltedHash(const String& string, const String& salt, StringEncoding encoding,
                  std::unsigned_integral auto times) {
  return detail::saltedHashRepeated(string, salt, encoding, times);
}

/// `saltedHash:encoding:`: once.
VELAN_EXPORT String saltedHash(const String& string, const String& salt, StringEncoding encoding);

/// `saltedHash:`: once, in UTF-8.
VELAN_EXPORT String saltedHash(const String& string, const String& salt);

/// `saltedHash`: once, in UTF-8, with the library's own salt of 20 code units. The salt never changes: hashes that were
/// stored and the keys of encrypted data depend on it.
VELAN_EXPORT String saltedHash(const String& string);

}  // namespace velan

#endif  // VELAN_TEXT_DIGEST_SALTED_HASH_H
