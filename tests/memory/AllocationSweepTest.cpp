// Too little memory, over the public operations: with each allocation failing in turn, once and from then on, an
// operation gives the right answer, its neutral result, or, where lists and strings come back by value or are filled,
// `std::bad_alloc`; a buffer that it edits is complete or as it was before. New operations that allocate get a line in
// the table, unless they need ICU's break iterators, which do not survive themselves.
#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "tests/FailingAllocation.h"
#include "velan/base/Base64.h"
#include "velan/base/Log.h"
#include "velan/base/MutableString.h"
#include "velan/base/dates/CivilTime.h"
#include "velan/base/json/JSON.h"
#include "velan/base/propertylist/PropertyList.h"
#include "velan/keyed/KeyedReading.h"
#include "velan/keyed/KeyedValues.h"
#include "velan/keyed/KeyedWriting.h"
#include "velan/query/PreparedQuery.h"
#include "velan/query/QueryMatching.h"
#include "velan/query/QueryTerms.h"
#include "velan/query/WordFinder.h"
#include "velan/query/words/Components.h"
#include "velan/query/words/Hashtags.h"
#include "velan/query/words/WordSeparation.h"
#include "velan/text/digest/Hexadecimal.h"
#include "velan/text/digest/SaltedHash.h"
#include "velan/text/encoding/StringConversion.h"
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
struct Edited {
  bool done;
  MutableData data;
};
std::string shown(const Edited& edited) { return shown(edited.done) + shown(edited.data.data()); }

struct Operation {
  std::string name;
  std::string neutral;  // besides the right answer; empty: there is none
  bool throws;
  std::function<std::string()> run;
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

std::vector<Operation> operations() {
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
  const String pattern = u"*dark?water*[h]arb*d*r*k*one";
  const String format = u"%Y-%m-%d %H:%M:%S on %A, the %j. day of that year";
  const String path = u"/some/long \u00E9/path/of/a file";
  const URL url = URL::fileURLWithPath(path);
  const String salt = u"salt";
  const String plist = u"plist";
  const String key = u"key";
  const auto edited = [records](auto edit) {
    std::optional<SparedAllocations> spared(std::in_place);
    Edited result{false, MutableData(records)};
    spared.reset();
    try {
      result.done = edit(result.data);
    } catch (const std::bad_alloc&) {
      result.done = false;
    }
    return result;
  };
  const std::string unedited = shown(Edited{false, MutableData(records)});
  const std::vector<String> strings{u"short", text, u"another"};
  const std::vector<URL> urls{url, URL::fileURLWithPath(text)};
  const ValueDictionary entries{{u"a", 1}, {text, values}, {u"b", text}};
  return {
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
      OPERATION("", false, (logMessage("WARNING: a\nb"), logFormat("ERROR: %600d", 1), true)),
      // text
      OPERATION("absent", false, hexadecimalString(records.span())),
      OPERATION("absent", false, saltedHash(text, salt, StringEncoding::UTF8, 3u)),
      OPERATION("absent", false, saltedHash(key, salt, StringEncoding::Latin1, 3u)),
      OPERATION("absent", false, dataUsingEncoding(text.view(), StringEncoding::UTF16)),
      // wildcard
      OPERATION("0", false, static_cast<int64_t>(wildcardType(text))),
      OPERATION("NO", false, stringMatchesUnixWildcard(text.begin(), text.end(), pattern.begin(), pattern.end())),
      // words
      OPERATION("absent", true, words->stringBySeparatingWords()),
      OPERATION("absent", false, words->lowercaseSubstringWithRange({0, 400})),
      OPERATION("absent", true, wordsUsingDefaultSeparation(text)),
      OPERATION("absent", true, wordsUsingWildcardSeparation(text, nullptr)),
      OPERATION("0", false, numberOfWordsUsingDefaultSeparation(text, 3)),
      OPERATION("absent", true, componentsUsingWhiteSeparation(text)),
      OPERATION("absent", false, firstWord(text)),
      OPERATION("absent", true, hashtags(text, true)),
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
      OPERATION("0", false,
                enumerateOccurrences(*words, *terms, {0, NSNotFound}, ignoreCase, true,
                                     [](const String&, Range, bool) { return false; })),
      OPERATION("absent", false, asked([&](const auto& own) {
                  return findNextQueryTerm(text, own, false, {0, NSNotFound}, false, false, false);
                })),
      // keyed
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
  };
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

TEST(AllocationSweep, NoOperationTakesALackOfMemoryForAnAnswer) {
  setLogSink([](std::string_view, void*) {}, nullptr);
  for (const Operation& operation : operations()) {
    operation.run();  // what is set up once in the process
    const std::string right = operation.run();
    for (const bool onwards : {false, true}) {
      for (int64_t at = 0;; ++at) {
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
  setLogSink(nullptr, nullptr);
}

}  // namespace
}  // namespace velan
