#include <algorithm>

#include "velan/query/evaluation/PlacedSpansInternal.h"

namespace velan {

void PlacedSpans::find(const SearchedText& text, LeafSearch& search, const Relation& relation, int64_t last) {
  for (const Range* next; (next = search.at(_skipped + size())) && endOf(*next) <= last;) {
    if (!_placed.empty() && endOf(_placed.back().span) < endOf(*next)) _apart.push_back(size());
    _placed.push_back({*next, spanAround(text, relation, *next, {0, text.length()})});
  }
}

size_t PlacedSpans::firstPlaceFrom(int64_t start) const {
  const auto isBefore = [start](const Placed& each) { return each.place.location < start; };
  return static_cast<size_t>(std::partition_point(_placed.begin(), _placed.end(), isBefore) - _placed.begin());
}

size_t PlacedSpans::countEndingBy(int64_t end) const {
  const auto isBefore = [end](const Placed& each) { return endOf(each.place) <= end; };
  return static_cast<size_t>(std::partition_point(_placed.begin(), _placed.end(), isBefore) - _placed.begin());
}

size_t PlacedSpans::firstSpanFrom(int64_t start) const {
  const auto isBefore = [start](const Placed& each) { return each.span.location < start; };
  return static_cast<size_t>(std::partition_point(_placed.begin(), _placed.end(), isBefore) - _placed.begin());
}

size_t PlacedSpans::firstSpanReaching(int64_t end) const {
  const auto isBefore = [end](const Placed& each) { return endOf(each.span) < end; };
  return static_cast<size_t>(std::partition_point(_placed.begin(), _placed.end(), isBefore) - _placed.begin());
}

size_t PlacedSpans::firstPlaceApartFrom(size_t number) const {
  const auto apart = std::upper_bound(_apart.begin(), _apart.end(), number);
  return apart == _apart.end() ? size() : *apart;
}

// A span's beginning may lie before that of a range that holds its place: then it is cut there, and the ends of such
// spans stand side by side. Its end may lie behind that of a range: then it is cut there, too.
ClippedSpans PlacedSpans::spans(const RangeColumns& ranges) const {
  RangeColumns whole = RangeColumns::onListsOf(ranges);
  std::vector<int64_t> ends;
  for (const Placed& each : _placed) ends.push_back(endOf(each.span));
  const size_t own = whole.addList(std::move(ends));
  RangeColumns cut = RangeColumns::onListsOf(whole);
  for (const RangeColumn& column : ranges.columns()) {
    const size_t first = firstPlaceFrom(column.start);
    const size_t past = firstSpanFrom(column.start);
    cut.add(column.start, own, first, std::min(past, firstSpanReaching(ranges.lastEndOf(column) + 1)));
    for (size_t place = first; place < past;) {
      const size_t next = std::min(past, firstPlaceApartFrom(place));
      cut.addWithin(column, {endOf(_placed[place].place), endOf(_placed[next - 1].span)});
      place = next;
    }
  }
  PassedEnds passed(ranges);
  for (size_t number = 0; number < size(); ++number) {
    const auto& [place, span] = _placed[number];
    passed.pass(span.location);
    if (passed.last() >= endOf(span)) whole.add(span.location, own, number, number + 1);
    passed.addWithin({endOf(place), endOf(span)}, span.location, whole);
  }
  whole.sort();
  cut.sort();
  return {std::move(whole), std::move(cut)};
}

// A span whose end is not cut tells its place. The others end where a range does: with its own beginning a span is that
// of every place whose span begins there and reaches further, cut on both sides of every place in it whose span does.
std::vector<size_t> PlacedSpans::placesOf(const ClippedSpans& chosen) const {
  const size_t own = chosen.whole.lists().size() - 1;
  std::vector<int64_t> changes(size() + 1);  // of how many columns hold the place's number
  for (const RangeColumns* columns : {&chosen.whole, &chosen.cut}) {
    for (const RangeColumn& column : columns->columns()) {
      if (column.list != own) continue;
      ++changes[column.first];
      --changes[column.past];
    }
  }
  PassedStarts whole(chosen.whole, own);
  PassedStarts cut(chosen.cut, own);
  std::vector<size_t> places;
  int64_t columns = 0;
  for (size_t number = 0; number < size(); ++number) {
    const auto& [place, span] = _placed[number];
    const EndRun ends{endOf(place), endOf(span)};
    columns += changes[number];
    if (columns > 0 || whole.hasAny(span.location, span.location, ends) ||
        cut.hasAny(span.location, place.location, ends)) {
      places.push_back(number);
    }
  }
  return places;
}

RangeColumns PlacedSpans::pieces(const RangeColumns& ranges) const {
  RangeColumns pieces = RangeColumns::onListsOf(ranges);
  std::vector<int64_t> ends;
  for (const Placed& each : _placed) ends.push_back(each.span.location);
  const size_t own = pieces.addList(std::move(ends));
  for (const RangeColumn& column : ranges.columns()) {
    const size_t first = firstPlaceFrom(column.start);
    const int64_t firstEnd = first < size() ? endOf(_placed[first].place) : NSNotFound;
    pieces.addWithin(column, {column.start + 1, firstEnd});
    if (ranges.lastEndOf(column) >= firstEnd) pieces.add(column.start, own, first, first + 1);
  }
  PassedEnds passed(ranges);
  for (size_t number = 0; number < size(); ++number) {
    const auto& [place, span] = _placed[number];
    const int64_t nextEnd = number + 1 < size() ? endOf(_placed[number + 1].place) : NSNotFound;
    passed.pass(place.location);
    if (passed.last() >= nextEnd) pieces.add(endOf(span), own, number + 1, number + 2);
    passed.addWithin({std::max(endOf(place), endOf(span) + 1), nextEnd}, endOf(span), pieces);
  }
  pieces.finish();
  return pieces;
}

}  // namespace velan
