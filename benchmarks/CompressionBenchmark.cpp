// Deflating at level 1 and inflating, beside the libraries that do it: text like prose, output of known size for the
// peers.
#include <benchmark/benchmark.h>
#include <isa-l.h>
#include <libdeflate.h>
#include <zlib.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "velan/storage/Compression.h"

namespace velan {
namespace {

// Words of a small vocabulary, the frequent ones more often.
std::string textOf(size_t length) {
  std::mt19937 random(1);
  std::string text;
  while (text.size() < length) {
    const unsigned rank = static_cast<unsigned>(random()) % 3000;
    for (unsigned word = rank * rank / 3000 + 17; word > 0; word /= 9) text += static_cast<char>('a' + word % 9 * 2);
    text += ' ';
  }
  text.resize(length);
  return text;
}

// `run(text)` gives the length of what came out.
template <typename Run>
void measure(benchmark::State& state, bool isStream, Run run) {
  const std::string text = textOf(static_cast<size_t>(state.range(0)));
  const Data stream = dataByDeflatingBytes(text.data(), text.size(), 6);
  const std::string input = isStream ? std::string(stream.view()) : text;
  size_t length = 0;
  for (auto _ : state) benchmark::DoNotOptimize(length = run(input, text.size()));
  if (isStream && length != text.size()) state.SkipWithError("it came out otherwise");
  state.SetBytesProcessed(state.iterations() * state.range(0));
  if (!isStream) state.counters["size"] = static_cast<double>(length) / static_cast<double>(text.size());
}

uint8_t* bytesOf(const std::string& text) { return reinterpret_cast<uint8_t*>(const_cast<char*>(text.data())); }

void BM_Deflate(benchmark::State& state) {
  measure(state, false,
          [](const std::string& text, size_t) { return dataByDeflatingBytes(text.data(), text.size(), 1).length(); });
}
void BM_DeflateZlib(benchmark::State& state) {
  std::vector<uint8_t> output;
  measure(state, false, [&output](const std::string& text, size_t) {
    output.resize(compressBound(text.size()));
    uLongf length = output.size();
    compress2(output.data(), &length, bytesOf(text), text.size(), 1);
    return length;
  });
}
void BM_DeflateLibdeflate(benchmark::State& state) {
  std::vector<uint8_t> output;
  const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> compressor(
      libdeflate_alloc_compressor(1), libdeflate_free_compressor);
  measure(state, false, [&](const std::string& text, size_t) {
    output.resize(libdeflate_zlib_compress_bound(compressor.get(), text.size()));
    return libdeflate_zlib_compress(compressor.get(), text.data(), text.size(), output.data(), output.size());
  });
}
void BM_DeflateISAL(benchmark::State& state) {
  std::vector<uint8_t> output, tables(ISAL_DEF_LVL1_DEFAULT);
  const auto stream = std::make_unique<isal_zstream>();
  measure(state, false, [&](const std::string& text, size_t) {
    output.resize(text.size() * 2 + 1000);
    isal_deflate_init(stream.get());
    stream->level = 1;
    stream->level_buf = tables.data();
    stream->level_buf_size = static_cast<uint32_t>(tables.size());
    stream->gzip_flag = IGZIP_ZLIB;
    stream->end_of_stream = 1;
    stream->next_in = bytesOf(text);
    stream->avail_in = static_cast<uint32_t>(text.size());
    stream->next_out = output.data();
    stream->avail_out = static_cast<uint32_t>(output.size());
    isal_deflate(stream.get());
    return size_t{stream->total_out};
  });
}

void BM_Inflate(benchmark::State& state) {
  measure(state, true, [](const std::string& stream, size_t) {
    return dataByInflatingBytes(stream.data(), stream.size()).length();
  });
}
void BM_InflateZlib(benchmark::State& state) {
  std::vector<uint8_t> output;
  measure(state, true, [&output](const std::string& stream, size_t length) {
    output.resize(length);
    uLongf written = length;
    uncompress(output.data(), &written, bytesOf(stream), stream.size());
    return written;
  });
}
void BM_InflateLibdeflate(benchmark::State& state) {
  std::vector<uint8_t> output;
  const std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)> decompressor(
      libdeflate_alloc_decompressor(), libdeflate_free_decompressor);
  measure(state, true, [&](const std::string& stream, size_t length) {
    output.resize(length);
    size_t written = 0;
    libdeflate_zlib_decompress(decompressor.get(), stream.data(), stream.size(), output.data(), length, &written);
    return written;
  });
}
void BM_InflateISAL(benchmark::State& state) {
  std::vector<uint8_t> output;
  const auto inflating = std::make_unique<inflate_state>();
  measure(state, true, [&](const std::string& stream, size_t length) {
    output.resize(length);
    isal_inflate_init(inflating.get());
    inflating->crc_flag = IGZIP_ZLIB;
    inflating->next_in = bytesOf(stream);
    inflating->avail_in = static_cast<uint32_t>(stream.size());
    inflating->next_out = output.data();
    inflating->avail_out = static_cast<uint32_t>(length);
    isal_inflate(inflating.get());
    return size_t{inflating->total_out};
  });
}

#define SIZES Arg(1 << 10)->Arg(4 << 10)->Arg(64 << 10)->Arg(8 << 20)
BENCHMARK(BM_Deflate)->SIZES;
BENCHMARK(BM_DeflateZlib)->SIZES;
BENCHMARK(BM_DeflateLibdeflate)->SIZES;
BENCHMARK(BM_DeflateISAL)->SIZES;
BENCHMARK(BM_Inflate)->SIZES;
BENCHMARK(BM_InflateZlib)->SIZES;
BENCHMARK(BM_InflateLibdeflate)->SIZES;
BENCHMARK(BM_InflateISAL)->SIZES;

}  // namespace
}  // namespace velan
