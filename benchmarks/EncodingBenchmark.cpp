// UTF-8 to UTF-16 and back, beside ICU and the C library's iconv. Bytes are those of the UTF-8 form.
#include <benchmark/benchmark.h>
#include <iconv.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <bit>
#include <string>
#include <vector>

#include "velan/base/utf/UTF.h"
#include "velan/base/utf/UTFKernelsInternal.h"
#include "velan/text/encoding/StringConversion.h"

namespace velan {
namespace {

constexpr const char* kTexts[] = {
    "The quick brown fox jumps over the lazy dog near the old harbour, where \"light\" means more than one thing. ",
    ("Größere Städte wie München, Köln oder Düsseldorf haben für Fußgänger schöne Plätze übrig, müssen aber auch "
     "bauen. "),
    "Съешь же ещё этих мягких французских булок, да выпей чаю; в чащах юга жил бы цитрус? Да, но фальшивый экземпляр! ",
    "天地玄黃，宇宙洪荒。日月盈昃，辰宿列張。寒來暑往，秋收冬藏。閏餘成歲，律呂調陽。雲騰致雨，露結為霜。",
    "English, Größe, Съешь ещё, 天地玄黃, 日本語のテキスト, 한국어, عربى, 😀👍 and plain text again. ",
};
constexpr const char* kNames[] = {"English", "German", "Russian", "Chinese", "mixed"};

// Whole repetitions only, so that no character is cut.
std::string textOf(benchmark::State& state) {
  const std::string piece = kTexts[state.range(0)];
  std::string text;
  while (text.size() + piece.size() <= static_cast<size_t>(state.range(1)) + piece.size() / 2) text += piece;
  state.SetLabel(kNames[state.range(0)]);
  return text;
}

void everyText(benchmark::internal::Benchmark* benchmark) {
  for (int text = 0; text < 5; ++text) {
    for (const int64_t size : {1 << 10, 64 << 10, 8 << 20}) benchmark->Args({text, size});
  }
}

template <typename Work>
void measure(benchmark::State& state, size_t bytes, Work work) {
  for (auto _ : state) {
    work();
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(bytes));
}

void BM_ToUTF16(benchmark::State& state, const Kernel<UTFTranscoding>* kernel) {
  const std::string text = textOf(state);
  std::vector<unichar> units(text.size());
  measure(state, text.size(),
          [&] { kernel->run.toUTF16(reinterpret_cast<const uint8_t*>(text.data()), text.size(), units.data()); });
}

void BM_ToUTF16ICU(benchmark::State& state) {
  const std::string text = textOf(state);
  std::vector<unichar> units(text.size() + 1);
  measure(state, text.size(), [&] {
    UErrorCode error = U_ZERO_ERROR;
    int32_t length = 0;
    u_strFromUTF8(units.data(), static_cast<int32_t>(units.size()), &length, text.data(),
                  static_cast<int32_t>(text.size()), &error);
  });
}

void BM_ToUTF8(benchmark::State& state, const Kernel<UTFTranscoding>* kernel) {
  const std::string text = textOf(state);
  const String utf16 = String::fromUTF8(text);
  std::vector<char> bytes(kMaxUTF8BytesPerUnit * utf16.view().size());
  measure(state, text.size(), [&] { kernel->run.toUTF8(utf16.characters(), utf16.view().size(), bytes.data()); });
}

void BM_ToUTF8ICU(benchmark::State& state) {
  const std::string text = textOf(state);
  const String utf16 = String::fromUTF8(text);
  std::vector<char> bytes(kMaxUTF8BytesPerUnit * utf16.view().size() + 1);
  measure(state, text.size(), [&] {
    UErrorCode error = U_ZERO_ERROR;
    int32_t length = 0;
    u_strToUTF8(bytes.data(), static_cast<int32_t>(bytes.size()), &length, utf16.characters(),
                static_cast<int32_t>(utf16.length()), &error);
  });
}

constexpr const char* kNative = std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE";

void convertWithIconv(benchmark::State& state, const char* to, const char* from, std::string in, size_t bytes) {
  std::vector<char> out(3 * in.size());
  const iconv_t converter = iconv_open(to, from);
  measure(state, bytes, [&] {
    char* source = in.data();
    size_t left = in.size();
    char* target = out.data();
    size_t room = out.size();
    iconv(converter, &source, &left, &target, &room);
  });
  iconv_close(converter);
}

void BM_ToUTF16Iconv(benchmark::State& state) {
  const std::string text = textOf(state);
  convertWithIconv(state, kNative, "UTF-8", text, text.size());
}

void BM_ToUTF8Iconv(benchmark::State& state) {
  const std::string text = textOf(state);
  const String utf16 = String::fromUTF8(text);
  const std::string units(reinterpret_cast<const char*>(utf16.characters()), utf16.view().size() * sizeof(unichar));
  convertWithIconv(state, "UTF-8", kNative, units, text.size());
}

// What memory allows: the UTF-16 form copied.
void BM_Copy(benchmark::State& state) {
  const std::string text = textOf(state);
  const String utf16 = String::fromUTF8(text);
  std::vector<unichar> copy(utf16.view().size());
  measure(state, text.size(), [&] { std::copy_n(utf16.characters(), copy.size(), copy.data()); });
}

void BM_UTF8FromUTF16(benchmark::State& state) {
  const std::string text = textOf(state);
  const String utf16 = String::fromUTF8(text);
  measure(state, text.size(), [&] { benchmark::DoNotOptimize(utf8FromUTF16(utf16.view())); });
}

// Single-byte and double-byte reading and writing through the table of encodings.
void BM_Legacy(benchmark::State& state, StringEncoding encoding, int text, bool reading) {
  std::string piece;
  while (piece.size() < 64 << 10) piece += kTexts[text];
  const String string = String::fromUTF8(piece);
  const Data data = dataUsingEncoding(string.view(), encoding);
  measure(state, data.length(), [&] {
    if (reading) {
      benchmark::DoNotOptimize(stringWithData(data, encoding));
    } else {
      benchmark::DoNotOptimize(dataUsingEncoding(string.view(), encoding));
    }
  });
}

BENCHMARK(BM_Copy)->Apply(everyText);
BENCHMARK(BM_UTF8FromUTF16)->Apply(everyText);
BENCHMARK(BM_ToUTF16ICU)->Apply(everyText);
BENCHMARK(BM_ToUTF16Iconv)->Apply(everyText);
BENCHMARK(BM_ToUTF8ICU)->Apply(everyText);
BENCHMARK(BM_ToUTF8Iconv)->Apply(everyText);
BENCHMARK_CAPTURE(BM_Legacy, read_windows_1252, StringEncoding::WindowsLatin1, 1, true);
BENCHMARK_CAPTURE(BM_Legacy, write_windows_1252, StringEncoding::WindowsLatin1, 1, false);
BENCHMARK_CAPTURE(BM_Legacy, read_gb18030, stringEncoding(TextEncoding::GB18030), 3, true);
BENCHMARK_CAPTURE(BM_Legacy, write_gb18030, stringEncoding(TextEncoding::GB18030), 3, false);

// Every kernel of this processor.
[[maybe_unused]] const bool registered = [] {
  for (const auto& kernel : utfKernels()) {
    const std::string name = kernel.name;
    benchmark::RegisterBenchmark(("BM_ToUTF16/" + name).c_str(), BM_ToUTF16, &kernel)->Apply(everyText);
    benchmark::RegisterBenchmark(("BM_ToUTF8/" + name).c_str(), BM_ToUTF8, &kernel)->Apply(everyText);
  }
  return true;
}();

}  // namespace
}  // namespace velan
