// Percent escapes beside libcurl and uriparser, which work on bytes, on the same addresses.
#include <benchmark/benchmark.h>
#include <curl/curl.h>
#include <uriparser/Uri.h>

#include <string>

#include "velan/url/PercentEscapes.h"
#include "velan/url/QueryParameters.h"

namespace velan {
namespace {

// Half of it words, the rest signs that are escaped; or Russian.
std::string plainText(size_t length, bool russian = false) {
  std::string text;
  while (text.size() < length)
    text += russian ? "Съешь ещё этих французских булок" : "search results & more? 100% of a/b; ";
  text.resize(length);
  if (russian && length > 0 && (text[length - 1] & 0x40)) text[length - 1] = ' ';
  return text;
}

String escapedText(size_t length, bool russian = false) {
  const String text = String::fromUTF8(plainText(length, russian));
  return russian ? stringByAddingPercentEscapesToURL(text) : stringByAddingStandardPercentEscapesToURL(text);
}

void setBytes(benchmark::State& state) { state.SetBytesProcessed(state.iterations() * state.range(0)); }

void BM_EncodeStandard(benchmark::State& state) {
  const String text = String::fromUTF8(plainText(static_cast<size_t>(state.range(0))));
  for (auto _ : state) benchmark::DoNotOptimize(stringByAddingPercentEscapesToURL(text, true));
  setBytes(state);
}
BENCHMARK(BM_EncodeStandard)->Arg(64)->Arg(65536);

void BM_EncodeUTF8(benchmark::State& state) {
  const String text = String::fromUTF8(plainText(static_cast<size_t>(state.range(0)), state.range(1)));
  for (auto _ : state) benchmark::DoNotOptimize(stringByAddingPercentEscapesToURL(text));
  setBytes(state);
}
BENCHMARK(BM_EncodeUTF8)->ArgsProduct({{64, 65536}, {0, 1}});

void BM_EncodeCurl(benchmark::State& state) {
  const std::string text = plainText(static_cast<size_t>(state.range(0)), state.range(1));
  for (auto _ : state) curl_free(curl_easy_escape(nullptr, text.data(), static_cast<int>(text.size())));
  setBytes(state);
}
BENCHMARK(BM_EncodeCurl)->ArgsProduct({{64, 65536}, {0, 1}});

void BM_EncodeUriparser(benchmark::State& state) {
  const std::string text = plainText(static_cast<size_t>(state.range(0)), state.range(1));
  for (auto _ : state) {
    std::string escaped(3 * text.size() + 1, '\0');
    benchmark::DoNotOptimize(uriEscapeA(text.c_str(), escaped.data(), URI_FALSE, URI_FALSE));
  }
  setBytes(state);
}
BENCHMARK(BM_EncodeUriparser)->ArgsProduct({{64, 65536}, {0, 1}});

void BM_DecodeStandard(benchmark::State& state) {
  const String text = escapedText(static_cast<size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(stringByReplacingStandardPercentEscapesOfURL(text));
  setBytes(state);
}
BENCHMARK(BM_DecodeStandard)->Arg(64)->Arg(65536);

void BM_DecodeUTF8(benchmark::State& state) {
  const String text = escapedText(static_cast<size_t>(state.range(0)), state.range(1));
  for (auto _ : state) benchmark::DoNotOptimize(stringByReplacingPercentEscapesOfURL(text));
  setBytes(state);
}
BENCHMARK(BM_DecodeUTF8)->ArgsProduct({{64, 65536}, {0, 1}});

void BM_DecodeCurl(benchmark::State& state) {
  const std::string text = escapedText(static_cast<size_t>(state.range(0)), state.range(1)).toUTF8();
  for (auto _ : state) {
    int length = 0;
    curl_free(curl_easy_unescape(nullptr, text.data(), static_cast<int>(text.size()), &length));
  }
  setBytes(state);
}
BENCHMARK(BM_DecodeCurl)->ArgsProduct({{64, 65536}, {0, 1}});

void BM_DecodeUriparser(benchmark::State& state) {
  const std::string text = escapedText(static_cast<size_t>(state.range(0)), state.range(1)).toUTF8();
  for (auto _ : state) {
    std::string decoded = text;
    benchmark::DoNotOptimize(uriUnescapeInPlaceA(decoded.data()));
  }
  setBytes(state);
}
BENCHMARK(BM_DecodeUriparser)->ArgsProduct({{64, 65536}, {0, 1}});

}  // namespace
}  // namespace velan
