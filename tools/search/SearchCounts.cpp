#include "tools/search/SearchCounts.h"

#include <fmt/format.h>

#include "tools/Console.h"

namespace velan::tool {

SearchCounts& SearchCounts::operator+=(const SearchCounts& other) {
  documents += other.documents;
  documentsWithMatch += other.documentsWithMatch;
  binaryFiles += other.binaryFiles;
  bytes += other.bytes;
  lines += other.lines;
  occurrences += other.occurrences;
  return *this;
}

std::string describe(const SearchCounts& counts, double seconds) {
  return fmt::format(
      "{}\n{} with occurrences\n{} with matches\n{} searched\n{} passed over\n{} searched\n{:.3f} seconds\n",
      counted(counts.occurrences, "occurrence"), counted(counts.lines, "line"),
      counted(counts.documentsWithMatch, "file"), counted(counts.documents, "file"),
      counted(counts.binaryFiles, "binary file"), counted(counts.bytes, "byte"), seconds);
}

}  // namespace velan::tool
