#include "tools/search/JsonPrinter.h"

#include <fmt/format.h>

#include <iterator>

#include "tools/documents/SourcePlaces.h"
#include "velan/base/Base64.h"
#include "velan/base/json/JSON.h"
#include "velan/text/encoding/CharsetNames.h"

namespace velan::tool {
namespace {

std::string jsonString(const String& text) {
  std::string json;
  appendJSONString(text, json);
  return json;
}

// A path need not be valid UTF-8.
std::string jsonPath(const std::string& path) {
  if (const String text = String::fromUTF8(path)) return fmt::format(R"({{"text":{}}})", jsonString(text));
  std::string base64;
  appendBase64({reinterpret_cast<const uint8_t*>(path.data()), path.size()}, base64);
  return fmt::format(R"({{"bytes":"{}"}})", base64);
}

std::string statistics(const SearchCounts& counts) {
  return fmt::format(
      R"({{"searches":{},"searches_with_match":{},"bytes_searched":{},"matched_lines":{},"matches":{}}})",
      counts.documents, counts.documentsWithMatch, counts.bytes, counts.lines, counts.occurrences);
}

class Printer {
 public:
  Printer(const std::string& path, const Document& document, const TextLines& lines, const DocumentHits& hits)
      : _path(jsonPath(path)),
        _encoding(document.encoding),
        _text(document.text),
        _places(document),
        _lines(lines),
        _hits(hits) {}

  std::string print(const SearchCounts& counts, size_t before, size_t after) {
    add(R"({{"type":"begin","data":{{"path":{},"encoding":"{}"}}}})", _path, charsetName(_encoding));
    walkBlocks(
        _hits.blocks, _lines.count(), before, after, [this](const LineBlock& block) { addLines("match", block); },
        [this](size_t line) {
          addLines("context", {line, line, 0, 0});
        });
    add(R"({{"type":"end","data":{{"path":{},"binary_offset":null,"stats":{}}}}})", _path, statistics(counts));
    return std::move(_out);
  }

 private:
  template <typename... Arguments>
  void add(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
    fmt::format_to(std::back_inserter(_out), format, std::forward<Arguments>(arguments)...);
    _out += '\n';
  }

  void addLines(std::string_view type, const LineBlock& block) {
    const int64_t start = _lines.fullRange(block.firstLine).location;
    const int64_t end = endOf(_lines.fullRange(block.lastLine));
    const int64_t utf8 = _places.utf8Offset(start);
    std::string submatches;
    for (size_t i = block.firstOccurrence; i < block.endOccurrence; ++i) {
      if (!submatches.empty()) submatches += ',';
      submatches += submatch(_hits.occurrences[i], utf8);
    }
    add(R"({{"type":"{}","data":{{"path":{},"lines":{{"text":{}}},"line_number":{},"absolute_offset":{},"submatches":[{}]}}}})",
        type, _path, jsonString(units(start, end)), _lines.number(block.firstLine),
        _places.of({start, 1}).bytes.location, submatches);
  }

  // `before` is how many bytes of UTF-8 lie before the lines.
  std::string submatch(const QueryOccurrence& occurrence, int64_t before) const {
    const Range& range = occurrence.range;
    const SourcePlace place = _places.of(range);
    return fmt::format(R"({{"match":{{"text":{}}},"start":{},"end":{},"term":{},"primary":{},"line":{},"column":{},)"
                       R"("byte_offset":{},"byte_length":{},"utf16_offset":{},"utf16_length":{}}})",
                       jsonString(units(range.location, endOf(range))), _places.utf8Offset(range.location) - before,
                       _places.utf8Offset(endOf(range)) - before, jsonString(occurrence.term), occurrence.primary,
                       place.line, place.column, place.bytes.location, place.bytes.length, place.units.location,
                       place.units.length);
  }

  String units(int64_t start, int64_t end) const { return _text.substring({start, end - start}); }

  const std::string _path;
  const StringEncoding _encoding;
  const String _text;
  const SourcePlaces _places;
  const TextLines& _lines;
  const DocumentHits& _hits;
  std::string _out;
};

}  // namespace

std::string printJson(const std::string& path, const Document& document, const TextLines& lines,
                      const DocumentHits& hits, const SearchCounts& counts, size_t before, size_t after) {
  return Printer(path, document, lines, hits).print(counts, before, after);
}

std::string printJsonSummary(const SearchCounts& counts, bool withoutQuestionMarks) {
  return fmt::format(R"({{"type":"summary","data":{{"stats":{},"question_marks_as_punctuation":{}}}}})",
                     statistics(counts), withoutQuestionMarks) +
         '\n';
}

}  // namespace velan::tool
