// UTF-8 to UTF-16 and back, beside ICU and the C library's iconv, with every kernel of this processor. Bytes are those
// of the input.
#include <benchmark/benchmark.h>
#include <iconv.h>
#include <unicode/ustring.h>

#include <bit>
#include <string>
#include <vector>

#include "velan/base/utf/UTF.h"
#include "velan/base/utf/UTFKernelsInternal.h"
#include "velan/text/encoding/StringConversion.h"

namespace velan {
namespace {

struct Sample {
  const char* name;
  const char* piece;
};
constexpr Sample kSamples[] = {
    {"english",
     "The quick brown fox jumps over the lazy dog near the old harbour, where \"light\" means more than one thing. "},
    {"german",
     "Größere Städte wie München, Köln oder Düsseldorf haben für Fußgänger schöne Plätze übrig, müssen aber auch "
     "bauen. "},
    {"russian",
     "Съешь же ещё этих мягких французских булок, да выпей чаю; в чащах юга жил бы цитрус? Да, но фальшивый "
     "экземпляр! "},
    {"chinese", "天地玄黃，宇宙洪荒。日月盈昃，辰宿列張。寒來暑往，秋收冬藏。閏餘成歲，律呂調陽。雲騰致雨，露結為霜。"},
    {"mixed", "English, Größe, Съешь ещё, 天地玄黃, 日本語のテキスト, 한국어, عربى, 😀👍 and plain text again. "},
};

// Whole repetitions only, so that no character is cut.
std::string textOf(const Sample& sample, size_t size) {
  const std::string piece = sample.piece;
  std::string text;
  while (text.size() + piece.size() <= size + piece.size() / 2) text += piece;
  return text;
}

template <typename Work>
void measure(benchmark::State& state, size_t bytes, Work work) {
  for (auto _ : state) {
    work();
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(bytes));
}

constexpr const char* kNative = std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE";

void convertWithIconv(benchmark::State& state, const char* to, const char* from, std::string in) {
  std::vector<char> out(3 * in.size());
  const iconv_t converter = iconv_open(to, from);
  measure(state, in.size(), [&] {
    char* source = in.data();
    size_t left = in.size();
    char* target = out.data();
    size_t room = out.size();
    iconv(converter, &source, &left, &target, &room);
  });
  iconv_close(converter);
}

// Registers OPERATION/PEER/TEXT/SIZE for one of the texts.
class Registrar {
 public:
  Registrar(const Sample& sample, size_t size)
      : _input(std::string("/") + sample.name + "/" + std::to_string(size)),
        _utf8(textOf(sample, size)),
        _utf16(String::fromUTF8(_utf8)) {}

  void toUTF16() const {
    add("to_utf16/icu", [text = _utf8](benchmark::State& state) {
      std::vector<unichar> units(text.size() + 1);
      measure(state, text.size(), [&] {
        UErrorCode error = U_ZERO_ERROR;
        u_strFromUTF8(units.data(), static_cast<int32_t>(units.size()), nullptr, text.data(),
                      static_cast<int32_t>(text.size()), &error);
      });
    });
    add("to_utf16/iconv", [text = _utf8](benchmark::State& state) { convertWithIconv(state, kNative, "UTF-8", text); });
    forEachKernel("to_utf16/", [text = _utf8](benchmark::State& state, const UTFTranscoding& kernel) {
      std::vector<unichar> units(text.size());
      measure(state, text.size(),
              [&] { kernel.toUTF16(reinterpret_cast<const uint8_t*>(text.data()), text.size(), units.data()); });
    });
  }

  void toUTF8() const {
    const size_t bytes = _utf16.view().size() * sizeof(unichar);
    add("to_utf8/icu", [text = _utf16, bytes](benchmark::State& state) {
      std::vector<char> out(kMaxUTF8BytesPerUnit * text.view().size() + 1);
      measure(state, bytes, [&] {
        UErrorCode error = U_ZERO_ERROR;
        u_strToUTF8(out.data(), static_cast<int32_t>(out.size()), nullptr, text.characters(),
                    static_cast<int32_t>(text.length()), &error);
      });
    });
    add("to_utf8/iconv", [text = _utf16, bytes](benchmark::State& state) {
      convertWithIconv(state, "UTF-8", kNative, std::string(reinterpret_cast<const char*>(text.characters()), bytes));
    });
    add("to_utf8/string", [text = _utf16, bytes](benchmark::State& state) {
      measure(state, bytes, [&] { benchmark::DoNotOptimize(utf8FromUTF16(text.view())); });
    });
    forEachKernel("to_utf8/", [text = _utf16, bytes](benchmark::State& state, const UTFTranscoding& kernel) {
      std::vector<char> out(kMaxUTF8BytesPerUnit * text.view().size());
      measure(state, bytes, [&] { kernel.toUTF8(text.characters(), text.view().size(), out.data()); });
    });
  }

 private:
  template <typename Work>
  void add(const std::string& name, Work work) const {
    benchmark::RegisterBenchmark((name + _input).c_str(), work);
  }
  // The best once more as "velan".
  template <typename Work>
  void forEachKernel(const std::string& operation, Work work) const {
    for (const auto& kernel : utfKernels()) {
      add(operation + kernel.name, [work, run = kernel.run](benchmark::State& state) { work(state, run); });
    }
    add(operation + "velan", [work](benchmark::State& state) { work(state, utfKernels().best()); });
  }

  std::string _input;
  std::string _utf8;
  String _utf16;
};

// Single-byte and double-byte reading and writing through the table of encodings.
void BM_Legacy(benchmark::State& state, StringEncoding encoding, int text, bool reading) {
  std::string piece;
  while (piece.size() < 64 << 10) piece += kSamples[text].piece;
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

BENCHMARK_CAPTURE(BM_Legacy, read_windows_1252, StringEncoding::WindowsLatin1, 1, true);
BENCHMARK_CAPTURE(BM_Legacy, write_windows_1252, StringEncoding::WindowsLatin1, 1, false);
BENCHMARK_CAPTURE(BM_Legacy, read_gb18030, stringEncoding(TextEncoding::GB18030), 3, true);
BENCHMARK_CAPTURE(BM_Legacy, write_gb18030, stringEncoding(TextEncoding::GB18030), 3, false);

[[maybe_unused]] const bool registered = [] {
  for (const Sample& sample : kSamples) {
    for (const size_t size : {size_t{1} << 10, size_t{64} << 10, size_t{8} << 20}) {
      const Registrar registrar(sample, size);
      registrar.toUTF16();
      registrar.toUTF8();
    }
  }
  return true;
}();

}  // namespace
}  // namespace velan
