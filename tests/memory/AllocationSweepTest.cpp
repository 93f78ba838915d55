// Too little memory, over the public operations: with each allocation failing in turn, once and from then on, an
// operation gives the right answer, its neutral result, or, where lists and strings come back by value or are filled,
// `std::bad_alloc`; a buffer that it edits is complete or as it was before. New operations that allocate get a line in
// the table, unless they need ICU's break iterators (East Asian words), which do not survive it themselves.

#include <functional>
#include <new>
#include <optional>

#include "tests/Testing.h"
#include "tests/platform/files/TemporaryFolder.h"
#include "velan/base/Base64.h"
#include "velan/base/MutableString.h"
#include "velan/base/dates/CivilTime.h"
#include "velan/base/json/JSON.h"
#include "velan/base/propertylist/PropertyList.h"
#include "velan/keyed/KeyedFiles.h"
#include "velan/keyed/KeyedIndex.h"
#include "velan/keyed/KeyedReading.h"
#include "velan/keyed/KeyedValues.h"
#include "velan/keyed/KeyedWriting.h"
#include "velan/platform/WordTokenizer.h"
#include "velan/query/PreparedQuery.h"
#include "velan/query/QueryMatching.h"
#include "velan/query/QueryTerms.h"
#include "velan/query/Stemming.h"
#include "velan/query/WordFinder.h"
#include "velan/query/words/Components.h"
#include "velan/query/words/Hashtags.h"
#include "velan/query/words/Links.h"
#include "velan/query/words/WordSeparation.h"
#include "velan/text/digest/Hexadecimal.h"
#include "velan/text/digest/SaltedHash.h"
#include "velan/text/editing/Appending.h"
#include "velan/text/editing/CaseChange.h"
#include "velan/text/editing/Collapsing.h"
#include "velan/text/editing/Ligatures.h"
#include "velan/text/editing/Normalization.h"
#include "velan/text/editing/Removal.h"
#include "velan/text/editing/Replacement.h"
#include "velan/text/editing/Tabs.h"
#include "velan/text/editing/Trimming.h"
#include "velan/text/encoding/StringConversion.h"
#include "velan/text/inspection/Configuration.h"
#include "velan/text/inspection/FoldedStrings.h"
#include "velan/text/inspection/Lines.h"
#include "velan/text/inspection/Rotation.h"
#include "velan/text/inspection/StringCreation.h"
#include "velan/text/inspection/SubstringSearch.h"
#include "velan/wildcard/PreparedSimilarity.h"
#include "velan/wildcard/PreparedWildcard.h"
#include "velan/wildcard/WildcardMatching.h"
#include "velan/wildcard/WildcardPattern.h"

namespace velan {
namespace {

// Results as texts that tell absent from empty, and one list from another.
std::string framed(std::string_view bytes) {
  std::string text(1, '<');
  text += bytes;
  return text += '>';
}
std::string shown(const std::string& bytes) { return framed(bytes); }
std::string shown(const String& string) { return string ? framed(string.toUTF8()) : "absent"; }
std::string shown(const Data& data) { return data ? framed(data.view()) : "absent"; }
std::string shown(const URL& url) { return shown(url.absoluteString()); }
std::string shown(int64_t number) { return std::to_string(number); }
std::string shown(bool flag) { return flag ? "YES" : "NO"; }
std::string shown(const Range& range) {
  return isPresent(range) ? std::to_string(range.location) + "+" + std::to_string(range.length) : "absent";
}
std::string shown(const Value& value) {
  return value.isAbsent() ? "absent" : describe(value) + shown(writePropertyList(value, PropertyListFormat::Binary));
}
std::string shown(const QueryOccurrence& each) { return shown(each.range) + shown(each.term) + shown(each.primary); }
template <typename Element>
std::string shown(const std::vector<Element>& list) {
  std::string text = std::to_string(list.size()) + ":";
  for (const Element& each : list) text += shown(each) + " ";
  return text;
}
template <typename Element>
std::string shown(const std::optional<Element>& element) {
  return element ? shown(*element) : "absent";
}
std::string shown(const ValueDictionary& entries) { return shown(Value(entries)); }

// A buffer after an operation on it, which was done, or answered NO or threw.
template <typename Buffer>
struct Edited {
  bool done;
  Buffer buffer;
};
std::string shown(const Edited<MutableData>& edited) { return shown(edited.done) + shown(edited.buffer.data()); }
std::string shown(const Edited<MutableString>& edited) { return shown(edited.done) + shown(edited.buffer.string()); }

template <typename Buffer, typename Edit>
Edited<Buffer> editedCopy(const Buffer& before, Edit edit) {
  std::optional<SparedAllocations> spared(std::in_place);
  Edited<Buffer> result{false, before};
  spared.reset();
  try {
    result.done = edit(result.buffer);
  } catch (const std::bad_alloc&) {
    result.done = false;
  }
  return result;
}

struct Operation {
  std::string name;
  std::string neutral;  // besides the right answer; empty: there is none
  bool throws;
  std::function<std::string()> run;
  int64_t first = 0;  // the first allocation that fails
};

const String kText =
    u"The old lamp keeper lit the lamps, and the light-\nhouse \u65E5\u672C\u8A9E\u306E\u672C shone "
    u"over the dark water for all the ships that the storm had driven near #harbour/one";

String longText() {
  MutableString text;
  for (int i = 0; i < 20; ++i) text.appendString(kText);
  return text.takeString();
}

Value someValues() {
  return ValueArray{1, u"two", 3.5, true, Data::withBytes("four"), ValueDictionary{{u"five", ValueArray{6, u"six"}}}};
}

MutableData someRecords() {
  MutableData data;
  addString(data, u"first \u00E9", 1);
  addStrings(data, {u"b", u"c"}, 2);
  addURL(data, URL::withString(u"http://example.org/"), 3);
  addPlist(data, someValues(), 4);
  addData(data, Data::withBytes("bytes"), 5);
  addValue(data, u"value", u"key");
  addValue(data, someValues(), u"plist");
  addValue(data, 7, u"seven");
  addValue(data, 8, longText());
  return data;
}

std::shared_ptr<const QueryTerms> someTerms() {
  static const String query = u"(lamp* NEAR/3 keep?r OR NOT \"dark water\") AND shi[p|q]s XOR storm";
  return QueryTerms::initWithWildcard(query);
}

String parsedAndWritten() {
  const auto terms = someTerms();
  return terms ? terms->standardizedQueryTerm() : String();
}

// What a tree of its own answers, absent when it tells that memory ran out.
template <typename Ask>
auto asked(const Ask& ask) {
  std::optional<SparedAllocations> spared(std::in_place);
  const auto terms = someTerms();
  spared.reset();
  const auto answer = ask(*terms);
  return terms->ranOutOfMemory() ? std::nullopt : std::optional(answer);
}

bool appendedJSON(const Value& value, MutableData& data) {
  std::string json;
  const bool whole = appendJSON(value, json);
  data.appendBytes(json.data(), json.size());
  return whole;
}

int64_t similarity(const String& a, const String& b) {
  return static_cast<int64_t>(1000 *
                              stringMatchesUnixWildcardFuzzy(a.begin(), a.view().size(), b.begin(), b.view().size()));
}

std::vector<String> stringsOfFile(const String& path) {
  std::vector<String> list;
  readKeyedStringsFromFile(list, path);
  return list;
}

#define OPERATION(neutral, throws, expression)                                         \
  {                                                                                    \
#expression, neutral, throws, [=] { return answerOf([&] { return expression; }); } \
  }

// Only the call itself runs out of memory, not the making of its text.
template <typename Call>
std::string answerOf(const Call& call) {
  const auto answer = call();
  const SparedAllocations spared;
  return shown(answer);
}

template <typename Call>
int64_t allocationsOf(const Call& call) {
  const FailingAllocation counting(INT64_MAX, false);
  call();
  return FailingAllocation::count();
}

std::vector<QueryOccurrence> occurrencesInNextText(const PreparedQuery& query, const String& text) {
  QueryMatcher matcher(query);
  std::vector<QueryOccurrence> found;
  for (const size_t length : {size_t{40}, text.view().size()}) {
    matcher.setText(text.view().substr(0, length));
    matcher.findOccurrences(found);
  }
  return found;
}

std::vector<Operation> operations(const String& file) {
  const String text = longText();
  const std::string utf8 = text.toUTF8();
  const Value values = someValues();
  const Data binary = writePropertyList(values, PropertyListFormat::Binary);
  const Data xml = writePropertyList(values, PropertyListFormat::XML);
  const Data records = someRecords().takeData();
  const Data reversed = someRecords().takeData();
  const std::shared_ptr<const QueryTerms> terms = someTerms();
  const auto ignoreCase = QueryComparison::IgnoreCase;
  const std::shared_ptr<const FastWordEnumerator> words = FastWordEnumerator::enumeratorWithString(text);
  const std::shared_ptr<const PreparedQuery> prepared = PreparedQuery::queryWithTerms(terms, ignoreCase, true);
  const String pattern = u"*dark?water*[h]arb*d*r*k*one";
  const String format = u"%Y-%m-%d %H:%M:%S on %A, the %j. day of that year";
  const String path = u"/some/long \u00E9/path/of/a file";
  const URL url = URL::fileURLWithPath(path);
  const String salt = u"salt";
  const String plist = u"plist";
  const String key = u"key";
  const auto edited = [before = MutableData(records)](auto edit) { return editedCopy(before, edit); };
  const std::string unedited = shown(edited([](auto&) { return false; }));
  const std::vector<String> strings{u"short", text, u"another"};
  const std::vector<URL> urls{url, URL::fileURLWithPath(text)};
  const ValueDictionary entries{{u"a", 1}, {text, values}, {u"b", text}};
  const std::string json = R"({"a":[1,{"b":"\u00e9 long enough to need memory of its own"}],"items":[2.5,null]})";
  const String jsonText = String::fromUTF8(json);
  const String link = u"see http://example.org/(a) or a@b.example, long enough to need memory of its own";
  const String settings = u"first 1\n# comment\nsecond a value long enough to need memory of its own\n";
  const MutableString padded(String(u" \t" + std::u16string(text.view()) + u"\n\u00C4e\u0301\uFB01 "));
  const String folded = padded.string();
  const String lamp = u"LAMP", lighthouse = u"lighthouse", directives = u"%@!";
  const std::vector<String> keys{u"none", u"Second"};
  const ValueArray arguments{text};
  const auto changed = [padded](auto edit) { return editedCopy(padded, edit); };
  const std::string unchanged = shown(changed([](auto&) { return false; }));
  std::vector<Operation> all = {
      // base
      OPERATION("absent", false, String(text.view())),
      OPERATION("absent", false, String::fromUTF8(utf8)),
      OPERATION("absent", false, String::fromUTF8Lossy(utf8)),
      OPERATION("absent", false, text.substring({1, text.length() - 1})),
      OPERATION("absent", false, text.substring({1, 9})),
      OPERATION("", true, text.toUTF8()),
      OPERATION("absent", false, Data::withBytes(utf8)),
      OPERATION("absent", true, MutableData(records).takeData()),
      OPERATION("absent", true, MutableString(text).takeString()),
      OPERATION("absent", false, readPropertyList(binary)),
      OPERATION("absent", false, readPropertyList(xml)),
      OPERATION("absent", false, writePropertyList(values, PropertyListFormat::Binary)),
      OPERATION("absent", false, writePropertyList(values, PropertyListFormat::XML)),
      OPERATION("absent", false, dataFromBase64("bGFtcCBrZWVwZXIgbGl0IHRoZSBsYW1wcw==")),
      OPERATION("", true, describe(values)),
      OPERATION("absent", true, formatDate(Date(1), format)),
      OPERATION("absent", true, URL::fileURLWithPath(path)),
      OPERATION("absent", true, url.path()),
      OPERATION("absent", true, readJSON(json)),
      OPERATION(unedited, false, edited([&](auto& data) { return appendedJSON(values, data); })),
      OPERATION("absent", true, stringByConvertingCharactersToJSON(folded)),
      OPERATION("NO", false, isJSON(jsonText)),
      OPERATION("NO", false, isJSONFeed(jsonText)),
      OPERATION("", false, (logMessage("WARNING: a\nb"), logFormat("ERROR: %600d", 1), true)),
      // text
      OPERATION("absent", false, hexadecimalString(records.span())),
      OPERATION("absent", false, saltedHash(text, salt, StringEncoding::UTF8, 3u)),
      OPERATION("absent", false, saltedHash(key, salt, StringEncoding::Latin1, 3u)),
      OPERATION("absent", false, dataUsingEncoding(text.view(), StringEncoding::UTF16)),
      // inspection
      OPERATION("", true, lines(folded)),
      OPERATION("absent", false, firstLine(folded)),
      OPERATION("absent", false, feedOfLine(folded)),
      OPERATION("", true, configLines(settings)),
      OPERATION("", true, typedValueForKeys(settings, keys)),
      OPERATION("absent", false, normalizedString(folded)),
      OPERATION("absent", false, nonUmlautedString(folded)),
      OPERATION("absent", false, stringByRotating(folded, 5)),
      OPERATION("0", false, uniqueString().length()),
      OPERATION("", true, stringWithComponents(strings)),
      OPERATION("", false, countSubstring(folded, lamp, false)),
      // editing
      OPERATION("absent", false, stringByTrimmingWhiteSpaces(folded)),
      OPERATION("absent", false, stringByRemovingSpaces(folded)),
      OPERATION(shown(folded), false, stringByRemovingMultipleSpaces(folded)),
      OPERATION("absent", false, stringByRemovingString(folded, lamp, false)),
      OPERATION("absent", false, normalizedLowercaseString(folded)),
      OPERATION(unchanged, false, changed([](auto& t) { return lowercase(t); })),
      OPERATION(unchanged, false, changed([](auto& t) { return uppercase(t); })),
      OPERATION(unchanged, false, changed([](auto& t) { return normalizeString(t); })),
      OPERATION(unchanged, false, changed([](auto& t) { return convertLigaturesToCharacters(t); })),
      OPERATION(unchanged, false, changed([](auto& t) { return decodeTabs(t, 8); })),
      OPERATION(unchanged, false, changed([](auto& t) { return encodeTabs(t, 8), true; })),
      OPERATION(unchanged, false, changed([&](auto& t) { return replaceString(t, lamp, lighthouse, false); })),
      OPERATION(unchanged, false, changed([&](auto& t) { return deleteString(t, lamp, false), true; })),
      OPERATION(unchanged, false,
                changed([&](auto& t) { return replaceStringWithFormat(t, lamp, directives, arguments); })),
      OPERATION(unchanged, false, changed([&](auto& t) {
                  return appendSubstring(t, text, {1, 400}), true;
                })),
      OPERATION(unchanged, false, changed([&](auto& t) { return appendTrimmedString(t, text), true; })),
      // wildcard
      OPERATION("0", false, similarity(text, folded)),
      OPERATION("0", false, static_cast<int64_t>(wildcardType(text))),
      OPERATION("NO", false, stringMatchesUnixWildcard(text.begin(), text.end(), pattern.begin(), pattern.end())),
      OPERATION("NO", false, PreparedWildcard::preparedUnixWildcard(pattern.view(), nullptr) != nullptr),
      OPERATION("NO", false, PreparedSimilarity::preparedSimilarity(text.view(), nullptr) != nullptr),
      // words
      OPERATION("absent", true, words->stringBySeparatingWords()),
      OPERATION("absent", false, words->lowercaseSubstringWithRange({0, 400})),
      OPERATION("absent", true, wordsUsingDefaultSeparation(text)),
      OPERATION("absent", true, wordsUsingWildcardSeparation(text, nullptr)),
      OPERATION("0", false, numberOfWordsUsingDefaultSeparation(text, 3)),
      OPERATION("absent", true, componentsUsingWhiteSeparation(text)),
      OPERATION("absent", false, firstWord(text)),
      OPERATION("absent", true, hashtags(text, true)),
      OPERATION("absent", false, getLinkRangeAtIndex(link, 9)),
      OPERATION("absent", false, getLinkRangeAtIndex(link, 32)),
      // query
      OPERATION("absent", true, parsedAndWritten()),
      OPERATION("", true, terms->normalizedQueryTerm()),
      OPERATION("", true, terms->plusTerms()),
      OPERATION("", true, terms->extendedPlusWildcards()),
      OPERATION("", true, terms->plusString()),
      OPERATION("", true, stringsForQueryTerm(*terms)),
      OPERATION("absent", false, asked([&](const auto& own) { return own.matchesString(text, ignoreCase); })),
      OPERATION("absent", false, asked([&](const auto& own) { return own.containsString(text, false); })),
      OPERATION("absent", false, asked([&](const auto& own) { return own.minTermLen(); })),
      OPERATION("absent", false, asked([&](const auto& own) { return own.usesProximity(); })),
      OPERATION("absent", false, asked([&](const auto& own) {
                  return own.enumerateString(text, {0, NSNotFound}, ignoreCase,
                                             [](const String&, Range, bool) { return false; });
                })),
      OPERATION("NO", false,
                matchesString(*words, *terms, nullptr, QueryOperator::And, 0, 0, NSNotFound, ignoreCase, true)),
      OPERATION("NO", false, containsString(*words, *terms, ignoreCase, true)),
      OPERATION("", true, queryOccurrences(*words, *terms, {0, NSNotFound}, ignoreCase, true)),
      OPERATION("", true, occurrencesInNextText(*prepared, text)),
      OPERATION("0", false,
                enumerateOccurrences(*words, *terms, {0, NSNotFound}, ignoreCase, true,
                                     [](const String&, Range, bool) { return false; })),
      OPERATION("absent", false, asked([&](const auto& own) {
                  return findNextQueryTerm(text, own, false, {0, NSNotFound}, false, false, false);
                })),
      OPERATION("absent", false,
                asked([&](const auto& own) { return own.matchesString(text, ignoreCase | QueryComparison::Fuzzy); })),
      // keyed
      OPERATION("NO", false, KeyedIndex::keyedIndex(records) != nullptr),
      OPERATION("absent", false, stringForKey(records, 1)),
      OPERATION("absent", true, stringsForKey(records, 2)),
      OPERATION("absent", true, URLsForKey(records, 3)),
      OPERATION("absent", false, plistForKey(records, 4)),
      OPERATION("absent", false, dataForKey(records, 5)),
      OPERATION("", true, getKeyedValues(records)),
      OPERATION("", true, getKeys(records)),
      OPERATION("", true, getValues(records)),
      OPERATION("NO", false, containsValueForKey(records, plist)),
      OPERATION("absent", false, getValueForKey(records, plist)),
      OPERATION("NO", false, isEqualToKeyedData(records, reversed, 0)),
      OPERATION(unedited, false, edited([&](auto& data) { return removeStringsForKey(data, 2), true; })),
      OPERATION(unedited, false, edited([&](auto& data) { return addStrings(data, strings, 2), true; })),
      OPERATION(unedited, false, edited([&](auto& data) { return addURLs(data, urls, 3), true; })),
      OPERATION(unedited, false, edited([&](auto& data) { return addRecord(data, VLdb, 6, 1.5); })),
      OPERATION(unedited, false, edited([&](auto& data) { return setUnsigned(data, 1, 6); })),
      OPERATION(unedited, false, edited([&](auto& data) { return setString(data, text, 1); })),
      OPERATION(unedited, false, edited([&](auto& data) { return setPlist(data, values, 4); })),
      OPERATION(unedited, false, edited([&](auto& data) { return setData(data, binary, 5); })),
      OPERATION(unedited, false, edited([&](auto& data) { return addValue(data, values, text), true; })),
      OPERATION(unedited, false, edited([&](auto& data) { return setValue(data, values, text), true; })),
      OPERATION(unedited, false, edited([&](auto& data) { return setKeyedValues(data, entries), true; })),
      OPERATION(unedited, false, edited([&](auto& data) { return removeValueForKey(data, text), true; })),
      // keyed files
      OPERATION("absent", false, dataWithKeyedFile(file)),
      OPERATION("absent", false, dataWithUncachedKeyedFile(file)),
      OPERATION("absent", false, dataWithMappedKeyedFile(file)),
      OPERATION("0:", true, stringsOfFile(file)),
      OPERATION("NO", false, writeKeyedStringsToFile(strings, file, false)),
  };
  // ICU's copy of its iterator comes first, and does not survive it.
  const String english(repeated(u"The lamps shone on the ships that Storms had driven near, and lit them. ", 9));
  all.push_back(OPERATION("absent", true, stringByStemmingWords(english, "en")));
  stringByStemmingWords(english, "en");  // what is set up once
  all.back().first = allocationsOf([] { WordTokenizer::create(); });
  return all;
}

// The answer when the `at`-th allocation fails, "bad_alloc" for that exception.
std::string answerWithout(int64_t at, bool onwards, const Operation& operation) {
  const FailingAllocation failing(at, onwards);
  try {
    return operation.run();
  } catch (const std::bad_alloc&) {
    const SparedAllocations spared;
    return "bad_alloc";
  }
}

// Base forms of a few words, where the environment says that they are.
void writeLemmas(const TemporaryFolder& folder) {
  folder.write("verb.exc", "shone shine\nlit light\n");
  folder.write("index.verb", "shine v 1\nlight v 1\ndrive v 1\n");
  folder.write("index.noun", "keeper n 1\nlamp n 1\nship n 1\nstorm n 1\n");
  folder.write("cntlist.rev", "light%2:35:00:: 1 10\n");
  setenv("VELAN_WORDNET", (folder / "").c_str(), 1);
}

TEST(AllocationSweep, NoOperationTakesALackOfMemoryForAnAnswer) {
  const CapturedLog log;
  const TemporaryFolder folder;
  writeLemmas(folder);
  for (const Operation& operation : operations(folder.path("strings"))) {
    operation.run();  // what is set up once in the process
    const std::string right = operation.run();
    for (const bool onwards : {false, true}) {
      for (int64_t at = operation.first;; ++at) {
        const std::string answer = answerWithout(at, onwards, operation);
        if (!FailingAllocation::happened()) break;
        const bool allowed = answer == right || (!operation.neutral.empty() && answer == operation.neutral) ||
                             (operation.throws && answer == "bad_alloc");
        EXPECT_TRUE(allowed) << operation.name << ": " << answer << " without the allocation " << at
                             << (onwards ? " and all later ones" : "");
        if (!allowed) break;
      }
    }
  }
}

// What was needed for a text serves the next one.
TEST(QueryMatcher, NextTextsTakeNoMemory) {
  const std::u16string text = repeated(u"a light, the lighthouse keeper and light ", 30);
  for (const char16_t* term : {u"light", u"light*", u"[k-m]i?h*", u"\"the light*\"", u"\"light* ??????\"", u"absent"}) {
    const auto prepared =
        PreparedQuery::queryWithTerms(QueryTerms::initWithWildcard(term), QueryComparison::IgnoreCase, true);
    QueryMatcher matcher(*prepared);
    std::vector<QueryOccurrence> found;
    const auto findIn = [&](std::u16string_view part) {
      matcher.setText(part);
      matcher.findOccurrences(found);
      return found.size();
    };
    const size_t count = findIn(text);
    const FailingAllocation counting(INT64_MAX, false);
    EXPECT_EQ(findIn(text), count);
    findIn(std::u16string_view(text).substr(1, 500));
    EXPECT_EQ(findIn(text), count);
    EXPECT_EQ(FailingAllocation::count(), 0) << String(term).toUTF8();
  }
}

// One pass over the text, whatever the number of terms: allocations are its steps.
TEST(ManyTerms, AbsentOnesTakeNoSteps) {
  const String text(repeated(u"a text that holds few of many terms ", 30));
  const auto steps = [&text](int count) {
    std::u16string query = u"NOT few OR text AND (terms";
    for (int i = 0; i < count; ++i) query += u" OR absent" + std::u16string(1, static_cast<unichar>(0x4E00 + i));
    const auto prepared =
        PreparedQuery::queryWithTerms(QueryTerms::initWithWildcard(query + u")"), QueryComparison::IgnoreCase, true);
    const FailingAllocation counting(INT64_MAX, false);
    const auto words = prepared->enumeratorWithString(text);
    QueryMatcher matcher(*prepared, *words);
    const bool answers = matcher.matches() && matcher.contains() && matcher.occurrences({0, NSNotFound}).size() == 60;
    return answers ? FailingAllocation::count() : 0;
  };
  EXPECT_GT(steps(20), 0);
  EXPECT_EQ(steps(2000), steps(20));
}

}  // namespace
}  // namespace velan
