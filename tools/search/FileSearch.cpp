#include "tools/search/FileSearch.h"

#include <fmt/format.h>

#include <new>
#include <optional>
#include <stdexcept>
#include <utility>

#include "tools/search/JsonPrinter.h"
#include "tools/search/LinePrinter.h"

namespace velan::tool {

FileSearch::FileSearch(const SearchOptions& options, const PreparedQuery& query, const LineStyle& style)
    : _options(options),
      _query(query),
      _readings(query, options.query.verbatim),
      _failed(query),
      _style(style),
      _needsHits((options.output != SearchOutput::Names && !options.quiet) || options.statistics ||
                 options.sorting.order == DocumentOrder::Hits),
      _filter(options, query) {}

Outcome FileSearch::search(const InputFile& file) const {
  static thread_local FileReader reader;
  Outcome outcome;
  Complaint& complaint = outcome.complaint;
  try {
    const auto refuses = [this](std::string_view bytes, const FileOrigin& origin) {
      return _filter.refuses(bytes, origin);
    };
    const auto document = readDocument(file, _options.decoding, refuses, reader, complaint);
    if (document) return searchText(displayName(file.path), *document);
    outcome.counts.binaryFiles = complaint.isBinary ? 1 : 0;
    const bool isRefused = !complaint.isBinary && complaint.text.empty();
    outcome.counts.documents = isRefused ? 1 : 0;
    outcome.counts.bytes = isRefused ? reader.bytes().size() : 0;
  } catch (const std::length_error& error) {
    complaint = {displayName(file.path) + ": " + error.what(), true};
  } catch (const std::bad_alloc&) {
    complaint = {displayName(file.path) + ": there is not enough memory to search it", true};
  }
  return outcome;
}

Outcome FileSearch::searchText(const std::string& name, const Document& document) const {
  Outcome outcome;
  if (document.assumed) outcome.assumedName = name;
  outcome.counts.documents = 1;
  outcome.counts.bytes = document.bytes.size();
  const SearchedText searched = _readings.read(document);
  SearchScope scope = _options.scope;
  scope.allOccurrences |= _options.output == SearchOutput::JSON;
  DocumentSearch search(document, searched, _query, _failed, scope);
  if (!_needsHits) {
    if (search.matches()) {
      outcome.counts.documentsWithMatch = 1;
      outcome.output = pathPrefix(name, _style, '\n');
    }
    return outcome;
  }
  DocumentHits hits = search.hits();
  if (hits.blocks.empty()) return outcome;
  limitLines(hits, _options.maxCount);
  outcome.counts.documentsWithMatch = 1;
  outcome.counts.occurrences = hits.occurrences.size();
  for (const LineBlock& block : hits.blocks) outcome.counts.lines += block.lineCount();
  outcome.output = printHits(name, document, search.lines(), hits, outcome.counts);
  return outcome;
}

std::string FileSearch::printHits(const std::string& name, const Document& document, const TextLines& lines,
                                  const DocumentHits& hits, const SearchCounts& counts) const {
  switch (_options.output) {
    case SearchOutput::Names:
      return pathPrefix(name, _style, '\n');
    case SearchOutput::JSON:
      return printJson(name, document, lines, hits, counts, _style.before, _style.after);
    case SearchOutput::LineCounts:
      return printCount(name, counts.lines);
    case SearchOutput::OccurrenceCounts:
      return printCount(name, counts.occurrences);
    default:
      if (document.isBinary && !_options.showsBinary) return fmt::format("{}: binary file matches\n", name);
      return printLines(name, document, lines, hits, _style);
  }
}

std::string FileSearch::printCount(const std::string& name, size_t count) const {
  return fmt::format("{}{}\n", _style.withPath ? pathPrefix(name, _style, ':') : "", count);
}

}  // namespace velan::tool
