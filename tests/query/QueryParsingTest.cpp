#include <span>

#include "QueryReference.h"
#include "tests/Testing.h"
#include "velan/query/QueryMatching.h"
#include "velan/query/QueryTokens.h"

namespace velan {
namespace {

// What random queries, which are written as people do, leave open; they have all that wildcards allow.
TEST(QueryParsing, WordsMode) {
  const Cases<const char*, String, std::string> cases = {
      {"nothing", u""_s, ""},
      {"symbols", u"a&b|c^d~e"_s, "a & b | c ^ d NEAR/10 e"},
      {"the last operator counts", u"a AND OR b"_s, "a | b"},
      {"operators alone", u"AND OR NEAR/3 ~ |"_s, ""},
      {"an operator at the end", u"a OR"_s, "a"},
      {"an operator before the first term", u"OR a NEAR/2 b"_s, "a NEAR/2 b"},

      {"NOT toggles", u"NOT NOT a not b"_s, "a & !b"},
      {"a minus sets, a plus clears", u"--a NOT -b -+c"_s, "!a & !b & c"},
      {"negation with operators in either order", u"a NOT OR b NOT NEAR/2 c NEXT NOT d"_s,
       "a | !b NEAR/2 !c NEXT/1 !d"},
      {"signs inside tokens", u"e-mail c++ b- a+b"_s, "e-mail & c & b & a+b"},
      {"an exclamation mark inside a token", u"a!b"_s, "a & !b"},
      {"signs alone", u"+ - a"_s, "!a"},

      {"default distances", u"a NEAR b BEFORE c AFTER d NEXT e ~f"_s,
       "a NEAR/10 b BEFORE/10 c AFTER/10 d NEXT/1 e NEAR/10 f"},
      {"a pending distance is kept", u"a NEAR/2 NEAR b"_s, "a NEAR/2 b"},
      {"leading digits", u"a NEAR/5x b NEAR/x c NEAR/0 d"_s, "a NEAR/5 b NEAR/0 c NEAR/0 d"},
      {"no keywords", u"NEARx NEAR/ NEXTT AFTERWARDS BEFORE/ ANDNOT"_s,
       "NEARx & NEAR/ & NEXTT & AFTERWARDS & BEFORE/ & ANDNOT"},

      {"curly quotes", u"\u201Ca b\u201D \u201Ec\u201F"_s, "\"a b\" & \"c\""},
      {"any quote closes", u"\"a\u201D b"_s, "\"a\" & b"},
      {"no symbols in phrases", u"\"a|b -(c) [d]\""_s, "\"a|b -(c) [d]\""},
      {"a phrase ends a token", u"a\"b c\"d"_s, "a & \"b c\" & d"},
      {"an unclosed phrase", u"a \"b c"_s, "a & \"b c\""},
      {"an empty phrase", u"a \"\" b"_s, "a & b"},

      {"nothing pending inside", u"a NEAR/2 NOT (b c NEAR d) e"_s, "a NEAR/2 !(b & c NEAR/10 d) & e"},
      {"nothing pending after", u"a (b OR NOT) c"_s, "a & (b) & c"},
      {"too many closed", u"a) b)) c"_s, "a & b & c"},
      {"empty groups", u"a () b (()) ( [ ] )"_s, "a & b"},
      {"brackets group", u"a [b OR c] d"_s, "a & (b | c) & d"},
  };
  for (const auto& [why, query, tree] : cases) {
    EXPECT_EQ(dumpOf(*QueryTerms::initWithString(query)), tree) << why;
    for (const QueryToken& token : queryTokens(query, false)) {
      const auto source =
          query.view().substr(static_cast<size_t>(token.range.location), static_cast<size_t>(token.range.length));
      EXPECT_NE(source.find(token.word.view()), source.npos) << why;
      EXPECT_FALSE(source.empty() || source.front() == u' ' || source.back() == u' ') << why;
    }
  }
  EXPECT_EQ(dumpOf(*QueryTerms::initWithString(String())), "");
}

TEST(QueryParsing, DefaultsAndSubstrings) {
  EXPECT_EQ(dumpOf(*QueryTerms::initWithString(u"a b AND c NEAR d"_s, QueryOperator::Or, 3)), "a | b & c NEAR/3 d");
  EXPECT_EQ(dumpOf(*QueryTerms::initWithString(u"a b (c d) NEAR/2 e f"_s, QueryOperator::Near, 4)),
            "a NEAR/4 b NEAR/4 (c NEAR/4 d) NEAR/2 e NEAR/4 f");
  const auto terms = QueryTerms::_initWithString(u"a *b* (*c) \"d e\" f* *"_s, true, QueryOperator::And, 10,
                                                 QueryOperator::Near, true, true, 5);
  EXPECT_EQ(dumpOf(*terms), "*a* & *b* & (**c*) & \"d e\" & *f** & *");
  EXPECT_EQ(terms->queryOperator(), QueryOperator::Near);
  EXPECT_EQ(terms->proximityDistance(), 5);
  EXPECT_TRUE(terms->queryNot());
  EXPECT_TRUE(terms->children()[0]->querySubstring());
}

TEST(QueryParsing, CommonOperator) {
  const Cases<String, QueryOperator> cases = {
      {u""_s, QueryOperator::Mixed},
      {u"a"_s, QueryOperator::Mixed},
      {u"a b"_s, QueryOperator::And},
      {u"OR a AND b AND (c OR d)"_s, QueryOperator::And},
      {u"a OR b | c"_s, QueryOperator::Or},
      {u"a NEAR/2 b NEAR/3 c"_s, QueryOperator::Near},
      {u"a OR b c OR d"_s, QueryOperator::Mixed},
  };
  for (const auto& [query, common] : cases) {
    EXPECT_EQ(QueryTerms::initWithString(query)->commonOperator(), common) << query.toUTF8();
  }
}

TEST(QueryParsing, PropertiesAndWordLists) {
  const Cases<String, bool, bool, int64_t, String> cases = {
      {u""_s, false, false, 0, u""_s},
      {u"NOT abc"_s, true, false, 0, u""_s},
      {u"abc* OR ?x-y OR b[xyz]"_s, true, false, 2, u"abc* ?x-y b[xyz]"_s},
      {u"\"a - b\" OR abc"_s, true, false, 2, u"a - b abc"_s},  // found in "a b"
      {u"abc (de NEAR/2 \"f ghi\") abc NOT (x)"_s, true, true, 2, u"abc de f ghi"_s},
  };
  for (const auto& [query, valid, proximity, minTermLen, plusString] : cases) {
    const auto terms = QueryTerms::initWithWildcard(query);
    EXPECT_EQ(terms->isValid(), valid) << query.toUTF8();
    EXPECT_EQ(terms->usesProximity(), proximity) << query.toUTF8();
    EXPECT_EQ(terms->minTermLen(), minTermLen) << query.toUTF8();
    EXPECT_EQ(terms->plusString(), plusString) << query.toUTF8();
  }
  using Strings = std::vector<String>;
  const auto terms = QueryTerms::initWithWildcard(u"ab*-c \"d ab\" NOT x"_s);
  EXPECT_EQ(terms->plusTerms(), (Strings{u"ab*-c"_s, u"d ab"_s}));
  EXPECT_EQ(terms->plusParts(), (Strings{u"ab*-c"_s, u"d"_s, u"ab"_s}));
  EXPECT_EQ(terms->plusWords(), (Strings{u"ab"_s, u"c"_s, u"d"_s}));
  EXPECT_EQ(terms->plusWildcards(), (Strings{u"ab*"_s, u"c"_s, u"d"_s, u"ab"_s}));
  EXPECT_EQ(stringsForQueryTerm(*terms), (Strings{u"ab*-c"_s, u"d ab"_s, u"x"_s}));
}

TEST(QuerySerializing, Styles) {
  const String query = u"a NOT (b OR -c) NEAR/3 \"d e\" XOR f OPT g NEXT h"_s;
  EXPECT_EQ(standardizedQueryTerm(query), u"a AND NOT (b OR NOT c) NEAR/3 \"d e\" XOR f OPT g NEXT/1 h"_s);
  EXPECT_EQ(normalizedQueryTerm(query), u"a -(b | -c) NEAR/3 \"d e\" ^ f OPT g NEXT/1 h"_s);
  const auto style = QueryStyle::ExplicitAnd | QueryStyle::Or | QueryStyle::Parentheses;
  EXPECT_EQ(queryTermsForOperators(u"a b OR NOT c"_s, style, {{u"AND"_s, u"UND"_s}, {u"NOT"_s, u"NICHT"_s}}),
            u"a UND b OR NICHT c"_s);
  EXPECT_EQ(queryTermsForOperators(u"a -b"_s, style | QueryStyle::AndNot, {}), u"a ANDNOT b"_s);
  EXPECT_EQ(queryTermsForOperators(u"a -b c"_s, QueryStyle::Plus | QueryStyle::SymbolicNot, {}), u"+a -b +c"_s);
}

TEST(QuerySelfTest, HoldsUnderTheReferenceToo) {
  int64_t count = 0;
  const QueryTestCase* cases = QueryTerms::getTestCases(&count);
  ASSERT_EQ(count, 48);
  const String text = QueryTerms::testString();
  const ReferenceText reference(std::u16string(text.view()), QueryComparison::IgnoreCase, true);
  for (const QueryTestCase& c : std::span(cases, 48)) {
    const auto terms = QueryTerms::queryTermsWithWildcard(String::fromUTF8(c.query));
    EXPECT_EQ(reference.matches(referenceOf(*terms), {0, text.length()}), c.matches) << c.query;
    EXPECT_EQ(terms->matchesString(text, QueryComparison::IgnoreCase), c.matches) << c.query;
  }
  const CapturedLog log;
  EXPECT_TRUE(QueryTerms::test());
  ASSERT_EQ(log.messages.size(), 48u);
  EXPECT_EQ(log.messages[0], "Success: tempor AND duo => Yes");
  EXPECT_EQ(log.messages[1], "Success: tempor AND NOT duo => No");
  EXPECT_EQ(log.messages[47], "Success: tempor NEXT NOT missing => Yes");
}

}  // namespace
}  // namespace velan
