// The commands that tell about the program itself: "selftest" and "--version".
#include <fmt/format.h>

#include <string>

#include "tools/Commands.h"
#include "tools/Console.h"
#include "tools/text/TextCommands.h"
#include "velan/base/Log.h"
#include "velan/language/LanguageFilter.h"
#include "velan/platform/Services.h"
#include "velan/query/QueryTerms.h"

namespace velan::tool {

int runSelfTest() {
  setLogSink([](std::string_view message, void*) { print(fmt::format("{}\n", message)); }, nullptr);
  const bool success = QueryTerms::test();
  setLogSink(nullptr, nullptr);
  int64_t count = 0;
  QueryTerms::getTestCases(&count);
  print(fmt::format("{}\n", success ? fmt::format("All {} cases succeeded.", count) : "Some cases failed."));
  return success ? Something : Nothing;
}

void printVersion(bool verbose) {
  print(fmt::format("velan {}\n", VELAN_VERSION));
  if (!verbose) return;
  print(fmt::format("\nUnicode {}\n", unicodeVersion()));
  for (const Service& service : services()) {
    print(fmt::format("{} {}: {}\n", service.name, service.version.empty() ? "(not in this build)" : service.version,
                      service.purpose));
  }
  const std::string sets = instructionSets();
  print(fmt::format("Instruction sets: {}\n", sets.empty() ? "none beyond the plain ones" : sets));
  const auto sources = lemmaSources();
  print(fmt::format("\nBase forms of words:{}\n", sources.empty() ? " no data found" : ""));
  for (const LemmaSource& source : sources) {
    print(fmt::format("  {}: {}, {}\n", source.language, source.service, source.path));
  }
  const String stopWords = stopWordsFolder();
  print(fmt::format("\nStop words: {}\n", stopWords ? stopWords.toUTF8() : "none found"));
}

}  // namespace velan::tool
