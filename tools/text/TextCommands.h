// The commands for text: what they are told, and the functions that do them and return an `ExitStatus`.
#ifndef VELAN_TOOLS_TEXT_TEXT_COMMANDS_H
#define VELAN_TOOLS_TEXT_TEXT_COMMANDS_H

#include <cstdint>
#include <string>
#include <vector>

#include "tools/documents/TextDecoding.h"
#include "tools/files/FileSelection.h"
#include "tools/query/Query.h"

namespace velan::tool {

struct ExplainOptions {
  QueryOptions query;
  std::string path;  // empty: only the query is explained
  DecodingOptions decoding;
};
int runExplain(const ExplainOptions& options);

struct MatchOptions {
  std::string pattern;
  std::vector<std::string> words;  // none: the lines of standard input
  bool sets = false;
  bool ignoreCase = false;
  bool invert = false;
};
int runMatch(const MatchOptions& options);

struct WordsOptions {
  FileSelection files;
  bool ignoreCase = false;
  DecodingOptions decoding;
  bool verbatim = false;
  int64_t minLength = 1;
  size_t top = 0;  // 0: all
};
int runWords(const WordsOptions& options);

int runSelfTest();

/// What `--version` prints.
void printVersion(bool verbose);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_TEXT_TEXT_COMMANDS_H
