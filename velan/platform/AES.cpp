// AES through OpenSSL.
#include <openssl/crypto.h>
#include <openssl/err.h>
#include <openssl/evp.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <iterator>
#include <memory>

#include "velan/platform/AESInternal.h"
#include "velan/platform/ServicesInternal.h"

namespace velan {
namespace {

constexpr size_t kBlockSize = 16;
constexpr size_t kMostAtOnce = 1 << 30;  // its lengths are int

// OpenSSL takes longer to find a cipher than to work on a short block: each is found once, and kept.
const EVP_CIPHER* cipherFor(size_t keyLength) {
  static constexpr const char* kNames[] = {"AES-128-CBC", "AES-192-CBC", "AES-256-CBC"};
  static std::atomic<EVP_CIPHER*> ciphers[std::size(kNames)];
  if (keyLength != 16 && keyLength != 24 && keyLength != 32) return nullptr;
  std::atomic<EVP_CIPHER*>& kept = ciphers[keyLength / 8 - 2];
  if (EVP_CIPHER* const cipher = kept.load(std::memory_order_acquire)) return cipher;
  EVP_CIPHER* const found = EVP_CIPHER_fetch(nullptr, kNames[keyLength / 8 - 2], nullptr);
  EVP_CIPHER* other = nullptr;
  if (!found || kept.compare_exchange_strong(other, found, std::memory_order_acq_rel)) return found;
  EVP_CIPHER_free(found);  // another thread was faster
  return other;
}

Data converted(EVP_CIPHER_CTX* context, std::span<const uint8_t> bytes) {
  // Sized for the whole result, which takes it over.
  auto* const output = static_cast<uint8_t*>(std::malloc(bytes.size() + kBlockSize));
  const Data owner = Data::withBytesNoCopy(output, bytes.size() + kBlockSize, true);
  if (!owner) return Data();
  size_t written = 0;
  int count = 0;
  while (!bytes.empty()) {
    const size_t part = std::min(bytes.size(), kMostAtOnce);
    if (!EVP_CipherUpdate(context, output + written, &count, bytes.data(), static_cast<int>(part))) return Data();
    written += static_cast<size_t>(count);
    bytes = bytes.subspan(part);
  }
  if (!EVP_CipherFinal_ex(context, output + written, &count)) return Data();
  return owner.subdata({0, static_cast<int64_t>(written) + count});
}

}  // namespace

AESResult runAES(AESOperation operation, std::span<const uint8_t> key, std::span<const uint8_t> bytes) {
  constexpr uint8_t kVector[kBlockSize] = {};
  const std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> context(EVP_CIPHER_CTX_new(),
                                                                                EVP_CIPHER_CTX_free);
  const EVP_CIPHER* const cipher = cipherFor(key.size());
  AESResult result{0, Data()};
  if (!context || !cipher || bytes.size() > SIZE_MAX - kBlockSize ||
      !EVP_CipherInit_ex(context.get(), cipher, nullptr, key.data(), kVector, operation == AESOperation::Encrypt)) {
    result.status = ENOMEM;
  } else {
    result.data = converted(context.get(), bytes);
  }
  if (!result.data) ERR_clear_error();
  return result;
}

Service encryptionService() { return {"OpenSSL", OpenSSL_version(OPENSSL_VERSION_STRING), "encryption"}; }

}  // namespace velan
