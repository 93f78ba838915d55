// Tables, comparison and containment beside ICU, the C++ library and the C library on the same text.
#include <benchmark/benchmark.h>
#include <sys/wait.h>
#include <unicode/usearch.h>
#include <unicode/ustring.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <random>
#include <string>

#include "velan/text/CharacterSets.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/Separators.h"
#include "velan/text/comparison/Comparison.h"
#include "velan/text/search/Containment.h"

namespace velan {
namespace {

// Each iteration is a new process, so that tables, pages and ICU's data are as cold as at a program's start.
void BM_ColdTablesAndSets(benchmark::State& state) {
  for (auto _ : state) {
    int ends[2];
    if (pipe(ends) != 0) return state.SkipWithError("no pipe");
    const pid_t child = fork();
    if (child == 0) {
      const auto start = std::chrono::steady_clock::now();
      initSeparatorsAndTables();
      initLowerUmlautsCharsTable();
      benchmark::DoNotOptimize(alphaCharacterSetRep());
      const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
      _exit(write(ends[1], &seconds, sizeof seconds) == sizeof seconds ? 0 : 1);
    }
    double seconds = 0;
    if (child < 0 || read(ends[0], &seconds, sizeof seconds) != sizeof seconds) state.SkipWithError("no child");
    waitpid(child, nullptr, 0);
    close(ends[0]);
    close(ends[1]);
    state.SetIterationTime(seconds);
  }
}
BENCHMARK(BM_ColdTablesAndSets)->UseManualTime()->Iterations(50)->Unit(benchmark::kMillisecond);

// Words of four scripts in ordinary proportions; nothing in it equals the needle.
std::u16string mixedText(size_t length) {
  static const std::u16string_view words[] = {u"the",      u"Velan",  u"of",       u"a",      u"straße",    u"Äpfel",
                                              u"документ", u"Σοφία",  u"2026",     u"and,",   u"searching", u"in",
                                              u"text.",    u"日本語", u"contract", u"needle", u"Archive",   u"to"};
  std::mt19937 random(1);
  std::u16string text;
  while (text.size() < length) (text += words[random() % std::size(words)]) += u' ';
  text.resize(length);
  return text;
}

std::u16string otherCase(std::u16string text) {
  for (unichar& c : text) c = toUpper(c) != c ? toUpper(c) : toLower(c);
  return text;
}

struct Texts {
  explicit Texts(const benchmark::State& state) : a(mixedText(static_cast<size_t>(state.range(0)) / 2)), b(a) {}
  std::u16string a, b;
};

void setBytes(benchmark::State& state) { state.SetBytesProcessed(state.iterations() * state.range(0)); }

const std::u16string kNeedle = u"contract needles";

void BM_CompareExact(benchmark::State& state) {
  const Texts t(state);
  for (auto _ : state) {
    benchmark::DoNotOptimize(fastCompareUnichars(t.a.data(), t.a.size(), t.b.data(), t.b.size()));
  }
  setBytes(state);
}
void BM_CompareExact_Memcmp(benchmark::State& state) {
  const Texts t(state);
  for (auto _ : state) {
    benchmark::DoNotOptimize(std::memcmp(t.a.data(), t.b.data(), t.a.size() * 2));
    benchmark::ClobberMemory();
  }
  setBytes(state);
}
void BM_CompareExact_StringView(benchmark::State& state) {
  const Texts t(state);
  for (auto _ : state) benchmark::DoNotOptimize(std::u16string_view(t.a).compare(t.b));
  setBytes(state);
}
void BM_CompareExact_IcuStrCompare(benchmark::State& state) {
  const Texts t(state);
  const auto length = static_cast<int32_t>(t.a.size());
  for (auto _ : state) benchmark::DoNotOptimize(u_strCompare(t.a.data(), length, t.b.data(), length, false));
  setBytes(state);
}

void BM_CompareNoCase(benchmark::State& state) {
  Texts t(state);
  if (state.range(1)) t.b = otherCase(t.a);
  for (auto _ : state) {
    benchmark::DoNotOptimize(fastCaseInsensitiveCompareUnichars(t.a.data(), t.a.size(), t.b.data(), t.b.size()));
  }
  setBytes(state);
}
void BM_CompareNoCase_IcuStrCaseCompare(benchmark::State& state) {
  Texts t(state);
  if (state.range(1)) t.b = otherCase(t.a);
  const auto length = static_cast<int32_t>(t.a.size());
  UErrorCode error = U_ZERO_ERROR;
  for (auto _ : state) {
    benchmark::DoNotOptimize(u_strCaseCompare(t.a.data(), length, t.b.data(), length, U_FOLD_CASE_DEFAULT, &error));
  }
  setBytes(state);
}

void BM_ContainsExact(benchmark::State& state) {
  const Texts t(state);
  for (auto _ : state) {
    benchmark::DoNotOptimize(fastContainsUnichars(t.a.data(), t.a.size(), kNeedle.data(), kNeedle.size()));
  }
  setBytes(state);
}
void BM_ContainsExact_StringView(benchmark::State& state) {
  const Texts t(state);
  for (auto _ : state) benchmark::DoNotOptimize(std::u16string_view(t.a).find(kNeedle));
  setBytes(state);
}
void BM_ContainsExact_Memmem(benchmark::State& state) {
  const Texts t(state);
  for (auto _ : state) {
    benchmark::DoNotOptimize(memmem(t.a.data(), t.a.size() * 2, kNeedle.data(), kNeedle.size() * 2));
    benchmark::ClobberMemory();
  }
  setBytes(state);
}
void BM_ContainsExact_IcuStrFindFirst(benchmark::State& state) {
  const Texts t(state);
  for (auto _ : state) {
    benchmark::DoNotOptimize(u_strFindFirst(t.a.data(), static_cast<int32_t>(t.a.size()), kNeedle.data(),
                                            static_cast<int32_t>(kNeedle.size())));
  }
  setBytes(state);
}

void BM_ContainsNoCase(benchmark::State& state) {
  const Texts t(state);
  const std::u16string needle = otherCase(kNeedle);
  for (auto _ : state) {
    benchmark::DoNotOptimize(fastCaseInsensitiveContainsUnichars(t.a.data(), t.a.size(), needle.data(), needle.size()));
  }
  setBytes(state);
}
// ICU searches by collation only: the strength that ignores case, its closest to ours.
void BM_ContainsNoCase_IcuSearch(benchmark::State& state) {
  const Texts t(state);
  const std::u16string needle = otherCase(kNeedle);
  UErrorCode error = U_ZERO_ERROR;
  UStringSearch* search = usearch_open(needle.data(), static_cast<int32_t>(needle.size()), t.a.data(),
                                       static_cast<int32_t>(t.a.size()), "", nullptr, &error);
  ucol_setStrength(usearch_getCollator(search), UCOL_SECONDARY);
  usearch_reset(search);
  for (auto _ : state) benchmark::DoNotOptimize(usearch_first(search, &error));
  usearch_close(search);
  setBytes(state);
}

void sizes(benchmark::internal::Benchmark* b) {
  for (const int64_t bytes : {1 << 10, 64 << 10, 8 << 20}) b->Arg(bytes);
}
// The second argument: 0 for the same text, 1 for the same in the other case.
void sizesAndCase(benchmark::internal::Benchmark* b) {
  for (const int64_t bytes : {1 << 10, 64 << 10, 8 << 20}) b->Args({bytes, 0})->Args({bytes, 1});
}

BENCHMARK(BM_CompareExact)->Apply(sizes);
BENCHMARK(BM_CompareExact_Memcmp)->Apply(sizes);
BENCHMARK(BM_CompareExact_StringView)->Apply(sizes);
BENCHMARK(BM_CompareExact_IcuStrCompare)->Apply(sizes);
BENCHMARK(BM_CompareNoCase)->Apply(sizesAndCase);
BENCHMARK(BM_CompareNoCase_IcuStrCaseCompare)->Apply(sizesAndCase);
BENCHMARK(BM_ContainsExact)->Apply(sizes);
BENCHMARK(BM_ContainsExact_StringView)->Apply(sizes);
BENCHMARK(BM_ContainsExact_Memmem)->Apply(sizes);
BENCHMARK(BM_ContainsExact_IcuStrFindFirst)->Apply(sizes);
BENCHMARK(BM_ContainsNoCase)->Apply(sizes);
BENCHMARK(BM_ContainsNoCase_IcuSearch)->Apply(sizes);

}  // namespace
}  // namespace velan
