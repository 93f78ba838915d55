#include "velan/storage/Encryption.h"

#include <string>

#include "velan/base/Log.h"
#include "velan/platform/AESInternal.h"
#include "velan/text/digest/SaltedHash.h"

namespace velan {
namespace {

// Cut or filled with zeros to the next of the three key lengths.
std::string keyOf(const String& passPhrase) {
  std::string key = saltedHash(passPhrase).toUTF8();
  key.resize(key.size() <= 16 ? 16 : key.size() <= 24 ? 24 : 32, '\0');
  return key;
}

Data performAESOperation(AESOperation operation, const Data& data, const String& passPhrase) {
  if (data.isEmpty() || passPhrase.isEmpty()) return Data();
  const std::string key = keyOf(passPhrase);
  const AESResult result = runAES(operation, {reinterpret_cast<const uint8_t*>(key.data()), key.size()}, data.span());
  if (result.status != 0) {
    logFormat("ERROR: performAESOperation: %s of %ld bytes failed (-%d)",
              operation == AESOperation::Encrypt ? "Encryption" : "Decryption", static_cast<long>(data.length()),
              result.status);
  }
  return result.data;
}

}  // namespace

Data encryptedDataUsingKey(const Data& data, const String& key) {
  Data result = performAESOperation(AESOperation::Encrypt, data, key);
  if (!result && !data.isEmpty()) logMessage("WARNING: Couldn't encrypt data.");
  return result;
}

Data decryptedDataUsingKey(const Data& data, const String& key) {
  Data result = performAESOperation(AESOperation::Decrypt, data, key);
  if (!result && !data.isEmpty()) logMessage("WARNING: Couldn't decrypt data.");
  return result;
}

}  // namespace velan
