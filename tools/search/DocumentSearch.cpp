#include "tools/search/DocumentSearch.h"

#include <algorithm>

namespace velan::tool {
namespace {

bool matches(const FastWordEnumerator* index, const Query& query) {
  return index && matchesString(*index, *query.terms, nullptr, QueryOperator::Mixed, 0, 0, index->length(),
                                query.comparison, query.wildcard);
}

std::vector<Range> rangesOf(SearchUnit unit, const TextLines& lines) {
  if (unit == SearchUnit::Paragraph) return lines.paragraphs();
  std::vector<Range> ranges;
  for (size_t line = 0; line < lines.count(); ++line) ranges.push_back(lines.range(line));
  return ranges;
}

class HitCollector {
 public:
  HitCollector(const TextLines& lines, const Query& query) : _lines(lines), _query(query) {}

  // Each unit gets an index of its own, so that the time for it depends on its own length only.
  void searchUnit(const String& text, Range range) {
    const auto index = _query.index(text.substring(range));
    if (!matches(index.get(), _query)) return;
    const size_t known = _hits.occurrences.size();
    enumerateOccurrences(*index, *_query.terms, {0, index->length()}, _query.comparison, _query.wildcard,
                         [&](const String& term, Range place, bool primary) {
                           add({{place.location + range.location, place.length}, term, primary});
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
  const Query& _query;
  DocumentHits _hits;
};

}  // namespace

bool matchesDocument(const String& text, const Query& query, SearchUnit unit) {
  if (unit == SearchUnit::Document) return matches(query.index(text).get(), query);
  const TextLines lines(text.view());
  const std::vector<Range> ranges = rangesOf(unit, lines);
  return std::any_of(ranges.begin(), ranges.end(),
                     [&](const Range& range) { return matches(query.index(text.substring(range)).get(), query); });
}

DocumentHits searchDocument(const String& text, const TextLines& lines, const Query& query, SearchUnit unit) {
  HitCollector collector(lines, query);
  if (unit == SearchUnit::Document) {
    collector.searchUnit(text, {0, text.length()});
  } else {
    for (const Range& range : rangesOf(unit, lines)) collector.searchUnit(text, range);
  }
  return collector.takeHits();
}

}  // namespace velan::tool
