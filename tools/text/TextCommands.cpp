// The options of the commands for text.
#include "tools/text/TextCommands.h"

#include "tools/CommandLine.h"
#include "tools/Commands.h"

namespace velan::tool {
namespace {

constexpr int64_t kMaxDistance = 1'000'000'000;
constexpr size_t kMaxCount = 1'000'000'000;
constexpr size_t kMaxThreads = 1024;

void addQueryOptions(CLI::App& command, QueryOptions& options) {
  addArgument(command, "QUERY", options.query, "Words, \"phrases\", AND OR XOR NOT NEAR/5 BEFORE AFTER NEXT, ( )")
      ->required();
  command.add_flag("-s,--case-sensitive", options.caseSensitive, "Tell capital from small letters");
  command.add_flag("-d,--ignore-diacritics", options.ignoreDiacritics, "Find Zürich with Zurich");
  command
      .add_flag_function(
          "--fuzzy{0.75}", [](int64_t) {}, "Find similar words, too; --fuzzy=0.9 for more similar ones")
      ->each([&options](const std::string& value) {
        options.fuzzy = true;
        if (!CLI::detail::lexical_cast(value, options.similarity)) fail("a number is expected, not " + value);
      });
  addNumber(command, "--distance", options.distance, int64_t{0}, kMaxDistance,
            "How many words NEAR, BEFORE, AFTER reach (10)");
  command.add_flag("--no-wildcards", options.noWildcards, "Take * and ? as they are; not with -d, --fuzzy");
}

// At most one of these flags can be given.
void addOutputFlag(CLI::App& command, const char* name, SearchOutput& output, SearchOutput value,
                   const char* description) {
  const auto choose = [&output, value] {
    if (output != SearchOutput::Lines) fail("only one of -l, -c, --count-matches and --json can be given");
    output = value;
  };
  command.add_flag_callback(name, choose, description);
}

void addSearch(CLI::App& app, int& status) {
  const auto [command, options] =
      addCommand<SearchOptions>(app, status, "search", "Find the documents that match a query, and where", runSearch);
  addQueryOptions(*command, options->query);
  addArgument(*command, "PATH", options->paths, "Files, folders and - for standard input");
  addChoice(*command, "--unit", "UNIT", options->unit, "What must match: document (default), paragraph, line",
            {{"document", SearchUnit::Document}, {"paragraph", SearchUnit::Paragraph}, {"line", SearchUnit::Line}});
  addOutputFlag(*command, "-l,--files-with-matches", options->output, SearchOutput::Names, "Print only names of files");
  addOutputFlag(*command, "-c,--count", options->output, SearchOutput::LineCounts, "Count the lines with occurrences");
  addOutputFlag(*command, "--count-matches", options->output, SearchOutput::OccurrenceCounts, "Count the occurrences");
  addOutputFlag(*command, "--json", options->output, SearchOutput::JSON,
                "Print JSON Lines: begin, match, end, summary");
  addNumber(*command, "-C,--context", options->context, size_t{0}, kMaxCount, "Print N lines before and after, too");
  command->add_flag("--hidden", options->hidden, "Search hidden files and folders, too");
  addDecodingOptions(*command, options->decoding);
  addNumber(*command, "-j,--threads", options->threads, size_t{1}, kMaxThreads,
            "Search with N threads (one per processor)");
  addChoice(*command, "--color", "WHEN", options->color, "auto (default), always, never",
            {{"auto", ColorChoice::Auto}, {"always", ColorChoice::Always}, {"never", ColorChoice::Never}});
  command->footer(
      "Without PATH standard input is searched if it is a file or a pipe, otherwise the current folder. Folders are\n"
      "searched with all below them, sorted by name, without symbolic links. A file's encoding is told by --encoding, "
      "a\n"
      "byte-order mark, or its extended attributes, or it is UTF-8; otherwise --default-encoding, or windows-1252 with "
      "a\n"
      "warning. Binary files are skipped with a message. A unit that matches without an occurrence, such as by NOT,\n"
      "shows its first line.\n"
      "Colors: bold occurrences take part in the match, others are further places of the same words. --color auto\n"
      "means on a terminal, unless NO_COLOR is set.\n"
      "JSON: byte_offset counts the file's bytes; utf16_offset the text's UTF-16 units after a byte-order mark; line "
      "and\n"
      "column count from 1, columns in characters; start and end are UTF-8 bytes of \"lines\".\n"
      "Exit status: 0 something matched, 1 nothing, 2 something went wrong, even if something matched (a file\n"
      "that cannot be read, or a named one that is not text).\n"
      "Examples:\n"
      "  velan search 'budget NEAR/5 exhibition' documents/\n"
      "  velan search --unit paragraph -C 1 'lighthouse* AND NOT keeper' documents/\n"
      "  velan search -l -d Zurich letters/ notes/\n"
      "  velan search -- -draft report.txt             (a query that begins with -)");
}

void addExplain(CLI::App& app, int& status) {
  const auto [command, options] = addCommand<ExplainOptions>(
      app, status, "explain", "Show how a query is understood, and why a file does or does not match", runExplain);
  addQueryOptions(*command, options->query);
  addArgument(*command, "FILE", options->path, "A file to match, or - for standard input");
  addDecodingOptions(*command, options->decoding);
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
  command->add_flag("--unix", options->sets, "Sets, too: [a-z], [^abc]");
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
  addArgument(*command, "PATH", options->paths, "Files, folders and - for standard input, as for search");
  command->add_flag("-i,--ignore-case", options->ignoreCase, "Count words in small letters");
  addNumber(*command, "--min-length", options->minLength, int64_t{1}, kMaxDistance,
            "Leave out words of fewer than N units");
  addNumber(*command, "-n,--top", options->top, size_t{1}, kMaxCount, "List only the N most frequent");
  command->add_flag("--hidden", options->hidden, "Read hidden files and folders, too");
  addDecodingOptions(*command, options->decoding);
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
  addSearch(app, status);
  addExplain(app, status);
  addMatch(app, status);
  addWords(app, status);
  addSelfTest(app, status);
}

}  // namespace velan::tool
