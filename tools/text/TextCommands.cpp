// The options of the commands for text.
#include "tools/text/TextCommands.h"

#include "tools/CommandLine.h"
#include "tools/Commands.h"
#include "tools/usage/OptionTable.h"

namespace velan::tool {
namespace {

constexpr int64_t kMaxDistance = 1'000'000'000;
constexpr size_t kMaxCount = 1'000'000'000;

void addExplain(CLI::App& app, int& status) {
  const auto [command, options] = addCommand<ExplainOptions>(
      app, status, "explain", "Show how a query is understood, and why a file does or does not match", runExplain);
  addQueryOptions(*command, options->query);
  addArgument(*command, "FILE", options->path, "A file to match, or - for standard input");
  addDecodingOptions(*command, options->decoding);
  keepInShortHelp(*command, {"-s", "-d", "--fuzzy", "--distance", "--no-wildcards", "--encoding"});
  command->footer(
      "Patterns show what they became: a type from 0 to 10 and their normal form. Places are line:column.\n"
      "Exit status with FILE: 0 it matches, 1 it does not, 2 it cannot be read.\n"
      "Examples:\n"
      "  velan explain 'lighthouse* NEAR/3 (keeper OR \"old lamp\")'\n"
      "  velan explain 'budget NOT NEAR exhibition' minutes.txt");
}

void addMatch(CLI::App& app, int& status) {
  const auto [command, options] =
      addCommand<MatchOptions>(app, status, "match", "Print the words that match a wildcard pattern", runMatch);
  addArgument(*command, "PATTERN", options->pattern, "* any characters, ? any one")->required();
  addArgument(*command, "WORD", options->words, "Without: the lines of standard input");
  command->add_flag("--unix", options->sets, "Sets, too, which queries always have: [a-z], [^abc]");
  command->add_flag("-i,--ignore-case", options->ignoreCase, "Do not tell capital from small letters");
  command->add_flag("-v,--invert-match", options->invert, "Print the words that do not match");
  command->footer(
      "Exit status: 0 a word was printed, 1 none, 2 something went wrong.\n"
      "Examples:\n"
      "  velan match 'light*' lighthouse moonlight lights\n"
      "  velan match -i --unix '[^aeiou]*s' < words.txt");
}

void addWords(CLI::App& app, int& status) {
  const auto [command, options] =
      addCommand<WordsOptions>(app, status, "words", "List the words of documents, the most frequent first", runWords);
  addFileOptions(*command, options->files);
  command->add_flag("-i,--ignore-case", options->ignoreCase, "Count words in small letters");
  command->add_flag("--verbatim", options->verbatim, "List words as they are spelt, diacritics apart from letters");
  addNumber(*command, "--min-length", options->minLength, int64_t{1}, kMaxDistance,
            "Leave out words of fewer than N units");
  addNumber(*command, "-n,--top", options->top, size_t{1}, kMaxCount, "List only the N most frequent");
  addDecodingOptions(*command, options->decoding);
  keepInShortHelp(*command, {"-i", "--min-length", "-n", "-g", "-t", "--hidden"});
  command->footer(
      "Each line holds the count, a tab and the word; equally frequent words are sorted. A word that a hyphen divides\n"
      "at a line end counts as one.\n"
      "Exit status: 0 there are words, 1 none, 2 something could not be read.\n"
      "Examples:\n"
      "  velan words -i -n 20 documents/\n"
      "  velan words --min-length 6 report.txt");
}

void addSelfTest(CLI::App& app, int& status) {
  CLI::App* command = app.add_subcommand("selftest", "Check that queries have their meaning on this machine");
  command->callback([&status] { status = runSelfTest(); });
  command->footer(
      "One line for each of the 48 cases. Exit status: 0 all succeeded, 1 some failed.\n"
      "Examples:\n"
      "  velan selftest\n"
      "  velan selftest | grep Failed");
}

}  // namespace

void addTextCommands(CLI::App& app, int& status) {
  addExplain(app, status);
  addMatch(app, status);
  addWords(app, status);
  addSelfTest(app, status);
}

}  // namespace velan::tool
