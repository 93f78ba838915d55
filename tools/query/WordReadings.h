// A text as the words of a query are looked for in it.
#ifndef VELAN_TOOLS_QUERY_WORD_READINGS_H
#define VELAN_TOOLS_QUERY_WORD_READINGS_H

#include <memory>
#include <string_view>
#include <vector>

#include "tools/documents/PlainText.h"
#include "tools/documents/TextDecoding.h"
#include "tools/query/QueryWords.h"
#include "velan/query/PreparedQuery.h"

namespace velan::tool {

/// A text that is searched in place of another one, and the way back.
class SearchedText {
 public:
  /// The text itself.
  explicit SearchedText(const String& text) : _text(text) {}

  const String& text() const { return _text; }
  Range wholeRange() const { return {0, _text.length()}; }
  /// What a range of this text stands for in the other one.
  Range sourceOf(Range range) const { return _plain.sourceOf(_read.sourceOf(range)); }
  /// The part of this text that begins in `range` of the other one.
  Range rangeFrom(Range range) const;

 private:
  friend class WordReadings;

  String _text;
  SourceMap _plain;  // from the plain text to the other one
  SourceMap _read;   // from this text to the plain text
};

/// What a query's words may be written like: in plain text (see `plainText`), with letters that many write as two, and
/// divided at the end of a line. Those last two are read as the plain word only where the query has that word, so that
/// nothing else is lost: the end of "well-\nknown" is found by "known", and all of it by "wellknown". May be used by
/// several threads at once.
class WordReadings {
 public:
  /// If `verbatim` every text is searched as it stands.
  WordReadings(const PreparedQuery& query, bool verbatim);

  /// Throws `std::bad_alloc`.
  SearchedText read(const String& text) const;
  /// Of the document's text.
  SearchedText read(const Document& document) const;

 private:
  SearchedText read(const String& text, const Spelling& spelling) const;

  const bool _verbatim;
  const std::unique_ptr<const QueryWords> _words;  // null when there are none
};

/// The terms of the query as they fare in the text, with their places in the other one; an empty text holds nothing.
/// Throws `std::bad_alloc`.
std::vector<ExplainedTerm> explanationIn(const PreparedQuery& query, const SearchedText& text, size_t deepest);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_QUERY_WORD_READINGS_H
