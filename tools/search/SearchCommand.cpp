// The options of the command "search".
#include "tools/CommandLine.h"
#include "tools/Commands.h"
#include "tools/search/SearchOptions.h"
#include "tools/usage/OptionTable.h"

namespace velan::tool {
namespace {

constexpr size_t kMaxCount = 1'000'000'000;
constexpr size_t kMaxThreads = 1024;

// At most one of these flags can be given.
void addOutputFlag(CLI::App& command, const char* name, SearchOutput& output, SearchOutput value,
                   const char* description) {
  const auto choose = [&output, value] {
    if (output != SearchOutput::Lines) {
      fail("only one of -o, -l, -c, --count-matches, --vimgrep and --json can be given");
    }
    output = value;
  };
  command.add_flag_callback(name, choose, description);
}

void addFormOptions(CLI::App& command, SearchOptions& options) {
  SearchOutput& output = options.output;
  addOutputFlag(command, "-l,--files-with-matches", output, SearchOutput::Names, "Print only names of files");
  addOutputFlag(command, "-c,--count", output, SearchOutput::LineCounts, "Count the lines with occurrences");
  addOutputFlag(command, "--count-matches", output, SearchOutput::OccurrenceCounts, "Count the occurrences");
  addOutputFlag(command, "-o,--only-matching", output, SearchOutput::Occurrences, "Print only the occurrences");
  addOutputFlag(command, "--vimgrep", output, SearchOutput::Columns, "Print path:line:column:line for each occurrence");
  addOutputFlag(command, "--json", output, SearchOutput::JSON, "Print JSON Lines: begin, match, end, summary");
  command.add_flag("-q,--quiet", options.quiet, "Print nothing: the exit status tells");
  command.add_flag("--stats", options.statistics, "Print what was counted at the end");
}

void addLineOptions(CLI::App& command, SearchOptions& options) {
  addNumber(command, "-C,--context", options.context, size_t{0}, kMaxCount, "Print N lines before and after, too");
  addNumber(command, "-A,--after-context", options.after, size_t{0}, kMaxCount, "Print N lines after, too");
  addNumber(command, "-B,--before-context", options.before, size_t{0}, kMaxCount, "Print N lines before, too");
  addNumber(command, "-m,--max-count", options.maxCount, size_t{1}, kMaxCount, "Print at most N lines of each file");
  addNumber(command, "--max-columns", options.maxColumns, size_t{0}, kMaxCount,
            "Print N characters of longer lines, around the occurrence (on a terminal 400; 0 for all)");
  command.add_flag("--all-occurrences", options.scope.allOccurrences,
                   "Print other places of the words, too, as where they stand alone in spite of NEAR");
  const auto showPath = [&](const char* name, bool shown, const char* description) {
    command.add_flag_callback(
        name, [&options, shown] { options.withPath = shown; }, description);
  };
  showPath("-H,--with-filename", true, "Print names of files before the lines");
  showPath("-h,--no-filename", false, "Print no names of files before the lines");
  command.add_flag("-n,--line-number,!-N,!--no-line-number", options.withNumber,
                   "Print the numbers of lines (default)");
  addChoice(command, "--color", options.color, "Color what is printed; auto, the default, on a terminal",
            {{"auto", ColorChoice::Auto}, {"always", ColorChoice::Always}, {"never", ColorChoice::Never}});
  addChoice(command, "--hints", options.hints, "Say why nothing may have been found; auto, the default, on a terminal",
            {{"auto", HintChoice::Auto}, {"always", HintChoice::Always}, {"never", HintChoice::Never}});
}

void addSortOptions(CLI::App& command, DocumentSorting& sorting) {
  const auto choices = [](bool reversed) {
    return std::vector<std::pair<std::string, DocumentSorting>>{{"path", {DocumentOrder::Path, reversed}},
                                                                {"modified", {DocumentOrder::Modified, reversed}},
                                                                {"hits", {DocumentOrder::Hits, reversed}}};
  };
  CLI::Option* const sort =
      addChoice(command, "--sort", sorting, "Sort files by path, the latest first, or the most occurrences first",
                choices(false));
  addChoice(command, "--sortr", sorting, "The same the other way round", choices(true))->excludes(sort);
}

void addUnrestrictedOptions(CLI::App& command, SearchOptions& options) {
  const auto unrestrict = [&options](int64_t count) {
    if (count >= 1) options.files.ignoreFiles = false;
    if (count >= 2) options.files.hidden = true;
    if (count >= 3) options.decoding.binary = true;
  };
  command.add_flag_function("-u,--unrestricted", unrestrict, "--no-ignore; twice --hidden, too; three times --binary");
  const auto showBinary = [&options] { options.decoding.binary = options.showsBinary = true; };
  command.add_flag_callback("-a,--text", showBinary, "Search files that are not text as if they were");
}

}  // namespace

void addSearchCommand(CLI::App& app, int& status) {
  const auto [command, options] =
      addCommand<SearchOptions>(app, status, "search", "Find the documents that match a query, and where", runSearch);
  command->set_help_flag("--help", "Print help; with --all all of it");
  addQueryOptions(*command, options->query);
  addChoice(*command, "--unit", options->scope.unit, "What must match as a whole: a document by default",
            {{"document", SearchUnit::Document}, {"paragraph", SearchUnit::Paragraph}, {"line", SearchUnit::Line}});
  command->add_flag("-v,--invert-match", options->scope.invert, "Find the documents or units that do not match");
  addFormOptions(*command, *options);
  addLineOptions(*command, *options);
  command->add_flag_callback(
      "-r,-R,--recursive", [] {}, "Search folders with all below them (the default)");
  addSortOptions(*command, options->sorting);
  addFileOptions(*command, options->files);
  command->add_flag("--files", options->onlyListsFiles, "List the files that would be searched; takes no QUERY");
  addDecodingOptions(*command, options->decoding);
  addUnrestrictedOptions(*command, *options);
  addNumber(*command, "-j,--threads", options->threads, size_t{1}, kMaxThreads,
            "Search with N threads (one per processor)");
  keepInShortHelp(*command, {"-s", "-d", "--fuzzy", "--unit", "-l", "-c", "-o", "-C", "--json", "-g", "-t", "--sort"});
  command->footer(
      "Without PATH standard input is searched if it is a file or a pipe, otherwise the current folder. Folders are\n"
      "searched with all below them, sorted by name, without symbolic links and what .gitignore and .ignore files\n"
      "leave out. GLOB counts from the folder that is searched; what is named is searched whatever it is called.\n"
      "A file's encoding is told by --encoding,\n"
      "a byte-order mark, or its extended attributes, or it is UTF-8; otherwise --default-encoding, or windows-1252\n"
      "with a warning. Binary files in folders are passed over. HTML and XML are searched without their markup;\n"
      "places and numbers of lines are those of the source. A unit that matches without an occurrence, such as by\n"
      "NOT, shows its first line. Long lines are cut on a terminal only.\n"
      "Colors: bold occurrences take part in the match, dim ones are other places of the same words. --color auto\n"
      "means on a terminal, unless NO_COLOR is set.\n"
      "JSON has all occurrences; \"primary\" tells which take part in the match. byte_offset counts the file's bytes;\n"
      "utf16_offset the source's UTF-16 units after a byte-order mark; line and column count from 1, columns in\n"
      "characters; start and end are UTF-8 bytes of \"lines\". \"question_marks_as_punctuation\" in the summary tells "
      "that\n"
      "a query like 'where?' found something only without its question mark. The column of --vimgrep counts bytes of\n"
      "UTF-8.\n"
      "Exit status: 0 something matched, 1 nothing, 2 something went wrong, even if something matched (a file\n"
      "that cannot be read, or a named one that is not text).\n"
      "Examples:\n"
      "  velan search 'budget NEAR/5 exhibition' documents/\n"
      "  velan search --unit paragraph -C 1 'lighthouse* AND NOT keeper' documents/\n"
      "  velan search -l -d Zurich letters/ notes/\n"
      "  velan search -- -draft report.txt             (a query that begins with -)");
}

}  // namespace velan::tool
