// The command "search".
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <new>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <thread>

#include "tools/Commands.h"
#include "tools/Console.h"
#include "tools/Progress.h"
#include "tools/documents/DocumentReading.h"
#include "tools/search/JsonPrinter.h"
#include "tools/search/LinePrinter.h"
#include "tools/search/OrderedWork.h"
#include "tools/search/SearchOptions.h"

namespace velan::tool {
namespace {

// What a search of one file gives.
struct Outcome {
  std::string output;
  Complaint complaint;
  SearchCounts counts;
  std::string assumedName;  // of a document whose encoding is assumed

  bool isToBeSeen() const { return !output.empty() || !complaint.text.empty() || !assumedName.empty(); }
};

bool wantsColor(ColorChoice choice) {
  if (choice != ColorChoice::Auto) return choice == ColorChoice::Always;
  const char* noColor = std::getenv("NO_COLOR");
  const char* terminal = std::getenv("TERM");
  const bool refused = (noColor && *noColor) || (terminal && std::string_view(terminal) == "dumb");
  return !refused && isatty(STDOUT_FILENO) == 1;
}

class Search {
 public:
  Search(const SearchOptions& options, const PreparedQuery& query, std::vector<InputFile> files)
      : _options(options), _query(query), _files(std::move(files)) {
    _style.color = wantsColor(options.color);
    _style.heading = isatty(STDOUT_FILENO) == 1;
    _style.withPath = _files.size() != 1 || !_files.front().named;
    _style.context = options.context;
  }

  int run() {
    const size_t processors = std::max(1u, std::thread::hardware_concurrency());
    Progress progress("searching", "files");
    const auto total = static_cast<int64_t>(_files.size());
    int64_t taken = 0;
    workInOrder(
        _files.size(), _options.threads ? _options.threads : processors,
        [this](size_t number) { return searchFile(_files[number]); },
        [](const Outcome& outcome) { return outcome.isToBeSeen(); },
        [&](size_t number, const Outcome& outcome) {
          taken = static_cast<int64_t>(number) + 1;
          if (outcome.isToBeSeen()) progress.hide();
          progress.show(taken, total);
          return take(outcome);
        },
        [&] { progress.show(taken, total); });
    progress.hide();
    if (_options.output == SearchOutput::JSON) print(printJsonSummary(_counts));
    if (_trouble) return Trouble;
    return _counts.documentsWithMatch > 0 ? Something : Nothing;
  }

 private:
  Outcome searchFile(const InputFile& file) const {
    try {
      Complaint complaint;
      const std::optional<Document> document = readDocument(file, _options.decoding, complaint);
      return document ? searchText(displayName(file.path), *document) : Outcome{"", std::move(complaint), {}, ""};
    } catch (const std::length_error& error) {
      return {"", {displayName(file.path) + ": " + error.what(), true}, {}, ""};
    } catch (const std::bad_alloc&) {
      return {"", {displayName(file.path) + ": there is not enough memory to search it", true}, {}, ""};
    }
  }

  Outcome searchText(const std::string& name, const Document& document) const {
    Outcome outcome;
    if (document.assumed) outcome.assumedName = name;
    outcome.counts.documents = 1;
    outcome.counts.bytes = document.bytes.size();
    if (_options.output == SearchOutput::Names) {
      if (matchesDocument(document.text, _query, _options.unit)) {
        outcome.counts.documentsWithMatch = 1;
        outcome.output = paintedPath(name, _style.color) + '\n';
      }
      return outcome;
    }
    const TextLines lines(document);
    const DocumentHits hits = searchDocument(document.text, lines, _query, _options.unit);
    if (hits.blocks.empty()) return outcome;
    outcome.counts.documentsWithMatch = 1;
    outcome.counts.occurrences = hits.occurrences.size();
    for (const LineBlock& block : hits.blocks) outcome.counts.lines += block.lineCount();
    outcome.output = printHits(name, document, lines, hits, outcome.counts);
    return outcome;
  }

  std::string printHits(const std::string& name, const Document& document, const TextLines& lines,
                        const DocumentHits& hits, const SearchCounts& counts) const {
    switch (_options.output) {
      case SearchOutput::JSON:
        return printJson(name, document, lines, hits, counts, _options.context);
      case SearchOutput::LineCounts:
        return printCount(name, counts.lines);
      case SearchOutput::OccurrenceCounts:
        return printCount(name, counts.occurrences);
      default:
        return printLines(name, document.text, lines, hits, _style);
    }
  }

  std::string printCount(const std::string& name, size_t count) const {
    const std::string prefix = _style.withPath ? paintedPath(name, _style.color) + ':' : "";
    return fmt::format("{}{}\n", prefix, count);
  }

  // Complaints appear in the order of the files, too. False when nobody reads any more.
  bool take(const Outcome& outcome) {
    const std::string warning = _warning.about(outcome.assumedName, !outcome.assumedName.empty());
    for (const std::string& text : {outcome.complaint.text, warning}) {
      if (!text.empty()) complain(text);
    }
    _trouble = _trouble || outcome.complaint.isTrouble;
    _counts += outcome.counts;
    if (outcome.output.empty()) return true;
    const bool divides = _hasOutput && _style.withPath && _options.output == SearchOutput::Lines;
    if (divides) print(_style.heading ? "\n" : _style.context > 0 ? "--\n" : "");
    _hasOutput = true;
    return printNow(outcome.output);
  }

  const SearchOptions& _options;
  const PreparedQuery& _query;
  const std::vector<InputFile> _files;
  LineStyle _style;
  SearchCounts _counts;
  AssumedEncodingWarning _warning;
  bool _trouble = false;
  bool _hasOutput = false;
};

}  // namespace

int runSearch(const SearchOptions& options) {
  const auto query = makeQuery(options.query);
  if (!query) return Trouble;
  return Search(options, *query, collectFiles(options.paths, options.hidden)).run();
}

}  // namespace velan::tool
