// Indexing a text's words, beside ICU's word iterator and a plain loop over the same separators. Rates are in bytes of
// UTF-16 text.
#include <benchmark/benchmark.h>
#include <unicode/ubrk.h>

#include <random>
#include <string>

#include "velan/query/words/FastWordEnumerator.h"
#include "velan/query/words/WordIndexInternal.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/Separators.h"

namespace {

using velan::FastWordEnumerator;
using velan::String;

// Words of 1 to 12 letters with punctuation, some umlauts and Cyrillic words unless `onlyASCII`: `bytes` of UTF-16.
String textOfWords(int64_t bytes, bool onlyASCII) {
  std::mt19937 random(1);
  std::u16string text;
  const auto units = static_cast<size_t>(bytes) / sizeof(char16_t);
  while (text.size() < units) {
    const bool cyrillic = !onlyASCII && random() % 16 == 0;
    for (auto left = 1 + random() % 12; left > 0; --left) {
      const auto letter = random() % 26;
      const bool umlaut = !onlyASCII && random() % 40 == 0;
      text += static_cast<char16_t>(cyrillic ? 0x430 + letter : umlaut ? 0xE4 : u'a' + letter);
    }
    text += random() % 10 == 0 ? u", " : u" ";
  }
  text.resize(units);
  return String(text);
}

String mixedText(int64_t bytes) { return textOfWords(bytes, false); }

void finish(benchmark::State& state) { state.SetBytesProcessed(state.iterations() * state.range(0)); }

void BM_Index(benchmark::State& state, bool caseInsensitive, bool onlyASCII) {
  const String text = textOfWords(state.range(0), onlyASCII);
  for (auto _ : state) {
    const auto enumerator = FastWordEnumerator::enumeratorWithString(text, caseInsensitive, false);
    benchmark::DoNotOptimize(enumerator->numberOfWords());
  }
  finish(state);
}

// The index kept and used again, as for many short texts.
void BM_IndexAgain(benchmark::State& state) {
  const String text = mixedText(state.range(0));
  const auto enumerator = FastWordEnumerator::enumeratorWithString(text);
  for (auto _ : state) {
    benchmark::DoNotOptimize(enumerator->setCharacters(text.characters(), text.length(), false));
  }
  finish(state);
}

// What one would write without thinking: the same bits, a branch per unit.
void BM_PlainLoop(benchmark::State& state) {
  const String text = mixedText(state.range(0));
  const uint8_t* const separators = velan::defaultWordSeparators();
  for (auto _ : state) {
    std::string types(static_cast<size_t>(text.length()), '\0');
    int64_t words = 0;
    bool inWord = false;
    for (int64_t i = 0; i < text.length(); ++i) {
      const bool separator = velan::isMemberOfCharacterSetRep(separators, text[i]);
      if (separator) types[static_cast<size_t>(i)] = 1;
      if (inWord && separator) types[static_cast<size_t>(i - 1)] |= 4;
      if (!inWord && !separator) {
        types[static_cast<size_t>(i)] |= 2;
        ++words;
      }
      inWord = !separator;
    }
    if (inWord) types.back() |= 4;
    benchmark::DoNotOptimize(types.data());
    benchmark::DoNotOptimize(words);
  }
  finish(state);
}

void BM_ICUWordIterator(benchmark::State& state) {
  const String text = mixedText(state.range(0));
  UErrorCode error = U_ZERO_ERROR;
  UBreakIterator* breaks = ubrk_open(UBRK_WORD, "", nullptr, 0, &error);
  for (auto _ : state) {
    ubrk_setText(breaks, text.characters(), static_cast<int32_t>(text.length()), &error);
    int64_t words = 0;
    while (ubrk_next(breaks) != UBRK_DONE) words += ubrk_getRuleStatus(breaks) >= UBRK_WORD_NONE_LIMIT;
    benchmark::DoNotOptimize(words);
  }
  ubrk_close(breaks);
  finish(state);
}

// Walking over an index that is there.
void BM_WalkWords(benchmark::State& state) {
  const String text = mixedText(state.range(0));
  const auto enumerator = FastWordEnumerator::enumeratorWithString(text);
  for (auto _ : state) {
    int64_t units = 0;
    enumerator->enumerateWordsInRange({0, text.length()}, [&](const FastWordEnumerator&, int64_t, int64_t length) {
      units += length;
      return false;
    });
    benchmark::DoNotOptimize(units);
  }
  finish(state);
}

void BM_SplitJapanese(benchmark::State& state) {
  std::u16string text;
  while (text.size() * sizeof(char16_t) < static_cast<size_t>(state.range(0)))
    text += u"吾輩は猫である。名前はまだ無い。";
  text.resize(static_cast<size_t>(state.range(0)) / sizeof(char16_t));
  const String japanese(text);
  for (auto _ : state) {
    benchmark::DoNotOptimize(FastWordEnumerator::enumeratorSplittingAsianWords(japanese)->numberOfWords());
  }
  finish(state);
}

void sizes(benchmark::internal::Benchmark* benchmark) {
  for (const int64_t bytes : {1 << 10, 64 << 10, 8 << 20}) benchmark->Arg(bytes);
}

BENCHMARK_CAPTURE(BM_Index, CaseSensitive, false, false)->Apply(sizes);
BENCHMARK_CAPTURE(BM_Index, CaseInsensitive, true, false)->Apply(sizes);
BENCHMARK_CAPTURE(BM_Index, CaseSensitiveASCII, false, true)->Apply(sizes);
BENCHMARK_CAPTURE(BM_Index, CaseInsensitiveASCII, true, true)->Apply(sizes);
BENCHMARK(BM_IndexAgain)->Apply(sizes);
BENCHMARK(BM_PlainLoop)->Apply(sizes);
BENCHMARK(BM_ICUWordIterator)->Apply(sizes);
BENCHMARK(BM_WalkWords)->Apply(sizes);
BENCHMARK(BM_SplitJapanese)->Arg(64 << 10);

// Each kernel alone, on text that stays in the cache.
[[maybe_unused]] const bool kKernelsRegistered = [] {
  for (const auto& kernel : velan::wordIndexKernels()) {
    for (const bool onlyASCII : {false, true}) {
      const std::string name = std::string("MarkSeparators/") + kernel.name + (onlyASCII ? "/ASCII" : "/Mixed");
      benchmark::RegisterBenchmark(name.c_str(), [run = kernel.run.mark, onlyASCII](benchmark::State& state) {
        const String text = textOfWords(state.range(0), onlyASCII);
        std::string marks(static_cast<size_t>(text.length()), '\0');
        for (auto _ : state) {
          run(text.characters(), marks.size(), velan::defaultWordSeparators(),
              reinterpret_cast<uint8_t*>(marks.data()));
          benchmark::DoNotOptimize(marks.data());
        }
        finish(state);
      })->Arg(64 << 10);
    }
  }
  return true;
}();

}  // namespace
