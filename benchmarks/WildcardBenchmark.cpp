// Filtering 100,000 words with a pattern, beside RE2 (on UTF-8) and PCRE2 (UTF-16, compiled by its JIT) with the
// regular expression that means the same. All patterns and expressions are prepared once, outside of the loop.
#define PCRE2_CODE_UNIT_WIDTH 16
#include <benchmark/benchmark.h>
#include <pcre2.h>
#include <re2/re2.h>

#include <random>
#include <string>
#include <vector>

#include "velan/base/String.h"
#include "velan/wildcard/WildcardMatching.h"

namespace velan {
namespace {

struct Case {
  const char* name;
  std::u16string pattern;
  std::string expression;
};
const Case kCases[] = {
    {"prefix", u"con*", "con.*"},
    {"infix", u"*tra*", ".*tra.*"},
    {"suffix", u"*tion", ".*tion"},
    {"set", u"[a-c]o[mn]*", "[a-c]o[mn].*"},
    {"mixed", u"*[aeiou]?t*on*", ".*[aeiou].t.*on.*"},
};

struct Words {
  std::vector<std::u16string> utf16;
  std::vector<std::string> utf8;
};

const Words& words() {
  static const Words made = [] {
    const std::string_view syllables[] = {"con",  "tra", "ct",  "tion", "a",   "e",   "men", "t",
                                          "over", "in",  "ver", "si",   "on",  "b",   "co",  "m",
                                          "pu",   "ter", "s",   "qu",   "est", "ing", "ed",  "un"};
    std::mt19937 random(1);
    Words result;
    for (int i = 0; i < 100000; ++i) {
      std::string word;
      for (size_t count = 2 + random() % 4; count > 0; --count) word += syllables[random() % std::size(syllables)];
      result.utf16.emplace_back(word.begin(), word.end());
      result.utf8.push_back(word);
    }
    return result;
  }();
  return made;
}

template <typename Matches>
void filter(benchmark::State& state, const Case& c, const auto& list, Matches matches) {
  int64_t found = 0;
  for (auto _ : state) {
    found = 0;
    for (const auto& word : list) found += matches(word);
    benchmark::DoNotOptimize(found);
  }
  state.SetLabel(c.name);
  state.counters["found"] = static_cast<double>(found);
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(list.size()));
}

void BM_Filter(benchmark::State& state) {
  const Case& c = kCases[state.range(0)];
  const unichar* pattern = c.pattern.data();
  const unichar* end = pattern + c.pattern.size();
  filter(state, c, words().utf16, [=](const std::u16string& word) {
    return stringMatchesUnixWildcard(word.data(), word.data() + word.size(), pattern, end);
  });
}

void BM_Filter_RE2(benchmark::State& state) {
  const Case& c = kCases[state.range(0)];
  const re2::RE2 expression(c.expression);
  filter(state, c, words().utf8, [&](const std::string& word) { return re2::RE2::FullMatch(word, expression); });
}

void BM_Filter_PCRE2(benchmark::State& state) {
  const Case& c = kCases[state.range(0)];
  const std::u16string expression(c.expression.begin(), c.expression.end());
  int error = 0;
  PCRE2_SIZE offset = 0;
  pcre2_code* code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(expression.data()), expression.size(),
                                   PCRE2_ANCHORED | PCRE2_ENDANCHORED, &error, &offset, nullptr);
  pcre2_jit_compile(code, PCRE2_JIT_COMPLETE);
  pcre2_match_data* match = pcre2_match_data_create_from_pattern(code, nullptr);
  filter(state, c, words().utf16, [=](const std::u16string& word) {
    return pcre2_match(code, reinterpret_cast<PCRE2_SPTR>(word.data()), word.size(), 0, 0, match, nullptr) >= 0;
  });
  pcre2_match_data_free(match);
  pcre2_code_free(code);
}

BENCHMARK(BM_Filter)->DenseRange(0, std::size(kCases) - 1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Filter_RE2)->DenseRange(0, std::size(kCases) - 1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Filter_PCRE2)->DenseRange(0, std::size(kCases) - 1)->Unit(benchmark::kMillisecond);

void BM_Similarity(benchmark::State& state) {
  const auto& list = words().utf16;
  const std::u16string pattern = u"contraction";
  for (auto _ : state) {
    double sum = 0;
    for (const auto& word : list) {
      sum += stringMatchesUnixWildcardFuzzy(pattern.data(), pattern.size(), word.data(), word.size());
    }
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(list.size()));
}
BENCHMARK(BM_Similarity)->Unit(benchmark::kMillisecond);

// Of 50,000 units of text and pattern each: what costs most with and without the simulation.
void BM_LongPattern(benchmark::State& state) {
  constexpr size_t kLength = 50000;
  const std::u16string_view pieces[] = {u"a", u"?a", u"[ab]", u"*[a-]b]", u"*[^-]"};
  const std::u16string_view piece = pieces[state.range(0)];
  const std::u16string text(kLength, u'a');
  std::u16string pattern = u"*";
  while (pattern.size() < (state.range(0) < 3 ? kLength / 2 : kLength)) pattern += piece;
  pattern.back() = u'x';
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        stringMatchesUnixWildcard(text.data(), text.data() + kLength, pattern.data(), pattern.data() + pattern.size()));
  }
}
BENCHMARK(BM_LongPattern)->DenseRange(0, 4)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace velan
