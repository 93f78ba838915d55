// What the command "search" is told.
#ifndef VELAN_TOOLS_SEARCH_SEARCH_OPTIONS_H
#define VELAN_TOOLS_SEARCH_SEARCH_OPTIONS_H

#include <cstdint>
#include <string>
#include <vector>

#include "tools/documents/TextDecoding.h"
#include "tools/search/DocumentSearch.h"
#include "tools/search/Query.h"

namespace velan::tool {

enum class ColorChoice : uint8_t { Auto, Always, Never };

enum class SearchOutput : uint8_t { Lines, Names, LineCounts, OccurrenceCounts, JSON };

struct SearchOptions {
  QueryOptions query;
  std::vector<std::string> paths;
  SearchUnit unit = SearchUnit::Document;
  SearchOutput output = SearchOutput::Lines;
  DecodingOptions decoding;
  bool hidden = false;
  size_t context = 0;
  size_t threads = 0;  // 0: as many as the machine has processors
  ColorChoice color = ColorChoice::Auto;
};
int runSearch(const SearchOptions& options);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_SEARCH_SEARCH_OPTIONS_H
