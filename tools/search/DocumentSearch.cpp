#include "tools/search/DocumentSearch.h"

#include <algorithm>
#include <new>
#include <utility>

namespace velan::tool {
namespace {

class HitCollector {
 public:
  HitCollector(const TextLines& lines, const SearchedText& searched) : _lines(lines), _searched(searched) {}

  void addMatch(Range unit, std::vector<QueryOccurrence> occurrences) {
    const size_t known = _hits.occurrences.size();
    callHandlerWithOccurrences(std::move(occurrences), [&](const String& term, Range place, bool primary) {
      add({_searched.sourceOf(place), term, primary});
      return false;
    });
    if (_hits.occurrences.size() == known) addFirstLine(unit);
  }

  void addFirstLine(Range range) {
    const size_t line = range.length > 0 ? _lines.firstLineWithText(range) : _lines.lineAt(range.location);
    _hits.blocks.push_back({line, line, _hits.occurrences.size(), _hits.occurrences.size()});
  }

  DocumentHits takeHits() { return std::move(_hits); }

 private:
  void add(QueryOccurrence occurrence) {
    const size_t number = _hits.occurrences.size();
    const size_t firstLine = lineAt(occurrence.range.location);
    const size_t lastLine = lineAt(endOf(occurrence.range) - 1);
    _hits.occurrences.push_back(std::move(occurrence));
    if (!_hits.blocks.empty() && firstLine <= _hits.blocks.back().lastLine) {
      LineBlock& block = _hits.blocks.back();
      block.lastLine = std::max(block.lastLine, lastLine);
      block.endOccurrence = number + 1;
    } else {
      _hits.blocks.push_back({firstLine, lastLine, number, number + 1});
    }
  }

  // Most occurrences lie in the line of the one before.
  size_t lineAt(int64_t index) {
    const Range last = _lines.fullRange(_line);
    if (index < last.location || index >= endOf(last)) _line = _lines.lineAt(index);
    return _line;
  }

  const TextLines& _lines;
  const SearchedText& _searched;
  size_t _line = 0;
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

DocumentSearch::DocumentSearch(const Document& document, const SearchedText& searched, const PreparedQuery& query,
                               const FailedTerms& failed, const SearchScope& scope)
    : _document(document),
      _searched(searched),
      _failed(failed),
      _scope(scope),
      _index(indexOf(searched.text(), query)) {
  if (_index) _matcher.emplace(query, *_index);
}

bool DocumentSearch::matches() {
  const bool isWhole = _scope.unit == SearchUnit::Document;
  if (!_matcher) return _scope.invert && isWhole;
  if (isWhole) return isWanted(_searched.wholeRange());
  const std::vector<Range> all = units();
  return std::ranges::any_of(all, [this](Range unit) { return isWanted(_searched.rangeFrom(unit)); });
}

DocumentHits DocumentSearch::hits() {
  const bool isWhole = _scope.unit == SearchUnit::Document;
  if (!_matcher || (isWhole && !isWanted(_searched.wholeRange()))) return {};
  HitCollector collector(lines(), _searched);
  for (const Range unit : units()) {
    const Range searched = isWhole ? _searched.wholeRange() : _searched.rangeFrom(unit);
    if (!isWhole && !isWanted(searched)) continue;
    _scope.invert ? collector.addFirstLine(unit) : collector.addMatch(unit, occurrences(searched));
  }
  return collector.takeHits();
}

const TextLines& DocumentSearch::lines() {
  if (!_lines) _lines.emplace(_document);
  return *_lines;
}

// An empty line matches nothing.
std::vector<Range> DocumentSearch::units() {
  if (_scope.unit == SearchUnit::Document) return {lines().wholeRange()};
  if (_scope.unit == SearchUnit::Paragraph) return lines().paragraphs();
  std::vector<Range> units;
  for (size_t line = 0; line < lines().count(); ++line) {
    if (const Range range = lines().range(line); range.length > 0 || _scope.invert) units.push_back(range);
  }
  return units;
}

// Throws where memory ran out, or nobody would know.
bool DocumentSearch::isWanted(Range searched) {
  const bool matches = _matcher->matches(searched);
  if (_matcher->ranOutOfMemory()) throw std::bad_alloc();
  return matches != _scope.invert;
}

// Those in a part of the searched text that matches.
std::vector<QueryOccurrence> DocumentSearch::occurrences(Range searched) {
  std::vector<QueryOccurrence> occurrences = _matcher->occurrences(searched, _failed.in(*_matcher, searched));
  if (!_scope.allOccurrences) std::erase_if(occurrences, [](const QueryOccurrence& each) { return !each.primary; });
  return occurrences;
}

}  // namespace velan::tool
