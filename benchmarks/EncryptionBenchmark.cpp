// Decrypting beside OpenSSL with its cipher and context at hand, which is the fastest way to use it. The key is new to
// it each time. The pass phrase's key is a hash of it, which is made each time, too.
#include <benchmark/benchmark.h>
#include <openssl/evp.h>

#include <array>
#include <string>
#include <vector>

#include "velan/platform/AESInternal.h"
#include "velan/storage/Encryption.h"

namespace velan {
namespace {

constexpr std::array<uint8_t, 32> kKey = {1, 2, 3};

std::string plainText(const benchmark::State& state) { return std::string(static_cast<size_t>(state.range(0)), 'x'); }

Data encrypted(const benchmark::State& state) {
  return runAES(AESOperation::Encrypt, kKey, Data::withBytes(plainText(state)).span()).data;
}

void BM_Decrypt(benchmark::State& state) {
  const Data data = encrypted(state);
  for (auto _ : state) benchmark::DoNotOptimize(runAES(AESOperation::Decrypt, kKey, data.span()));
  state.SetBytesProcessed(state.iterations() * state.range(0));
}

void BM_DecryptByPassPhrase(benchmark::State& state) {
  const String phrase = u"a pass phrase of some length"_s;
  const Data data = encryptedDataUsingKey(Data::withBytes(plainText(state)), phrase);
  for (auto _ : state) benchmark::DoNotOptimize(decryptedDataUsingKey(data, phrase));
  state.SetBytesProcessed(state.iterations() * state.range(0));
}

void BM_DecryptOpenSSL(benchmark::State& state) {
  const Data data = encrypted(state);
  std::vector<uint8_t> plain(static_cast<size_t>(data.length()) + 16);
  EVP_CIPHER* const cipher = EVP_CIPHER_fetch(nullptr, "AES-256-CBC", nullptr);
  EVP_CIPHER_CTX* const context = EVP_CIPHER_CTX_new();
  const std::array<uint8_t, 16> vector = {};
  for (auto _ : state) {
    int written = 0;
    int last = 0;
    EVP_DecryptInit_ex(context, cipher, nullptr, kKey.data(), vector.data());
    EVP_DecryptUpdate(context, plain.data(), &written, data.span().data(), static_cast<int>(data.length()));
    EVP_DecryptFinal_ex(context, plain.data() + written, &last);
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * state.range(0));
  EVP_CIPHER_CTX_free(context);
  EVP_CIPHER_free(cipher);
}

BENCHMARK(BM_Decrypt)->Arg(64)->Arg(1 << 10)->Arg(64 << 10);
BENCHMARK(BM_DecryptByPassPhrase)->Arg(1 << 10);
BENCHMARK(BM_DecryptOpenSSL)->Arg(64)->Arg(1 << 10)->Arg(64 << 10);

}  // namespace
}  // namespace velan
