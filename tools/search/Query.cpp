#include "tools/search/Query.h"

#include <fmt/format.h>

#include <new>
#include <utility>

#include "tools/CommandLine.h"
#include "tools/Console.h"
#include "tools/documents/PlainText.h"
#include "velan/wildcard/WildcardPattern.h"

namespace velan::tool {
namespace {

constexpr int64_t kMaxDistance = 1'000'000'000;

QueryComparison comparisonOf(const QueryOptions& options) {
  QueryComparison comparison = options.caseSensitive ? QueryComparison::Exact : QueryComparison::IgnoreCase;
  if (options.ignoreDiacritics) comparison = comparison | QueryComparison::IgnoreDiacritics;
  if (options.fuzzy) comparison = comparison | QueryComparison::Fuzzy;
  return comparison;
}

std::unique_ptr<const PreparedQuery> preparedQuery(const std::vector<QueryToken>& tokens, const QueryOptions& options) {
  std::shared_ptr<const QueryTerms> terms = queryTermsWithTokens(tokens, QueryOperator::And, options.distance);
  auto query = PreparedQuery::queryWithTerms(std::move(terms), comparisonOf(options), !options.noWildcards);
  if (!query) throw std::bad_alloc();
  return query;
}

}  // namespace

void addQueryOptions(CLI::App& command, QueryOptions& options) {
  addArgument(command, "QUERY", options.query, "Words, \"phrases\", AND OR XOR NOT NEAR/5 BEFORE AFTER NEXT, ( )")
      ->required();
  command.add_flag("-s,--case-sensitive", options.caseSensitive, "Tell capital from small letters");
  command.add_flag("-d,--ignore-diacritics", options.ignoreDiacritics, "Find Zürich with Zurich");
  command
      .add_flag_function(
          "--fuzzy{0.68}", [](int64_t) {}, "Find similar words, too; --fuzzy=0.9 for more similar ones")
      ->each([&options](const std::string& value) {
        options.fuzzy = true;
        if (!CLI::detail::lexical_cast(value, options.similarity)) fail("a number is expected, not " + value);
      });
  addNumber(command, "--distance", options.distance, int64_t{0}, kMaxDistance,
            "How many words NEAR, BEFORE, AFTER reach (10)");
  addChoice(command, "--keywords", "WHICH", options.keywords,
            "Take as operators: auto (default; not, near, next … of a sentence are words), any, upper (only capitals)",
            {{"auto", KeywordCase::Auto}, {"any", KeywordCase::Any}, {"upper", KeywordCase::Upper}});
  command.add_flag("--verbatim", options.verbatim, "Find words only as they are spelt: not Straße with strasse");
  command.add_flag("--no-wildcards", options.noWildcards, "Take * and ? as they are; not with -d, --fuzzy");
}

std::optional<TypedQuery> makeQuery(const QueryOptions& options) {
  if (options.noWildcards && (options.ignoreDiacritics || options.fuzzy)) {
    complain("--no-wildcards finds plain words only; it cannot be combined with --ignore-diacritics or --fuzzy");
    return std::nullopt;
  }
  if (!(options.similarity > 0 && options.similarity <= 1)) {
    complain("--fuzzy takes a similarity above 0 and up to 1");
    return std::nullopt;
  }
  const String given = String::fromUTF8(options.query);
  if (given.isAbsent()) {
    complain("the query is not valid UTF-8");
    return std::nullopt;
  }
  const String text = options.verbatim ? given : plainText(given).text;
  FastWordEnumerator::setSplitAsianWords(true);
  setMinWildcardFuzzyAnalogy(options.similarity);
  const QueryComparison comparison = comparisonOf(options);
  TypedQuery typed{correctedQuery(text, options.keywords, comparison, !options.noWildcards), nullptr, nullptr};
  typed.query = preparedQuery(typed.reading.tokens, options);
  if (const auto tokens = tokensWithoutQuestionMarks(typed.reading.tokens); tokens && !options.noWildcards) {
    typed.otherwise = preparedQuery(*tokens, options);
  }
  if (typed.query->terms().isValid()) return typed;
  if (typed.reading.neverFound.empty()) {
    complain("the query has no terms, so it matches nothing");
    return typed;
  }
  complain(fmt::format("{} can never be found: a term needs a letter or a digit", typed.reading.neverFound.front()));
  return std::nullopt;
}

std::unique_ptr<FastWordEnumerator> indexOf(const String& text, const PreparedQuery& query) {
  auto index = query.enumeratorWithString(text);
  if (!index && !text.isEmpty()) throw std::bad_alloc();
  return index;
}

}  // namespace velan::tool
