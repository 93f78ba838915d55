// A query on one document: whether it matches, where the terms occur, and which lines show that.
#ifndef VELAN_TOOLS_SEARCH_DOCUMENT_SEARCH_H
#define VELAN_TOOLS_SEARCH_DOCUMENT_SEARCH_H

#include <algorithm>
#include <memory>
#include <optional>
#include <vector>

#include "tools/documents/TextLines.h"
#include "tools/query/FailedTerms.h"
#include "tools/query/Query.h"
#include "tools/query/WordReadings.h"

namespace velan::tool {

/// What a query must match as a whole.
enum class SearchUnit : uint8_t { Document, Paragraph, Line };

/// Consecutive lines, all with occurrences; several when an occurrence goes on over line ends.
struct LineBlock {
  size_t firstLine;
  size_t lastLine;
  size_t firstOccurrence;  // numbers in `DocumentHits::occurrences`
  size_t endOccurrence;

  size_t lineCount() const { return lastLine - firstLine + 1; }
};

/// What is asked of a document besides the query.
struct SearchScope {
  SearchUnit unit = SearchUnit::Document;
  bool invert = false;          // units that do not match
  bool allOccurrences = false;  // also those that take no part in the match
};

struct DocumentHits {
  std::vector<QueryOccurrence> occurrences;  // by location
  /// By line, none overlapping. A unit that matches without an occurrence, such as by "NOT x", has a block without
  /// occurrences: its first line with text.
  std::vector<LineBlock> blocks;
};

/// Cuts off the blocks behind the first `most` lines; a block that begins there stays whole.
void limitLines(DocumentHits& hits, size_t most);

/// Goes through the lines to print: `printBlock(block)` for each block and `printContext(line)` for up to `before`
/// lines before and `after` lines after it, each line once and in order.
template <typename PrintBlock, typename PrintContext>
void walkBlocks(const std::vector<LineBlock>& blocks, size_t lineCount, size_t before, size_t after,
                PrintBlock printBlock, PrintContext printContext) {
  size_t next = 0;
  for (size_t i = 0; i < blocks.size(); ++i) {
    const LineBlock& block = blocks[i];
    for (next = std::max(next, block.firstLine - std::min(block.firstLine, before)); next < block.firstLine; ++next) {
      printContext(next);
    }
    printBlock(block);
    next = block.lastLine + 1;
    const size_t limit = i + 1 < blocks.size() ? blocks[i + 1].firstLine : lineCount;
    const size_t end = next + std::min(limit - next, after);
    for (; next < end; ++next) printContext(next);
  }
}

/// A query on one document. What is asked for is found when it is asked for, and all of it with one index and one
/// evaluation.
class DocumentSearch {
 public:
  /// Borrows what it is given: `searched` is what the document's text is searched as. Throws `std::bad_alloc`, as do
  /// the questions.
  DocumentSearch(const Document& document, const SearchedText& searched, const PreparedQuery& query,
                 const FailedTerms& failed, const SearchScope& scope);

  /// Whether anything matches.
  bool matches();
  /// No blocks when nothing matches.
  DocumentHits hits();
  /// Of the document's text.
  const TextLines& lines();

 private:
  std::vector<Range> units();
  bool isWanted(Range searched);
  std::vector<QueryOccurrence> occurrences(Range searched);

  const Document& _document;
  const SearchedText& _searched;
  const FailedTerms& _failed;
  const SearchScope _scope;
  const std::unique_ptr<FastWordEnumerator> _index;  // null for an empty text
  std::optional<QueryMatcher> _matcher;
  std::optional<TextLines> _lines;
};

}  // namespace velan::tool

#endif  // VELAN_TOOLS_SEARCH_DOCUMENT_SEARCH_H
