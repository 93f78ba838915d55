// A document that a query matches must never be refused.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>

#include "velan/query/filter/ByteSearchInternal.h"
#include "velan/query/filter/QueryFilter.h"

namespace velan {
namespace {

std::string utf16(const String& text, bool bigEndian) {
  std::string bytes;
  for (const unichar c : text) {
    const char pair[] = {static_cast<char>(bigEndian ? c >> 8 : c), static_cast<char>(bigEndian ? c : c >> 8)};
    bytes.append(pair, 2);
  }
  return bytes;
}

std::unique_ptr<const PreparedQuery> prepared(const String& query, QueryComparison comparison, bool wildcard) {
  return PreparedQuery::queryWithTerms(
      wildcard ? QueryTerms::initWithWildcard(query) : QueryTerms::initWithString(query), comparison, wildcard);
}

TEST(QueryFilter, KnowsWhatATextMustHold) {
  const struct {
    String query;
    const char* required;  // groups between blanks, their literals between commas
  } cases[] = {
      {u"lamp keeper", "KEEPER LAMP"},
      {u"lamp or keeper", "LAMP,KEEPER"},
      {u"(lamp keeper) xor (dog barking)", "KEEPER,BARKING"},
      {u"lamp not keeper", "LAMP"},
      {u"not lamp", ""},
      {u"not (lamp keeper)", ""},
      {u"keeper or not lamp", ""},
      {u"lamp opt keeper", "LAMP"},
      {u"lamp near/3 (old or keeper)", "LAMP OLD,KEEPER"},
      {u"lamp near/3 not keeper", "LAMP"},
      {u"*light?ouse* and [abc]", "LIGHT"},
      {u"l[ai]mps*", "MPS"},
      {u"\"old lamp? *\"", "LAMP OLD"},
      {u"*", ""},
      {u"lamp or *", ""},
      {u"lamp or %", "LAMP"},
  };
  for (const auto& c : cases) {
    std::string required;
    for (const auto& group : prepared(c.query, QueryComparison::IgnoreCase, true)->requiredLiterals()) {
      if (!required.empty()) required += ' ';
      for (const String& literal : group) {
        if (&literal != &group.front()) required += ',';
        required += literal.toUTF8();
      }
    }
    EXPECT_EQ(required, c.required) << c.query.toUTF8();
  }
  const auto fuzzy = prepared(u"lamp keeper*", QueryComparison::IgnoreCase | QueryComparison::Fuzzy, true);
  EXPECT_EQ(fuzzy->requiredLiterals(), (std::vector<std::vector<String>>{{u"KEEPER"_s}}));
}

// Words and queries of a few letters, among them those that fold to others of another length in UTF-8.
class RandomSearches {
 public:
  size_t below(size_t bound) { return _random() % bound; }

  void forgetWords() { _words.clear(); }

  std::u16string word() {
    constexpr std::u16string_view kLetters[] = {
        u"s",      u"S",      u"\u017F", u"i",      u"I",      u"\u0131",     u"k", u"e",      u"\u00E9", u"\u00C9",
        u"\u1EC7", u"\u044F", u"\u042F", u"\u65E5", u"\u672C", u"\U0001F600", u"7", u"\uFFFD", u"\u0130", u"t"};
    std::u16string word;
    const size_t few = 2 + below(std::size(kLetters) - 1);
    for (size_t length = 1 + below(below(8) ? 5 : 50); length > 0; --length) word += kLetters[below(few)];
    return word;
  }

  std::u16string text() {
    std::u16string text;
    for (size_t words = below(12); words > 0; --words) {
      text += below(3) && !_words.empty() ? _words[below(_words.size())] : word();
      text += u" \n-,"[below(4)];
    }
    return text;
  }

  std::u16string query(int depth) {
    constexpr std::u16string_view kOperators[] = {u" ",        u" and ",    u" or ",  u" or ",      u" xor ",
                                                  u" near/2 ", u" before ", u" opt ", u" and not ", u" or not "};
    std::u16string query;
    for (size_t terms = below(40) ? 1 + below(3) : 40; terms > 0; --terms) {
      if (!query.empty()) query += below(30) ? kOperators[below(std::size(kOperators))] : u" or ";
      if (depth > 0 && below(4) == 0) {
        query += (below(4) ? u"(" : u"not (") + this->query(depth - 1) + u")";
      } else {
        query += term();
      }
    }
    return query;
  }

 private:
  std::u16string term() {
    std::u16string term = word();
    _words.push_back(term);
    if (below(3) == 0) term[below(term.size())] = u"*?"[below(2)];
    if (below(8) == 0) term += u"[sk]";
    if (below(4) == 0) term += u'*';
    return below(6) ? term : u"\"" + term + u" " + word() + u"\"";
  }

  std::mt19937 _random{1};
  std::vector<std::u16string> _words;  // of the queries so far
};

TEST(QueryFilter, NeverRefusesWhatMatches) {
  FastWordEnumerator::setSplitAsianWords(true);
  int refused = 0;
  int matched = 0;
  RandomSearches random;
  for (int i = 0; i < 3000; ++i) {
    random.forgetWords();
    const String text(random.query(2));
    const auto comparison = static_cast<QueryComparison>(random.below(16) ? random.below(4) : random.below(8));
    const auto query = prepared(text, comparison, random.below(4) != 0);
    const auto filter = QueryFilter::filterWithQuery(*query);
    for (int k = 0; k < 8; ++k) {
      const String document(random.text());
      const auto words = query->enumeratorWithString(document);
      const bool matches = words && QueryMatcher(*query, *words).matches();
      const bool passes = filter->canMatch(document.toUTF8(), StringEncoding::UTF8);
      EXPECT_TRUE(passes || !matches) << text.toUTF8() << '\n' << document.toUTF8();
      EXPECT_EQ(filter->canMatch(utf16(document, true), StringEncoding::UTF16BigEndian), passes) << text.toUTF8();
      EXPECT_EQ(filter->canMatch(utf16(u"\uFEFF"_s, false).append(utf16(document, false)), StringEncoding::UTF16),
                passes);
      refused += !passes;
      matched += matches;
    }
  }
  FastWordEnumerator::setSplitAsianWords(false);
  EXPECT_GT(refused, 4000);
  EXPECT_GT(matched, 2000);
}

// Malformed bytes become U+FFFD, which a query may look for, but they divide nothing else.
TEST(QueryFilter, PassesWhatOnlyDecodingTells) {
  EXPECT_TRUE(QueryFilter::filterWithQuery(*prepared(u"\"ax\uFFFDb\"", QueryComparison::Exact, false))
                  ->canMatch("ax\xFF"
                             "b",
                             StringEncoding::UTF8));
  const auto filter = QueryFilter::filterWithQuery(*prepared(u"Straße", QueryComparison::IgnoreCase, true));
  EXPECT_TRUE(
      filter->canMatch("\xC3 stra\xC3\x9F"
                       "e\xC3",
                       StringEncoding::UTF8));
  EXPECT_FALSE(filter->canMatch("\xC3 stra\xC3 e", StringEncoding::UTF8));
  EXPECT_TRUE(
      filter->canMatch("stra\xDF"
                       "e",
                       StringEncoding::WindowsLatin1));
}

TEST(QueryFilter, FindsManyLiteralsAtBothEnds) {
  for (const std::u16string_view beginning : {u"", u"qzw", u"é", u"日"}) {
    std::u16string all;
    std::vector<std::u16string> words;
    for (const unichar one : std::u16string_view(u"bcdfgkst")) {
      for (const unichar two : std::u16string_view(u"hjklmn")) {
        words.emplace_back(beginning).append({one, two});
        all += (all.empty() ? u"" : u" or ") + words.back();
      }
    }
    const auto filter = QueryFilter::filterWithQuery(*prepared(String(all), QueryComparison::IgnoreCase, true));
    for (const std::u16string& word : words) {
      for (const std::u16string& text : {word, word + u" xyz xyz xyz", u"xyz xyz xyz " + word}) {
        EXPECT_TRUE(filter->canMatch(String(text).toUTF8(), StringEncoding::UTF8)) << String(text).toUTF8();
      }
    }
    for (const String text : {u"", u"b", u"xyz xyz bxh", u"日é qzw"}) {
      EXPECT_FALSE(filter->canMatch(text.toUTF8(), StringEncoding::UTF8)) << text.toUTF8();
    }
  }
}

TEST(QueryFilter, TellsWhatLiteralsAreMadeOf) {
  const auto filter = QueryFilter::filterWithQuery(*prepared(u"kiosk or été", QueryComparison::IgnoreCase, true));
  for (const unichar c : std::u16string_view(u"kKıſSéÉtT")) EXPECT_TRUE(filter->mayHold(c)) << uint32_t{c};
  for (const unichar c : std::u16string_view(u"eEaß-")) EXPECT_FALSE(filter->mayHold(c)) << uint32_t{c};
  EXPECT_TRUE(filter->mayJoin('s', 'K') && filter->mayJoin(QueryFilter::kEdge, 'K'));
  EXPECT_FALSE(filter->mayJoin('k', 's') || filter->mayJoin('s', QueryFilter::kEdge));
}

TEST(ByteSearch, EveryKernelEqualsTheReference) {
  std::mt19937 random(1);
  for (size_t round = 0; round < 2000; ++round) {
    PrintTable table;
    for (unsigned kind = 0; kind < 8; ++kind) {
      BytePrint print;
      for (auto& bytes : print) {
        for (size_t i = random() % 4; i > 0; --i) bytes.set(random() % 256);
      }
      table.add(print, kind);
    }
    const size_t length = random() % 300;
    const size_t shift = random() % 3;
    const auto bytes = std::make_unique<uint8_t[]>(length + shift);
    for (size_t i = 0; i < length + shift; ++i) bytes[i] = static_cast<uint8_t>(random() % (round % 2 ? 256 : 3));
    for (const auto& kernel : findPrintKernels()) {
      for (size_t from = 0; from + kPrintLength <= length; ++from) {
        const size_t expected = findPrintScalar(bytes.get() + shift, from, length, table);
        ASSERT_EQ(kernel.run(bytes.get() + shift, from, length, table), expected) << kernel.name << ' ' << length;
      }
    }
  }
}

}  // namespace
}  // namespace velan
