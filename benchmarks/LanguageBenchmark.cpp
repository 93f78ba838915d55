// The language of a text by its stop words, beside CLD2 as `dominantLanguage` asks it. Rates are in bytes of UTF-16
// text; CLD2 sees the first 4,096 units only, so its rate is that of texts no longer.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <random>
#include <string>

#include "velan/language/DominantLanguage.h"
#include "velan/language/LanguageFilter.h"

namespace {

using velan::LanguageFilter;
using velan::String;

const LanguageFilter& filter() {
  static const auto filter = LanguageFilter::initWithDirectory(String::fromUTF8(VELAN_STOPWORDS_SOURCE), true);
  return *filter;
}

// A third stop words of German, the others made up.
String germanText(int64_t bytes) {
  std::mt19937 random(1);
  const auto& keys = filter().languages();
  const auto stopWords =
      filter().stopWords(static_cast<size_t>(std::find(keys.begin(), keys.end(), u"DE") - keys.begin()));
  std::u16string text;
  while (text.size() < static_cast<size_t>(bytes) / sizeof(char16_t)) {
    if (random() % 3 == 0) {
      text += stopWords[random() % stopWords.size()].view();
    } else {
      for (auto left = 3 + random() % 10; left > 0; --left) text += static_cast<char16_t>(u'a' + random() % 26);
    }
    text += random() % 10 == 0 ? u", " : u" ";
  }
  text.resize(static_cast<size_t>(bytes) / sizeof(char16_t));
  return String(text);
}

void BM_LanguageOfText(benchmark::State& state) {
  const String text = germanText(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(filter().languageOfText(text));
  state.SetBytesProcessed(state.iterations() * state.range(0));
}

void BM_DominantLanguage(benchmark::State& state) {
  const String text = germanText(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(velan::dominantLanguage(text));
  state.SetBytesProcessed(state.iterations() * state.range(0));
}

BENCHMARK(BM_LanguageOfText)->Arg(1 << 10)->Arg(8 << 10)->Arg(8 << 20);
BENCHMARK(BM_DominantLanguage)->Arg(1 << 10)->Arg(8 << 10);

}  // namespace
