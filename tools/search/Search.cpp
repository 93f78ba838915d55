// The command "search".
#if __has_include(<malloc.h>)
#include <malloc.h>
#endif

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>
#include <vector>

#include "tools/Commands.h"
#include "tools/Console.h"
#include "tools/Progress.h"
#include "tools/files/FileReading.h"
#include "tools/search/FileSearch.h"
#include "tools/search/JsonPrinter.h"
#include "tools/search/OrderedWork.h"
#include "tools/search/SearchHint.h"

namespace velan::tool {
namespace {

class Search {
 public:
  Search(const SearchOptions& options, const TypedQuery& typed, std::vector<InputFile> files)
      : _options(options),
        _typed(typed),
        _files(std::move(files)),
        _style(lineStyleOf(options, _files.size() != 1 || !_files.front().named)) {}

  int run() {
    const auto start = std::chrono::steady_clock::now();
    searchForReadings();
    printSorted();
    if (_options.statistics && _options.output != SearchOutput::JSON) {
      const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
      if (_hasOutput) print("\n");
      print(describe(_counts, elapsed.count()));
    }
    if (_options.output == SearchOutput::JSON && !_options.quiet) print(printJsonSummary(_counts, _foundOtherwise));
    const bool found = _counts.documentsWithMatch > 0;
    if (_trouble && !(_options.quiet && found)) return Trouble;
    return found ? Something : Nothing;
  }

 private:
  struct KeptOutput {
    size_t hits;
    std::string text;
  };

  void searchForReadings() {
    const bool hints = !_options.quiet && !_options.scope.invert && wantsHints(_options.hints);
    const bool hasOther = _typed.otherwise && !_options.scope.invert;
    if (hasOther || hints) rememberStandardInput();
    searchFor(*_typed.query);
    if (_counts.documentsWithMatch > 0) return;
    if (hasOther) {
      _complains = false;
      _counts = {};
      searchFor(*_typed.otherwise);
      _foundOtherwise = _counts.documentsWithMatch > 0;
    }
    if (!hints) return;
    if (_foundOtherwise) return complain("nothing found as it stands; found without the question mark");
    if (const std::string hint = hintAbout(_typed, _options, _files); !hint.empty()) complain("nothing found; " + hint);
  }

  void searchFor(const PreparedQuery& query) {
    const FileSearch search(_options, query, _style);
    const size_t processors = std::max(1u, std::thread::hardware_concurrency());
    Progress progress("searching", "files");
    const auto total = static_cast<int64_t>(_files.size());
    int64_t taken = 0;
    workInOrder(
        _files.size(), _options.threads ? _options.threads : processors,
        [&](size_t number) { return search.search(_files[number]); },
        [](const Outcome& outcome) { return outcome.isToBeSeen(); },
        [&](size_t number, Outcome& outcome) {
          taken = static_cast<int64_t>(number) + 1;
          if (outcome.isToBeSeen()) progress.hide();
          progress.show(taken, total);
          return take(outcome) && showPrinted();
        },
        [&] {
          progress.show(taken, total);
          showPrinted();
        });
    progress.hide();
  }

  // Complaints appear in the order of the files, too. False when nobody reads any more, or wants to know more.
  bool take(Outcome& outcome) {
    const std::string warning = _warning.about(outcome.assumedName, !outcome.assumedName.empty());
    for (const std::string& text : {outcome.complaint.text, warning}) {
      if (!text.empty() && _complains) complain(text);
    }
    _trouble = _trouble || outcome.complaint.isTrouble;
    _counts += outcome.counts;
    if (_options.quiet) return _options.statistics || _counts.documentsWithMatch == 0;
    if (outcome.output.empty()) return true;
    if (_options.sorting.order != DocumentOrder::Hits) return printOutput(outcome.output);
    _kept.push_back({outcome.counts.occurrences, std::move(outcome.output)});
    return true;
  }

  void printSorted() {
    std::stable_sort(_kept.begin(), _kept.end(), [this](const auto& a, const auto& b) {
      return _options.sorting.reversed ? a.hits < b.hits : a.hits > b.hits;
    });
    for (const KeptOutput& each : _kept) {
      if (!printOutput(each.text) || !showPrinted()) return;
    }
  }

  bool printOutput(const std::string& text) {
    const bool showsLines = _options.output == SearchOutput::Lines;
    const bool hasHeading = _style.heading && (showsLines || _options.output == SearchOutput::Occurrences);
    const bool hasContext = showsLines && _style.before + _style.after > 0;
    if (_hasOutput && _style.withPath) print(hasHeading ? "\n" : hasContext ? "--\n" : "");
    _hasOutput = true;
    return print(text);
  }

  const SearchOptions& _options;
  const TypedQuery& _typed;
  const std::vector<InputFile> _files;
  const LineStyle _style;
  SearchCounts _counts;
  AssumedEncodingWarning _warning;
  std::vector<KeptOutput> _kept;  // to be sorted by hits
  bool _complains = true;         // about files; false when they are searched again
  bool _foundOtherwise = false;   // by the query without question marks
  bool _trouble = false;
  bool _hasOutput = false;
};

// Texts of all sizes come and go. Memory that is given back between them must be asked for, and cleared, again.
void keepFreedMemory() {
#ifdef __GLIBC__
  mallopt(M_MMAP_THRESHOLD, 32 << 20);
  mallopt(M_TRIM_THRESHOLD, 256 << 20);
#endif
}

int listFiles(const std::vector<InputFile>& files, const LineStyle& style) {
  bool hasTrouble = false;
  for (const InputFile& file : files) {
    if (file.trouble.empty()) {
      if (!print(pathPrefix(displayName(file.path), style, '\n'))) break;
    } else {
      complain(displayName(file.path) + ": " + file.trouble);
      hasTrouble = true;
    }
  }
  return hasTrouble ? Trouble : files.empty() ? Nothing : Something;
}

}  // namespace

int runSearch(const SearchOptions& options) {
  keepFreedMemory();
  FileSelection selection = options.files;
  const auto typed = options.onlyListsFiles ? std::nullopt : makeQuery(options.query);
  if (!typed && !options.onlyListsFiles) return Trouble;
  // What would be the query is a path then.
  const bool hasOtherQuery = options.onlyListsFiles || !options.query.alternatives.empty();
  if (hasOtherQuery && options.query.isGiven) selection.paths.insert(selection.paths.begin(), options.query.query);
  std::vector<InputFile> files = collectFiles(selection);
  const DocumentSorting sorting = options.sorting;
  if (sorting.order == DocumentOrder::Path) sortByPath(files);
  if (sorting.order == DocumentOrder::Modified) sortByModification(files);
  if (sorting.reversed && sorting.order != DocumentOrder::Hits) std::reverse(files.begin(), files.end());
  if (options.onlyListsFiles) return listFiles(files, lineStyleOf(options, true));
  return Search(options, *typed, std::move(files)).run();
}

}  // namespace velan::tool
