// CRC-32 of bytes and of code units beside ISA-L, libdeflate and zlib; SHA-1 and MD5 of short texts beside OpenSSL.
// Every kernel that runs here, alone.
#include <benchmark/benchmark.h>
#include <isa-l.h>
#include <libdeflate.h>
#include <openssl/evp.h>
#include <zlib.h>

#include <string>

#include "velan/text/digest/Checksums.h"
#include "velan/text/digest/ChecksumsInternal.h"
#include "velan/text/digest/MD5.h"
#include "velan/text/digest/SHA1.h"
#include "velan/text/digest/SHA1Internal.h"

namespace velan {
namespace {

template <typename Function>
void measure(benchmark::State& state, Function function) {
  const std::string bytes(static_cast<size_t>(state.range(0)), 'x');
  for (auto _ : state) benchmark::DoNotOptimize(function(bytes));
  state.SetBytesProcessed(state.iterations() * state.range(0));
}

void BM_Crc32Bytes(benchmark::State& state) {
  measure(state, [](const std::string& bytes) { return CRC32(bytes.data(), bytes.size()); });
}
void BM_Crc32Units(benchmark::State& state) {
  measure(state, [](const std::string& bytes) {
    return CRC32UniChars(reinterpret_cast<const unichar*>(bytes.data()), bytes.size() / sizeof(unichar));
  });
}
void BM_Crc32Zlib(benchmark::State& state) {
  measure(state, [](const std::string& bytes) {
    return ::crc32_z(0, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size());
  });
}
void BM_Crc32Libdeflate(benchmark::State& state) {
  measure(state, [](const std::string& bytes) { return libdeflate_crc32(0, bytes.data(), bytes.size()); });
}

void BM_Crc32ISAL(benchmark::State& state) {
  measure(state, [](const std::string& bytes) {
    return crc32_gzip_refl(0, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
  });
}

void sizes(benchmark::internal::Benchmark* benchmark) {
  for (const int64_t bytes : {16, 60, 256, 4096, 8 << 20}) benchmark->Arg(bytes);
}
BENCHMARK(BM_Crc32Bytes)->Apply(sizes);
BENCHMARK(BM_Crc32Units)->Apply(sizes);
BENCHMARK(BM_Crc32Libdeflate)->Apply(sizes);
BENCHMARK(BM_Crc32ISAL)->Apply(sizes);
BENCHMARK(BM_Crc32Zlib)->Apply(sizes);

void BM_SHA1(benchmark::State& state) {
  measure(state, [](const std::string& bytes) {
    isc_sha1_t context;
    uint8_t digest[20];
    isc_sha1_init(&context);
    isc_sha1_update(&context, bytes.data(), bytes.size());
    isc_sha1_final(&context, digest);
    return digest[0];
  });
}
void BM_MD5(benchmark::State& state) {
  measure(state, [](const std::string& bytes) {
    isc_md5_t context;
    uint8_t digest[16];
    isc_md5_init(&context);
    isc_md5_update(&context, bytes.data(), bytes.size());
    isc_md5_final(&context, digest);
    return digest[0];
  });
}
// With the context and the algorithm at hand, which is the fastest way to use it.
void BM_SHA1OpenSSL(benchmark::State& state) {
  EVP_MD* const sha1 = EVP_MD_fetch(nullptr, "SHA1", nullptr);
  EVP_MD_CTX* const context = EVP_MD_CTX_new();
  measure(state, [=](const std::string& bytes) {
    uint8_t digest[20];
    EVP_DigestInit_ex(context, sha1, nullptr);
    EVP_DigestUpdate(context, bytes.data(), bytes.size());
    EVP_DigestFinal_ex(context, digest, nullptr);
    return digest[0];
  });
  EVP_MD_CTX_free(context);
  EVP_MD_free(sha1);
}

BENCHMARK(BM_SHA1)->Arg(60)->Arg(4096);
BENCHMARK(BM_SHA1OpenSSL)->Arg(60)->Arg(4096);
BENCHMARK(BM_MD5)->Arg(60)->Arg(4096);

[[maybe_unused]] const bool kKernelsRegistered = [] {
  for (const auto& kernel : crc32Kernels()) {
    const auto bytes = [run = kernel.run](benchmark::State& state) {
      measure(state, [run](const std::string& text) {
        return run.bytes(0, reinterpret_cast<const uint8_t*>(text.data()), text.size());
      });
    };
    const auto units = [run = kernel.run](benchmark::State& state) {
      measure(state, [run](const std::string& text) {
        return run.units(0, reinterpret_cast<const unichar*>(text.data()), text.size() / sizeof(unichar));
      });
    };
    benchmark::RegisterBenchmark((std::string("Crc32Bytes/") + kernel.name).c_str(), bytes)->Apply(sizes);
    benchmark::RegisterBenchmark((std::string("Crc32Units/") + kernel.name).c_str(), units)->Apply(sizes);
  }
  for (const auto& kernel : sha1Kernels()) {
    const auto blocks = [run = kernel.run](benchmark::State& state) {
      measure(state, [run](const std::string& text) {
        uint32_t words[5] = {};
        run(words, reinterpret_cast<const uint8_t*>(text.data()), text.size() / 64);
        return words[0];
      });
    };
    benchmark::RegisterBenchmark((std::string("SHA1/") + kernel.name).c_str(), blocks)->Arg(4096);
  }
  return true;
}();

}  // namespace
}  // namespace velan
