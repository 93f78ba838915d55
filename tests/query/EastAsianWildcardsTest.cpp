// Patterns in text without spaces: whether they find anything must not depend on where the dictionary divides it.

#include "tests/Testing.h"
#include "tests/platform/files/TemporaryFolder.h"
#include "velan/query/PreparedQuery.h"
#include "velan/query/words/EastAsianWords.h"
#include "velan/wildcard/WildcardMatching.h"

namespace velan {
namespace {

String documentAt(const std::string& name) { return String::fromUTF8(contentsOf("../../examples/documents/" + name)); }

std::vector<Range> wordsOf(const FastWordEnumerator& text) {
  std::vector<Range> words;
  text.enumerateWordsInRange({0, text.length()}, [&](const FastWordEnumerator&, int64_t start, int64_t length) {
    words.push_back({start, length});
    return false;
  });
  return words;
}

std::vector<Range> placesOf(const std::u16string& pattern, const String& document) {
  const auto query = PreparedQuery::queryWithTerms(QueryTerms::initWithWildcard(pattern), QueryComparison::Exact, true);
  const auto dividedOnDemand = query->enumeratorWithString(document);
  const std::vector<Range> places = QueryMatcher(*query, *dividedOnDemand).explanation(1).back().places;
  QueryMatcher matcher(*query);
  matcher.setText(document.view());
  EXPECT_EQ(matcher.explanation(1).back().places, places);
  return places;
}

// By definition: of all rows of words that touch each other those that match, without those that hold another one.
std::vector<Range> expectedPlaces(const std::u16string& pattern, const FastWordEnumerator& text) {
  const std::vector<Range> words = wordsOf(text);
  std::vector<Range> places;
  for (size_t last = 0; last < words.size(); ++last) {
    for (size_t first = last + 1; first-- > 0;) {
      if (first < last && endOf(words[first]) != words[first + 1].location) break;
      const unichar* start = text.characters() + words[first].location;
      const unichar* end = text.characters() + endOf(words[last]);
      if (!stringMatchesUnixWildcard(start, end, pattern.data(), pattern.data() + pattern.size())) continue;
      if (places.empty() || words[first].location > places.back().location) {
        places.push_back({words[first].location, end - start});
      }
      break;
    }
  }
  return places;
}

TEST(EastAsianWildcards, FindsTheShortestRowsOfWords) {
  FastWordEnumerator::setSplitAsianWords(true);
  Chance chance(1);
  const char* const names[] = {"letters/morita-bijutsukan.txt", "articles/hyaku-no-akari-ten.txt",
                               "letters/lin-dengta-zhaopian.txt", "notes/exhibition-labels-draft.txt"};
  int found = 0;
  int severalWords = 0;
  for (size_t i = 0; i < 6000; ++i) {
    const String document = documentAt(names[i % 4]);
    const auto text = FastWordEnumerator::enumeratorWithString(document);
    const auto start = chance.below(static_cast<size_t>(document.length()) - 8);
    std::u16string pattern(document.view().substr(start, 1 + chance.below(8)));
    for (unichar& c : pattern) {
      if (chance.below(2 + i % 8) == 0 ||
          text->isWordSeparatorAtIndex(static_cast<int64_t>(start) + (&c - pattern.data()))) {
        c = chance.below(2) ? u'*' : u'?';
      }
    }
    if (chance.below(3) == 0) pattern += u"[\u3041-\u30FF]";
    if (chance.below(2)) pattern.insert(0, 1, u'*');
    if (chance.below(2)) pattern += u'*';
    if (pattern.find_first_of(u"*?[") == pattern.npos || pattern.find_first_not_of(u"*?") == pattern.npos) continue;
    const std::vector<Range> places = placesOf(pattern, document);
    EXPECT_EQ(places, expectedPlaces(pattern, *text)) << String(pattern).toUTF8();
    found += !places.empty();
    for (const Range& place : places) severalWords += endOf(text->rangeOfWordAtIndex(place.location)) < endOf(place);
  }
  FastWordEnumerator::setSplitAsianWords(false);
  EXPECT_GT(found, 600);
  EXPECT_GT(severalWords, 600);
}

}  // namespace
}  // namespace velan
