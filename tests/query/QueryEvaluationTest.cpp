#include "QueryReference.h"
#include "tests/Testing.h"
#include "velan/query/PreparedQuery.h"
#include "velan/query/evaluation/SearchedTextInternal.h"
#include "velan/query/words/FastWordEnumerator.h"

namespace velan {
namespace {

using enum QueryOperator;
using enum QueryComparison;
using Words = std::vector<std::u16string>;

struct Family {
  const char* name;
  bool wildcard;
  std::u16string_view textWords;  // separated by semicolons
  std::u16string_view terms;      // quoted ones are phrases
  std::vector<QueryOperator> operators;
  std::vector<QueryComparison> comparisons;
};

Words separated(std::u16string_view list) {
  Words words;
  for (size_t start = 0; start <= list.size(); start += words.back().size() + 1) {
    words.emplace_back(list.substr(start, list.find(u';', start) - start));
  }
  return words;
}

class QueryGenerator : public Chance {
 public:
  QueryGenerator(const Family& family, unsigned seed) : Chance(seed), _family(family) {}

  std::u16string text() {
    static const Words separators = {u" ", u" ", u" ", u", ", u"-", u".\n"};
    std::u16string text(below(8) == 0 ? u"- " : u"");
    for (size_t words = 1 + below(14); words > 0; --words) {
      text += oneOf(_textWords) + oneOf(separators);
    }
    return below(2) ? text.substr(0, text.find_last_not_of(u" ,-.\n") + 1) : text;
  }

  /// A piece of the text, which may cut words, or all of it.
  Range range(int64_t length) {
    const auto start = static_cast<int64_t>(below(static_cast<size_t>(length)));
    if (below(2)) return {0, length};
    return {start, 1 + static_cast<int64_t>(below(static_cast<size_t>(length - start)))};
  }

  ReferenceTerm group(size_t depth) {
    ReferenceTerm group;
    for (size_t n = 1 + below(4); n > 0; --n) {
      ReferenceTerm child = depth > 0 && below(3) == 0 ? this->group(depth - 1) : leaf();
      child.op = group.children.empty() ? And : oneOf(_family.operators);
      if (isProximity(child.op) && below(8) != 0) child.distance = static_cast<int64_t>(below(5));
      if (isProximity(child.op) && child.distance == QueryTerms::kDefaultDistance && child.op == Next) {
        child.distance = 1;
      }
      child.negated = below(4) == 0;
      group.children.push_back(std::move(child));
    }
    return group;
  }

  /// The group as a person might type it.
  std::u16string queryOf(const ReferenceTerm& group) {
    std::u16string query;
    for (size_t i = 0; i < group.children.size(); ++i) {
      const ReferenceTerm& child = group.children[i];
      if (i > 0) query += joint(child);
      if (child.negated) query += oneOf(Words{u"NOT ", u"not ", u"-", u"!"});
      const bool isGroup = !child.children.empty();
      if (isGroup || child.phrase) query += isGroup ? u'(' : u'"';
      query += isGroup ? queryOf(child) : child.word;
      if (isGroup || child.phrase) query += isGroup ? u')' : u'"';
    }
    return query;
  }

 private:
  ReferenceTerm leaf() {
    ReferenceTerm leaf;
    leaf.word = oneOf(_terms);
    leaf.phrase = leaf.word.front() == '"';
    if (leaf.phrase) leaf.word = leaf.word.substr(1, leaf.word.size() - 2);
    return leaf;
  }

  std::u16string joint(const ReferenceTerm& child) {
    static const std::vector<Words> joints = {{u" ", u" AND ", u" but ", u" & "},
                                              {u" OR ", u" | ", u"|"},
                                              {u" XOR ", u" ^ ", u" EOR "},
                                              {u" NEAR", u" near"},
                                              {u" BEFORE", u" Before"},
                                              {u" AFTER"},
                                              {u" NEXT"},
                                              {u" OPT ", u" opt "}};
    std::u16string joint = oneOf(joints[static_cast<size_t>(child.op)]);
    if (!isProximity(child.op)) return joint;
    const bool next = child.op == Next;
    if (child.distance == (next ? 1 : QueryTerms::kDefaultDistance) && below(2)) return joint + u" ";
    const std::string distance = std::to_string(child.distance);
    return joint + u"/" + std::u16string(distance.begin(), distance.end()) + u" ";
  }

  const Family& _family;
  const Words _textWords = separated(_family.textWords), _terms = separated(_family.terms);
};

constexpr std::u16string_view kLetters = u"a;b;c;d;e";
constexpr std::u16string_view kForms = u"abc;ABC;abd;bc;Äbc;äB;cab;é;E;b";
constexpr std::u16string_view kSimilar = u"tempor;temper;Tempora;dolor;dolore;dolores;rolod;odlor;labor";

// Rows are kept apart so that a failure names the part of the language it lies in.
const Family kFamilies[] = {
    {"Boolean", true, kLetters, u"a;b;c;zz", {And, Or, Xor, Optional}, {Exact}},
    {"pairs in proximity", true, u"a;b;x;y", u"a;b", {Near, Before, After, Next}, {Exact}},
    {"proximity in groups",
     true,
     u"a;b;c;x",
     u"a;b;c;zz",
     {And, Or, Xor, Near, Near, Before, After, Next, Optional},
     {Exact}},
    {"proximity around negation",
     true,
     u"a;b;c;x;y;z",
     u"a;b;c;x;a;b;*",
     {And, Or, Xor, Near, Near, Near, Before, After, Near, Before, After},
     {Exact}},
    {"proximity of plain words",
     false,
     u"a;b;A;ab",
     u"a;b;ab;\"a b\";a-b;\"OR\";\"!b\";\"a|b\";\"a*b\"",
     {And, Or, Xor, Near, Before, After, Next},
     {Exact, IgnoreCase}},
    {"wildcards",
     true,
     kForms,
     u"abc;a*;*c;*b*;a?c;???;?b;[ab]*;[^a]*;[a|b]?c;*[bc];[a-c]b?;a**c;*;\"[^a]*\";b;ab-cab;a*-b",
     {And, Or, Xor, Near, Before, After},
     {Exact, IgnoreCase, IgnoreCase | IgnoreDiacritics}},
    {"phrases",
     true,
     u"a;b;ab",
     u"\"a b\";\"a, a\";\"a* b ab\";\"? ab\";\"* b\";\"??\";\"AND\";\"near/3\";\"-b\";\"a(b\";a;b",
     {And, Or, Near, Before, After, Next},
     {Exact}},
    {"fuzzy",
     true,
     kSimilar,
     u"tempor;dolor;dolores;temp*;\"tempor dolore\";LABOR;d?lor",
     {And, Or, Near, Before},
     {Fuzzy, Fuzzy | IgnoreCase}},
    {"folding of plain words",
     false,
     kForms,
     u"abc;äbc;Ab;\"e b\";É;\"abc, abd\";a",
     {And, Or, Near},
     {Exact, IgnoreCase, IgnoreDiacritics, IgnoreCase | IgnoreDiacritics}},
};

// One matcher for all that can be asked of a text, part by part.
void expectEqualsReference(QueryMatcher&& matcher, const ReferenceText& reference, const ReferenceTerm& query,
                           Range range) {
  std::vector<QueryOccurrence> found(3, {{0, 9}, u"of a text before"_s, true});
  ASSERT_EQ(matcher.contains(), reference.contains(query));
  for (const Range& part : {range, reference.wholeRange(), {range.location, 2}}) {
    const Range clipped = clippedRange(part, endOf(reference.wholeRange()));
    ASSERT_EQ(matcher.matches(part), reference.matches(query, clipped));
    ASSERT_EQ(dumpOf(matcher.occurrences(part)), dumpOf(reference.occurrences(query, clipped)));
    matcher.findOccurrences(found, part);
    ASSERT_EQ(dumpOf(found), dumpOf(reference.occurrences(query, clipped)));
  }
  for (const ExplainedTerm& each : matcher.explanation(SIZE_MAX)) {
    const ReferenceTerm term = referenceOf(*each.term);
    if (each.holds && !each.partner) {
      ASSERT_EQ(*each.holds, reference.matches(term, reference.wholeRange()));
    }
    if (each.term->isWord()) {
      ASSERT_EQ(each.places, reference.placesOf(term, reference.wholeRange()));
    }
  }
  ASSERT_FALSE(matcher.ranOutOfMemory());
}

// A matcher that has been asked about another text, and about an empty one.
void expectEqualsReferenceAfter(const std::u16string& before, const PreparedQuery& query, const std::u16string& text,
                                const ReferenceText& reference, const ReferenceTerm& term, Range range) {
  QueryMatcher matcher(query);
  ASSERT_FALSE(matcher.matches() || matcher.contains());
  matcher.setText(before);
  matcher.matches();
  matcher.occurrences(range);
  matcher.setText({});
  ASSERT_FALSE(matcher.matches() || matcher.contains());
  ASSERT_TRUE(matcher.occurrences({0, NSNotFound}).empty());
  ASSERT_FALSE(matcher.explanation(SIZE_MAX).front().holds);
  matcher.setText(before);
  matcher.contains();
  matcher.setText(text);
  expectEqualsReference(std::move(matcher), reference, term, range);
}

void expectEqualsReference(const Family& family) {
  QueryGenerator generator(family, static_cast<unsigned>(&family - kFamilies) + 1);
  int matched = 0;
  const int cases = 1500;
  std::u16string textBefore;
  for (int i = 0; i < cases; ++i) {
    const std::u16string text = generator.text();
    const ReferenceTerm expected = generator.group(2);
    const String query = generator.queryOf(expected);
    const auto parse = [&](const String& q) {
      return family.wildcard ? QueryTerms::initWithWildcard(q) : QueryTerms::initWithString(q);
    };
    const auto terms = parse(query);
    ASSERT_EQ(dumpOf(*terms), dumpOf(expected)) << query.toUTF8();

    const auto comparison = family.comparisons[generator.below(family.comparisons.size())];
    const bool upper = contains(comparison, IgnoreCase) && generator.below(2);
    const auto enumerator = FastWordEnumerator::enumeratorWithString(text, upper, false);
    ASSERT_TRUE(enumerator);
    const ReferenceText reference(text, comparison, family.wildcard);
    const Range range = generator.range(enumerator->length());
    SCOPED_TRACE("query: " + query.toUTF8() + "\ntext: \"" + String(text).toUTF8() + "\" from " +
                 std::to_string(range.location) + " for " + std::to_string(range.length) + " comparison " +
                 std::to_string(static_cast<int>(comparison)));

    const bool matches = reference.matches(expected, range);
    matched += matches;
    for (const String& written : {query, terms->standardizedQueryTerm(), terms->normalizedQueryTerm()}) {
      ASSERT_EQ(matchesString(*enumerator, *parse(written), nullptr, Mixed, 0, range.location, range.length, comparison,
                              family.wildcard),
                matches)
          << written.toUTF8();
    }
    ASSERT_EQ(containsString(*enumerator, *terms, comparison, family.wildcard), reference.contains(expected));
    ASSERT_EQ(dumpOf(queryOccurrences(*enumerator, *terms, range, comparison, family.wildcard)),
              dumpOf(reference.occurrences(expected, range)));
    const auto prepared = PreparedQuery::queryWithTerms(parse(query), comparison, family.wildcard);
    FastWordEnumerator::setSplitAsianWords(i % 3 == 0);  // no word here is divided, but it might be
    const auto onDemand = prepared->enumeratorWithString(text);
    if (!upper) expectEqualsReferenceAfter(textBefore, *prepared, text, reference, expected, range);
    FastWordEnumerator::setSplitAsianWords(false);
    const auto& asked = i % 3 == 2 ? enumerator : onDemand;
    expectEqualsReference(QueryMatcher(*prepared, *asked), reference, expected, range);
    textBefore = text;
  }
  EXPECT_GT(matched, cases / 10);  // neither outcome is rare
  EXPECT_LT(matched, cases - cases / 10);
}

TEST(QueryEvaluation, EqualsTheReference) {
  for (const Family& family : kFamilies) {
    SCOPED_TRACE(family.name);
    expectEqualsReference(family);
  }
}

// Texts of many places, with words that are longer than what is gathered at a time.
TEST(QueryEvaluation, ManyPlaces) {
  const std::u16string longWord = repeated(u"ab", 30);
  Chance chance(1);
  for (size_t kinds = 2; kinds <= 11; ++kinds) {
    const std::u16string_view pieces[] = {u"ab ", u"a",     u" ",   u"ba", u"\u00E4b, ", u"abab ",
                                          u"c-",  longWord, u"cab", u"B ", u"\xE9 a "};
    const std::u16string text = chance.text(900, pieces, kinds);
    for (const std::u16string& query :
         {std::u16string(u"a"), std::u16string(u"ab"), std::u16string(u"a*"), std::u16string(u"*b"),
          std::u16string(u"*ba*"), std::u16string(u"c?b*"), std::u16string(u"[ac][ab]*"), std::u16string(u"*[ab]a"),
          std::u16string(u"[^a]?b*"), std::u16string(u"\"ab a*\""), std::u16string(u"\"[ab]* c\""), longWord,
          longWord + u"*", std::u16string(u"*?[b-c]ab*"), std::u16string(u"[ab]")}) {
      for (const QueryComparison comparison : {Exact, IgnoreCase, IgnoreCase | IgnoreDiacritics}) {
        const auto prepared = PreparedQuery::queryWithTerms(QueryTerms::initWithWildcard(query), comparison, true);
        const auto words = prepared->enumeratorWithString(text);
        const ReferenceText reference(text, comparison, true);
        const Range range{static_cast<int64_t>(chance.below(text.size())), NSNotFound};
        const Range clipped = clippedRange(range, words->length());
        const ReferenceTerm term = referenceOf(prepared->terms());
        QueryMatcher matcher(*prepared, *words);
        EXPECT_EQ(matcher.matches(range), reference.matches(term, clipped)) << String(query).toUTF8();
        EXPECT_EQ(dumpOf(matcher.occurrences({0, NSNotFound})),
                  dumpOf(reference.occurrences(term, reference.wholeRange())))
            << String(query).toUTF8() << '\n'
            << String(text).toUTF8();
      }
    }
  }
}

// In long texts few literals are looked for together as long as they are not dense, and one by one behind. Without
// preparation each term is looked for alone.
TEST(QueryEvaluation, FewTermsInLongTexts) {
  Chance chance(4);
  constexpr std::u16string_view kTerms[] = {u"ab", u"abc*", u"*ba*", u"ca", u"caba", u"eteqzq*", u"\"ab ca\"", u"B*"};
  constexpr std::u16string_view kJoints[] = {u" OR ", u" AND ", u" NEAR/3 ", u" XOR ", u" BEFORE/2 "};
  constexpr std::u16string_view kWords[] = {u"ab ", u"abca, ", u"caba ", u"eteqzqe ", u"B ", u"c\u00E4b "};
  for (int i = 0; i < 600; ++i) {
    std::u16string text;
    for (size_t left = 2 + chance.below(4); left > 0; --left) {
      const std::u16string apart = repeated(u"zz ", left % 2 == 0 ? 3 + chance.below(60) : 0);
      while (text.size() % 2000 < 1900) (text += chance.oneOf(kWords)) += apart;
      text += repeated(u"zz ", 34);
    }
    std::u16string query(chance.oneOf(kTerms));
    for (size_t left = 1 + chance.below(4); left > 0; --left) (query += chance.oneOf(kJoints)) += chance.oneOf(kTerms);
    const QueryComparison comparison = i % 3 == 0 ? IgnoreCase : Exact;
    const bool wildcard = i % 5 > 1;
    const std::shared_ptr<const QueryTerms> terms =
        wildcard ? QueryTerms::initWithWildcard(query) : QueryTerms::initWithString(query);
    const auto prepared = PreparedQuery::queryWithTerms(terms, comparison, wildcard);
    const auto words = prepared->enumeratorWithString(text);
    SCOPED_TRACE(String(query).toUTF8() + '\n' + String(text).toUTF8());
    QueryMatcher matcher(*prepared, *words);
    const Range all{0, NSNotFound};
    const bool matches =
        matchesString(*words, *terms, nullptr, QueryOperator::Mixed, 0, 0, all.length, comparison, wildcard);
    EXPECT_TRUE(i % 2 == 0 || matcher.matches() == matches);
    EXPECT_EQ(dumpOf(matcher.occurrences(all)), dumpOf(queryOccurrences(*words, *terms, all, comparison, wildcard)));
    EXPECT_EQ(QueryMatcher(*prepared, *words).contains(), containsString(*words, *terms, comparison, wildcard));
  }
}

// Texts that differ in a unit from one that matches, where some units are looked at long before others.
TEST(QueryEvaluation, NearMisses) {
  const std::pair<std::u16string, std::u16string> cases[] = {{u"abcdefgh", u"abcdefgh"},
                                                             {u"[ab]c[de]f[gh]*", u"acdfgx"},
                                                             {u"c?nt*ct*", u"contract"},
                                                             {u"ab*ba", u"abba"},
                                                             {u"ab*bb*bb*", u"abbbbb"},
                                                             {u"\"abcdefghijkl mnopqrst\"", u"abcdefghijkl mnopqrst"},
                                                             {u"\"*efghi mno\"", u"aefghi mno"},
                                                             {u"*bc[de]", u"abcd"},
                                                             {u"\"ab cdefghijklmn\"", u"ab cdefghijklmn"}};
  for (const auto& [query, match] : cases) {
    std::u16string text = match;
    for (size_t i = 0; i < match.size(); ++i) {
      for (const std::u16string_view unit : {u"z", u"\u00E9", u" ", u""}) {
        text += u" . " + match.substr(0, i);
        (text += unit) += match.substr(i + 1);
      }
    }
    for (const QueryComparison comparison : {Exact, IgnoreCase}) {
      const auto prepared = PreparedQuery::queryWithTerms(QueryTerms::initWithWildcard(query), comparison, true);
      const ReferenceText reference(text, comparison, true);
      SCOPED_TRACE(String(query).toUTF8());
      QueryMatcher matcher(*prepared);
      matcher.setText(text);
      expectEqualsReference(std::move(matcher), reference, referenceOf(prepared->terms()), reference.wholeRange());
    }
  }
}

// Counting words over distances of many units, to both ends of the text.
TEST(QueryEvaluation, DistancesOverLongWords) {
  Chance chance(3);
  for (int i = 0; i < 400; ++i) {
    std::u16string text = chance.text(chance.below(3), u" .");
    for (size_t left = 5 + chance.below(60); left > 0; --left) {
      text += chance.below(4) == 0 ? std::u16string(1, chance.oneOf(std::u16string_view(u"ab")))
                                   : std::u16string(1 + chance.below(i % 2 == 0 ? 8 : 90), u'c');
      text.append(1 + chance.below(2), u' ');
    }
    if (i % 7 == 0) text += u"日本語";
    const std::string query = "a NEAR/" + std::to_string(1 + chance.below(40)) + " b AFTER/3 c";
    const std::shared_ptr<const QueryTerms> terms = QueryTerms::initWithWildcard(String::fromUTF8(query));
    const auto prepared = PreparedQuery::queryWithTerms(terms, Exact, true);
    FastWordEnumerator::setSplitAsianWords(i % 3 == 0 && i % 7 != 0);
    const auto words = prepared->enumeratorWithString(text);
    FastWordEnumerator::setSplitAsianWords(false);
    const ReferenceText reference(text, Exact, true);
    const Range range{static_cast<int64_t>(chance.below(9)), static_cast<int64_t>(chance.below(2 * text.size()))};
    SCOPED_TRACE(query + '\n' + String(text).toUTF8());
    expectEqualsReference(QueryMatcher(*prepared, *words), reference, referenceOf(*terms),
                          clippedRange(range, words->length()));
  }
}

// Terms joined by or of which most are absent, between others, in groups and relations.
std::u16string manyTerms(Chance& chance, int depth) {
  static constexpr std::u16string_view kSomeTerms[] = {u"ab",
                                                       u"b*",
                                                       u"*ab",
                                                       u"\"ab b\"",
                                                       u"a",
                                                       u"NOT ab",
                                                       u"c?b",
                                                       u"\xE4"
                                                       u"b"};
  static constexpr std::u16string_view kJoints[] = {u" AND ", u" XOR ", u" NEAR/2 ", u" AND NOT "};
  std::u16string query;
  for (size_t left = 9 + chance.below(12); left > 0; --left) {
    if (!query.empty()) query += chance.below(12) > 0 ? u" OR " : chance.oneOf(kJoints);
    if (depth > 0 && chance.below(12) == 0) {
      query += u'(' + manyTerms(chance, depth - 1) + u')';
    } else if (chance.below(4) > 0) {
      query += chance.text(2 + chance.below(3), u"bcdefg");
    } else {
      query += chance.oneOf(kSomeTerms);
    }
  }
  return query;
}

TEST(QueryEvaluation, ManyTerms) {
  Chance chance(2);
  int matched = 0;
  for (int i = 0; i < 1500; ++i) {
    constexpr std::u16string_view kWords[] = {u"AB ", u"ab, ", u"cb ", u"de ",  u"fgb ",
                                              u"b ",  u"ee-",  u"zz ", u"abcb "};
    const std::u16string text = chance.text(1 + chance.below(8), kWords);
    std::u16string query = u'(' + manyTerms(chance, 2) + u')';
    const std::u16string_view ends[] = {u"", u" AND zz", u" NEAR/2 (ab OR zz)", u" NEXT de"};
    query += chance.oneOf(ends);
    const QueryComparison comparisons[] = {Exact, IgnoreCase, IgnoreCase | IgnoreDiacritics};
    const QueryComparison comparison = chance.oneOf(comparisons);
    const bool wildcard = i % 3 > 0;
    const std::shared_ptr<const QueryTerms> terms =
        wildcard ? QueryTerms::initWithWildcard(query) : QueryTerms::initWithString(query);
    const auto prepared = PreparedQuery::queryWithTerms(terms, comparison, wildcard);
    const auto words = i % 2 == 0 ? prepared->enumeratorWithString(text)
                                  : FastWordEnumerator::enumeratorWithString(text, i % 5 == 0, false);
    const ReferenceText reference(text, comparisonOn(*words, comparison), wildcard);
    SCOPED_TRACE("query: " + String(query).toUTF8() + "\ntext: " + String(text).toUTF8());
    const ReferenceTerm root = referenceOf(*terms);
    matched += reference.matches(root, reference.wholeRange());
    const Range range{static_cast<int64_t>(chance.below(3)), static_cast<int64_t>(chance.below(20))};
    const Range clipped = clippedRange(range, words->length());
    expectEqualsReference(QueryMatcher(*prepared, *words), reference, root, clipped);
    if (i % 2 == 0) expectEqualsReferenceAfter(u"ab de " + query, *prepared, text, reference, root, clipped);
  }
  EXPECT_GT(matched, 300);
  EXPECT_LT(matched, 1200);
}

// What several places of one leaf give to ranges with one beginning is rare to overlap in random queries.
TEST(QueryEvaluation, PlacesThatGiveDifferentEnds) {
  const Cases<const char*, std::u16string, String, bool> cases = {
      {"what only a place before gives", u"n b n y c q", u"(((b AND y AND NOT c) AFTER/9 n) OR q) BEFORE/2 y"_s, false},
      {"and with that place", u"n b n y c q", u"(((b AND y AND NOT c) AFTER/9 n) OR q) BEFORE/3 y"_s, true},
      {"a later place gives a part of it", u"n b n y w c q",
       u"((((b AND NOT c) OR (y XOR w)) AFTER/9 n) OR q) BEFORE/4 w"_s, true},
      {"a later place gives all ends earlier", u"v n b n y w", u"((NOT b OR w OR v) AFTER/9 n) BEFORE/4 y"_s, true},
  };
  for (const auto& [why, text, query, matches] : cases) {
    const auto terms = QueryTerms::initWithWildcard(query);
    const ReferenceText reference(text, Exact, true);
    EXPECT_EQ(reference.matches(referenceOf(*terms), reference.wholeRange()), matches) << why;
    EXPECT_EQ(terms->matchesString(text, Exact), matches) << why;
  }
}

// Places inside words lie behind the beginnings of these.
TEST(QueryOccurrences, NearInsideWords) {
  const Cases<String, std::string> cases = {{u"b NEAR/1 d"_s, "1+1 *b*\n4+1 *d*\n"},
                                            {u"b NEAR/2 d"_s, "1+1 *b* primary\n4+1 *d* primary\n"},
                                            {u"d AFTER/1 a"_s, "0+1 *a*\n4+1 *d*\n"},
                                            {u"d AFTER/2 a"_s, "0+1 *a* primary\n4+1 *d* primary\n"}};
  for (const auto& [query, expected] : cases) {
    const auto words = FastWordEnumerator::enumeratorDividingOnDemand(u"ab cde"_s, false);
    const auto terms =
        QueryTerms::_initWithString(query, false, And, QueryTerms::kDefaultDistance, And, false, true, 0);
    EXPECT_EQ(dumpOf(queryOccurrences(*words, *terms, {0, NSNotFound}, Exact, false)), expected) << query.toUTF8();
  }
}

bool record(void* argument, const String& term, int64_t location, int64_t length, bool primary) {
  *static_cast<std::string*>(argument) += dumpOf({{{location, length}, term, primary}});
  return term == u"stop"_s;
}

TEST(QueryOccurrences, RunningEndDecidesWhatIsReported) {
  const Cases<const char*, std::vector<QueryOccurrence>, std::string, int64_t> cases = {
      {"nothing", {}, "", 0},
      {"sorted by location", {{{5, 1}, u"b", false}, {{0, 5}, u"a", true}}, "0+5 a primary\n5+1 b\n", 2},
      {"the longer first", {{{0, 2}, u"b", false}, {{0, 5}, u"a", false}}, "0+5 a\n", 1},
      {"overlapping", {{{0, 4}, u"a", true}, {{3, 4}, u"b", true}, {{6, 2}, u"c", true}}, "0+4 a primary\n", 1},
      {"one left out lowers the end",
       {{{0, 10}, u"long", true}, {{2, 2}, u"inner", true}, {{5, 3}, u"later", false}, {{7, 1}, u"x", true}},
       "0+10 long primary\n5+3 later\n",
       2},
      {"a stop is not counted",
       {{{0, 1}, u"a", true}, {{1, 1}, u"stop", false}, {{2, 1}, u"b", true}},
       "0+1 a primary\n1+1 stop\n",
       1},
  };
  for (const auto& [why, occurrences, expected, count] : cases) {
    std::string reported;
    EXPECT_EQ(callHandlerWithOccurrences(occurrences, record, &reported), count) << why;
    EXPECT_EQ(reported, expected) << why;
  }
  EXPECT_EQ(callHandlerWithOccurrences({{{0, 1}, u"a", true}}, nullptr), 0);
}

TEST(QueryFinding, NextAndPreviousQueryTerm) {
  const String text = u"one two, three  two Three"_s;
  const Range all{0, NSNotFound};
  const Cases<const char*, String, Range, bool, bool, bool, Range, Range> cases = {
      {"any term", u"two AND missing"_s, all, true, false, true, {4, 3}, {16, 3}},
      {"case", u"three"_s, all, true, false, true, {9, 5}, {9, 5}},
      {"ignoring case", u"three"_s, all, false, false, true, {9, 5}, {20, 5}},
      {"negated terms are not looked for", u"NOT two NOT (one)"_s, all, true, false, true, kAbsentRange, kAbsentRange},
      {"in a range", u"two"_s, {5, 13}, true, false, true, kAbsentRange, kAbsentRange},
      {"anchored", u"two"_s, {4, 15}, true, true, true, {4, 3}, {16, 3}},
      {"anchored elsewhere", u"two"_s, {3, 17}, true, true, true, kAbsentRange, kAbsentRange},
      {"the longest", u"two OR \"two, three\""_s, all, true, false, true, {4, 10}, {16, 3}},
      {"an exact phrase", u"\"two three\""_s, all, false, false, true, {16, 9}, {16, 9}},
      {"a tolerant phrase", u"\"two three\""_s, all, false, false, false, {4, 10}, {16, 9}},
      {"no wildcards", u"t*"_s, all, true, false, true, kAbsentRange, kAbsentRange},
      {"an empty range", u"two"_s, {4, 0}, true, false, true, kAbsentRange, kAbsentRange},
      {"an empty query", u""_s, all, true, true, true, kAbsentRange, kAbsentRange},
  };
  for (const auto& [why, query, range, caseSensitive, anchored, exactPhrase, next, previous] : cases) {
    const auto terms = QueryTerms::initWithString(query);
    EXPECT_EQ(findNextQueryTerm(text, *terms, false, range, caseSensitive, anchored, exactPhrase), next) << why;
    EXPECT_EQ(findPreviousQueryTerm(text, *terms, false, range, caseSensitive, anchored, exactPhrase), previous) << why;
  }
}

}  // namespace
}  // namespace velan
