// Filtering 20,000 words with a pattern, beside the loop that one would write for just this pattern, RE2 (on UTF-8) and
// PCRE2 (UTF-16, compiled by its JIT) with the regular expression that means the same; and finding those that are
// similar to a word, beside a bit-parallel longest common subsequence. All patterns and expressions are prepared once,
// outside of the loop.
#define PCRE2_CODE_UNIT_WIDTH 16
#include <benchmark/benchmark.h>
#include <pcre2.h>
#include <re2/re2.h>

#include <algorithm>
#include <bit>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "velan/base/String.h"
#include "velan/wildcard/PreparedSimilarity.h"
#include "velan/wildcard/PreparedWildcard.h"
#include "velan/wildcard/WildcardMatching.h"

namespace velan {
namespace {

using View = std::u16string_view;

bool isMixed(View word) {
  for (size_t i = 0; i + 2 < word.size(); ++i) {
    if (word[i + 2] != u't' || View(u"aeiou").find(word[i]) == View::npos) continue;
    return word.find(u"on", i + 3) != View::npos;
  }
  return false;
}

struct Case {
  const char* name;
  std::u16string pattern;
  std::string expression;
  bool (*byHand)(View word);
};
const Case kCases[] = {
    {"prefix", u"con*", "con.*", [](View word) { return word.starts_with(u"con"); }},
    {"infix", u"*tra*", ".*tra.*", [](View word) { return word.find(u"tra") != View::npos; }},
    {"suffix", u"*tion", ".*tion", [](View word) { return word.ends_with(u"tion"); }},
    {"set", u"[a-c]o[mn]*", "[a-c]o[mn].*",
     [](View word) {
       return word.size() >= 3 && word[0] >= u'a' && word[0] <= u'c' && word[1] == u'o' &&
              (word[2] == u'm' || word[2] == u'n');
     }},
    {"mixed", u"*[aeiou]?t*on*", ".*[aeiou].t.*on.*", isMixed},
};

struct Words {
  std::vector<std::u16string> own;
  std::vector<View> utf16;
  std::vector<std::string> utf8;
};

const Words& words() {
  static const Words made = [] {
    const std::string_view syllables[] = {"con",  "tra", "ct",  "tion", "a",   "e",   "men", "t",
                                          "over", "in",  "ver", "si",   "on",  "b",   "co",  "m",
                                          "pu",   "ter", "s",   "qu",   "est", "ing", "ed",  "un"};
    std::mt19937 random(1);
    Words result;
    for (int i = 0; i < 20000; ++i) {
      std::string word;
      for (size_t count = 2 + random() % 4; count > 0; --count) word += syllables[random() % std::size(syllables)];
      result.own.emplace_back(word.begin(), word.end());
      result.utf8.push_back(word);
    }
    result.utf16.assign(result.own.begin(), result.own.end());
    return result;
  }();
  return made;
}

template <typename Matches>
void filterWith(benchmark::State& state, const auto& list, Matches matches) {
  int64_t found = 0;
  for (auto _ : state) {
    found = 0;
    for (const auto& word : list) found += matches(word);
    benchmark::DoNotOptimize(found);
  }
  state.counters["found"] = static_cast<double>(found);
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(list.size()));
}

void filter(benchmark::State& state, const Case& c) {
  const auto prepared = PreparedWildcard::preparedUnixWildcard(c.pattern, nullptr);
  const std::vector<View>& list = words().utf16;
  const auto matches = std::make_unique<bool[]>(list.size());
  for (auto _ : state) {
    prepared->matchWords(list, matches.get());
    benchmark::ClobberMemory();
  }
  state.counters["found"] = static_cast<double>(std::count(matches.get(), matches.get() + list.size(), true));
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(list.size()));
}

void filterOneByOne(benchmark::State& state, const Case& c) {
  const auto prepared = PreparedWildcard::preparedUnixWildcard(c.pattern, nullptr);
  filterWith(state, words().utf16, [&](View word) { return prepared->matches(word); });
}

void filterUnprepared(benchmark::State& state, const Case& c) {
  const unichar* pattern = c.pattern.data();
  const unichar* end = pattern + c.pattern.size();
  filterWith(state, words().utf16, [=](View word) {
    return stringMatchesUnixWildcard(word.data(), word.data() + word.size(), pattern, end);
  });
}

void filterByHand(benchmark::State& state, const Case& c) { filterWith(state, words().utf16, c.byHand); }

void filterRE2(benchmark::State& state, const Case& c) {
  const re2::RE2 expression(c.expression);
  filterWith(state, words().utf8, [&](const std::string& word) { return re2::RE2::FullMatch(word, expression); });
}

void filterPCRE2(benchmark::State& state, const Case& c) {
  const std::u16string expression(c.expression.begin(), c.expression.end());
  int error = 0;
  PCRE2_SIZE offset = 0;
  pcre2_code* code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(expression.data()), expression.size(),
                                   PCRE2_ANCHORED | PCRE2_ENDANCHORED, &error, &offset, nullptr);
  pcre2_jit_compile(code, PCRE2_JIT_COMPLETE);
  pcre2_match_data* match = pcre2_match_data_create_from_pattern(code, nullptr);
  filterWith(state, words().utf16, [=](View word) {
    return pcre2_match(code, reinterpret_cast<PCRE2_SPTR>(word.data()), word.size(), 0, 0, match, nullptr) >= 0;
  });
  pcre2_match_data_free(match);
  pcre2_code_free(code);
}

const std::u16string kWord = u"contraction";

template <typename Result>
void compareWords(benchmark::State& state, const auto& compare) {
  const std::vector<View>& list = words().utf16;
  const auto results = std::make_unique<Result[]>(list.size());
  for (auto _ : state) {
    compare(list, results.get());
    benchmark::ClobberMemory();
  }
  double sum = 0;
  for (size_t i = 0; i < list.size(); ++i) sum += static_cast<double>(results[i]);
  state.counters["sum"] = sum;
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(list.size()));
}

// The similarity of each word, or which are similar to at least 0.75.
void similar(benchmark::State& state, bool each) {
  const auto prepared = PreparedSimilarity::preparedSimilarity(kWord, nullptr);
  if (each) {
    compareWords<double>(state, [&](const auto& list, double* results) { prepared->compareWords(list, results); });
  } else {
    compareWords<bool>(state,
                       [&](const auto& list, bool* results) { prepared->findSimilarWords(list, 0.75, results); });
  }
}

void similarUnprepared(benchmark::State& state, bool each) {
  const auto similarity = [](View word) {
    return stringMatchesUnixWildcardFuzzy(kWord.data(), kWord.size(), word.data(), word.size());
  };
  if (each) {
    compareWords<double>(state, [&](const auto& list, double* results) {
      for (const View word : list) *results++ = similarity(word);
    });
  } else {
    compareWords<bool>(state, [&](const auto& list, bool* results) {
      for (const View word : list) *results++ = similarity(word) >= 0.75;
    });
  }
}

// The fastest known way to a longest common subsequence (Hyyrö, 2004), of which the normalised similarity of insertions
// and deletions is made: the work that libraries of such similarities do for a word that they keep prepared.
class CommonSubsequence {
 public:
  explicit CommonSubsequence(View word) : _length(word.size()) {
    for (size_t i = 0; i < word.size(); ++i) _positions[word[i]] |= uint64_t{1} << i;
  }
  double similarity(View other) const {
    uint64_t open = ~uint64_t{0};
    for (const unichar c : other) {
      const uint64_t taken = open & (c < std::size(_positions) ? _positions[c] : 0);
      open = (open + taken) | (open - taken);
    }
    return 2 * std::popcount(~open) / static_cast<double>(_length + other.size());
  }
  bool isSimilar(View other, double least) const {
    const auto shorter = static_cast<double>(std::min(_length, other.size()));
    return 2 * shorter >= least * static_cast<double>(_length + other.size()) && similarity(other) >= least;
  }

 private:
  size_t _length;
  uint64_t _positions[256] = {};
};

void similarBySubsequence(benchmark::State& state, bool each) {
  const CommonSubsequence prepared(kWord);
  if (each) {
    compareWords<double>(state, [&](const auto& list, double* results) {
      for (const View word : list) *results++ = prepared.similarity(word);
    });
  } else {
    compareWords<bool>(state, [&](const auto& list, bool* results) {
      for (const View word : list) *results++ = prepared.isSimilar(word, 0.75);
    });
  }
}
// Called "filter/way/pattern" and "similar/way/question".
[[maybe_unused]] const bool kRegistered = [] {
  const std::pair<const char*, void (*)(benchmark::State&, const Case&)> filters[] = {
      {"velan", filter},
      {"velan_one_by_one", filterOneByOne},
      {"velan_unprepared", filterUnprepared},
      {"by_hand", filterByHand},
      {"re2", filterRE2},
      {"pcre2", filterPCRE2}};
  for (const auto& [way, run] : filters) {
    for (const Case& c : kCases) {
      const std::string name = std::string("filter/") + way + "/" + c.name;
      benchmark::RegisterBenchmark(name.c_str(), run, c)->Unit(benchmark::kMicrosecond);
    }
  }
  const std::pair<const char*, void (*)(benchmark::State&, bool)> comparisons[] = {
      {"velan", similar}, {"velan_unprepared", similarUnprepared}, {"subsequence", similarBySubsequence}};
  for (const auto& [way, run] : comparisons) {
    for (const bool each : {true, false}) {
      const std::string name = std::string("similar/") + way + (each ? "/each" : "/at_least_0.75");
      benchmark::RegisterBenchmark(name.c_str(), run, each)->Unit(benchmark::kMicrosecond);
    }
  }
  return true;
}();

// Of 50,000 units of text and pattern each: what costs most with and without the simulation.
void BM_LongPattern(benchmark::State& state) {
  constexpr size_t kLength = 50000;
  const std::u16string_view pieces[] = {u"a", u"?a", u"[ab]", u"*[a-]b]", u"*[^-]", u"[-]", u"["};
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
BENCHMARK(BM_LongPattern)->DenseRange(0, 6)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace velan
