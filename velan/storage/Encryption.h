// AES encryption of byte buffers under a pass phrase, as existing files have it: AES in CBC mode with PKCS#7 padding, a
// key made of the salted hash of the pass phrase, and an initialisation vector of zeros.
//
// What it is not: nothing is authenticated, so whoever can write the bytes can change the text unnoticed, and a wrong
// pass phrase is not always noticed either. The vector is always the same, so equal beginnings give equal beginnings.
// The key comes from a single round of SHA-1, so short pass phrases can be tried out quickly.
#ifndef VELAN_STORAGE_ENCRYPTION_H
#define VELAN_STORAGE_ENCRYPTION_H

#include "velan/base/Data.h"
#include "velan/base/String.h"

namespace velan {

/// `encryptedDataUsingKey`: `data` encrypted under the pass phrase `key`, 1 to 16 bytes longer. Absent for empty data
/// or an empty pass phrase, and when the library was built without AES.
VELAN_EXPORT Data encryptedDataUsingKey(const Data& data, const String& key);

/// `decryptedDataUsingKey`: the reverse. With another pass phrase, or for damaged data, absent or other bytes.
VELAN_EXPORT Data decryptedDataUsingKey(const Data& data, const String& key);

}  // namespace velan

#endif  // VELAN_STORAGE_ENCRYPTION_H
