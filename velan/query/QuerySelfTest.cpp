#include <iterator>
#include <string>

#include "velan/base/Log.h"
#include "velan/query/QueryTerms.h"

namespace velan {
namespace {

constexpr QueryTestCase kTestCases[] = {
    {"tempor AND duo", true},
    {"tempor AND NOT duo", false},
    {"tempor AND missing", false},
    {"tempor AND NOT missing", true},
    {"tempor OR duo", true},
    {"tempor OR NOT duo", true},
    {"tempor OR missing", true},
    {"tempor OR NOT missing", true},
    {"tempor XOR duo", false},
    {"tempor XOR NOT duo", true},
    {"tempor XOR missing", true},
    {"tempor XOR NOT missing", false},
    {"tempor NEAR labore", true},
    {"tempor NEAR/2 labore", false},
    {"tempor BEFORE labore", true},
    {"tempor BEFORE/2 labore", false},
    {"tempor AFTER labore", false},
    {"tempor AFTER/2 labore", false},
    {"labore AFTER tempor", true},
    {"labore AFTER/2 tempor", false},
    {"tempor NOT NEAR labore", false},
    {"tempor NOT NEAR/2 labore", true},
    {"tempor NOT BEFORE labore", false},
    {"tempor NOT BEFORE/2 labore", true},
    {"tempor NOT AFTER labore", true},
    {"tempor NOT AFTER/2 labore", true},
    {"labore NOT AFTER tempor", false},
    {"labore NOT AFTER/2 tempor", true},
    {"tempor NEAR missing", false},
    {"tempor NEAR/2 missing", false},
    {"tempor BEFORE missing", false},
    {"tempor BEFORE/2 missing", false},
    {"tempor AFTER missing", false},
    {"tempor AFTER/2 missing", false},
    {"labore AFTER missing", false},
    {"labore AFTER/2 missing", false},
    {"tempor NOT NEAR missing", true},
    {"tempor NOT NEAR/2 missing", true},
    {"tempor NOT BEFORE missing", true},
    {"tempor NOT BEFORE/2 missing", true},
    {"tempor NOT AFTER missing", true},
    {"tempor NOT AFTER/2 missing", true},
    {"labore NOT AFTER missing", true},
    {"labore NOT AFTER/2 missing", true},
    {"tempor NEXT invidunt", true},
    {"tempor NEXT NOT invidunt", false},
    {"tempor NEXT missing", false},
    {"tempor NEXT NOT missing", true},
};

}  // namespace

String QueryTerms::testString() {
  return u"Lorem ipsum dolor sit amet, consetetur sadipscing elitr, sed diam nonumy eirmod tempor invidunt ut labore "
         u"et "
         u"dolore magna aliquyam erat. At vero eos et accusam et justo duo dolores et ea rebum."_s;
}

const QueryTestCase* QueryTerms::getTestCases(int64_t* count) {
  if (count) *count = std::ssize(kTestCases);
  return kTestCases;
}

bool QueryTerms::test() {
  bool success = true;
  for (const QueryTestCase& testCase : kTestCases) {
    const auto terms = queryTermsWithWildcard(String::fromUTF8(testCase.query));
    const bool matches = terms->matchesString(testString(), QueryComparison::IgnoreCase);
    const char* outcome = matches ? "Yes" : "No";
    if (matches == testCase.matches) {
      logFormat("Success: %s => %s", testCase.query, outcome);
    } else {
      logFormat("Failed: %s => %s", testCase.query, outcome);
      success = false;
    }
  }
  return success;
}

}  // namespace velan
