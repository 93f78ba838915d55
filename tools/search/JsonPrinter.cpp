#include "tools/search/JsonPrinter.h"

#include <fmt/format.h>

#include <iterator>

#include "tools/documents/TextOffsets.h"
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
        _offsets(document),
        _lines(lines),
        _hits(hits) {}

  std::string print(const SearchCounts& counts, size_t context) {
    add(R"({{"type":"begin","data":{{"path":{},"encoding":"{}"}}}})", _path, charsetName(_encoding));
    walkBlocks(
        _hits.blocks, _lines.count(), context, [this](const LineBlock& block) { addLines("match", block); },
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
    const TextOffset offset = _offsets.at(start);
    std::string submatches;
    for (size_t i = block.firstOccurrence; i < block.endOccurrence; ++i) {
      if (!submatches.empty()) submatches += ',';
      submatches += submatch(_hits.occurrences[i], offset);
    }
    add(R"({{"type":"{}","data":{{"path":{},"lines":{{"text":{}}},"line_number":{},"absolute_offset":{},"submatches":[{}]}}}})",
        type, _path, jsonString(units(start, end)), block.firstLine + 1, offset.bytes, submatches);
  }

  std::string submatch(const QueryOccurrence& occurrence, const TextOffset& blockOffset) const {
    const Range& range = occurrence.range;
    const TextOffset start = _offsets.at(range.location);
    const TextOffset end = _offsets.at(endOf(range));
    const size_t line = _lines.lineAt(range.location);
    const TextOffset lineStart = _offsets.at(_lines.fullRange(line).location);
    return fmt::format(R"({{"match":{{"text":{}}},"start":{},"end":{},"term":{},"primary":{},"line":{},"column":{},)"
                       R"("byte_offset":{},"byte_length":{},"utf16_offset":{},"utf16_length":{}}})",
                       jsonString(units(range.location, endOf(range))), start.utf8 - blockOffset.utf8,
                       end.utf8 - blockOffset.utf8, jsonString(occurrence.term), occurrence.primary, line + 1,
                       start.characters - lineStart.characters + 1, start.bytes, end.bytes - start.bytes,
                       range.location, range.length);
  }

  String units(int64_t start, int64_t end) const { return _text.substring({start, end - start}); }

  const std::string _path;
  const StringEncoding _encoding;
  const String _text;
  const TextOffsets _offsets;
  const TextLines& _lines;
  const DocumentHits& _hits;
  std::string _out;
};

}  // namespace

SearchCounts& SearchCounts::operator+=(const SearchCounts& other) {
  documents += other.documents;
  documentsWithMatch += other.documentsWithMatch;
  bytes += other.bytes;
  lines += other.lines;
  occurrences += other.occurrences;
  return *this;
}

std::string printJson(const std::string& path, const Document& document, const TextLines& lines,
                      const DocumentHits& hits, const SearchCounts& counts, size_t context) {
  return Printer(path, document, lines, hits).print(counts, context);
}

std::string printJsonSummary(const SearchCounts& counts) {
  return fmt::format("{{\"type\":\"summary\",\"data\":{{\"stats\":{}}}}}\n", statistics(counts));
}

}  // namespace velan::tool
