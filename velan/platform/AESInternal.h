// AES in CBC mode with PKCS#7 padding and an initialisation vector of zeros.
#ifndef VELAN_PLATFORM_AES_INTERNAL_H
#define VELAN_PLATFORM_AES_INTERNAL_H

#include <span>

#include "velan/base/Data.h"

namespace velan {

enum class AESOperation { Encrypt, Decrypt };

/// What came of it: `status` is 0 unless the cipher could not be set up; `data` is absent when that or the work failed.
struct AESResult {
  int status;
  Data data;
};

/// `key` has 16, 24 or 32 bytes.
AESResult runAES(AESOperation operation, std::span<const uint8_t> key, std::span<const uint8_t> bytes);

}  // namespace velan

#endif  // VELAN_PLATFORM_AES_INTERNAL_H
