// Queries over eight megabytes of text, beside regular expressions that ask the same of the same text.
#include <benchmark/benchmark.h>
#include <re2/re2.h>

#include <random>
#include <string>

#include "velan/query/QueryMatching.h"
#include "velan/query/words/FastWordEnumerator.h"

namespace velan {
namespace {

// Words of a made-up language with a natural spread of frequencies; the rare ones stand near the end.
const String& longText() {
  static const String text = [] {
    std::mt19937 random(1);
    std::geometric_distribution<unsigned> choose(0.002);
    std::string utf8;
    constexpr size_t kLength = (8u << 20) / 2;  // in units: eight megabytes of UTF-16
    while (utf8.size() < kLength) {
      unsigned number = choose(random) + 1;
      for (; number > 0; number /= 7) utf8 += "aeioruts"[number % 7], utf8 += "nlmdbkp"[number % 5];
      utf8 += random() % 12 == 0 ? ". " : " ";
    }
    utf8 += "lighthouse stood beyond the harbour and its keeper was never seen again";
    return String::fromUTF8(utf8);
  }();
  return text;
}

constexpr const char* kBoolean = "lighthouse AND keeper AND NOT submarine";
constexpr const char* kNear = "lighthouse NEAR/10 keeper";

void run(benchmark::State& state, const char* query, bool indexed) {
  const auto terms = QueryTerms::queryTermsWithWildcard(String::fromUTF8(query));
  const String& text = longText();
  auto words = FastWordEnumerator::enumeratorWithString(text, true, false);
  for (auto _ : state) {
    if (!indexed) words = FastWordEnumerator::enumeratorWithString(text, true, false);
    const bool matches = matchesString(*words, *terms, nullptr, QueryOperator::Mixed, 0, 0, text.length(),
                                       QueryComparison::IgnoreCase, true);
    if (!matches) state.SkipWithError("no match");
  }
  state.SetBytesProcessed(state.iterations() * text.length() * 2);
}

void BM_Boolean(benchmark::State& state) { run(state, kBoolean, false); }
void BM_BooleanOnIndexedText(benchmark::State& state) { run(state, kBoolean, true); }
void BM_Near(benchmark::State& state) { run(state, kNear, false); }
void BM_NearOnIndexedText(benchmark::State& state) { run(state, kNear, true); }

// RE2 reads UTF-8: half the bytes. The rate counts the UTF-16 form, so that both are of the same text.
void runRE2(benchmark::State& state, std::initializer_list<const char*> present, const char* absent) {
  const std::string text = longText().toUTF8();
  std::vector<std::unique_ptr<RE2>> patterns;
  for (const char* pattern : present) patterns.push_back(std::make_unique<RE2>(pattern));
  const RE2 missing(absent);
  for (auto _ : state) {
    bool matches = !RE2::PartialMatch(text, missing);
    for (const auto& pattern : patterns) matches = matches && RE2::PartialMatch(text, *pattern);
    if (!matches) state.SkipWithError("no match");
  }
  state.SetBytesProcessed(state.iterations() * longText().length() * 2);
}

void BM_BooleanRE2(benchmark::State& state) {
  runRE2(state, {"(?i)\\blighthouse\\b", "(?i)\\bkeeper\\b"}, "(?i)\\bsubmarine\\b");
}
void BM_NearRE2(benchmark::State& state) {
  runRE2(state, {"(?i)\\blighthouse\\b(?:\\W+\\w+){0,9}\\W+keeper\\b|\\bkeeper\\b(?:\\W+\\w+){0,9}\\W+lighthouse\\b"},
         "\\bsubmarine\\b\\bnever\\b");
}

void BM_ParseTenTerms(benchmark::State& state) {
  const String query =
      u"alpha NEAR/3 beta AND (gamma OR \"delta epsilon\") AND NOT zeta eta* XOR theta [ij]ota kappa NEXT lambda"_s;
  for (auto _ : state) benchmark::DoNotOptimize(QueryTerms::queryTermsWithWildcard(query));
}

BENCHMARK(BM_Boolean)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BooleanOnIndexedText)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BooleanRE2)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Near)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_NearOnIndexedText)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_NearRE2)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ParseTenTerms);

}  // namespace
}  // namespace velan
