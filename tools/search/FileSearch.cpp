#include "tools/search/FileSearch.h"

#include <fmt/format.h>

#include <new>
#include <optional>
#include <stdexcept>
#include <utility>

#include "tools/search/JsonPrinter.h"
#include "tools/search/LinePrinter.h"

namespace velan::tool {

Outcome FileSearch::search(const InputFile& file) const {
  Outcome outcome;
  try {
    const std::optional<Document> document = readDocument(file, _options.decoding, outcome.complaint);
    if (document) return searchText(displayName(file.path), *document);
    outcome.counts.binaryFiles = outcome.complaint.isBinary ? 1 : 0;
  } catch (const std::length_error& error) {
    outcome.complaint = {displayName(file.path) + ": " + error.what(), true};
  } catch (const std::bad_alloc&) {
    outcome.complaint = {displayName(file.path) + ": there is not enough memory to search it", true};
  }
  return outcome;
}

Outcome FileSearch::searchText(const std::string& name, const Document& document) const {
  Outcome outcome;
  if (document.assumed) outcome.assumedName = name;
  outcome.counts.documents = 1;
  outcome.counts.bytes = document.bytes.size();
  const SearchedText searched = _readings.read(document.text);
  if (!_needsHits) {
    if (matchesDocument(document.text, searched, _query, _options.scope)) {
      outcome.counts.documentsWithMatch = 1;
      outcome.output = pathPrefix(name, _style, '\n');
    }
    return outcome;
  }
  const TextLines lines(document);
  SearchScope scope = _options.scope;
  scope.allOccurrences |= _options.output == SearchOutput::JSON;
  DocumentHits hits = searchDocument(searched, lines, _query, scope);
  if (hits.blocks.empty()) return outcome;
  limitLines(hits, _options.maxCount);
  outcome.counts.documentsWithMatch = 1;
  outcome.counts.occurrences = hits.occurrences.size();
  for (const LineBlock& block : hits.blocks) outcome.counts.lines += block.lineCount();
  outcome.output = printHits(name, document, lines, hits, outcome.counts);
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
      if (document.isBinary) return fmt::format("{}: binary file matches\n", name);
      return printLines(name, document, lines, hits, _style);
  }
}

std::string FileSearch::printCount(const std::string& name, size_t count) const {
  return fmt::format("{}{}\n", _style.withPath ? pathPrefix(name, _style, ':') : "", count);
}

}  // namespace velan::tool
