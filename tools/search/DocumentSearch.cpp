#include "tools/search/DocumentSearch.h"

#include <algorithm>
#include <new>
#include <set>

#include "tools/query/FailedTerms.h"

namespace velan::tool {
namespace {

// A part of a text that has to match as a whole.
struct Part {
  Range range;
  Range searched;  // of the text that is searched in its place
};

// An empty line matches nothing.
std::vector<Part> partsOf(const SearchScope& scope, const TextLines& lines, const SearchedText& searched) {
  std::vector<Part> parts;
  const auto add = [&](Range range) { parts.push_back({range, searched.rangeFrom(range)}); };
  if (scope.unit == SearchUnit::Document) {
    parts.push_back({lines.wholeRange(), {0, searched.text().length()}});
  } else if (scope.unit == SearchUnit::Paragraph) {
    std::ranges::for_each(lines.paragraphs(), add);
  } else {
    for (size_t line = 0; line < lines.count(); ++line) {
      if (const Range range = lines.range(line); range.length > 0 || scope.invert) add(range);
    }
  }
  return parts;
}

// Throws where memory ran out, or nobody would know.
bool matches(QueryMatcher& matcher, Range range) {
  const bool matches = matcher.matches(range);
  if (matcher.ranOutOfMemory()) throw std::bad_alloc();
  return matches;
}

class HitCollector {
 public:
  HitCollector(const PreparedQuery& query, const TextLines& lines, const SearchedText& searched, bool allOccurrences)
      : _query(query), _lines(lines), _searched(searched), _allOccurrences(allOccurrences) {}

  void addMatch(QueryMatcher& matcher, const Part& part) {
    const size_t known = _hits.occurrences.size();
    std::vector<QueryOccurrence> occurrences = matcher.occurrences(part.searched);
    const std::set<String> failed = failedTerms(_query, matcher, part.searched);
    for (QueryOccurrence& each : occurrences) each.primary = each.primary && !failed.contains(each.term);
    if (!_allOccurrences) std::erase_if(occurrences, [](const QueryOccurrence& each) { return !each.primary; });
    callHandlerWithOccurrences(std::move(occurrences), [&](const String& term, Range place, bool primary) {
      add({_searched.sourceOf(place), term, primary});
      return false;
    });
    if (_hits.occurrences.size() == known) addFirstLine(part.range);
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

  const PreparedQuery& _query;
  const TextLines& _lines;
  const SearchedText& _searched;
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

bool matchesDocument(const String& text, const SearchedText& searched, const PreparedQuery& query,
                     const SearchScope& scope) {
  const auto index = indexOf(searched.text(), query);
  if (!index) return scope.invert && scope.unit == SearchUnit::Document;
  QueryMatcher matcher(query, *index);
  if (scope.unit == SearchUnit::Document) return matches(matcher, {0, searched.text().length()}) != scope.invert;
  const std::vector<Part> parts = partsOf(scope, TextLines(text.view()), searched);
  return std::ranges::any_of(parts, [&](const Part& part) { return matches(matcher, part.searched) != scope.invert; });
}

DocumentHits searchDocument(const SearchedText& searched, const TextLines& lines, const PreparedQuery& query,
                            const SearchScope& scope) {
  HitCollector collector(query, lines, searched, scope.allOccurrences);
  if (const auto index = indexOf(searched.text(), query)) {
    QueryMatcher matcher(query, *index);
    for (const Part& part : partsOf(scope, lines, searched)) {
      if (matches(matcher, part.searched) == scope.invert) continue;
      scope.invert ? collector.addFirstLine(part.range) : collector.addMatch(matcher, part);
    }
  }
  return collector.takeHits();
}

}  // namespace velan::tool
