#include "tools/query/Query.h"

#include <fmt/format.h>

#include <new>
#include <string_view>
#include <utility>

#include "tools/CommandLine.h"
#include "tools/Console.h"
#include "tools/documents/PlainText.h"
#include "tools/query/QueryUnits.h"
#include "velan/wildcard/WildcardPattern.h"

namespace velan::tool {
namespace {

constexpr size_t kUnitsShown = 60;
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

// The words in a row: what has a meaning in queries separates words, as it does in texts.
String phraseOf(const String& text) {
  std::u16string phrase(text.view());
  for (unichar& c : phrase) {
    if (std::u16string_view(u"\"“”„*?[]").find(c) != std::u16string_view::npos) c = u' ';
  }
  return String(u'"' + phrase + u'"');
}

// Texts are read with letters such as ß as two where that makes a word of the query. Patterns that count characters
// stay as they are.
void separateJoinedLetters(CorrectedQuery& reading, bool wildcard) {
  for (QueryToken& token : reading.tokens) {
    const std::u16string_view word = token.word.view();
    const std::u16string_view counted = word.substr(0, word.find_last_not_of(u'?') + 1);
    if (!isTerm(token) || (wildcard && counted.find_first_of(u"?[") != word.npos)) continue;
    const String plain(withoutJoinedLetters(word));
    if (plain == token.word) continue;
    reading.spellings.push_back(
        fmt::format("{} is looked for as {}, which finds both spellings", token.word.toUTF8(), plain.toUTF8()));
    token.word = plain;
  }
}

// Nothing after a complaint.
std::optional<CorrectedQuery> readingOf(const std::string& query, const QueryOptions& options) {
  const String given = String::fromUTF8(query);
  if (given.isAbsent()) {
    complain("the query is not valid UTF-8");
    return std::nullopt;
  }
  const String text = options.verbatim ? given : plainText(given).text;
  CorrectedQuery reading = correctedQuery(options.isPhrase ? phraseOf(text) : text, options.keywords,
                                          comparisonOf(options), !options.noWildcards);
  if (!options.verbatim) separateJoinedLetters(reading, !options.noWildcards);
  return reading;
}

// Adds tokens as a group of their own: groups that they leave open end with them.
void addGroup(std::vector<QueryToken>& tokens, const CorrectedQuery& reading, int64_t start) {
  const auto add = [&](QueryTokenKind kind) { tokens.push_back({kind, {start, 0}, String(), QueryOperator::Or, {}}); };
  if (!tokens.empty()) add(QueryTokenKind::Operator);
  add(QueryTokenKind::Open);
  size_t open = 1;
  for (QueryToken token : reading.tokens) {
    if (token.kind == QueryTokenKind::Open) ++open;
    if (token.kind == QueryTokenKind::Close && open == 1) continue;
    if (token.kind == QueryTokenKind::Close) --open;
    token.range.location += start;
    tokens.push_back(std::move(token));
  }
  for (; open > 0; --open) add(QueryTokenKind::Close);
}

// What was typed as one query: the one, or any of the alternatives. Nothing after a complaint.
std::optional<CorrectedQuery> wholeReading(const QueryOptions& options) {
  if (options.alternatives.size() == 1) return readingOf(options.alternatives.front(), options);
  if (options.alternatives.empty() && options.isGiven) return readingOf(options.query, options);
  if (options.alternatives.empty()) {
    complain("which QUERY? (see --help)");
    return std::nullopt;
  }
  CorrectedQuery whole;
  std::u16string source;
  for (const std::string& each : options.alternatives) {
    const auto reading = readingOf(each, options);
    if (!reading) return std::nullopt;
    source += source.empty() ? u"(" : u" OR (";
    addGroup(whole.tokens, *reading, static_cast<int64_t>(source.size()));
    source.append(reading->source.view()) += u')';
    whole.corrections.insert(whole.corrections.end(), reading->corrections.begin(), reading->corrections.end());
    whole.neverFound.insert(whole.neverFound.end(), reading->neverFound.begin(), reading->neverFound.end());
    whole.spellings.insert(whole.spellings.end(), reading->spellings.begin(), reading->spellings.end());
  }
  whole.source = String(source);
  return whole;
}

}  // namespace

void addQueryOptions(CLI::App& command, QueryOptions& options) {
  addArgument(command, "QUERY", options.query, "Words, \"phrases\", AND OR XOR NOT NEAR/5 BEFORE AFTER NEXT, ( )")
      ->each([&options](const std::string&) { options.isGiven = true; });
  command.add_option("-e,--query", options.alternatives, "Look for this or for those of further -e, in place of QUERY")
      ->type_name("QUERY")
      ->allow_extra_args(false);
  command.add_flag("-F,--phrase", options.isPhrase, "Take each query as one phrase, without operators and wildcards");
  command.add_flag_callback(
      "-i,--ignore-case,-w,--word-regexp", [] {}, "Ignore case, find whole words (the default)");
  command.add_flag("-s,--case-sensitive", options.caseSensitive, "Tell capital from small letters");
  command.add_flag("-d,--ignore-diacritics", options.ignoreDiacritics, "Find Zürich with Zurich");
  command
      .add_flag("--fuzzy{0.68}", options.typedSimilarity, "Find similar words, too; --fuzzy=0.9 for more similar ones")
      ->each([&options](const std::string& value) {
        options.fuzzy = true;
        if (!CLI::detail::lexical_cast(value, options.similarity)) fail("a number is expected, not " + value);
      });
  addNumber(command, "--distance", options.distance, int64_t{0}, kMaxDistance,
            "How many words NEAR, BEFORE, AFTER reach (10)");
  addChoice(command, "--keywords", options.keywords,
            "Operators: any, only in capitals, or (auto) not those of what looks like a sentence",
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
  FastWordEnumerator::setSplitAsianWords(true);
  setMinWildcardFuzzyAnalogy(options.similarity);
  auto reading = wholeReading(options);
  if (!reading) return std::nullopt;
  TypedQuery typed{std::move(*reading), nullptr, nullptr};
  typed.query = preparedQuery(typed.reading.tokens, options);
  if (const auto tokens = tokensWithoutQuestionMarks(typed.reading.tokens); tokens && !options.noWildcards) {
    typed.otherwise = preparedQuery(*tokens, options);
  }
  if (typed.query->terms().isValid()) return typed;
  if (typed.reading.neverFound.empty()) {
    complain("the query has no terms, so it matches nothing");
    return typed;
  }
  const std::u16string_view source = typed.reading.source.view();
  const bool isShort = source.size() <= kUnitsShown;
  complain(fmt::format("{}{} can never be found: a term needs a letter or a digit",
                       String(source.substr(0, kUnitsShown)).toUTF8(), isShort ? "" : "…"));
  return std::nullopt;
}

std::unique_ptr<FastWordEnumerator> indexOf(const String& text, const PreparedQuery& query) {
  auto index = query.enumeratorWithString(text);
  if (!index && !text.isEmpty()) throw std::bad_alloc();
  return index;
}

}  // namespace velan::tool
