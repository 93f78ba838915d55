// One file of a search, from its path to what is printed.
#ifndef VELAN_TOOLS_SEARCH_FILE_SEARCH_H
#define VELAN_TOOLS_SEARCH_FILE_SEARCH_H

#include <string>

#include "tools/documents/DocumentReading.h"
#include "tools/search/DocumentFilter.h"
#include "tools/search/LineStyle.h"
#include "tools/search/SearchCounts.h"
#include "tools/search/SearchOptions.h"

namespace velan::tool {

/// What a search of one file gives.
struct Outcome {
  std::string output;
  Complaint complaint;
  SearchCounts counts;
  std::string assumedName;  // of a document whose encoding is assumed

  bool isToBeSeen() const { return !output.empty() || !complaint.text.empty() || !assumedName.empty(); }
};

/// Searches files, any number at once. Borrows what it is given.
class FileSearch {
 public:
  FileSearch(const SearchOptions& options, const PreparedQuery& query, const LineStyle& style);

  Outcome search(const InputFile& file) const;

 private:
  Outcome searchText(const std::string& name, const Document& document) const;
  std::string printHits(const std::string& name, const Document& document, const TextLines& lines,
                        const DocumentHits& hits, const SearchCounts& counts) const;
  std::string printCount(const std::string& name, size_t count) const;

  const SearchOptions& _options;
  const PreparedQuery& _query;
  const WordReadings _readings;
  const FailedTerms _failed;
  const LineStyle& _style;
  const bool _needsHits;  // not only whether a document matches
  const DocumentFilter _filter;
};

}  // namespace velan::tool

#endif  // VELAN_TOOLS_SEARCH_FILE_SEARCH_H
