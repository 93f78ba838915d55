// A library that was built without AES: no cipher can be set up.
#include <cerrno>

#include "velan/platform/AESInternal.h"
#include "velan/platform/ServicesInternal.h"

namespace velan {

AESResult runAES(AESOperation, std::span<const uint8_t>, std::span<const uint8_t>) { return {ENOTSUP, Data()}; }

Service encryptionService() { return {"OpenSSL", "", "encryption"}; }

}  // namespace velan
