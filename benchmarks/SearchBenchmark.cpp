// Searching, counting and sets beside compiled searches (PCRE2 with its just-in-time compiler, Hyperscan), ICU, the C++
// library and StringZilla, on the same texts. Hyperscan and StringZilla read UTF-8; all rates are in bytes of the
// UTF-16 form. What peers compile or allocate in advance is not measured, what we set up is.
//
// Names are operation/who/text/bytes: --benchmark_filter=every_hit shows one operation.
#include <benchmark/benchmark.h>
#include <hs/hs.h>
#define PCRE2_CODE_UNIT_WIDTH 16
#include <pcre2.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "benchmarks/RealTexts.h"
#ifdef VELAN_STRINGZILLA
#include "benchmarks/StringZillaPeer.h"
#endif
#include "velan/base/String.h"
#include "velan/base/utf/UTF.h"
#include "velan/query/PreparedQuery.h"
#include "velan/text/CharacterSetOperations.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/UnitMappingInternal.h"
#include "velan/text/comparison/Comparison.h"
#include "velan/text/comparison/SetFilteredComparison.h"
#include "velan/text/inspection/SubstringSearch.h"
#include "velan/text/search/CharacterSearch.h"
#include "velan/text/search/UnitSearchInternal.h"

namespace velan {
namespace {

struct Text {
  const char* name;
  std::u16string units;
  std::u16string frequentWord;
  std::u16string absentPhrase;  // its words are in the text
  unichar absentUnit;
};

std::u16string wordsOf(const std::vector<std::u16string_view>& words, size_t length) {
  std::mt19937 random(1);
  std::u16string text;
  while (text.size() < length) (text += words[random() % words.size()]) += u' ';
  text.resize(length);
  return text;
}

Text textOf(const std::string& name, size_t length) {
  if (name == "english") {
    return {"english",
            wordsOf({u"the", u"of", u"and", u"to", u"in", u"is", u"that", u"searching", u"archive", u"contract",
                     u"document", u"between", u"needle,", u"quarterly", u"report.", u"a"},
                    length),
            u"the", u"contract needles", u'#'};
  }
  if (name == "mixed") {
    return {"mixed",
            wordsOf({u"the", u"Velan", u"of", u"a", u"straße", u"Äpfel", u"документ", u"Σοφία", u"2026", u"and,",
                     u"searching", u"in", u"text.", u"日本語", u"contract", u"needle", u"Archive", u"to"},
                    length),
            u"the", u"contract needles", u'#'};
  }
  if (name == "russian") {
    return {"russian",
            wordsOf({u"и", u"в", u"не", u"на", u"документ", u"договор", u"поиск", u"между", u"архив,", u"который",
                     u"быстро", u"Москва", u"это", u"страница.", u"они", u"слово"},
                    length),
            u"который", u"договор поиска", u'#'};
  }
  if (name == "japanese") {
    return {"japanese",
            wordsOf({u"日本語の", u"文書を", u"検索する", u"契約書", u"、東京", u"これは", u"カタログ。", u"速い",
                     u"ページ", u"と"},
                    length),
            u"契約書", u"文書を契約書", u'#'};
  }
  if (name == "manual-de") return {"manual-de", realText(name, length), u"die", u"Datei der Befehlszeilen", u'\u2603'};
  if (name == "manual-ru") return {"manual-ru", realText(name, length), u"для", u"параметр файлового имени", u'\u2603'};
  if (name == "manual-ja") return {"manual-ja", realText(name, length), u"する", u"ファイル指定環境", u'\u2603'};
  const char* english = name == "manual" ? "manual" : name == "changelog" ? "changelog" : "licence";
  return {english, realText(name, length), u"the", u"software licenses of", u'\u2603'};
}

std::string utf8Of(std::u16string_view units) {
  std::string bytes;
  appendUTF8Lossy(units, bytes);  // a cut text may end in half a character
  return bytes;
}

// Counts matches, one behind the other.
class Pcre {
 public:
  Pcre(const std::u16string& pattern, uint32_t options) {
    int error = 0;
    size_t offset = 0;
    _code =
        pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern.data()), pattern.size(), options, &error, &offset, nullptr);
    pcre2_jit_compile(_code, PCRE2_JIT_COMPLETE);
    _match = pcre2_match_data_create(1, nullptr);
  }
  ~Pcre() {
    pcre2_match_data_free(_match);
    pcre2_code_free(_code);
  }

  size_t count(std::u16string_view text) const {
    size_t count = 0;
    for (size_t at = 0;
         pcre2_jit_match(_code, reinterpret_cast<PCRE2_SPTR>(text.data()), text.size(), at, 0, _match, nullptr) > 0;
         ++count) {
      at = pcre2_get_ovector_pointer(_match)[1];
    }
    return count;
  }

 private:
  pcre2_code* _code;
  pcre2_match_data* _match;
};

class Hyperscan {
 public:
  Hyperscan(const std::string& pattern, unsigned flags) {
    hs_compile_error_t* error = nullptr;
    hs_compile(pattern.c_str(), flags, HS_MODE_BLOCK, nullptr, &_database, &error);
    hs_alloc_scratch(_database, &_scratch);
  }
  ~Hyperscan() {
    hs_free_scratch(_scratch);
    hs_free_database(_database);
  }

  size_t count(const std::string& text) const {
    size_t count = 0;
    const auto onMatch = [](unsigned, unsigned long long, unsigned long long, unsigned, void* counter) {
      ++*static_cast<size_t*>(counter);
      return 0;
    };
    hs_scan(_database, text.data(), static_cast<unsigned>(text.size()), 0, _scratch, onMatch, &count);
    return count;
  }

 private:
  hs_database_t* _database = nullptr;
  hs_scratch_t* _scratch = nullptr;
};

// Several expressions in one pass: where all matches end, and of which expression.
class HyperscanSet {
 public:
  HyperscanSet(const std::vector<std::string>& patterns, unsigned flags) {
    std::vector<const char*> expressions;
    std::vector<unsigned> ids;
    for (const std::string& pattern : patterns) {
      ids.push_back(static_cast<unsigned>(expressions.size()));
      expressions.push_back(pattern.c_str());
    }
    const std::vector<unsigned> allFlags(patterns.size(), flags);
    hs_compile_error_t* error = nullptr;
    hs_compile_multi(expressions.data(), allFlags.data(), ids.data(), static_cast<unsigned>(patterns.size()),
                     HS_MODE_BLOCK, nullptr, &_database, &error);
    hs_alloc_scratch(_database, &_scratch);
  }
  HyperscanSet(const HyperscanSet&) = delete;
  HyperscanSet& operator=(const HyperscanSet&) = delete;
  ~HyperscanSet() {
    hs_free_scratch(_scratch);
    hs_free_database(_database);
  }

  size_t count(const std::string& text) const {
    std::vector<std::pair<unsigned, unsigned long long>> ends;
    const auto onMatch = [](unsigned id, unsigned long long, unsigned long long end, unsigned, void* all) {
      static_cast<std::vector<std::pair<unsigned, unsigned long long>>*>(all)->emplace_back(id, end);
      return 0;
    };
    hs_scan(_database, text.data(), static_cast<unsigned>(text.size()), 0, _scratch, onMatch, &ends);
    return ends.size();
  }

 private:
  hs_database_t* _database = nullptr;
  hs_scratch_t* _scratch = nullptr;
};

using Run = std::function<size_t()>;

void add(const std::string& operation, const std::string& who, const Text& text, Run run) {
  const size_t bytes = text.units.size() * sizeof(unichar);
  const std::string name = operation + '/' + who + '/' + text.name + '/' + std::to_string(bytes);
  benchmark::RegisterBenchmark(name.c_str(), [run = std::move(run), bytes](benchmark::State& state) {
    size_t result = 0;
    for (auto _ : state) benchmark::DoNotOptimize(result = run());
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(bytes));
    state.counters["result"] = static_cast<double>(result);
  });
}

void addSearch(const std::string& operation, const Text& text, const std::u16string& needle, bool caseSensitive) {
  const std::u16string_view units = text.units;
  const String string(units), wanted(needle);
  add(operation, "velan", text, [=] { return static_cast<size_t>(countSubstring(string, wanted, caseSensitive)); });
  const auto pcre =
      std::make_shared<Pcre>(needle, caseSensitive ? 0u : static_cast<uint32_t>(PCRE2_CASELESS | PCRE2_UTF));
  add(operation, "pcre2", text, [=] { return pcre->count(units); });
  const auto hyperscan = std::make_shared<Hyperscan>(
      utf8Of(needle), caseSensitive ? 0u : static_cast<unsigned>(HS_FLAG_CASELESS | HS_FLAG_UTF8));
  add(operation, "hyperscan", text, [hyperscan, bytes = utf8Of(units)] { return hyperscan->count(bytes); });
  if (!caseSensitive) return;
#ifdef VELAN_STRINGZILLA
  add(operation, "stringzilla", text,
      [bytes = utf8Of(units), wanted8 = utf8Of(needle)] { return countByStringZilla(bytes, wanted8); });
#endif
  add(operation, "icu", text, [=] {
    size_t count = 0;
    for (const unichar *at = units.data(), *end = at + units.size();; ++count) {
      at = u_strFindFirst(at, static_cast<int32_t>(end - at), needle.data(), static_cast<int32_t>(needle.size()));
      if (!at) return count;
      at += needle.size();
    }
  });
}

void addWithoutDiacritics(const Text& text, const std::u16string& needle) {
  const unichar* table = initUpperUmlautsCharsTable();
  std::u16string mapped = needle;
  for (unichar& c : mapped) c = table[c];
  const std::u16string_view units = text.units;
  add("no_diacritics_absent", "velan", text,
      [=] { return findMappedUnits(units.data(), units.size(), mapped.data(), mapped.size(), table); });
  add("no_diacritics_absent", "table_loop", text, [=] {
    const auto found = std::search(units.begin(), units.end(), mapped.begin(), mapped.end(),
                                   [table](unichar a, unichar b) { return table[a] == b; });
    return static_cast<size_t>(found - units.begin());
  });
}

void addUnits(const Text& text) {
  const std::u16string_view units = text.units;
  const String string(units);
  const unichar absent = text.absentUnit;
  add("find_unit", "velan", text, [=] { return static_cast<size_t>(findCharacter(string, absent)); });
  add("find_unit", "std", text, [=] { return units.find(absent); });
  add("count_unit", "velan", text, [=] { return static_cast<size_t>(countCharacter(string, u' ')); });
  add("count_unit", "std", text, [=] { return static_cast<size_t>(std::ranges::count(units, u' ')); });
  add("count_unit_no_case", "velan", text, [=] { return static_cast<size_t>(countCharacter(string, u'e', true)); });
  add("one_of", "velan", text,
      [string, few = String(u"#<>&@")] { return static_cast<size_t>(findOneOf(string, few)); });
  add("one_of", "std", text, [=] { return units.find_first_of(u"#<>&@"); });
#ifdef VELAN_STRINGZILLA
  if (absent < 0x80) {
    add("find_unit", "stringzilla", text,
        [=, bytes = utf8Of(units)] { return findByteByStringZilla(bytes, static_cast<char>(absent)); });
  }
  add("one_of", "stringzilla", text, [bytes = utf8Of(units)] { return findOneOfByStringZilla(bytes, "#<>&@"); });
#endif

  const uint8_t* letters = alphaCharacterSetRep();
  const auto isLetter = [letters](unichar c) { return isMemberOfCharacterSetRep(letters, c); };
  const uint8_t* symbols = bitmap(CharacterSet::Symbol);
  add("one_of_set", "velan", text, [=] { return static_cast<size_t>(characterPartOfSet(string, symbols)); });
  add("one_of_set", "bitmap_loop", text, [=] {
    return static_cast<size_t>(
        std::ranges::any_of(units, [symbols](unichar c) { return isMemberOfCharacterSetRep(symbols, c); }));
  });
  add("count_set", "velan", text, [=] { return static_cast<size_t>(countCharactersPartOfSet(string, letters)); });
  add("count_set", "bitmap_loop", text, [=] { return static_cast<size_t>(std::ranges::count_if(units, isLetter)); });
}

std::u16string otherCase(std::u16string text) {
  for (unichar& c : text) c = toUpper(c) != c ? toUpper(c) : toLower(c);
  return text;
}

// Folding to a copy, comparing with the same text and with its other case, and comparing letters only.
void addMapping(const Text& text) {
  const unichar* upper = initUpperCharsTable();
  const auto a = std::make_shared<const std::u16string>(text.units);
  const auto b = std::make_shared<const std::u16string>(otherCase(text.units));
  const auto copy = std::make_shared<std::u16string>(text.units);
  const size_t length = a->size();
  add("fold", "velan", text, [=] { return mapUnits(a->data(), length, upper, copy->data()), size_t{copy->back()}; });
  add("fold", "table_loop", text, [=] {
    for (size_t i = 0; i < length; ++i) (*copy)[i] = upper[(*a)[i]];
    return size_t{copy->back()};
  });
  add("fold", "memcpy", text, [=] {
    std::memcpy(copy->data(), a->data(), length * sizeof(unichar));
    benchmark::ClobberMemory();
    return size_t{copy->back()};
  });

  const auto same = std::make_shared<const std::u16string>(text.units);
  const auto addComparison = [&](const std::string& operation, const auto& other) {
    add(operation, "velan", text, [=] {
      return static_cast<size_t>(fastCaseInsensitiveCompareUnichars(a->data(), length, other->data(), length));
    });
    add(operation, "table_loop", text, [=] {
      size_t i = 0;
      while (i < length && upper[(*a)[i]] == upper[(*other)[i]]) ++i;
      return length - i;
    });
  };
  addComparison("compare_no_case_same", same);
  addComparison("compare_no_case_other", b);
  add("compare", "velan", text,
      [=] { return static_cast<size_t>(fastCompareUnichars(a->data(), length, same->data(), length)); });
  add("compare", "memcmp", text, [=] {
    benchmark::ClobberMemory();
    return static_cast<size_t>(std::memcmp(a->data(), same->data(), length * sizeof(unichar)));
  });

  const uint8_t* letters = alphaCharacterSetRep();
  add("compare_letters", "velan", text,
      [=] { return size_t{equalCharsNoCaseOfCharacterSetRep(a->data(), length, b->data(), length, letters)}; });
  add("compare_letters", "bitmap_loop", text, [=] {
    const unichar *p = a->data(), *q = b->data(), *endP = p + length, *endQ = q + length;
    for (;; ++p, ++q) {
      while (p < endP && !isMemberOfCharacterSetRep(letters, *p)) ++p;
      while (q < endQ && !isMemberOfCharacterSetRep(letters, *q)) ++q;
      if (p == endP || q == endQ) return size_t{p == endP && q == endQ};
      if (upper[*p] != upper[*q]) return size_t{0};
    }
  });
}

// One text after the other, as the expressions of the peers are run.
class QuerySearch {
 public:
  explicit QuerySearch(std::shared_ptr<const PreparedQuery> query) : _query(std::move(query)), _matcher(*_query) {}

  size_t count(std::u16string_view text) {
    _matcher.setText(text);
    _matcher.findOccurrences(_found);
    return _found.size();
  }

 private:
  const std::shared_ptr<const PreparedQuery> _query;
  QueryMatcher _matcher;
  std::vector<QueryOccurrence> _found;
};

struct Query {
  const char* operation;
  std::u16string query, expression;
};

std::vector<Query> queriesOf(const Text& text) {
  if (std::string_view(text.name).starts_with("manual-")) {
    const std::u16string start = text.frequentWord.substr(0, 2);
    return {{"query_frequent_word", text.frequentWord, u"\\b" + text.frequentWord + u"\\b"},
            {"query_prefix", start + u"*", u"\\b" + start + u"\\w*"}};
  }
  std::vector<Query> queries = {{"query_frequent_word", u"the", u"\\bthe\\b"},
                                {"query_absent_word", u"lighthouse", u"\\blighthouse\\b"},
                                {"query_prefix", u"con*", u"\\bcon\\w*"},
                                {"query_infix", u"*tra*", u"\\w*tra\\w*"},
                                {"query_set", u"[a-c]o[mn]*", u"\\b[a-c]o[mn]\\w*"}};
  const Query made[] = {
      {"query_word", u"contract", u"\\bcontract\\b"},
      {"query_suffix", u"*ing", u"\\w*ing\\b"},
      {"query_mixed", u"c?nt*ct*", u"\\bc\\wnt\\w*ct\\w*"},
      {"query_phrase", u"\"the contract\"", u"\\bthe\\W+contract\\b"},
      {"query_wildcard_phrase", u"\"the con*\"", u"\\bthe\\W+con\\w*"},
      {"query_three_terms", u"contract OR search* OR archive", u"\\b(?:contract\\b|search\\w*|archive\\b)"},
  };
  const Query real[] = {
      {"query_word", u"copy", u"\\bcopy\\b"},
      {"query_suffix", u"*tion", u"\\w*tion\\b"},
      {"query_mixed", u"c?p*ght*", u"\\bc\\wp\\w*ght\\w*"},
      {"query_phrase", u"\"the program\"", u"\\bthe\\W+program\\b"},
      {"query_wildcard_phrase", u"\"the pro*\"", u"\\bthe\\W+pro\\w*"},
      {"query_three_terms", u"copy OR license* OR patent", u"\\b(?:copy\\b|license\\w*|patent\\b)"},
  };
  const bool isMade = text.name == std::string_view("english") || text.name == std::string_view("mixed");
  for (const Query& query : isMade ? made : real) queries.push_back(query);
  return queries;
}

// Every occurrence of a query in running text, of which nothing is known before; what is prepared once a query is not
// measured. The expressions mean the same but for the underscore, which does not separate words there, and, where a
// text is mostly ASCII, for other letters.
void addQueries(const Text& text) {
  const std::u16string_view units = text.units;
  const uint32_t letters = std::string_view(text.name).starts_with("manual-") ? PCRE2_UTF | PCRE2_UCP : 0u;
  for (const bool caseSensitive : {true, false}) {
    for (const auto& row : queriesOf(text)) {
      const std::string operation = std::string(row.operation) + (caseSensitive ? "" : "_no_case");
      const std::shared_ptr<const PreparedQuery> query =
          PreparedQuery::queryWithTerms(QueryTerms::initWithWildcard(row.query),
                                        caseSensitive ? QueryComparison::Exact : QueryComparison::IgnoreCase, true);
      const auto search = std::make_shared<QuerySearch>(query);
      add(operation, "velan", text, [=] { return search->count(units); });
      const auto pcre = std::make_shared<Pcre>(row.expression, letters | (caseSensitive ? 0u : PCRE2_CASELESS));
      add(operation, "pcre2", text, [=] { return pcre->count(units); });
    }
  }
}

// Words that no text holds.
std::string madeUpWord(std::mt19937& random) {
  std::string word;
  for (auto left = 2 + random() % 3; left > 0; --left)
    (word += "bcdfgklmnprstvz"[random() % 15]) += "aeiou"[random() % 5];
  return word + "bcdfgklmnprstvz"[random() % 15];
}

// Every occurrence of several terms, beside one pass for all of their expressions, and one search for each. In our
// rows what relates the terms is found out, too.
void addTerms(const Text& text, const std::string& operation, const std::string& between,
              const std::vector<std::string>& terms, bool caseSensitive) {
  std::string query;
  std::vector<std::string> expressions, literals;
  for (const std::string& term : terms) {
    (query += query.empty() ? "" : between) += term;
    const bool isPrefix = term.back() == '*';
    literals.push_back(isPrefix ? term.substr(0, term.size() - 1) : term);
    // Of a prefix Hyperscan would tell each end.
    expressions.push_back("\\b" + literals.back() + (isPrefix ? "" : "\\b"));
  }
  const std::shared_ptr<const PreparedQuery> prepared =
      PreparedQuery::queryWithTerms(QueryTerms::initWithWildcard(String::fromUTF8(query)),
                                    caseSensitive ? QueryComparison::Exact : QueryComparison::IgnoreCase, true);
  const std::string name = operation + (caseSensitive ? "" : "_no_case");
  const auto search = std::make_shared<QuerySearch>(prepared);
  add(name, "velan", text, [search, units = std::u16string_view(text.units)] { return search->count(units); });
  const auto hyperscan = std::make_shared<HyperscanSet>(expressions, caseSensitive ? 0u : unsigned{HS_FLAG_CASELESS});
  add(name, "hyperscan", text, [hyperscan, bytes = utf8Of(text.units)] { return hyperscan->count(bytes); });
  if (!caseSensitive) return;
  add(name, "memmem", text, [literals, bytes = utf8Of(text.units)] {
    size_t count = 0;
    for (const std::string& literal : literals) {
      const char *at = bytes.data(), *end = at + bytes.size();
      while (const void* found = memmem(at, static_cast<size_t>(end - at), literal.data(), literal.size())) {
        at = static_cast<const char*>(found) + literal.size();
        ++count;
      }
    }
    return count;
  });
}

void addSeveralTerms(const Text& text) {
  std::vector<std::string> thousand = {"copy", "license*", "patent"};
  std::mt19937 random(3);
  while (thousand.size() < 1000) thousand.push_back(madeUpWord(random));
  for (const bool caseSensitive : {true, false}) {
    const std::vector<std::string> three(thousand.begin(), thousand.begin() + 3);
    addTerms(text, "three_terms_or", " OR ", three, caseSensitive);
    addTerms(text, "three_terms_and", " AND ", three, caseSensitive);
    addTerms(text, "three_terms_near", " NEAR/20 ", three, caseSensitive);
    addTerms(text, "thousand_terms_or", " OR ", thousand, caseSensitive);
  }
}

// What the memory gives: every word of the text is read.
void addLimit(const Text& text) {
  const std::u16string_view units = text.units;
  add("read", "memory", text, [=] {
    uint64_t sum = 0;
    for (size_t i = 0; i + 4 <= units.size(); i += 4) {
      uint64_t four;
      std::memcpy(&four, &units[i], sizeof four);
      sum ^= four;
    }
    return static_cast<size_t>(sum & 1);
  });
}

}  // namespace
}  // namespace velan

int main(int argc, char** argv) {
  using namespace velan;
  benchmark::Initialize(&argc, argv);
#ifdef VELAN_STRINGZILLA
  benchmark::AddCustomContext("stringzilla", levelOfStringZilla());
#endif
  std::vector<std::unique_ptr<Text>> texts;
  for (const size_t length : {size_t{512}, size_t{32} << 10, size_t{4} << 20}) {
    std::vector<std::string> names = {"english", "mixed", "russian", "japanese"};
    names.insert(names.end(), std::begin(kRealTexts), std::end(kRealTexts));
    for (const std::string& name : names) {
      const Text& text = *texts.emplace_back(std::make_unique<Text>(textOf(name, length)));
      if (text.units.empty()) continue;
      addLimit(text);
      addSearch("exact_absent", text, text.absentPhrase, true);
      addSearch("exact_every_hit", text, text.frequentWord, true);
      addSearch("no_case_absent", text, otherCase(text.absentPhrase), false);
      addSearch("no_case_every_hit", text, otherCase(text.frequentWord), false);
      addWithoutDiacritics(text, text.absentPhrase);
      addUnits(text);
      addMapping(text);
      if (name != "russian" && name != "japanese") addQueries(text);
      if (name == "licence" || name == "manual" || name == "changelog") addSeveralTerms(text);
    }
  }
  benchmark::RunSpecifiedBenchmarks();
}
