// What a search counted.
#ifndef VELAN_TOOLS_SEARCH_SEARCH_COUNTS_H
#define VELAN_TOOLS_SEARCH_SEARCH_COUNTS_H

#include <cstddef>
#include <string>

namespace velan::tool {

/// Of one document or of all.
struct SearchCounts {
  size_t documents = 0;
  size_t documentsWithMatch = 0;
  size_t binaryFiles = 0;  // passed over
  size_t bytes = 0;
  size_t lines = 0;  // with occurrences
  size_t occurrences = 0;

  SearchCounts& operator+=(const SearchCounts& other);
};

/// The counts for people, a line each.
std::string describe(const SearchCounts& counts, double seconds);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_SEARCH_SEARCH_COUNTS_H
