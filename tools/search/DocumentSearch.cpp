#include "tools/search/DocumentSearch.h"

#include <algorithm>
#include <new>

namespace velan::tool {
namespace {

// What has to match as a whole; an empty line matches nothing.
std::vector<Range> rangesOf(SearchUnit unit, const TextLines& lines, Range all) {
  if (unit == SearchUnit::Document) return {all};
  if (unit == SearchUnit::Paragraph) return lines.paragraphs();
  std::vector<Range> ranges;
  for (size_t line = 0; line < lines.count(); ++line) {
    if (const Range range = lines.range(line); range.length > 0) ranges.push_back(range);
  }
  return ranges;
}

// Throws where memory ran out, or nobody would know.
bool matches(QueryMatcher& matcher, Range range) {
  const bool matches = matcher.matches(range);
  if (matcher.ranOutOfMemory()) throw std::bad_alloc();
  return matches;
}

class HitCollector {
 public:
  explicit HitCollector(const TextLines& lines) : _lines(lines) {}

  void searchUnit(QueryMatcher& matcher, Range range) {
    if (!matches(matcher, range)) return;
    const size_t known = _hits.occurrences.size();
    callHandlerWithOccurrences(matcher.occurrences(range), [&](const String& term, Range place, bool primary) {
      add({place, term, primary});
      return false;
    });
    if (_hits.occurrences.size() > known) return;
    const size_t line = _lines.firstLineWithText(range);
    _hits.blocks.push_back({line, line, known, known});
  }

  DocumentHits takeHits() { return std::move(_hits); }

 private:
  void add(QueryOccurrence occurrence) {
    const size_t number = _hits.occurrences.size();
    const size_t firstLine = _lines.lineAt(occurrence.range.location);
    const size_t lastLine = _lines.lineAt(endOf(occurrence.range) - 1);
    _hits.occurrences.push_back(std::move(occurrence));
    if (!_hits.blocks.empty() && firstLine <= _hits.blocks.back().lastLine) {
      LineBlock& block = _hits.blocks.back();
      block.lastLine = std::max(block.lastLine, lastLine);
      block.endOccurrence = number + 1;
    } else {
      _hits.blocks.push_back({firstLine, lastLine, number, number + 1});
    }
  }

  const TextLines& _lines;
  DocumentHits _hits;
};

}  // namespace

bool matchesDocument(const String& text, const PreparedQuery& query, SearchUnit unit) {
  const auto index = indexOf(text, query);
  if (!index) return false;
  QueryMatcher matcher(query, *index);
  if (unit == SearchUnit::Document) return matches(matcher, {0, text.length()});
  const std::vector<Range> ranges = rangesOf(unit, TextLines(text.view()), {0, text.length()});
  return std::any_of(ranges.begin(), ranges.end(), [&](const Range& range) { return matches(matcher, range); });
}

DocumentHits searchDocument(const String& text, const TextLines& lines, const PreparedQuery& query, SearchUnit unit) {
  HitCollector collector(lines);
  if (const auto index = indexOf(text, query)) {
    QueryMatcher matcher(query, *index);
    for (const Range& range : rangesOf(unit, lines, {0, text.length()})) collector.searchUnit(matcher, range);
  }
  return collector.takeHits();
}

}  // namespace velan::tool
