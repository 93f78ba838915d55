#include "tools/search/DocumentSearch.h"

#include <algorithm>
#include <new>

namespace velan::tool {
namespace {

// What has to match as a whole; an empty line matches nothing.
std::vector<Range> rangesOf(const SearchScope& scope, const TextLines& lines, Range all) {
  if (scope.unit == SearchUnit::Document) return {all};
  if (scope.unit == SearchUnit::Paragraph) return lines.paragraphs();
  std::vector<Range> ranges;
  for (size_t line = 0; line < lines.count(); ++line) {
    if (const Range range = lines.range(line); range.length > 0 || scope.invert) ranges.push_back(range);
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
  HitCollector(const TextLines& lines, bool allOccurrences) : _lines(lines), _allOccurrences(allOccurrences) {}

  void addMatch(QueryMatcher& matcher, Range range) {
    const size_t known = _hits.occurrences.size();
    std::vector<QueryOccurrence> occurrences = matcher.occurrences(range);
    if (!_allOccurrences) std::erase_if(occurrences, [](const QueryOccurrence& each) { return !each.primary; });
    callHandlerWithOccurrences(std::move(occurrences), [&](const String& term, Range place, bool primary) {
      add({place, term, primary});
      return false;
    });
    if (_hits.occurrences.size() == known) addFirstLine(range);
  }

  void addFirstLine(Range range) {
    const size_t line = range.length > 0 ? _lines.firstLineWithText(range) : _lines.lineAt(range.location);
    _hits.blocks.push_back({line, line, _hits.occurrences.size(), _hits.occurrences.size()});
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
  const bool _allOccurrences;
  DocumentHits _hits;
};

}  // namespace

void limitLines(DocumentHits& hits, size_t most) {
  size_t lines = 0;
  size_t kept = 0;
  for (; kept < hits.blocks.size() && lines < most; ++kept) lines += hits.blocks[kept].lineCount();
  if (kept == hits.blocks.size()) return;
  const auto from = [](auto& list, size_t index) { return list.begin() + static_cast<std::ptrdiff_t>(index); };
  hits.occurrences.erase(from(hits.occurrences, hits.blocks[kept].firstOccurrence), hits.occurrences.end());
  hits.blocks.erase(from(hits.blocks, kept), hits.blocks.end());
}

bool matchesDocument(const String& text, const PreparedQuery& query, const SearchScope& scope) {
  const auto index = indexOf(text, query);
  if (!index) return scope.invert && scope.unit == SearchUnit::Document;
  QueryMatcher matcher(query, *index);
  const Range all{0, text.length()};
  if (scope.unit == SearchUnit::Document) return matches(matcher, all) != scope.invert;
  const std::vector<Range> ranges = rangesOf(scope, TextLines(text.view()), all);
  return std::any_of(ranges.begin(), ranges.end(),
                     [&](const Range& range) { return matches(matcher, range) != scope.invert; });
}

DocumentHits searchDocument(const String& text, const TextLines& lines, const PreparedQuery& query,
                            const SearchScope& scope) {
  HitCollector collector(lines, scope.allOccurrences);
  if (const auto index = indexOf(text, query)) {
    QueryMatcher matcher(query, *index);
    for (const Range& range : rangesOf(scope, lines, {0, text.length()})) {
      if (matches(matcher, range) == scope.invert) continue;
      scope.invert ? collector.addFirstLine(range) : collector.addMatch(matcher, range);
    }
  }
  return collector.takeHits();
}

}  // namespace velan::tool
