// What the command "search" is told.
#ifndef VELAN_TOOLS_SEARCH_SEARCH_OPTIONS_H
#define VELAN_TOOLS_SEARCH_SEARCH_OPTIONS_H

#include <cstdint>
#include <optional>

#include "tools/documents/TextDecoding.h"
#include "tools/files/FileSelection.h"
#include "tools/query/Query.h"
#include "tools/search/DocumentSearch.h"

namespace velan::tool {

enum class ColorChoice : uint8_t { Auto, Always, Never };

/// Whether a hint is given when nothing was found.
enum class HintChoice : uint8_t { Auto, Always, Never };

enum class SearchOutput : uint8_t { Lines, Occurrences, Columns, Names, LineCounts, OccurrenceCounts, JSON };

/// The order in which documents are shown. Without one they are in the order of the paths.
enum class DocumentOrder : uint8_t { AsGiven, Path, Modified, Hits };

struct DocumentSorting {
  DocumentOrder order = DocumentOrder::AsGiven;
  bool reversed = false;
};

struct SearchOptions {
  QueryOptions query;
  FileSelection files;
  bool onlyListsFiles = false;
  SearchScope scope;
  SearchOutput output = SearchOutput::Lines;
  DecodingOptions decoding;
  bool showsBinary = false;  // the lines of files that are not text, which are read then
  size_t context = 0;
  std::optional<size_t> before;  // instead of `context`
  std::optional<size_t> after;
  std::optional<size_t> maxColumns;  // 0: any number
  size_t maxCount = SIZE_MAX;        // of lines of one document
  std::optional<bool> withPath;
  bool withNumber = true;
  bool quiet = false;
  bool statistics = false;
  DocumentSorting sorting;
  size_t threads = 0;  // 0: as many as the machine has processors
  ColorChoice color = ColorChoice::Auto;
  HintChoice hints = HintChoice::Auto;
};
int runSearch(const SearchOptions& options);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_SEARCH_SEARCH_OPTIONS_H
