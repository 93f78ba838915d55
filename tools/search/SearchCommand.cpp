// The options of the command "search".
#include "tools/CommandLine.h"
#include "tools/Commands.h"
#include "tools/search/SearchOptions.h"

namespace velan::tool {
namespace {

constexpr size_t kMaxCount = 1'000'000'000;
constexpr size_t kMaxThreads = 1024;

// At most one of these flags can be given.
void addOutputFlag(CLI::App& command, const char* name, SearchOutput& output, SearchOutput value,
                   const char* description) {
  const auto choose = [&output, value] {
    if (output != SearchOutput::Lines) fail("only one of -l, -c, --count-matches and --json can be given");
    output = value;
  };
  command.add_flag_callback(name, choose, description);
}

}  // namespace

void addSearchCommand(CLI::App& app, int& status) {
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
      "warning. Binary files are skipped with a message. HTML and XML are searched without their markup;\n"
      "places and numbers of lines are those of the source. A unit that matches without an occurrence, such as by\n"
      "NOT, shows its first line.\n"
      "Colors: bold occurrences take part in the match, others are further places of the same words. --color auto\n"
      "means on a terminal, unless NO_COLOR is set.\n"
      "JSON: byte_offset counts the file's bytes; utf16_offset the source's UTF-16 units after a byte-order mark; line "
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

}  // namespace velan::tool
